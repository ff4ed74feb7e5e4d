#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: build folders are configured, filled and removed.
# shellcheck disable=SC2154 # variables of zerl
# shellcheck disable=SC2119,SC2120 # other files pass the argument

# A build folder that was made elsewhere (the tree was moved or copied) names
# paths that are no longer there.
discard_foreign() {
    cache=$1/CMakeCache.txt
    if [ -e "$1" ] && [ ! -w "$1" ]; then
        die "$1 belongs to another user" "type  sudo rm -rf '$1'  and try again"
    fi
    [ -e "$cache" ] || return 0
    made_for=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$cache")
    made_for=$(CDPATH='' cd -- "$made_for" 2>/dev/null && pwd -P) || made_for=
    if [ "$made_for" != "$here" ]; then
        step "$1 was made for another folder; starting it afresh"
        rm -rf -- "$1"
    fi
}

# configure PRESET FOLDER [CMAKE OPTIONS...]
configure() {
    preset=$1 folder=$2
    shift 2
    discard_foreign "$folder"
    step "Configuring ($preset)"
    cmake --preset "$preset" "$@" && return 0
    # A cache may name a compiler or a library that has since gone.
    if [ -e "$folder/CMakeCache.txt" ]; then
        step "Configuring afresh"
        cmake --preset "$preset" --fresh "$@" && return 0
    fi
    die "the build could not be configured" \
        "type  ./zerl clean  and try again; if it fails again, the first error above tells why"
}

# compile PRESET [TARGETS...]: all targets when none is named.
compile() {
    preset=$1
    shift
    step "Building ($preset)"
    if [ $# -gt 0 ]; then
        cmake --build --preset "$preset" --parallel "$jobs" --target "$@"
    else
        cmake --build --preset "$preset" --parallel "$jobs"
    fi || die "the build failed; the first error above tells where"
}

# What a cell and the tool need; the tests and benchmarks take longer.
products='zerl_util trainingcell cellpanel cellctl bld_tables vxtable'

build_products() {
    configure default "$build" -DZERL_BENCH=OFF
    # shellcheck disable=SC2086 # a list of words
    compile default $products "$@"
}

# build_all [ON]: the benchmarks as well.
build_all() {
    configure default "$build" "-DZERL_BENCH=${1:-OFF}"
    compile default
}

command_build() {
    set_up
    build_all
    step "Done; type  ./zerl run  to start"
}

command_clean() {
    for folder in "$build" "$sanitized" "$threaded"; do
        [ -e "$folder" ] || continue
        step "Removing $folder"
        rm -rf -- "$folder" 2>/dev/null ||
            die "$folder could not be removed whole" "type  sudo rm -rf '$folder'"
    done
}
