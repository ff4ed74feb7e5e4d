#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Gives a command its own view of the host's folders /cell, /specs, /ram and
# /vornax, with a private /dev/shm and /tmp, so that runs side by side cannot
# meet and nothing of a machine that really is a test cell can be touched.
#
# With bubblewrap the command lives in name spaces of its own and all of it is
# gone when it ends. Where name spaces are refused, and none of the four
# folders exists, and the user may create them, the places themselves are used,
# one run at a time, and removed afterwards.
# shellcheck disable=SC2034 # some variables are for the files that it reads
set -u

CANNOT_RUN=125
self=$(readlink -f -- "$0")
bin=$(dirname -- "$self")
build=$(dirname -- "$bin")
source_folder='@QUOTED_SOURCE_DIR@'
cells=$build/share/zerl_util/cells

usage() {
    cat <<'TEXT'
usage: privatecell [options] [--] COMMAND [ARGS...]
  --cell FOLDER     keep the cell's folders in FOLDER between runs
  --describe WHAT   description of the cell: one that ships, by its name, a
                    file, or a folder with a cell.txt (default: training); used
                    when the cell is first made
  --no-cell         empty folders, nothing is started
  --start           start the training cell before the command, stop it after
  --panel           show the training cell's panel as well (means --start)
  --touch           the cell has a touch screen (/cell/vornax_ts.ini)
  --writable DIR    DIR may be written; may be given more than once
  --help            this text
Everything but the cell's folders, /tmp and the --writable folders is read-only.
The status is the command's; 125 when the view cannot be made.
TEXT
}

say() { printf 'privatecell: %s\n' "$*" >&2; }
refuse() {
    say "$@"
    exit "$CANNOT_RUN"
}

# ---- Inside the view ---------------------------------------------------------

# Makes the cell's folders, once; $1: folder with cell.txt and, perhaps, folders
# cell and specs with what stands in /cell and /specs from the beginning.
prepare_cell() {
    mkdir -p /cell/tables/reports /specs/working_standards /ram || return 1
    if [ ! -e /cell/cell.txt ]; then
        for place in cell specs; do
            [ -d "$1/$place" ] || continue
            cp -R -- "$1/$place/." "/$place/" && chmod -R u+w "/$place" || return 1
        done
        cp -- "$1/cell.txt" /cell/cell.txt.new && chmod u+w /cell/cell.txt.new &&
            mv /cell/cell.txt.new /cell/cell.txt || return 1
    fi
}

set_touch_marker() {
    if [ "$touch_screen" = 1 ]; then
        : >/cell/vornax_ts.ini
    else
        rm -f /cell/vornax_ts.ini
    fi
}

# Signals end it in order: what was started is stopped, and what was made for
# the run is removed.
in_places=0 litter=
# shellcheck disable=SC2317 # called by a trap
tidy_up() {
    stop_cell
    [ -z "$litter" ] || rm -rf "$litter"
    [ "$in_places" = 0 ] || remove_places
}
heed_signals() {
    cell_pid='' panel_pid='' ready='' is_up=0
    trap tidy_up EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}

# Without process ids of its own a view does not take along what runs in it.
find_leash() {
    leash=
    if [ $$ != 1 ] && setpriv --pdeathsig TERM true 2>/dev/null; then
        leash='setpriv --pdeathsig TERM'
    fi
}

# Starts the cell and returns when it is ready; sets cell_pid. A signal
# interrupts a wait, but not a command in the foreground.
start_cell() {
    ready=$(mktemp -d "${TMPDIR:-/tmp}/privatecell.XXXXXX") && mkfifo "$ready/fifo" || return 1
    "$bin/trainingcell" --end-with $$ --ready-fd 3 3>"$ready/fifo" 9>&- &
    cell_pid=$!
    timeout 60 head -c 1 <"$ready/fifo" >"$ready/answer" 9>&- &
    wait $!
    [ -s "$ready/answer" ] && is_up=1
    rm -rf "$ready"
    [ "$is_up" = 1 ] && return 0
    kill "$cell_pid" 2>/dev/null
    wait "$cell_pid"
    cell_pid=
    say "the training cell did not start"
    return 1
}

# shellcheck disable=SC2317 # called by a trap
stop_cell() {
    trap '' INT TERM HUP
    [ -z "$ready" ] || rm -rf "$ready"
    [ -n "$panel_pid" ] && kill "$panel_pid" 2>/dev/null && wait "$panel_pid" 2>/dev/null
    panel_pid=
    [ -n "$cell_pid" ] || return 0
    kill "$cell_pid" 2>/dev/null
    wait "$cell_pid"
    ended=$?
    [ "$ended" = 0 ] || [ "$is_up" = 0 ] || say "the training cell ended with status $ended"
    cell_pid=
    for name in /dev/shm/vornax.*; do
        [ -e "$name" ] && say "shared memory left behind: $name"
    done
    return 0
}

