#!/bin/bash
# fresh_root.sh - installs the package with apt-get in a fresh minimal Debian, plays it there on
# either SDL 1.2, purges it and looks for what is left. Needs root, 1 GB and some minutes, and fetches
# from the archives of Debian that this machine's apt-get is set up for.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/setup.sh
# shellcheck source=tests/game/judge.sh
source tests/game/judge.sh

archives()
{
    apt-get indextargets --format "deb \$(REPO_URI) \$(RELEASE) \$(COMPONENT)" \
        'Created-By: Packages' 'Origin: Debian'
}

inRoot() # COMMAND...
{
    chroot "$root" env LC_ALL=C DEBIAN_FRONTEND=noninteractive "$@" </dev/null >>"$scratch/log" 2>&1 ||
        { tail -n 20 "$scratch/log" >&2; fail "failed in the fresh root: $*"; }
}

everyFile() # but logs and caches
{
    find "$root" -xdev -path "$root/var/log" -prune -o -path "$root/var/cache" -prune -o \
        -printf '%P %M %u\n' | sort
}

playsAsNobody()
{
    playsInstalled /home/link chroot --userspec=nobody:nogroup "$root"
}

remove()
{
    closeDisplay
    rm -rf --one-file-system "$scratch"
}

((EUID == 0)) || fail "only root can make a root"
installPackages "${BUILD_PACKAGES[@]}" "${DISPLAY_PACKAGES[@]}" "${PACKAGE_PACKAGES[@]}" \
    "${ROOT_PACKAGES[@]}"
scratch=$(mktemp -d)
chmod 755 "$scratch"
root=$scratch/root
openDisplay "$scratch"
trap remove EXIT
package=$(tools/package.sh | tail -n 1)

echo "Making a root"
archives | mmdebstrap --quiet --variant=apt "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" -
cp "$package" "$root/home/tumbledown.deb"
ln -s ../usr/games/tumbledown "$root/home/link"
inRoot apt-get update
inRoot apt-get satisfy -y "$(dpkg-deb -f "$package" Depends)"
everyFile >"$scratch/before"

echo "Installing, playing and purging"
inRoot apt-get install -y /home/tumbledown.deb
playsAsNobody
inRoot apt-get purge -y tumbledown
diff "$scratch/before" <(everyFile) || fail "something is left"

echo "The same on the SDL 1.2 that is built on SDL 2"
inRoot apt-get install -y /home/tumbledown.deb libsdl1.2-compat-shim
[[ ! -e $root/var/lib/dpkg/info/libsdl1.2debian:$(dpkg --print-architecture).list ]] ||
    fail "both SDLs are there"
playsAsNobody
inRoot apt-get purge -y tumbledown
[[ -z $(find "$root" -xdev -iname '*tumbledown*' ! -path "$root/home/*") ]] || fail "something is left"
echo "All of it was installed, played and removed, after $SECONDS s."
