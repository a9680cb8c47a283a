# shellcheck shell=bash
# judge.sh - plays a game and judges what it prints and shows. Sourced.
judge=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tools/virtual.sh
source "$judge/../../tools/virtual.sh"
COLOURS_OF_A_WORLD=50 # fewer in a picture, and nothing is drawn in it

expectLines() # head|tail FILE: what standard error begins or ends with
{
    diff "$2" <("$1" -n "$(wc -l <"$2")" "$scratch/err") || complain "the $1 is not as expected"
}

expectOrderlyEnd() # FILE: how standard error ends; standard output holds nothing
{
    waitForEnd 30
    ((gameStatus == 0)) || complain "status $gameStatus:" "$(tail -n 20 "$scratch/err")"
    expectLines tail "$judge/../support/$1"
    diff /dev/null "$scratch/out" || complain "there is something on standard output"
}

showsAWorldAndEnds() # once startGame has started it
{
    local side
    waitForPlay
    grab "$scratch/picture.png"
    (($(identify -format %k "$scratch/picture.png") >= COLOURS_OF_A_WORLD)) ||
        complain "there is no world to be seen"
    xdotool keydown Escape
    expectOrderlyEnd quit.txt
    xdotool keyup Escape
    side=$(od -An -tu2 --endian=little -j12 -N2 "$judge/../../data/Map.tga" | tr -d ' ')
    sed "s/SIDE/$side/g; s/BLOCKS/$((side / 25))/g; s/STEP/$((side / 10))/" \
        "$judge/../support/start.txt" >"$scratch/expected"
    expectLines head "$scratch/expected"
}

# From a folder that has nothing to do with it, with arguments that it ignores.
playsInstalled() # LAUNCHER [COMMAND...], that runs it
{
    # shellcheck disable=SC2016 # the launcher's shell expands it
    startGame "$1" / "${@:2}" sh -c 'exec "$0" --windowed 2'
    showsAWorldAndEnds
}
