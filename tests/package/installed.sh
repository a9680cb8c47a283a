# shellcheck shell=bash
# installed.sh - plays an installed game. Sourced; the current directory is the repository's.
source tools/virtual.sh
COLOURS_OF_A_WORLD=50 # fewer in a picture, and nothing is drawn in it

# From a folder that has nothing to do with it, with arguments that it ignores.
plays() # LAUNCHER [COMMAND...], that runs it
{
    local lines=tests/game/start.txt
    # shellcheck disable=SC2016 # the launcher's shell expands it
    startGame "$1" / "${@:2}" sh -c 'exec "$0" --windowed 2'
    waitForPlay
    grab "$scratch/picture.png"
    (($(identify -format %k "$scratch/picture.png") >= COLOURS_OF_A_WORLD)) ||
        fail "there is no world to be seen"
    xdotool keydown Escape
    waitForEnd 30
    xdotool keyup Escape
    ((gameStatus == 0)) || fail "the game ended with status $gameStatus"
    diff "$lines" <(head -n "$(wc -l <"$lines")" "$scratch/err") || fail "it started otherwise"
    diff tests/game/quit.txt <(tail -n "$(wc -l <tests/game/quit.txt)" "$scratch/err")
}
