#!/bin/bash
# package.sh - builds the Debian package, looks into it and plays what it installs.
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/setup.sh
# shellcheck source=tests/game/judge.sh
source tests/game/judge.sh

newestVersions() # of the program, the package, the list of changes and the metadata
{
    sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt
    dpkg-parsechangelog -l packaging/debian/changelog -S Version | sed 's/-[^-]*$//'
    sed -n '/^## \([0-9.]*\).*/ { s//\1/p; q }' CHANGELOG.md
    sed -n '/.*<release version="\([^"]*\)".*/ { s//\1/p; q }' packaging/tumbledown.metainfo.xml
}

# The project has no homepage. Only AppStream 1.0 warns of that, and earlier versions refuse to
# override a warning that they do not know.
metadataHasNoFault()
{
    local told
    told=$(appstreamcli validate --no-net packaging/tumbledown.metainfo.xml || true)
    echo "$told"
    [[ $told == *Validation* ]] || fail "appstreamcli does not judge the metadata"
    ! grep '^[EW]:' <<<"$told" | grep -v ' url-homepage-missing$' || fail "the metadata has faults"
}

# Later versions of lintian repeat the warnings of appstreamcli under a tag that Debian 12's does not
# know and therefore refuses.
packageHasNoFault()
{
    local tag=appstream-metadata-validation-failed
    lintian-explain-tags "$tag" >/dev/null 2>&1 || tag=
    lintian ${tag:+--suppress-tags "$tag"} --fail-on error,warning "$package"
}

describesItselfWithoutFault()
{
    [[ $(newestVersions | uniq -c) =~ ^\ *4\ [0-9.]+$ ]] || fail "which version is it?"
    desktop-file-validate packaging/tumbledown.desktop
    metadataHasNoFault
    [[ -z $(man --warnings -E UTF-8 -l packaging/tumbledown.6 2>&1 >/dev/null) ]] ||
        fail "man has warnings for the manual page"
    mandoc -T lint -W all packaging/tumbledown.6
    packageHasNoFault
}

holdsWhatItShould()
{
    diff tests/package/files.txt <(dpkg-deb -c "$package" | awk '!/^d/ { print $1, $2, $6 }')
    dpkg-deb -f "$package" Depends | grep -q 'libsdl1.2debian (.*) | libsdl1.2-compat-shim' ||
        fail "the package does not depend on either SDL"
}

isHardened()
{
    local told word
    dpkg-deb -x "$package" "$scratch/root"
    told=$(readelf -Wd --dyn-syms "$scratch/root/usr/libexec/tumbledown/tumbledown")
    for word in PIE NOW __stack_chk_fail __fprintf_chk; do
        [[ $told == *"$word"* ]] || fail "the program is built without $word"
    done
}

playsFromItsRoot()
{
    playsInstalled "$scratch/root/usr/games/tumbledown"
}

isTheSameWhereverItIsBuilt()
{
    local copy="$scratch/another place" time
    time=$(stat -c %Y "$scratch/root/usr/games/tumbledown")
    mkdir "$copy"
    tar -c --exclude=./build --exclude=./.git . | tar -x -C "$copy"
    SOURCE_DATE_EPOCH=$time "$copy/tools/package.sh" >"$scratch/again"
    cmp "$package" "$(tail -n 1 "$scratch/again")"
}

playsFromAMovedPrefixThroughALink()
{
    cmake --install build/package --prefix "$scratch/prefix" >/dev/null
    mv "$scratch/prefix" "$scratch/moved to here"
    ln -s "moved to here/bin/tumbledown" "$scratch/first"
    ln -s "$scratch/first" "$scratch/a link"
    playsInstalled "$scratch/a link"
}

scratch=$(mktemp -d)
trap 'closeDisplay; rm -rf "$scratch"' EXIT
openDisplay "$scratch"
package=$(tools/package.sh | tail -n 1)
for claim in describesItselfWithoutFault holdsWhatItShould isHardened playsFromItsRoot \
    isTheSameWhereverItIsBuilt playsFromAMovedPrefixThroughALink; do
    echo "the package $claim"
    "$claim"
done
