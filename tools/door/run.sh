#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: the commands that start a cell with the tool in it, by a person or
# by the tour.
# shellcheck disable=SC2154 # variables of zerl and its other files

# FOLDER as the caller meant it, or the default place.
cell_folder() {
    case $cell in
    /*) ;;
    ?*) cell=$from/$cell ;;
    *)
        data=${XDG_DATA_HOME:-${HOME:+$HOME/.local/share}}
        [ -n "$data" ] || die "there is no home folder to keep the training cell in" \
            "type  ./zerl run --cell FOLDER"
        cell=$data/zerl_util/cell
        ;;
    esac
}

scripted_calibration() {
    pictures=$build/tour
    cell=$build/tour-cell
    [ "$without" = 0 ] || refuse_namespaces
    no_session_bus
    rm -rf -- "$pictures" "$cell"
    mkdir -p -- "$pictures" "$cell"
    start_server
    step "Walking the calibrations of the tour on display $DISPLAY"
    status=0
    work env QT_QPA_PLATFORM=xcb timeout --foreground 900 \
        "$bin/privatecell" --cell "$cell" --start --writable "$pictures" -- \
        "$bin/zerl_tour" "$pictures" || status=$?
    stop_server
    [ "$status" = 0 ] || die "the scripted calibration failed (status $status)" \
        "screenshots up to there are in build/tour/, the cell's files in build/tour-cell/"
    [ "$without" = 0 ] || check_refusal
    step "Done: screenshots in build/tour/, the cell's files in build/tour-cell/"
}

command_tour() {
    # shellcheck disable=SC2086 # lists of words
    set_up $packages_display
    build_products zerltour
    scripted_calibration
}

command_run() {
    if ! have_display; then
        step "There is no display (neither DISPLAY nor WAYLAND_DISPLAY is set), so no window"
        step "can be shown. The scripted calibration runs under a virtual display instead."
        command_tour
        step "For the window: type  ./zerl run  on the machine's desktop, or  DISPLAY=:0 ./zerl run"
        step "beside it, or log in with  ssh -X  first"
        return
    fi
    wayland=
    if [ -z "${DISPLAY:-}" ]; then
        wayland=qtwayland5
        export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-wayland}"
    fi
    # shellcheck disable=SC2086 # perhaps no word
    set_up $wayland
    build_products
    reach_display
    mkdir -p -- "$cell" ||
        die "the cell's folder $cell cannot be made" \
            "type  ./zerl run --cell FOLDER  with a folder that you may write"
    [ "$without" = 0 ] || refuse_namespaces
    step "Starting the training cell; its files are kept in $cell"
    step "From another shell: build/bin/cellctl --socket '$cell/cell/cell.sock' list"
    # shellcheck disable=SC2086 # perhaps no word
    exec "$bin/privatecell" --cell "$cell" --start --panel $touch -- "$bin/zerl_util"
}
