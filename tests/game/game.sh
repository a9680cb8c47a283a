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

start() # FOLDER [VARIABLE=VALUE...]
{
    startGame "$GAME" "$@" ${LIBRARY:+LD_LIBRARY_PATH="$LIBRARY"} \
        ${PRELOAD:+LD_PRELOAD="$PRELOAD"}
}

play()
{
    start "$DATA"
    waitForPlay
}

showsAWorld()
{
    start "$DATA"
    showsAWorldAndEnds
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

expectRefusal() # LINE
{
    expectOrderlyEnd quit_early.txt "$1"
    ! grep -F "$1" "$scratch/err" || complain "the failure is told on standard error"
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
if [[ -n ${LIBRARY+set} && ! -e $LIBRARY/libSDL-1.2.so.0 ]]; then
    echo "there is no second SDL library in '$LIBRARY'"
    exit 77 # skipped
fi
openDisplay "$scratch"
trap 'closeDisplay; rm -rf "$scratch"' EXIT
"$1"
