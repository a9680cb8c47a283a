# shellcheck shell=bash disable=SC2034 # the scripts that source this file use its variables
# setup.sh - names the Debian packages that the game, its display and its checks need, and installs
# those that are missing. Sourced.

PATH=$PATH:/usr/sbin:/sbin # su without a dash leaves these folders out.

BUILD_PACKAGES=(g++ cmake ninja-build make pkg-config libsdl1.2-dev libgl-dev libglu1-mesa-dev
    freeglut3-dev libgl1-mesa-dri)
DISPLAY_PACKAGES=(xvfb xauth xdotool imagemagick)
PACKAGE_PACKAGES=(dpkg-dev file git libnoise-dev)
ROOT_PACKAGES=(mmdebstrap git) # for a fresh Debian in a folder
CHECK_PACKAGES=(libgtest-dev libbenchmark-dev libpng-dev libx11-dev netpbm clang
    clang-format clang-tidy libclang-rt-dev libsdl1.2-compat shellcheck
    lintian desktop-file-utils appstream man-db mandoc optipng)

fail()
{
    echo "$(basename "$0"): $*" >&2
    exit 1
}

isInstalled() # PACKAGE: for the programs of this machine; another architecture does not help
{
    dpkg-query -W -f '${db:Status-Status} ${Architecture}\n' "$1" 2>/dev/null |
        grep -Eqx "installed (all|$(dpkg --print-architecture))"
}

asRoot()
{
    local advice="as root, run: apt-get update && apt-get install ${missing[*]}"
    if ((EUID == 0)); then
        "$@"
    elif ! command -v sudo >/dev/null; then
        fail "only root can install packages; $advice"
    elif ! sudo true </dev/null; then
        fail "sudo refuses; $advice"
    else
        sudo "$@"
    fi
}

installPackages() # PACKAGE...
{
    local package command
    for command in dpkg-query apt-get; do
        command -v "$command" >/dev/null ||
            fail "$command was not found: this script needs Debian or one of its derivatives"
    done
    missing=()
    for package; do
        isInstalled "$package" || missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    echo "Installing ${missing[*]}"
    asRoot apt-get update -qq </dev/null || fail "apt-get update failed"
    asRoot env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends \
        -o Dpkg::Use-Pty=0 "${missing[@]}" </dev/null || fail "apt-get could not install ${missing[*]}"
}

build() # PRESET [OPTION...]: configures and builds the preset in build/PRESET
{
    mkdir -p build
    cmake --preset "$@" >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; fail "the preset $1 could not be configured"; }
    cmake --build --preset "$1" || fail "the preset $1 could not be built"
}
