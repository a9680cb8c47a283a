#!/bin/bash
# package.sh - builds the Debian package, examines it and uses the commands that it installs.
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/setup.sh
export LC_ALL=C.UTF-8 LANGUAGE= # The tests compare what programs print.
# shellcheck source=tests/game/judge.sh
source tests/game/judge.sh

buildPackage() # CHECKOUT: sets built, the path of the package
{
    "$1/tools/package.sh" >"$scratch/log" ||
        { cat "$scratch/log"; fail "the package could not be built in $1"; }
    built=$(tail -n 1 "$scratch/log")
}

newestVersions() # of the program, the package, the changelog and the metadata
{
    sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt
    dpkg-parsechangelog -l packaging/debian/changelog -S Version | sed 's/-[^-]*$//'
    sed -n '/^## \([0-9.]*\).*/ { s//\1/p; q }' CHANGELOG.md
    sed -n '/.*<release version="\([^"]*\)".*/ { s//\1/p; q }' packaging/tumbledown.metainfo.xml
}

# The project has no homepage. AppStream 1.0 warns of that. The warning is ignored here and not by
# an option of appstreamcli, since earlier versions do not know the warning and refuse the option.
metadataHasNoFault()
{
    local told
    told=$(appstreamcli validate --no-net packaging/tumbledown.metainfo.xml || true)
    echo "$told"
    [[ $told == *Validation* ]] || fail "appstreamcli printed no result"
    ! grep '^[EW]:' <<<"$told" | grep -v ' url-homepage-missing$' || fail "the metadata has faults"
}

# Later versions of lintian repeat the warnings of appstreamcli under this tag. The lintian of
# Debian 12 does not know the tag and refuses to suppress it.
packageHasNoFault()
{
    local tag=appstream-metadata-validation-failed
    lintian-explain-tags "$tag" >/dev/null 2>&1 || tag=
    lintian ${tag:+--suppress-tags "$tag"} --fail-on error,warning "$package"
}

describesItselfWithoutFault()
{
    local page
    [[ $(newestVersions | uniq -c) =~ ^\ *4\ [0-9.]+$ ]] || fail "the four versions differ"
    desktop-file-validate packaging/tumbledown.desktop
    metadataHasNoFault
    for page in packaging/*.6; do
        [[ -z $(man --warnings -E UTF-8 -l "$page" 2>&1 >/dev/null) ]] ||
            fail "man has warnings for $page"
        mandoc -T lint -W all "$page"
    done
    packageHasNoFault
}

hasTheRightFiles()
{
    diff tests/package/files.txt <(dpkg-deb -c "$package" | awk '!/^d/ { print $1, $2, $6 }')
    dpkg-deb -f "$package" Depends | grep -q 'libsdl1.2debian (.*) | libsdl1.2-compat-shim' ||
        fail "the dependencies do not name SDL 1.2 and sdl12-compat as alternatives"
}

isHardened()
{
    local program told word
    for program in tumbledown tumbledown-land; do
        told=$(readelf -Wd --dyn-syms "$scratch/root/usr/libexec/tumbledown/$program")
        for word in PIE NOW __stack_chk_fail; do
            [[ $told == *"$word"* ]] || fail "$program is built without $word"
        done
    done
}

playsFromItsRoot()
{
    playsInstalled "$scratch/root/usr/games/tumbledown"
}

paintsALandAndPlaysIt()
{
    "$scratch/root/usr/games/tumbledown-land" "$scratch/a land" --side 351
    # shellcheck disable=SC2016 # the shell that is started expands it
    startGame "$scratch/root/usr/games/tumbledown" / FOLDER="$scratch/a land" \
        sh -c 'exec "$0" "$FOLDER"'
    waitForPlay
    grep -q 'Width: 351, height: 351' "$scratch/err" || fail "the game plays another land"
    xdotool keydown Escape
    expectOrderlyEnd quit.txt
    xdotool keyup Escape
}

# Each line: the status, the arguments, and the only line that the launcher prints.
refusesWhatCannotBePlayed()
{
    local status arguments line told
    mkdir "$scratch/empty" "$scratch/bare"
    cp data/Map.tga data/MapTex.tga data/TexCube.tga "$scratch/bare"
    while IFS='|' read -r status arguments line; do
        # shellcheck disable=SC2086 # the arguments are separate words
        told=$(cd "$scratch" && env -u SDL_VIDEODRIVER -u WAYLAND_DISPLAY DISPLAY=:999 \
            root/usr/games/tumbledown $arguments 2>&1; echo "status $?")
        diff <(echo "${line/SHIPPED/$scratch/root/usr/share/games/tumbledown}"; echo "status $status") \
            <(echo "$told") || fail "tumbledown $arguments"
    done <<'END'
1||tumbledown: there is no display ':999' (from the variable DISPLAY)
2|--windowed|tumbledown: unknown option '--windowed'; see --help
2|bare empty|tumbledown: only one folder can be given; see --help
2|nowhere|tumbledown: there is no folder 'nowhere'
2|empty|tumbledown: there is no land in 'empty': Map.tga is missing
2|bare|tumbledown: 'bare' lacks TexNoise.tga TexSkyBox.tga TexTank.tga; copy from SHIPPED what is missing
END
}

isTheSameWhereverItIsBuilt()
{
    local copy="$scratch/another place" time
    time=$(stat -c %Y "$scratch/root/usr/games/tumbledown")
    mkdir "$copy"
    tar -c --exclude=./build --exclude=./.git . | tar -x -C "$copy"
    SOURCE_DATE_EPOCH=$time buildPackage "$copy"
    cmp "$package" "$built"
}

playsFromAMovedPrefixThroughALink()
{
    cmake --install build/package --prefix "$scratch/prefix" >/dev/null
    mv "$scratch/prefix" "$scratch/moved to here"
    ln -s "moved to here/bin/tumbledown" "$scratch/first"
    ln -s "$scratch/first" "$scratch/a link"
    playsInstalled "$scratch/a link"
    [[ $("$scratch/moved to here/bin/tumbledown-land" --version) == tumbledown-land\ * ]] ||
        fail "the painter of lands does not start from a moved prefix"
}

scratch=$(mktemp -d)
trap 'closeDisplay; rm -rf "$scratch"' EXIT
openDisplay "$scratch"
buildPackage "$PWD"
package=$built
dpkg-deb -x "$package" "$scratch/root"
for claim in describesItselfWithoutFault hasTheRightFiles isHardened playsFromItsRoot \
    paintsALandAndPlaysIt refusesWhatCannotBePlayed isTheSameWhereverItIsBuilt \
    playsFromAMovedPrefixThroughALink; do
    echo "the package $claim"
    "$claim"
done
