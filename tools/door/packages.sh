#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Read by zerl: what each command needs from Debian, and how it is installed.
# shellcheck disable=SC2034,SC2154 # variables are shared with zerl and its other files

packages_build='g++ cmake ninja-build pkgconf qtbase5-dev libqwt-qt5-dev libgsl-dev libqd-dev libgmp-dev
    libudunits2-dev zlib1g-dev librapidcheck-dev bubblewrap'
packages_display='xvfb fonts-dejavu-core'
packages_test='locales' # for one with a decimal comma
packages_lint='clang-format clang-tidy shellcheck libbenchmark-dev'
packages_bench='libbenchmark-dev hyperfine'

# The packages among the arguments that are not installed, blank-separated.
missing_packages() {
    absent=
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null |
            grep -qx installed || absent="$absent $package"
    done
    printf '%s' "${absent# }"
}

# The command that installs the given packages, as the user would type it.
install_command() {
    prefix='sudo '
    if [ "$(id -u)" = 0 ]; then
        prefix=
    fi
    printf '%sapt-get update && %sapt-get install --no-install-recommends %s' \
        "$prefix" "$prefix" "$*"
}

not_installed() {
    die "$1" "missing: $2" "type  $(install_command "$2")  and try again"
}

# Runs a command as root. sudo may ask for the password on a terminal only.
may_give_password() { on_terminal && [ -z "${CI:-}" ]; }
as_root() {
    if [ "$(id -u)" = 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    elif may_give_password; then
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo -n env DEBIAN_FRONTEND=noninteractive "$@" </dev/null
    fi
}

have_package_lists() {
    # shellcheck disable=SC2016 # apt's own variable
    [ -n "$(apt-get indextargets --format '$(FILENAME)' 'Created-By: Packages' 2>/dev/null)" ]
}

# One source of several that cannot be reached need not matter: the install
# that follows tells.
update_package_lists() {
    step "Fetching the package lists"
    as_root apt-get update -q || warn "not all package lists could be fetched"
}

apt_install() {
    as_root apt-get install -y -q --no-install-recommends \
        -o DPkg::Lock::Timeout=300 "$@"
}

# need PACKAGES...: installs those that are missing.
need() {
    command -v dpkg-query >/dev/null 2>&1 ||
        die "this script sets up Debian 12 machines, and dpkg-query was not found here" \
            "install what these packages hold: $*" \
            "then type  cmake --preset default -DZERL_BENCH=OFF && cmake --build --preset default"
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0

    command -v apt-get >/dev/null 2>&1 ||
        not_installed "apt-get was not found, so nothing can be installed" "$missing"
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null 2>&1; then
        die "installing needs root, and sudo was not found" "missing: $missing" \
            "type  su - -c 'apt-get update && apt-get install --no-install-recommends $missing'" \
            "and try again"
    fi
    if may_ask; then
        printf 'These packages are missing: %s\nInstall them now? [Y/n] ' "$missing"
        read -r answer || answer=n
        case $answer in
        '' | [Yy] | [Yy][Ee][Ss]) ;;
        *) not_installed "nothing was installed" "$missing" ;;
        esac
    fi

    if [ "$(id -u)" != 0 ] && ! may_give_password && ! sudo -n true 2>/dev/null; then
        not_installed "sudo wants a password, and there is no terminal to ask on" "$missing"
    fi

    updated=0
    if ! have_package_lists; then
        update_package_lists
        updated=1
    fi
    step "Installing $missing"
    # shellcheck disable=SC2086 # a list of words
    apt_install $missing && return 0
    # Lists that have aged name packages that the archive no longer holds.
    if [ "$updated" = 0 ]; then
        update_package_lists
        # shellcheck disable=SC2086 # a list of words
        apt_install $missing && return 0
    fi
    not_installed "the packages could not be installed" "$missing"
}

set_up() {
    step "Checking the machine"
    # shellcheck disable=SC2086 # lists of words
    need $packages_build "$@"
}
