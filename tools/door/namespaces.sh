#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: runs as on a machine that refuses name spaces.
# shellcheck disable=SC2154 # variables of zerl

# Puts a bubblewrap that refuses first on the search path, as a container's own
# would. It notes what it is asked.
refuse_namespaces() {
    refusing=$build/without-namespaces
    mkdir -p -- "$refusing"
    cat >"$refusing/bwrap" <<'TEXT'
#!/bin/sh
printf '%s\n' "$*" >>"${0%/*}/asked"
exit 1
TEXT
    chmod +x "$refusing/bwrap"
    PATH=$refusing:$PATH
    export PATH
    "$bin/privatecell" --no-cell -- true ||
        die "without name spaces no cell can be had on this machine; the reason is above"
    rm -f -- "$refusing/asked"
}

# After the run: it was the refusing one that was asked, and the cell's folders
# are gone.
check_refusal() {
    [ -s "$refusing/asked" ] ||
        die "name spaces were never asked for, so nothing was run without them"
    left=$(ls -d /cell /specs /ram /vornax 2>/dev/null) || :
    [ -z "$left" ] || die "left behind: $left"
}
