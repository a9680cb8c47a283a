#!/bin/bash
# game.sh CASE GAME CLOSER [PRELOAD] - plays the real game on a display of its own and judges what
# it prints. If LIBRARY names a folder, the SDL there takes the place of the one the game links.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tools/virtual.sh
source "$here/../../tools/virtual.sh"
GAME=$2
CLOSER=$3
PRELOAD=${4-}
DATA=$here/../../data

start() # FOLDER [VARIABLE=VALUE...]
{
    startGame "$GAME" "$@" ${LIBRARY:+LD_LIBRARY_PATH="$LIBRARY"} \
        ${PRELOAD:+LD_PRELOAD="$PRELOAD"}
}

expectLines() # head|tail FILE: what standard error begins or ends with
{
    diff "$2" <("$1" -n "$(wc -l <"$2")" "$scratch/err") || complain "the $1 is not as expected"
}

expectOrderlyEnd() # [FILE]: how standard error ends, if not as after a game
{
    waitForEnd 30
    ((gameStatus == 0)) || complain "status $gameStatus:" "$(tail -n 20 "$scratch/err")"
    expectLines tail "$here/${1-quit.txt}"
}

play()
{
    start "$DATA"
    waitForPlay
}

linesInOrder()
{
    play
    xdotool keydown Escape
    expectOrderlyEnd
    expectLines head "$here/start.txt"
    [[ ! -s $scratch/out ]] || complain "there is something on standard output"
}

# In the air nothing but the keys turns the cube: the torques that stand there beside no force.
torquesInTheAir()
{
    awk '/^\tForce: / { air = /\(0,0,0\)/ } /^\tTorque: / && air && !/\(0,0,0\)/' "$scratch/err"
}

upRollsTheCube()
{
    play
    [[ -z $(torquesInTheAir) ]] || complain "a torque without a key"
    xdotool keydown Up
    askForBlocks 5
    [[ -n $(torquesInTheAir) ]] || complain "no torque from Up"
    [[ $(cubeVector "Angular Momentum") != "0 0 0" ]] || complain "the cube does not turn"
}

closingQuits()
{
    play
    "$CLOSER" "$(xdotool search --name "" | tail -n 1)"
    expectOrderlyEnd
}

signalsQuit()
{
    local signal
    for signal in TERM INT; do
        play
        echo "SIG$signal"
        kill -s "$signal" "$gamePid"
        expectOrderlyEnd
    done
}

lostDisplayQuits()
{
    play
    kill -KILL "$serverPid"
    expectOrderlyEnd
}

withoutImagesItQuits()
{
    start "$scratch"
    expectOrderlyEnd
    sed "s|FOLDER|$scratch|" "$here/no_images.txt" >"$scratch/expected"
    expectLines head "$scratch/expected"
}

expectRefusal() # LINE
{
    expectOrderlyEnd quit_early.txt
    grep -qx "$1" "$scratch/out" || complain "the failure is not told"
}

withoutDisplayItQuits()
{
    start "$DATA" --unset=DISPLAY SDL_VIDEODRIVER=x11
    expectRefusal "Couldn't init SDL"
}

withoutOpenGLItQuits()
{
    start "$DATA" SDL_VIDEODRIVER=dummy
    expectRefusal "Couldn't set Video Mode"
}

scratch=$(mktemp -d)
remove()
{
    closeDisplay
    rm -rf "$scratch"
}
if [[ -n ${LIBRARY+set} && ! -e $LIBRARY/libSDL-1.2.so.0 ]]; then
    echo "there is no second SDL library in '$LIBRARY'"
    exit 77 # skipped
fi
openDisplay "$scratch"
trap remove EXIT
"$1"
