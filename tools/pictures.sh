#!/bin/bash
# pictures.sh - takes the README's pictures from the real game: plays a few games on a virtual
# display, takes many pictures and keeps the best landing, crowd and fight in docs/pictures/.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/setup.sh
source tools/virtual.sh

GAMES=2
SHOTS=40
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

takeGame() # NUMBER
{
    local shot
    begin
    waitForLanding || fail "the cube does not land"
    xdotool keydown Up
    for ((shot = 10; shot < 10 + SHOTS; ++shot)); do
        sleep 1
        grab "$TAKEN/game-$1-$shot.ppm"
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
    for picture in "$TAKEN"/game-*-[34]?.ppm; do
        echo "$("$1" "$picture") $picture"
    done | sort -g | tail -n 1 | cut -d ' ' -f 2
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
    takeGame "$game"
done
keep "$TAKEN/landing.ppm" landing
keep "$(best people)" crowd
keep "$(best fire)" under-fire
