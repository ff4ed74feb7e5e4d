#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: checks of what is written, without running it.
# shellcheck disable=SC2154 # variables of zerl and its other files

# Files of the tree, one a line, without what was built.
tree_files() {
    if [ -e .git ] && git ls-files >/dev/null 2>&1; then
        git ls-files --cached --others --exclude-standard
    else
        find . -name .git -prune -o -path './build*' -prune -o -type f -print | sed 's|^\./||'
    fi | sort -u | while IFS= read -r file; do
        if [ -f "$file" ]; then
            printf '%s\n' "$file"
        fi
    done
}

shell_scripts() {
    tree_files | grep -vE '\.(cpp|h|ui|svg|xml|md|json|txt|cmake)$' | while IFS= read -r file; do
        case $(head -n 1 -- "$file" | tr -d '\0') in
        '#!'*sh | '#!'*sh\ *) printf '%s\n' "$file" ;;
        esac
    done
}

# The commands that compile, as the analyser reads them: it cannot load headers
# that the compiler has translated beforehand.
commands_to_analyse() {
    commands=$build/compile_commands.json
    [ -e "$commands" ] || return 0
    mkdir -p -- "$build/lint"
    sed 's/ -Winvalid-pch -include .*cmake_pch\.hxx\(\\"\)\{0,1\}//' \
        "$commands" >"$build/lint/compile_commands.json"
}

# Analyses the files named on standard input, several at a time; fails when any
# of them has a finding.
analyse() {
    # shellcheck disable=SC2016 # expanded by the inner shell
    tr '\n' '\0' | xargs -0 -r -n 1 -P "$jobs" sh -c '
        if report=$(clang-tidy -p "$1" --quiet "$2" 2>&1); then
            printf "    %s\n" "$2"
        else
            printf "    %s\n%s\n" "$2" "$report"
            exit 1
        fi' analyse "$build/lint"
}

command_lint() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_lint $packages_display
    build_all ON
    failed=
    step "Format"
    tree_files | grep -E '\.(cpp|h|c)$' | tr '\n' '\0' |
        xargs -0 -r clang-format --dry-run -Werror --ferror-limit=1 || failed="$failed format"
    step "Shell scripts"
    shell_scripts | tr '\n' '\0' | xargs -0 -r shellcheck || failed="$failed shellcheck"
    step "Static analysis"
    commands_to_analyse
    tree_files | grep -E '^(src|hostsim|bench)/.*\.cpp$' |
        analyse || failed="$failed clang-tidy"
    [ -z "$failed" ] || die "these checks failed:$failed" \
        "for the format, type  clang-format -i FILE"
    step "Nothing to complain about"
}
