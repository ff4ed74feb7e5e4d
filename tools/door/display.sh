#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: the display of this session, or one that nobody sees.
# shellcheck disable=SC2154 # variables of zerl

have_display() { [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; }

# A display that is named need not let us in.
reach_display() {
    # shellcheck disable=SC3045 # every Debian sh has it
    said=$(ulimit -c 0 && timeout 30 "$bin/cellpanel" --help 2>&1 >/dev/null) && return 0
    die "the display ${DISPLAY:-$WAYLAND_DISPLAY} cannot be reached, so no window can be shown" \
        ${said:+"$(printf '%s\n' "$said" | head -n 1)"} \
        "over ssh: log in with  ssh -X  and try again" \
        "as another user: type  xhost +si:localuser:$(id -un)  in the desktop's own session" \
        "at the machine's own desktop: type  DISPLAY=:0 ./zerl run" \
        "without a window: type  ./zerl tour"
}

# Runs a command that a signal to this script ends in order.
work_pid=
work() {
    "$@" &
    work_pid=$!
    result=0
    wait "$work_pid" || result=$?
    work_pid=
    return "$result"
}

server_pid=
server_number=
stop_server() {
    if [ -n "$work_pid" ]; then
        kill "$work_pid" 2>/dev/null || :
        wait "$work_pid" 2>/dev/null || :
        work_pid=
    fi
    if [ -n "$server_pid" ]; then
        kill "$server_pid" 2>/dev/null || :
        wait "$server_pid" 2>/dev/null || :
        server_pid=
    fi
    if [ -n "$server_number" ]; then
        rm -f "$server_number"
        server_number=
    fi
}

# Starts an X server on a number that it chooses itself, and sets DISPLAY.
start_server() {
    server_number=$(mktemp "${TMPDIR:-/tmp}/zerl-display.XXXXXX")
    trap stop_server EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM HUP
    Xvfb -displayfd 3 -screen 0 1216x788x24 -nolisten tcp 3>"$server_number" 2>/dev/null &
    server_pid=$!
    tries=0
    while [ ! -s "$server_number" ]; do
        tries=$((tries + 1))
        if [ "$tries" -gt 300 ] || ! kill -0 "$server_pid" 2>/dev/null; then
            die "the virtual display (Xvfb) did not start" \
                "type  Xvfb -displayfd 1  to see why"
        fi
        sleep 0.1
    done
    DISPLAY=:$(cat "$server_number")
    export DISPLAY
    unset WAYLAND_DISPLAY
}

# Nobody's desktop is to be seen by what runs by itself.
no_session_bus() {
    export DBUS_SESSION_BUS_ADDRESS=disabled:
}
