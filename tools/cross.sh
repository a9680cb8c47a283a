#!/bin/bash
# cross.sh [RELEASE] - builds the commit that is checked out for 64-bit ARM in a fresh minimal Debian of
# this release (bookworm, trixie; by default the one that runs here). Under qemu-user, the script runs
# the unit tests and the replay there, paints the shipped land and compares this land with data/. The
# test of the command tumbledown-land is left out. Prints a row for the table in docs/robustness.md.
# Needs root, 3 GB in the folder for temporary files and some 10 minutes, and fetches from the
# archives of Debian.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
source tools/setup.sh
source tools/root.sh
source tools/images.sh

CROSS_PACKAGES=(cmake ninja-build pkg-config g++ g++-aarch64-linux-gnu qemu-user xvfb xauth
    {libsdl1.2-dev,libgl-dev,libglu1-mesa-dev,freeglut3-dev,libgl1-mesa-dri,libx11-dev}:arm64
    {libgtest-dev,libnoise-dev}:arm64)
LAND=build/cross/painted

chooseRelease "$@"
needRoot
installPackages "${ROOT_PACKAGES[@]}"
trap closeRoot EXIT
trap 'exit 130' INT TERM
openRoot "$release"
addSource
inRoot root dpkg --add-architecture arm64
inRoot root apt-get update
inRoot root apt-get install -y --no-install-recommends "${CROSS_PACKAGES[@]}"
start=$SECONDS
develop cmake --preset cross
develop cmake --build --preset cross
echo "built: $((SECONDS - start)) s"
start=$SECONDS
develop ctest --preset cross
tests=$(sed -n 's/^100% tests passed, 0 tests failed out of //p' "$scratch/log")
echo "tested: $((SECONDS - start)) s, $tests tests"
hash=$(find "$root$SOURCE/build/cross" -name replay.hash -exec cat {} +)
echo "The world at the end of the replay has the hash $hash."
start=$SECONDS
develop qemu-aarch64 build/cross/tools/paint/tumbledown-land "$LAND" "${SHIPPED_LAND[@]}"
haveSameImages data "$root$SOURCE/$LAND"
echo "painted: $((SECONDS - start)) s, the same land as in data/"
echo "| Debian $(cat "$root/etc/debian_version") ($release), arm64, cross-built, under qemu-user" \
    "$(versionOf qemu-user) |" \
    "g++ $(chroot "$root" aarch64-linux-gnu-g++ -dumpfullversion) |" \
    "$(versionOf libsdl1.2debian:arm64) | $(versionOf libgl1-mesa-dri:arm64) | -" \
    "| $tests of $tests tests pass, the land is the same | - |"
