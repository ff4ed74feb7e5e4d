#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Start to first paint, with the cell up, against a minimal window under the
# same X server. Needs a display; the training cell must run in the present
# view (privatecell --start). Status 1 above the limit.
set -eu
limit=2.1
build=$(dirname -- "$(dirname -- "$(readlink -f -- "$0")")")
results=$(mktemp)
trap 'rm -f "$results"' EXIT
if [ -z "${DISPLAY:-}" ]; then
    echo "no ratio: there is no display" >&2
    exit 2
fi
LD_PRELOAD=$build/lib/libfirstpaint.so hyperfine --shell=none --warmup 5 --runs 40 \
    --export-csv "$results" "$build/bin/zerl_util" "$build/bench/support/minimalwindow"
awk -F, -v limit="$limit" '
    NR == 2 { tool = $4 }
    NR == 3 { bare = $4 }
    END {
        if (!(tool > 0 && bare > 0)) exit 2
        printf "ratio start of zerl_util/minimal window: %.3f (limit %.2f)\n", tool / bare, limit
        exit tool / bare > limit
    }' "$results"
