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

# ---- The session bus ---------------------------------------------------------

# The socket of the first address of a bus, or nothing when it has none in the
# file system. Special characters stand as %XX there.
socket_of() {
    address=${1%%;*}
    case $address in
    unix:runtime=yes*) printf '%s' "${XDG_RUNTIME_DIR:-}/bus" ;;
    unix:path=* | unix:*,path=*)
        path=${address#*path=}
        env printf '%b' "$(printf '%s' "${path%%,*}" | sed 's/\\/\\\\/g; s/%/\\x/g')"
        ;;
    esac
}

no_bus() {
    bus_socket=
    DBUS_SESSION_BUS_ADDRESS=disabled:
    export DBUS_SESSION_BUS_ADDRESS
}

# A bus that is named is passed on when it can be reached; else the programs are
# told that there is none. Otherwise they would try to start one, and wait
# in vain for what cannot be written in the view.
find_bus() {
    bus_socket=
    case ${DBUS_SESSION_BUS_ADDRESS:-} in
    unix:abstract=* | tcp:*) return ;; # the network is the machine's in the view too
    esac
    bus_socket=$(socket_of "${DBUS_SESSION_BUS_ADDRESS:-}")
    [ -S "$bus_socket" ] || no_bus
}

# ---- Outside: a view by name spaces ------------------------------------------

# Adds to the arguments of bubblewrap, each quoted so that any path comes whole
# through eval.
view=
add() {
    for word in "$@"; do
        case $word in
        *\'*) word=$(printf '%s' "$word" | sed "s/'/'\\\\''/g") ;;
        esac
        view="$view'$word' "
    done
}

# The private /tmp hides what stands in the real one; these are needed again.
keep_from_tmp() {
    for path in "$@"; do
        case $path in
        /tmp/*) [ -e "$path" ] && add --ro-bind "$path" "$path" ;;
        esac
    done
}

bind_root() {
    for entry in /* /.[!.]*; do
        case $entry in
        /cell | /specs | /ram | /vornax | /proc | /dev | /tmp) continue ;;
        esac
        if [ -L "$entry" ]; then
            add --symlink "$(readlink -- "$entry")" "$entry"
        elif [ -e "$entry" ]; then
            add --ro-bind-try "$entry" "$entry"
        fi
    done
    add --dev-bind /dev /dev --perms 1777 --tmpfs /dev/shm --perms 1777 --tmpfs /tmp
}

# The display's socket alone, so that a server started inside finds room.
bind_display() {
    add --perms 1777 --dir /tmp/.X11-unix
    number=${DISPLAY:-}
    number=${number#unix}
    case $number in
    :*)
        number=${number#:}
        socket=/tmp/.X11-unix/X${number%%.*}
        [ -S "$socket" ] && add --ro-bind "$socket" "$socket"
        ;;
    esac
    keep_from_tmp "${XAUTHORITY:-}"
}

# What stands in the machine's own places is not seen.
bind_bus() {
    case $bus_socket in
    /cell/* | /specs/* | /ram/* | /vornax/* | /dev/shm/*) no_bus ;;
    *) keep_from_tmp "$bus_socket" ;;
    esac
}

bind_cell() {
    for place in cell specs ram; do
        if [ -n "$folder" ]; then
            mkdir -p -- "$folder/$place" || refuse "$folder/$place cannot be made"
            add --bind "$folder/$place" "/$place"
        else
            add --perms 0755 --tmpfs "/$place"
        fi
    done
    add --perms 0755 --tmpfs /vornax --dir /vornax/bin
    add --symlink "$bin/bld_tables" /vornax/bin/bld_tables
    if [ "$with_cell" = 1 ]; then
        add --ro-bind "$description_file" /vornax/description/cell.txt
        for place in cell specs; do
            [ -d "$description_home/$place" ] || continue
            add --ro-bind "$description_home/$place" "/vornax/description/$place"
        done
    fi
}

# The name spaces that can be had: with process ids of its own where /proc can
# be mounted anew, else without.
find_namespaces() {
    command -v bwrap >/dev/null 2>&1 || return 1
    for spaces in "--unshare-pid --as-pid-1 --proc /proc" "--dev-bind /proc /proc"; do
        # shellcheck disable=SC2086 # words on purpose
        bwrap --ro-bind / / $spaces --die-with-parent true 2>/dev/null && return 0
    done
    return 1
}

# A hangup is ignored by whoever is started with nohup.
hangup_ignored() {
    while read -r key value; do
        [ "$key" = SigIgn: ] || continue
        case $value in
        *[13579bdf]) return 0 ;;
        *) return 1 ;;
        esac
    done </proc/$$/status
    return 1
}

# Passes a signal on to what runs in the view, as soon as that can heed it. On
# descriptor 6 stands which process that is, and then that it is ready.
view_pid='' early='' seen=''
tell() {
    if [ -z "$view_pid" ]; then
        early=$1
        return
    fi
    while kill -0 "$view_pid" 2>/dev/null; do
        seen=$seen$(cat <&6)
        case $seen in
        *\"child-pid\":*ready*)
            inner=${seen#*\"child-pid\": }
            kill -"$1" "${inner%%[!0-9]*}" 2>/dev/null
            return
            ;;
        esac
        sleep 0.02
    done
}

run_in_namespaces() {
    writable=$view
    view=
    bind_root
    add --setenv ZERL_PRIVATE_CELL 1 --unsetenv TMPDIR --die-with-parent
    bind_display
    bind_bus
    keep_from_tmp "$build" "$source_folder" "$PWD" "$(command -v -- "$1" || :)"
    bind_cell
    for path in ${ZERL_WRITABLE:+"$ZERL_WRITABLE"}; do
        add --bind "$path" "$path"
    done
    view="$view$writable--remount-ro / "
    [ -d "$PWD" ] && case $PWD in
    /tmp | /cell* | /specs* | /ram* | /vornax*) ;;
    *) add --chdir "$PWD" ;;
    esac
    # Signals are for what runs inside; it tidies up and then all ends.
    heeded=INT,QUIT,TERM
    hangup_ignored || heeded=$heeded,HUP
    eval "set -- $spaces $view -- env --default-signal=$heeded \"\$self\" --inside \
        $start $panel $touch_screen $with_cell /vornax/description -- \"\$@\""
    notes=$(mktemp "${TMPDIR:-/tmp}/privatecell.XXXXXX") || refuse "no file can be made for the view"
    exec 4<&0 5>"$notes"
    exec 6<"$notes"
    rm -f "$notes"
    trap '[ -t 4 ] || tell INT' INT
    trap 'tell TERM' TERM
    trap 'tell HUP' HUP
    (
        trap '' INT TERM HUP
        exec bwrap --info-fd 5 "$@" <&4 4<&- 6<&- 7>&5
    ) &
    view_pid=$!
    [ -z "$early" ] || tell "$early"
    await "$view_pid"
    exit "$status"
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
