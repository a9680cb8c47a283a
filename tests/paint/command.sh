#!/bin/bash
# command.sh PROGRAM - what the command tumbledown-land refuses, paints and leaves behind.
set -euo pipefail
LAND=$(realpath "$1")
SMALL=(--seed 1 --side 351)

fail()
{
    echo "$*" >&2
    exit 1
}

content() # of the folder: names, kinds, permissions, checksums
{
    find . -printf '%p %y %m\n' | sort
    find . -type f -exec cksum {} + | sort -k 3
}

expectRefusal() # STATUS LINE ARGUMENT...: expects this status, only this line and no change
{
    local status=0 before
    before=$(content)
    "$LAND" "${@:3}" >../out 2>../err || status=$?
    ((status == $1)) || fail "status $status instead of $1: ${*:3}"
    diff <(echo "tumbledown-land: $2") ../err || fail "wrong message: ${*:3}"
    diff <(echo "$before") <(content) || fail "a refused command changed the folder: ${*:3}"
}

refusesWhatMakesNoSense()
{
    local side seed
    mkdir there
    touch there/TexTank.tga file
    for side in 350 352 326 1526 -351 351.0 '' 4294967647; do
        expectRefusal 2 "the side '$side' is not one of 351, 376, 401 ... 1501 (multiples of 25, plus one)" \
            new --side "$side"
    done
    for seed in -1 4294967296 12a 0x10 ' 1' ''; do
        expectRefusal 2 "the seed '$seed' is not a whole number from 0 to 4294967295" new --seed "$seed"
    done
    expectRefusal 2 "no folder is given; see --help" --seed 1
    expectRefusal 2 "no folder is given; see --help" ''
    expectRefusal 2 "only one folder can be given, but 'b' is another" a b
    expectRefusal 2 "--seed needs a number" new --seed
    expectRefusal 2 "unknown option '--size'; see --help" new --size
    expectRefusal 2 "unknown option '-s'; see --help" -sx new
    expectRefusal 2 "cannot make the folder no/where: No such file or directory" no/where
    expectRefusal 2 "cannot make the folder file: Not a directory" file
    expectRefusal 2 "cannot write into the folder /proc/self: No such file or directory" /proc/self
    expectRefusal 2 "there/TexTank.tga is there already; --force replaces the images in the folder" \
        there
}

paintsTheSameLandTwice()
{
    local stages
    "$LAND" one "${SMALL[@]}" >../out
    "$LAND" --side 351 --seed 1 two >/dev/null
    diff -r one two
    (($(find one -name '[MT]*.tga' | wc -l) == 8)) || fail "there are not eight images"
    [[ $(tail -n 2 ../out) == *"seed 1, 351 samples"*"tumbledown one"* ]] || fail "$(<../out)"
    stages=$(sed -n 's/^ *[0-9]* of \([0-9]*\) .*/\1/p' ../out)
    (($(wc -l <<<"$stages") == $(head -n 1 <<<"$stages"))) || fail "wrong stages: $(<../out)"
}

replacesImagesWhenForced()
{
    echo note | tee one/note one/Map.tga >one/TexCube.tga
    "$LAND" one "${SMALL[@]}" --force >/dev/null
    rm one/note
    diff -r one two
}

leavesNothingWhenAFileCannotGrow()
{
    (ulimit -f 1500 && expectRefusal 1 "cannot write new/TexSkyBox.tga: File too large" new "${SMALL[@]}")
}

# A named pipe in the place of a temporary file makes the painter wait in the middle of its writing.
keepsTheImagesWhenStopped()
{
    local signal before
    before=$(content)
    for signal in TERM KILL; do
        mkfifo two/.TexTank.tga.part
        env --default-signal "$LAND" two --force --seed 2 --side 351 >../out &
        painter=$!
        until [[ -e two/.TexSkyBox.tga.part ]]; do
            kill -0 $painter 2>/dev/null || fail "the painter has ended too early: $(<../out)"
            sleep 0.1
        done
        kill -s $signal $painter
        [[ $signal == KILL ]] || timeout 60 cat two/.TexTank.tga.part >/dev/null
        ! wait $painter || fail "SIG$signal does not end the painter"
        painter=''
        [[ $signal == TERM ]] || rm two/.*.part # the game does not read these
        diff <(echo "$before") <(content) || fail "SIG$signal changes the folder"
    done
}

endPainter()
{
    [[ -z $painter ]] || kill -KILL "$painter" 2>/dev/null || true
    rm -rf "$scratch"
}

painter='' # process id while a painter runs in the background
scratch=$(mktemp -d)
trap endPainter EXIT
mkdir "$scratch/lands"
cd "$scratch/lands"
for claim in refusesWhatMakesNoSense paintsTheSameLandTwice replacesImagesWhenForced \
    leavesNothingWhenAFileCannotGrow keepsTheImagesWhenStopped; do
    echo "tumbledown-land $claim"
    "$claim"
done
