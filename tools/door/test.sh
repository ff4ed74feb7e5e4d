#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: the commands that test.
# shellcheck disable=SC2154 # variables of zerl and its other files

command_test() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_display $packages_test
    set --
    if [ "$sanitize" = 1 ]; then
        configure sanitize "$sanitized"
        compile sanitize
        ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1${ASAN_OPTIONS:+:$ASAN_OPTIONS}
        UBSAN_OPTIONS=print_stacktrace=1${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}
        export ASAN_OPTIONS UBSAN_OPTIONS
        preset=sanitize
    elif [ "$threads" = 1 ]; then
        configure tsan "$threaded"
        compile tsan
        preset=tsan
        # Where a kernel scatters addresses widely, this sanitizer cannot start.
        if setarch -R true 2>/dev/null; then
            set -- setarch -R
        fi
    else
        build_all
        preset=default
    fi
    if [ "$without" = 1 ]; then
        refuse_namespaces
        step "Testing ($preset, without name spaces)"
        ctest --preset "$preset" --parallel 1 --exclude-regex '^walk_' || exit
        check_refusal
        return
    fi
    # Where name spaces are refused the tests take turns with the places themselves.
    bwrap --ro-bind / / --dev-bind /proc /proc true 2>/dev/null || jobs=1
    step "Testing ($preset)"
    exec "$@" ctest --preset "$preset" --parallel "$jobs"
}

# How long to walk, and from where.
check_walk() {
    : "${length:=10m}"
    case ${length%m} in
    '' | *[!0-9]* | 0*) usage_error "neither steps nor minutes (30m): $length" ;;
    esac
    case $seed in
    *[!0-9]*) usage_error "not a seed: $seed" ;;
    esac
}
command_soak() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_display
    configure default "$build" -DZERL_BENCH=OFF
    compile default walk_new_seed
    case $length in
    *m) set -- --minutes "${length%m}" ;;
    *) set -- --steps "$length" ;;
    esac
    [ -z "$seed" ] || set -- "$@" --seed "$seed"
    step "Walking"
    no_session_bus
    export QT_QPA_PLATFORM=offscreen
    exec "$bin/privatecell" --no-cell -- "$build/tests/walk_new_seed" "$@"
}

command_mutate() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_display ccache python3
    bwrap --ro-bind / / --dev-bind /proc /proc true 2>/dev/null || jobs=1
    cd "$from" || exit # paths as the caller meant them
    exec python3 "$here/tests/mutate.py" --jobs "$jobs" "$@"
}
