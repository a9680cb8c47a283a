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
SKIPPED=77

start() # FOLDER [VARIABLE=VALUE...]
{
    startGame "$GAME" "$@" ${LIBRARY:+LD_LIBRARY_PATH="$LIBRARY"} \
        ${PRELOAD:+LD_PRELOAD="$PRELOAD"}
}

expectSame() # WHAT EXPECTED GOT
{
    diff "$2" "$3" || complain "$1: the lines differ from those expected"
}

expectLast() # FILE
{
    expectSame "the end" "$1" <(tail -n "$(wc -l <"$1")" "$scratch/err")
}

expectFirst() # FILE
{
    expectSame "the start" "$1" <(head -n "$(wc -l <"$1")" "$scratch/err")
}

expectStatus0()
{
    waitForEnd 30
    ((gameStatus == 0)) || complain "status $gameStatus:" "$(tail -n 20 "$scratch/err")"
}

expectOrderlyEnd()
{
    expectStatus0
    expectLast "$here/quit.txt"
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
    expectFirst "$here/start.txt"
    expectSame "the diagnostic block" "$here/block.txt" \
        <(tail -n "+$(($(wc -l <"$here/start.txt") + 1))" "$scratch/err" |
            head -n "$(wc -l <"$here/block.txt")" |
            sed -E 's/^(Frame Rate: ) ?[0-9]+\.[0-9]$/\1N/; s/-?[0-9]+/N/g')
    [[ ! -s $scratch/out ]] || complain "there is something on standard output"
}

# In the air nothing but the keys turns the cube: the torques that stand there beside no force.
torquesInTheAir() # FIRST LINE of standard error to look at
{
    tail -n "+$1" "$scratch/err" |
        awk '/^\tForce: / { air = /\(0,0,0\)/ } /^\tTorque: / && air && !/\(0,0,0\)/'
}

upRollsTheCube()
{
    play
    local from pressed
    from=$(cubeVector Position)
    [[ -z $(torquesInTheAir 1) ]] || complain "a torque without a key"
    pressed=$(wc -l <"$scratch/err")
    xdotool keydown i Up
    askForBlocks 5
    [[ -n $(torquesInTheAir "$pressed") ]] || complain "no torque from Up"
    [[ $(cubeVector "Angular Momentum") != "0 0 0" ]] || complain "the cube does not turn"
    [[ $(cubeVector Position) != "$from" ]] || complain "the cube does not move"
}

closingQuits()
{
    play
    "$CLOSER"
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

pausedGameGoesOn()
{
    play
    kill -STOP "$gamePid"
    sleep 3
    kill -CONT "$gamePid"
    askForBlocks 20
    xdotool keydown Escape
    expectOrderlyEnd
}

withoutImagesItQuits()
{
    mkdir "$scratch/empty"
    start "$scratch/empty"
    expectOrderlyEnd
    expectFirst "$here/no_images.txt"
}

expectRefusal() # LINE
{
    expectStatus0
    expectSame "the end" "$here/quit_early.txt" "$scratch/err"
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
    exit "$SKIPPED"
fi
openDisplay "$scratch"
trap remove EXIT
"$1"