# Waits for the end of a process, whatever signals come; its status is in $status.
await() {
    while :; do
        wait "$1" 2>/dev/null # the shell's own word on a signal
        status=$?
        kill -0 "$1" 2>/dev/null || break
    done
    # An end that fell together with a signal has not been told yet.
    wait "$1" 2>/dev/null
    late=$?
    [ "$late" = 127 ] || status=$late
}

pass_on() {
    if [ -n "$command_pid" ]; then
        kill -"$1" "$command_pid" 2>/dev/null
    else
        early=$1
    fi
}

# Runs the command to its end, passing signals on; its status is in $status.
# A terminal has already told the whole group of an interrupt.
run_command() {
    command_pid='' early=''
    exec 4<&0
    trap '[ -t 4 ] || pass_on INT' INT
    trap 'pass_on TERM' TERM
    trap 'pass_on HUP' HUP
    # shellcheck disable=SC2086 # words on purpose
    $leash env --default-signal=INT,QUIT "$@" <&4 4<&- 9>&- &
    command_pid=$!
    [ -z "$early" ] || pass_on "$early"
    await "$command_pid"
}

# Everything that happens in the view, signals being heeded; $1: folder of the
# description. A cell may already run in these folders, so they are changed only
# by who has its lock.
inside() {
    description=$1
    shift
    find_leash
    if [ "$with_cell" = 1 ]; then
        prepare_cell "$description" || refuse "the cell's folders cannot be made"
    fi
    if [ "$start" = 1 ]; then
        start_cell || return "$CANNOT_RUN"
    elif [ "$with_cell" = 1 ]; then
        "$bin/trainingcell" --init-only || refuse "the cell's tables cannot be made"
    fi
    set_touch_marker
    if [ "$panel" = 1 ]; then
        # shellcheck disable=SC2086 # words on purpose
        $leash "$bin/cellpanel" 9>&- &
        panel_pid=$!
    fi
    run_command "$@"
    return "$status"
}

# ---- Outside, or in a view already: what stands in it from the beginning -----

copy_description() {
    cp -- "$description_file" "$1/cell.txt"
    for place in cell specs; do
        [ -d "$description_home/$place" ] || continue
        cp -R -- "$description_home/$place" "$1/$place"
    done
}

# ---- Command line ------------------------------------------------------------

if [ "${1:-}" = --inside ]; then
    start=$2 panel=$3 touch_screen=$4 with_cell=$5 description_folder=$6
    shift 7
    heed_signals
    echo ready >&7
    exec 7>&-
    inside "$description_folder" "$@"
    exit $?
fi

# shellcheck source=/dev/null
. "$build/share/zerl_util/namespaces.sh"

folder=
describe=training
start=0 panel=0 touch_screen=0 with_cell=1

absolute() { readlink -m -- "$1"; }

while [ $# -gt 0 ]; do
    case $1 in
    --cell | --describe | --writable)
        [ $# -ge 2 ] || refuse "$1 needs a value"
        case $1 in
        --cell) folder=$(absolute "$2") ;;
        --describe) describe=$2 ;;
        --writable)
            [ -d "$2" ] || refuse "no such folder: $2"
            path=$(absolute "$2")
            add --bind "$path" "$path"
            ;;
        esac
        shift
        ;;
    --no-cell) with_cell=0 ;;
    --start) start=1 ;;
    --panel) start=1 panel=1 ;;
    --touch) touch_screen=1 ;;
    --help)
        usage
        exit 0
        ;;
    --)
        shift
        break
        ;;
    -*)
        usage >&2
        refuse "unknown option: $1"
        ;;
    *) break ;;
    esac
    shift
done
if [ $# -eq 0 ]; then
    usage >&2
    refuse "no command was given"
fi
[ "$with_cell$start" = 01 ] && refuse "--no-cell and --start exclude each other"

description_file=
description_home= # holds the description's other files; a lone file has none
if [ "$with_cell" = 1 ]; then
    if [ -f "$describe" ]; then
        description_file=$(absolute "$describe")
    elif [ -f "$describe/cell.txt" ]; then
        description_home=$(absolute "$describe")
    elif [ -f "$cells/$describe/cell.txt" ]; then
        description_home=$cells/$describe
    else
        refuse "no description of a cell: $describe"
    fi
    [ -z "$description_home" ] || description_file=$description_home/cell.txt
fi

find_bus
if [ "${ZERL_PRIVATE_CELL:-}" = 1 ]; then
    description=$(mktemp -d /tmp/privatecell.XXXXXX) || refuse "no folder can be made in /tmp"
    if [ "$with_cell" = 1 ]; then
        copy_description "$description"
    fi
    litter=$description
    heed_signals
    inside "$description" "$@"
    exit $?
fi
find_namespaces && run_in_namespaces "$@"
# shellcheck source=/dev/null
. "$build/share/zerl_util/places.sh"
take_places && run_in_places "$@"
explain_refusal
