#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by privatecell: a view of the machine by name spaces of its own, in which
# a command runs.
# shellcheck disable=SC2034,SC2154,SC2317 # variables and calls are the launcher's

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
# told that there is none. Without a word they would try to start one, and wait
# in vain for what cannot be written in the view.
find_bus() {
    bus_socket=
    case ${DBUS_SESSION_BUS_ADDRESS:-} in
    unix:abstract=* | tcp:*) return ;; # the network is the machine's in the view too
    esac
    bus_socket=$(socket_of "${DBUS_SESSION_BUS_ADDRESS:-}")
    [ -S "$bus_socket" ] || no_bus
}

# ---- What is seen in the view ------------------------------------------------

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

# ---- The run -----------------------------------------------------------------

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
