#!/bin/bash
# fresh_root.sh [RELEASE] - uses the commit that is checked out as a new user would, in a fresh
# minimal Debian of this release (bookworm, trixie; by default the one that runs here). An ordinary
# user with sudo runs ./play and ./check there and builds the package. In a second fresh Debian,
# which has nothing else, the package is installed with apt-get, the installed game is played, and
# the package is purged. The game is played with the SDL 1.2 of the release and with sdl12-compat,
# which offers SDL 1.2 on top of SDL 2. Prints a row for the table in docs/robustness.md. Needs
# root, 4 GB in the folder for temporary files and some 10 minutes, and fetches from the archives of
# Debian. It changes nothing in the checkout.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
source tools/setup.sh
source tools/root.sh
# shellcheck source=tests/game/judge.sh
source tests/game/judge.sh

cleanUp()
{
    closeDisplay
    closeRoot
}

timed() # NAME COMMAND...: runs the command and stores its seconds in the array took
{
    local name=$1 start=$SECONDS
    shift
    "$@"
    took[$name]=$((SECONDS - start))
    printf '%-8s %4d s\n' "$name" "${took[$name]}"
}

everyFile() # prints all files of the root except logs, caches and temporary files
{
    find "$root" -xdev -path "$root/var/log" -prune -o -path "$root/var/cache" -prune -o \
        -path "$root/tmp" -prune -o -printf '%P %M %u\n' | sort
}

buildPackage()
{
    develop tools/package.sh
    package=$(echo "$root$SOURCE"/build/package/tumbledown_*.deb)
    mv "$package" "$scratch/tumbledown.deb"
}

showVersions()
{
    compiler=$(chroot "$root" g++ -dumpfullversion)
    sdl=$(versionOf libsdl1.2debian)
    compat=$(versionOf libsdl1.2-compat)
    mesa=$(versionOf libgl1-mesa-dri)
}

# Mesa keeps compiled shaders in the home folder and complains if it cannot write there.
playInstalled()
{
    playsInstalled /home/link HOME=/tmp chroot --userspec=nobody:nogroup "$root"
}

installPlayAndPurge()
{
    rm -rf --one-file-system "$root"
    mv "$scratch/minimal" "$root"
    cp "$scratch/tumbledown.deb" "$root/home"
    ln -s ../usr/games/tumbledown "$root/home/link"
    inRoot root apt-get update
    inRoot root apt-get satisfy -y "$(dpkg-deb -f "$scratch/tumbledown.deb" Depends)"
    everyFile >"$scratch/before"
    inRoot root apt-get install -y /home/tumbledown.deb
    playInstalled
    inRoot root apt-get purge -y tumbledown
    diff "$scratch/before" <(everyFile) || fail "the purged package has left or changed files"

    inRoot root apt-get install -y /home/tumbledown.deb libsdl1.2-compat-shim
    playInstalled
    inRoot root apt-get purge -y tumbledown
    [[ -z $(find "$root" -xdev -iname '*tumbledown*' ! -path "$root/home/*") ]] ||
        fail "the purged package has left files"
}

chooseRelease "$@"
needRoot
installPackages "${DISPLAY_PACKAGES[@]}" "${ROOT_PACKAGES[@]}"
declare -A took
trap cleanUp EXIT
trap 'exit 130' INT TERM
openRoot "$release"
cp -a "$root" "$scratch/minimal"
addSource
timed play develop ./play
timed check develop ./check
grep -E '^[a-z]+ +[0-9]+ s$|^All checks|tests passed|left out' "$scratch/log" || true
buildPackage
showVersions
openDisplay "$scratch"
timed package installPlayAndPurge
echo "| Debian $(cat "$root/etc/debian_version") ($release), $(dpkg --print-architecture) |" \
    "g++ $compiler | $sdl; $compat | $mesa | plays, ${took[play]} s | passes, ${took[check]} s |" \
    "installs, plays and purges, ${took[package]} s |"
