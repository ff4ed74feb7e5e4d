#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# verified VXTABLE PROGRAM [ARGS...]: runs a test program and then checks every
# table file that it leaves in the cell. Status: the program's, or 1 when it was
# 0 and a file is damaged.
vxtable=$1
shift
ZERL_VERIFY=$vxtable # between its functions the program verifies by itself
export ZERL_VERIFY
"$@"
status=$?
for file in /cell/tables/*.tbl /cell/tables/*.save /cell/tables/*.old; do
    [ -f "$file" ] || continue
    if ! "$vxtable" verify "$file"; then
        printf 'FAIL!  : the test leaves a damaged table file: %s\n' "$file"
        [ "$status" -ne 0 ] || status=1
    fi
done
exit "$status"
