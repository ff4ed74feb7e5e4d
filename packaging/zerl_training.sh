#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Starts the training cell, its panel and the calibration tool.
set -eu
bin=$(dirname -- "$(readlink -f -- "$0")")
cell=${XDG_DATA_HOME:-${HOME:?}/.local/share}/zerl_util/cell
touch=
while [ $# -gt 0 ]; do
    case $1 in
    --cell)
        cell=${2:?--cell needs a folder}
        shift
        ;;
    --touch) touch=--touch ;;
    *)
        echo "usage: zerl_training [--cell FOLDER] [--touch]" >&2
        exit 2
        ;;
    esac
    shift
done
mkdir -p -- "$cell"
# shellcheck disable=SC2086 # perhaps no word
exec "$bin/privatecell" --cell "$cell" --start --panel $touch -- "$bin/zerl_util"
