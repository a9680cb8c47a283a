#!/bin/bash
# game.sh CASE GAME CLOSER [PRELOAD] - plays the real game on a display of its own and judges what
# it prints. If LIBRARY names a folder, the SDL there takes the place of the one the game links.
set -euo pipefail
# shellcheck source=tests/game/judge.sh
source "$(dirname "$0")/judge.sh"
GAME=$2
CLOSER=$3
PRELOAD=${4-}
DATA=$judge/../../data

start() # FOLDER
{
    startGame "$GAME" "$1" ${LIBRARY:+LD_LIBRARY_PATH="$LIBRARY"} \
        ${PRELOAD:+LD_PRELOAD="$PRELOAD"}
}

play()
{
    start "$DATA"
    waitForPlay
}

# In the air, where no force is, nothing but the key turns the cube.
upTurnsTheCube()
{
    play
    xdotool keydown Up
    askForBlocks 5
    xdotool keyup Up
    awk '/^\tForce: \(0,0,0\)/ { getline; turns += /[1-9]/ } END { exit !turns }' "$scratch/err" ||
        complain "it has no torque in the air"
}

showsAWorld()
{
    start "$DATA"
    showsAWorldAndEnds
}

holds() # PART EXPRESSION: of the picture, by the means of its colours
{
    (($(convert "$scratch/picture.png" -crop "$1" -format "%[fx:$2]" info:)))
}

# Blue above; below something else, neither dark, bright nor flat.
showsSkyAboveLand()
{
    grab "$scratch/picture.png" && holds 1024x60+0+0 'mean.b - mean.r > 0.15' &&
        holds 1024x60+0+708 'mean.g > mean.b && mean > 0.1 && mean < 0.8' &&
        holds 1024x60+0+708 'standard_deviation > 0.02'
}

isLow()
{
    local y
    read -r _ y _ < <(cubeVector Position) && ((y < 600))
}

# The view is up into the sky at first, and it leaps with the cube when slow frames let that bounce:
# the game is stopped shortly before the cube lands.
pictureShowsSkyAboveLand()
{
    local attempt
    for attempt in {1..6}; do
        play
        xdotool keydown i
        waitFor 60 isLow || complain "the cube does not fall"
        kill -s STOP "$gamePid"
        ! showsSkyAboveLand || return 0
        echo "picture $attempt does not show the sky above the land"
        stop KILL "$gamePid"
    done
    complain "no picture shows it"
}

closingQuits()
{
    play
    "$CLOSER" "$(xdotool search --name "" | tail -n 1)"
    expectOrderlyEnd quit.txt
}

signalsQuit()
{
    local signal
    for signal in TERM INT; do
        play
        echo "SIG$signal"
        kill -s "$signal" "$gamePid"
        expectOrderlyEnd quit.txt
    done
}

lostDisplayQuits()
{
    play
    kill -KILL "$serverPid"
    expectOrderlyEnd quit.txt
}

withoutImagesItQuits()
{
    start "$scratch"
    expectOrderlyEnd quit.txt
    sed "s|FOLDER|$scratch|" "$judge/no_images.txt" >"$scratch/expected"
    expectLines head "$scratch/expected"
}

scratch=$(mktemp -d)
if [[ -n ${LIBRARY+set} && ! -e $LIBRARY/libSDL-1.2.so.0 ]]; then
    echo "there is no second SDL library in '$LIBRARY'"
    exit 77 # skipped
fi
openDisplay "$scratch"
trap 'closeDisplay; rm -rf "$scratch"' EXIT
"$1"
