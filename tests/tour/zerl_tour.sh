#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The tour, inside a private cell with its training cell running:
# zerl_tour FOLDER puts a picture of each state into FOLDER, then shows and
# checks the table files. Status 0 when everything was as it should be.
set -eu

folder=${1:?usage: zerl_tour FOLDER}
bin=$(dirname -- "$(readlink -f -- "$0")")
lib=$bin/../lib
vxtable=$bin/vxtable
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
before=$work/before
expected=$work/expected # what the tour says of the files, one thing a line

fail() {
    printf 'tour: FAILED: %s\n' "$*" >&2
    exit 1
}

mkdir -p "$folder" "$before"
rm -f "$folder"/*.png
cp /cell/tables/* "$before/" 2>/dev/null || true

# The marker of a touch screen cell counts at the program's start: hence two runs.
marker=/cell/vornax_ts.ini
rm -f "$marker"
for run in desktop touch; do
    [ "$run" = desktop ] || : >"$marker"
    LD_PRELOAD=$lib/libzerltour.so ZERL_TOUR_FOLDER=$folder ZERL_TOUR_DONE=$work/$run \
        "$bin/zerl_util" || fail "the program ended with status $?"
    [ -e "$work/$run" ] || fail "the program ended before the tour did"
    cat "$work/$run" >>"$expected"
done
rm -f "$marker"

# The steps of an archive's records that were not there before, one a line.
new_steps() {
    [ -e "$1" ] || return 0
    skip=0
    [ ! -e "$before/${1##*/}" ] || skip=$("$vxtable" list "$before/${1##*/}" | tail -n +2 | wc -l)
    "$vxtable" list "$1" | tail -n +$((skip + 2)) | sed -E 's/^ *[0-9]+  //; s/  .*//'
}

for table in /cell/tables/*.tbl /cell/tables/*.save; do
    stem=${table##*/}
    stem=${stem%.*}
    sed -n "s/^record $stem //p" "$expected" >"$work/steps"
    new_steps "/cell/tables/$stem.save" >"$work/steps.new"
    cmp -s "$work/steps" "$work/steps.new" ||
        fail "$stem.save has not gained what was recorded: $(diff "$work/steps" "$work/steps.new")"
done

for table in /cell/tables/*.tbl; do
    stem=${table%.tbl}
    former=$before/${table##*/}
    if ! grep -qx "rewritten ${stem##*/}" "$expected"; then
        cmp -s "$table" "$former" || fail "$table was rewritten"
        cmp -s "$stem.old" "$before/${stem##*/}.old" || [ ! -e "$stem.old" ] ||
            fail "$stem.old has grown"
        continue
    fi
    if [ ! -e "$former" ]; then
        "$vxtable" list "$stem.old" >/dev/null || fail "$stem.old holds no former table"
        printf '\ntour: %s, made from nothing:\n' "$table"
        "$vxtable" show "$table"
        continue
    fi
    if cmp -s "$table" "$former"; then
        fail "$table was not rewritten"
    fi
    head -c "$(wc -c <"$former")" "$stem.old" | cmp -s - "$former" ||
        fail "$stem.old does not begin with the former table"
    printf '\ntour: %s as it was before:\n' "$table"
    "$vxtable" show "$former"
    printf '\ntour: %s as it is now:\n' "$table"
    "$vxtable" show "$table"
done

for file in /cell/tables/*.save; do
    printf '\ntour: records of %s:\n' "$file"
    "$vxtable" list "$file"
done
for file in /cell/tables/*.tbl /cell/tables/*.save /cell/tables/*.old; do
    "$vxtable" verify "$file" || fail "$file is damaged"
done
printf '\ntour: complete, pictures in %s\n' "$folder"
