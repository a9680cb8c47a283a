# shellcheck shell=bash
# judge.sh - plays a game and judges what the game prints and shows. Sourced.
judge=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tools/virtual.sh
source "$judge/../../tools/virtual.sh"

expectLines() # head|tail FILE: standard error begins (head) or ends (tail) with these lines
{
    diff "$2" <("$1" -n "$(wc -l <"$2")" "$scratch/err") ||
        complain "the lines of $2 are not at the $1 of standard error"
}

expectOrderlyEnd() # FILE: standard error ends with these lines, and standard output is empty
{
    waitForEnd 30
    ((gameStatus == 0)) || complain "status $gameStatus:" "$(tail -n 20 "$scratch/err")"
    expectLines tail "$judge/../support/$1"
    diff /dev/null "$scratch/out" || complain "there is something on standard output"
}

showsAWorldAndEnds() # startGame must have started the game.
{
    local side
    waitForPlay
    grab "$scratch/picture.png"
    hasColoursOfAWorld "$scratch/picture.png"
    xdotool keydown Escape
    expectOrderlyEnd quit.txt
    xdotool keyup Escape
    side=$(sideOf "$judge/../../data/Map.tga")
    sed "s/SIDE/$side/g; s/BLOCKS/$((side / 25))/g; s/STEP/$((side / 10))/" \
        "$judge/../support/start.txt" >"$scratch/expected"
    expectLines head "$scratch/expected"
}

# Starts the launcher in a folder that has nothing to do with the game. A command, such as chroot,
# can start the launcher.
playsInstalled() # LAUNCHER [VARIABLE=VALUE...] [COMMAND...]
{
    startGame "$1" / "${@:2}"
    showsAWorldAndEnds
}
