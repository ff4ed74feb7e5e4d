#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by privatecell where name spaces are refused: the command gets the places
# /cell, /specs, /ram and /vornax themselves, one run at a time.
# shellcheck disable=SC2034,SC2154,SC2317 # variables and calls are the launcher's

remove_places() {
    for place in /cell /specs /ram; do
        if [ -L "$place" ]; then
            rm -f "$place"
        else
            rm -rf "$place"
        fi
    done
    rm -f /dev/shm/vornax.*
    rm -rf /vornax
}

# Who owns a name, its mode and what it is; a link is not followed.
look_at() { LC_ALL=C stat -c '%u %a %F' -- "$1" 2>/dev/null; }

# The folder of the lock file. Nobody else may write in it: neither plant a link
# there nor open the file and hold its lock. Root's does not go by the session,
# since all of root's runs take turns.
find_lock_folder() {
    user=$(id -u)
    if [ "$user" = 0 ]; then
        lock_folder=/run/lock
        [ -d "$lock_folder" ] || lock_folder=/run
    else
        lock_folder=${XDG_RUNTIME_DIR:-}
        [ -d "$lock_folder" ] || lock_folder=/tmp
    fi
    lock_folder=$lock_folder/privatecell.$user
    mkdir -m 0700 -- "$lock_folder" 2>/dev/null
    case $(look_at "$lock_folder") in
    "$user 700 directory") ;;
    '') refuse "$lock_folder cannot be made; it is to hold the lock of runs that take turns" ;;
    *) refuse "$lock_folder is not a folder of yours alone (mode 0700), so it is not used;" \
        "remove it and try again" ;;
    esac
}

# The file is written by who holds the lock.
lock_holder() {
    holder=
    read -r holder 2>/dev/null <"$lock_file" || :
    case $holder in
    '' | *[!0-9]*) return ;;
    esac
    printf ' (process %s)' "$holder"
}

# Takes the lock on descriptor 9, for as long as this process lives.
take_lock() {
    find_lock_folder
    lock_file=$lock_folder/lock
    case $(look_at "$lock_file") in
    '' | "$user "*" regular file" | "$user "*" regular empty file") ;;
    *) refuse "$lock_file is not a file of yours, so it is not used; remove it and try again" ;;
    esac
    command exec 9>>"$lock_file" || refuse "$lock_file cannot be opened"
    limit=${ZERL_LOCK_WAIT:-120}
    if ! flock -n 9; then
        say "another run$(lock_holder) uses /cell; waiting for $limit s at most"
        flock -w "$limit" 9 ||
            refuse "another run$(lock_holder) still uses /cell; end it, or try again later"
    fi
    echo $$ >"$lock_file"
}

# Takes the lock, clears what a killed run left, and tells whether none of the
# four places is anyone else's and all can be made.
take_places() {
    [ -w / ] || return 1
    command -v flock >/dev/null 2>&1 || return 1
    take_lock
    case $(look_at /vornax/.privatecell) in
    "$user "*" regular empty file") remove_places ;;
    esac
    for place in /cell /specs /ram /vornax; do
        [ -e "$place" ] || [ -L "$place" ] && return 1
    done
    mkdir /vornax 2>/dev/null && : >/vornax/.privatecell
}

run_in_places() {
    in_places=1
    heed_signals
    mkdir -p /vornax/bin /vornax/description
    ln -s "$bin/bld_tables" /vornax/bin/bld_tables
    if [ "$with_cell" = 1 ]; then
        copy_description /vornax/description
    fi
    for place in cell specs ram; do
        if [ -n "$folder" ]; then
            mkdir -p -- "$folder/$place" && ln -s "$folder/$place" "/$place"
        else
            mkdir "/$place"
        fi || refuse "/$place cannot be made"
    done
    ZERL_PRIVATE_CELL=1
    export ZERL_PRIVATE_CELL
    inside /vornax/description "$@"
    exit $?
}

explain_refusal() {
    say "a private view of /cell, /specs, /ram and /vornax cannot be made here."
    if ! command -v bwrap >/dev/null 2>&1; then
        say "bubblewrap is missing; type:  sudo apt-get install bubblewrap"
    elif [ "$(cat /proc/sys/kernel/unprivileged_userns_clone 2>/dev/null)" = 0 ]; then
        say "name spaces are refused; type:  sudo sysctl kernel.unprivileged_userns_clone=1"
    elif [ "$(cat /proc/sys/kernel/apparmor_restrict_unprivileged_userns 2>/dev/null)" = 1 ]; then
        say "name spaces are refused; type:" \
            " sudo sysctl kernel.apparmor_restrict_unprivileged_userns=0"
    elif [ "$(cat /proc/sys/user/max_user_namespaces 2>/dev/null)" = 0 ]; then
        say "name spaces are refused; type:  sudo sysctl user.max_user_namespaces=10000"
    else
        say "name spaces are refused, as they are in some containers; start the" \
            "container with --privileged, or with --security-opt seccomp=unconfined"
    fi
    for place in /cell /specs /ram /vornax; do
        [ -e "$place" ] && say "and $place exists, so the places themselves are not touched."
    done
    [ -w / ] || say "and the places themselves can only be made by root."
    exit "$CANNOT_RUN"
}
