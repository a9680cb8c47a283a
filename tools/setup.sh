# shellcheck shell=bash disable=SC2034 # what it defines is used by those that source it
# setup.sh - what a machine needs before it can build, show or check the game. Sourced.

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config libsdl1.2-dev libgl-dev libglu1-mesa-dev
    freeglut3-dev libgl1-mesa-dri)
DISPLAY_PACKAGES=(xvfb xauth xdotool imagemagick)
PACKAGE_PACKAGES=(dpkg-dev file git)
ROOT_PACKAGES=(mmdebstrap) # for the longer check of the package
CHECK_PACKAGES=(libgtest-dev libbenchmark-dev libnoise-dev libpng-dev libx11-dev netpbm clang
    clang-format clang-tidy libclang-rt-dev libsdl1.2-compat shellcheck
    lintian desktop-file-utils appstream man-db mandoc optipng)

fail()
{
    echo "$(basename "$0"): $*" >&2
    exit 1
}

isInstalled() # PACKAGE
{
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

asRoot()
{
    if ((EUID == 0)); then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "only root can install packages; as root, run: apt-get install ${missing[*]}"
    fi
}

installPackages() # PACKAGE...
{
    command -v dpkg-query apt-get >/dev/null || fail "this needs Debian's packages: $*"
    local package
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

build() # PRESET [OPTION...]: configures and builds it in build/PRESET
{
    mkdir -p build
    cmake --preset "$@" >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; fail "the preset $1 could not be configured"; }
    cmake --build --preset "$1" || fail "the preset $1 could not be built"
}
