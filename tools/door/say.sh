#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: what it tells, and whether it may ask.
# shellcheck disable=SC2034 # read by the other files

step() { printf '==> %s\n' "$*"; }
warn() { printf 'zerl: %s\n' "$*" >&2; }
die() {
    for line in "$@"; do
        warn "$line"
    done
    exit 1
}
usage_error() {
    warn "$1"
    warn "type  ./zerl help  for the commands"
    exit 2
}

assume_yes=0
[ -n "${CI:-}" ] && assume_yes=1

on_terminal() { [ -t 0 ] && [ -t 1 ]; }
may_ask() { [ "$assume_yes" = 0 ] && on_terminal; }
