#!/bin/bash
# lands.sh - paints twelve lands and shows them from above, with their seeds, on one picture:
# docs/pictures/lands.jpg.
#
#     tools/lands.sh [SIDE]    # 801 samples along each side if no other number is given
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
source tools/setup.sh

LAND=build/lands/tools/paint/tumbledown-land
SIDE=${1-801}
SEEDS=({1..12})
SHEET=docs/pictures/lands.jpg
FONT=/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf

# The colours of the land begin after a header of 18 bytes, with the bottom row of the picture.
paintFromAbove() # SEED
{
    "$LAND" "$scratch/$1" --seed "$1" --side "$SIDE" >"$scratch/$1.log" || fail "no land of seed $1"
    tail -c +19 "$scratch/$1/MapTex.tga" |
        convert -size "${SIDE}x$SIDE" -depth 8 bgra:- -flip -alpha off -resize 400x400 \
            "$scratch/$1.png"
    rm -r "${scratch:?}/$1"
}

[[ $# -le 1 && $SIDE =~ ^[1-9][0-9]{2,3}$ && SIDE -ge 351 && SIDE -le 1501 &&
    $((SIDE % 25)) -eq 1 ]] ||
    fail "give one side at most, one of 351, 376, 401 ... 1501 (multiples of 25, plus one)"
installPackages "${BUILD_PACKAGES[@]}" imagemagick libnoise-dev fonts-dejavu-core
cmake -B build/lands -G Ninja -DCMAKE_BUILD_TYPE=Release -DTUMBLEDOWN_TESTS=OFF >/dev/null
cmake --build build/lands --target tumbledown-land
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for seed in "${SEEDS[@]}"; do
    paintFromAbove "$seed"
done
cd "$scratch"
montage -font "$FONT" -pointsize 20 -label 'seed %t' "${SEEDS[@]/%/.png}" -tile 4x -geometry +8+8 \
    sheet.png
cd "$OLDPWD"
convert "$scratch/sheet.png" -strip -define jpeg:extent=600kb "$SHEET"
echo "$PWD/$SHEET"
