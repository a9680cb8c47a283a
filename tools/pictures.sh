#!/bin/bash
# pictures.sh - takes the README's pictures from the real game: plays a few games on a virtual
# display, takes many pictures and keeps the best landing, crowd, fight and coast in docs/pictures/.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/setup.sh
source tools/virtual.sh

GAMES=6
SHOTS=20 # of each game at most
TURN=4   # of them while it turns
TAKEN=build/candidates
KEPT=docs/pictures
SHARE='%[fx:mean]' # of the pixels that a filter leaves white

begin()
{
    openDisplay "$TAKEN"
    startGame "$PWD/build/release/tumbledown" data
    waitForPlay || fail "the game did not come to be played"
}

takeLanding()
{
    begin
    waitForLanding || fail "the cube does not land"
    grab "$TAKEN/landing.ppm"
    closeDisplay
}

# What is taken while the cube lives is noted with its height.
takeGame() # NUMBER KEY, which is held at first, beside Up
{
    local shot file
    begin
    waitForLanding || fail "the cube does not land"
    xdotool keydown Up keydown "$2"
    for ((shot = 10; shot < 10 + SHOTS; ++shot)); do
        ((shot != 10 + TURN)) || xdotool keyup "$2"
        sleep 0.7
        askForBlocks 1 || fail "the game stopped answering"
        file=$TAKEN/game-$1-$shot.ppm
        grab "$file"
        [[ $(cubeVector Momentum) != "0 0 0" ]] || break # the game is over
        echo "$(cubeVector Position | cut -d ' ' -f 2) $file" >>"$TAKEN/heights"
    done
    closeDisplay
}

people() # PICTURE: they are the black in its lower part
{
    convert "$1" -gravity south -crop 100x55%+0+0 -threshold 6% -negate -colorspace gray \
        -format "$SHARE" info:
}

fire() # PICTURE: shots glow in this colour at their tips
{
    convert "$1" -fuzz 9% -fill black +opaque '#ffcc66' -fill white -opaque '#ffcc66' \
        -colorspace gray -format "$SHARE" info:
}

# The picture in which it leaves most, of those in which the cube has come to roll.
best() # FILTER
{
    local picture
    grep -v -- '-1[01].ppm' "$TAKEN/heights" | cut -d ' ' -f 2 | while read -r picture; do
        echo "$("$1" "$picture") $picture"
    done | sort -g | tail -n 1 | cut -d ' ' -f 2
}

# Taken at the water, which is the lowest that the land has.
lowest()
{
    sort -g "$TAKEN/heights" | head -n 1 | cut -d ' ' -f 2
}

keep() # PICTURE NAME
{
    convert "$1" -quality 90 -define jpeg:extent=390KB "$KEPT/$2.jpg"
    echo "$KEPT/$2.jpg"
}

installPackages "${BUILD_PACKAGES[@]}" "${DISPLAY_PACKAGES[@]}"
build release
rm -rf "$TAKEN"
mkdir -p "$TAKEN" "$KEPT"
takeLanding
for ((game = 1; game <= GAMES; ++game)); do
    takeGame "$game" "$( ((game % 2)) && echo Left || echo Right)"
done
keep "$TAKEN/landing.ppm" landing
keep "$(best people)" crowd
keep "$(best fire)" under-fire
keep "$(lowest)" coast
