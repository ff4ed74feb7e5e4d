#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: the benchmarks.
# shellcheck disable=SC2154 # variables of zerl and its other files

command_bench() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_bench $packages_display
    build_all ON
    no_session_bus
    start_server
    failed=
    ratios=
    for program in "$build"/bench/*; do
        if [ ! -f "$program" ] || [ ! -x "$program" ]; then
            continue
        fi
        name=${program##*/}
        step "$name"
        work "$bin/privatecell" --start -- "$program" >"$program.txt" || failed="$failed $name"
        cat "$program.txt"
        ratios="$ratios$(grep '^ratio' "$program.txt" || :)
"
    done
    stop_server
    [ -n "$ratios" ] || die "no benchmark was built in build/bench/"
    step "Ratios"
    printf '%s' "$ratios" | sed '/^$/d'
    [ -z "$failed" ] || die "benchmarks that failed:$failed"
}
