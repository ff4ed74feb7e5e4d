#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The scripted calibration, inside a private cell with its training cell
# running: zerl_tour FOLDER puts a picture of each stage into FOLDER, then shows
# and checks the table files. Status 0 when everything was as it should be.
set -eu

folder=${1:?usage: zerl_tour FOLDER}
bin=$(dirname -- "$(readlink -f -- "$0")")
lib=$bin/../lib
vxtable=$bin/vxtable
done_mark=$(mktemp)
before=$(mktemp -d)
trap 'rm -rf "$done_mark" "$before"' EXIT

fail() {
    printf 'tour: FAILED: %s\n' "$*" >&2
    exit 1
}

mkdir -p "$folder"
rm -f "$folder"/*.png "$done_mark"
cp /cell/tables/* "$before/" 2>/dev/null || true

LD_PRELOAD=$lib/libzerltour.so ZERL_TOUR_FOLDER=$folder ZERL_TOUR_DONE=$done_mark \
    "$bin/zerl_util" || fail "the program ended with status $?"
[ -e "$done_mark" ] || fail "the program ended before the calibration did"

# The table that the calibration has rewritten.
changed=
for table in /cell/tables/*.tbl; do
    if ! cmp -s "$table" "$before/${table##*/}"; then
        [ -z "$changed" ] || fail "more than one table was rewritten"
        changed=$table
    fi
done
[ -n "$changed" ] || fail "no table was rewritten"
stem=${changed%.tbl}
printf '\ntour: %s as it was before:\n' "$changed"
"$vxtable" show "$before/${changed##*/}"
printf '\ntour: %s as it is now:\n' "$changed"
"$vxtable" show "$changed"
printf '\ntour: records of %s.save:\n' "$stem"
"$vxtable" list "$stem.save"

cmp -s "$stem.old" "$before/${changed##*/}" || fail "$stem.old is not the former table"
for file in /cell/tables/*.tbl /cell/tables/*.save /cell/tables/*.old; do
    "$vxtable" verify "$file" || fail "$file is damaged"
done
"$vxtable" list "$stem.save" | grep -q 'As-Found' || fail "no As-Found record"
"$vxtable" list "$stem.save" | grep -q 'Table Updated by adjustment' || fail "no record of the adjustment"
printf '\ntour: complete, pictures in %s\n' "$folder"
