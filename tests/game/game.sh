#!/bin/bash
# game.sh CASE GAME CLOSER [PRELOAD] - plays the real game on a display of its own and judges what
# the game prints. If LIBRARY names a folder, the game runs with the SDL library in that folder
# instead of the one that it is linked with.
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

# In the air no force acts on the cube, and a torque can only come from the key.
upTurnsTheCube()
{
    play
    xdotool keydown Up
    askForBlocks 5
    xdotool keyup Up
    awk '/^\tForce: \(0,0,0\)/ { getline; turns += /[1-9]/ } END { exit !turns }' "$scratch/err" ||
        complain "Up gives the cube no torque in the air"
}

showsAWorld()
{
    start "$DATA"
    showsAWorldAndEnds
}

isTrueOf() # PART EXPRESSION: evaluates the expression for the colours in this part of the picture
{
    (($(convert "$scratch/picture.png" -crop "$1" -format "%[fx:$2]" info:)))
}

# The upper edge must be blue. The lower edge must not be blue, very dark, very bright or of one
# colour.
showsSkyAboveLand()
{
    grab "$scratch/picture.png" && isTrueOf 1024x60+0+0 'mean.b - mean.r > 0.15' &&
        isTrueOf 1024x60+0+708 'mean.g > mean.b && mean > 0.1 && mean < 0.8' &&
        isTrueOf 1024x60+0+708 'standard_deviation > 0.02'
}

isLow()
{
    local y
    hasEnded || { read -r _ y _ < <(cubeVector Position) && ((y < 600)); }
}

# At the start the camera looks up into the sky. After the landing, slow frames can make the cube
# bounce, and the view moves with the cube. So the game is stopped shortly before the cube lands.
pictureShowsSkyAboveLand()
{
    local attempt
    for attempt in {1..6}; do
        play
        xdotool keydown i
        waitFor 60 isLow || complain "the cube does not fall"
        isRunning
        kill -s STOP "$gamePid"
        ! showsSkyAboveLand || return 0
        echo "picture $attempt does not show the sky above the land"
        stop KILL "$gamePid"
    done
    complain "no picture shows the sky above the land"
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

# A server that is killed does not remove its lock file and its socket.
lostDisplayQuits()
{
    local number=${DISPLAY#:}
    play
    stop KILL "$serverPid"
    serverPid=''
    rm -f "/tmp/.X$number-lock" "/tmp/.X11-unix/X$number"
    expectOrderlyEnd quit.txt
}

withoutImagesItQuits()
{
    start "$scratch"
    expectOrderlyEnd quit.txt
    sed "s|FOLDER|$scratch|" "$judge/no_images.txt" >"$scratch/expected"
    expectLines head "$scratch/expected"
}

if [[ -n ${LIBRARY+set} && ! -e $LIBRARY/libSDL-1.2.so.0 ]]; then
    echo "there is no second SDL library in '$LIBRARY'"
    exit 77 # CTest reports the test as skipped.
fi
scratch=$(mktemp -d)
trap 'closeDisplay; rm -rf "$scratch"' EXIT
if [[ -n $PRELOAD ]]; then # LD_PRELOAD cannot name a path with a blank.
    ln -s "$PRELOAD" "$scratch/preload.so"
    PRELOAD=$scratch/preload.so
fi
openDisplay "$scratch"
"$1"
