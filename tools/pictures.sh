#!/bin/bash
# pictures.sh - takes the pictures of the README from the real game: plays games on a virtual
# display and keeps the best landing, crowd, fight and moving picture in docs/pictures/.
# The script needs an idle machine and up to six minutes.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
source tools/setup.sh
source tools/virtual.sh
export LC_ALL=C # for the decimal point

LAND=$PWD/data
TAKEN=build/candidates
KEPT=docs/pictures
LAST_START=270      # seconds after which no game is started
RECORDED=14         # seconds of each game
RATE=12             # frames per second of the moving picture
FILM=7              # seconds of the moving picture
LARGEST_FILM=3000000 # bytes
SAMPLE=6            # frames, of which one is searched for people and shots
PEOPLE=0.004        # the least share of pixels that people() finds in a crowd; the film needs half
FIRE=0.0001         # the least share of pixels that fire() finds in a fight
SHARE='%[fx:mean]'  # the share of white pixels in a black and white picture

# ---- playing ------------------------------------------------------------------------------------

begin()
{
    openDisplay "$TAKEN" || fail "there is no virtual display to play on"
    startGame "$PWD/build/release/tumbledown" "$LAND"
    waitForPlay || fail "the game does not play"
    xdotool keydown i
    waitForLanding || fail "the cube does not land"
    xdotool keydown Up
}

finish()
{
    # Only the blocks after a frame can show whether the game was over when the frame was copied.
    waitForBlocks 4 || fail "the game stopped answering"
    track "$TAKEN/err" >"$TAKEN/track"
    closeDisplay
}

# Notes the number of the newest diagnostic block and the milliseconds since the start.
copyFrame() # FILE START
{
    copyScreen "$1" || fail "$1 could not be taken"
    echo "$1 $(countBlocks) $(((${EPOCHREALTIME/./} - $2) / 1000))" >>"$TAKEN/frames"
}

sleepUntil() # MICROSECONDS
{
    local left=$(($1 - ${EPOCHREALTIME/./}))
    ((left <= 0)) || sleep "$(printf '%d.%06d' $((left / 1000000)) $((left % 1000000)))"
}

weave() # FRAME: rolls to the left and to the right in turn
{
    case $(($1 % 40)) in
        4) xdotool keydown Left ;;
        14) xdotool keyup Left ;;
        24) xdotool keydown Right ;;
        34) xdotool keyup Right ;;
    esac
}

# Succeeds if the game is over or if a step that took too long has thrown the cube.
isLost()
{
    tail -c 4000 "$TAKEN/err" | track - | awk '{ lost = $9 || $3 > 1600 } END { exit !lost }'
}

record()
{
    local frame start
    begin
    copyScreen "$TAKEN/touchdown.xwd"
    rm -rf "$TAKEN/frames" "$TAKEN/recorded"
    mkdir "$TAKEN/recorded"
    start=${EPOCHREALTIME/./}
    for ((frame = 0; frame < RATE * RECORDED; ++frame)); do
        weave "$frame"
        copyFrame "$TAKEN/recorded/$((1000 + frame)).xwd" "$start"
        ((frame % RATE)) || ! isLost || break
        sleepUntil $((start + (frame + 1) * 1000000 / RATE))
    done
    finish
}

# ---- judging ------------------------------------------------------------------------------------

# Adds three columns to the line of each frame:
# - good: 1 if the game is not over and the cube is on the land, else 0;
# - slow: the number of earlier steps that took longer than 50 ms;
# - rolls: 1 if the cube touched the ground in one of the last eight steps, else 0.
judgeFrames()
{
    awk -v half=$(($(sideOf "$LAND/Map.tga") * 25 / 2)) '
        FNR == NR {
            slow[NR] = slow[NR - 1] + ($1 > 50)
            alive[NR - 3] = $8 && !$9
            if ($10) touched = NR
            rolls[NR] = touched > NR - 8
            inside[NR] = $2 ^ 2 < half ^ 2 && $4 ^ 2 < half ^ 2 && $3 > -100 && $3 < 1600
            next
        }
        { print $0, alive[$2] && inside[$2] ? 1 : 0, slow[$2], rolls[$2] }' \
        "$TAKEN/track" "$TAKEN/frames"
}

people() # PICTURE: prints the share of black pixels in the lower part, which show people
{
    convert "xwd:$1" -gravity south -crop 100x55%+0+0 -threshold 6% -negate -colorspace gray \
        -format "$SHARE" info:
}

fire() # PICTURE: prints the share of pixels in the colour that only the tips of shots have
{
    convert "xwd:$1" -fuzz 9% -fill black +opaque '#ffcc66' -fill white -opaque '#ffcc66' \
        -colorspace gray -format "$SHARE" info:
}

# Adds the shares of people and of fire to the lines of the good frames that are searched.
searchFrames()
{
    local file block ms good slow rolls
    while read -r file block ms good slow rolls; do
        if ((good && (10#${file//[!0-9]/} - 1000) % SAMPLE == 0)); then
            echo "$file $block $ms $good $slow $rolls $(people "$file") $(fire "$file")"
        else
            echo "$file $block $ms $good $slow $rolls"
        fi
    done
}

# Prints the value, the first and the last frame of the best seconds for the moving picture. All
# frames of these seconds are good, and the cube rolls in at least half of them. At most one step in
# twenty is slow. At least half of the searched frames show people, and at least two show shots.
bestSeconds()
{
    awk -v frames=$((RATE * FILM)) -v people="$PEOPLE" -v fire="$FIRE" '
        { file[NR] = $1; block[NR] = $2; good[NR] = $4; slow[NR] = $5; rolls[NR] = $6
          sampled[NR] = NF > 6; crowd[NR] = $7; shots[NR] = $8 }
        END {
            for (first = 1; first + frames - 1 <= NR; ++first) {
                last = first + frames - 1
                alive = rolled = samples = seen = fired = value = 0
                for (k = first; k <= last; ++k) {
                    alive += good[k]
                    rolled += rolls[k]
                    samples += sampled[k]
                    seen += crowd[k] >= people / 2
                    fired += shots[k] >= fire
                    value += crowd[k] / people + shots[k] / fire / 4
                }
                if (alive == frames && rolled * 2 >= frames && seen * 2 >= samples &&
                    fired >= 2 && value > best &&
                    (slow[last] - slow[first]) * 20 <= block[last] - block[first]) {
                    best = value
                    found = value " " file[first] " " file[last]
                }
            }
            print found
        }' "$TAKEN/judged"
}

isMore() # NUMBER NUMBER
{
    awk -v a="$1" -v b="$2" 'BEGIN { exit !(a + 0 > b + 0) }'
}

# Keeps the frame with the largest value of all games, if the value is above the limit. Frames of
# the first second are left out, since the cube has hardly begun to roll.
keepBest() # NAME COLUMN LIMIT
{
    local value file
    read -r value file < <(awk -v column="$2" '$3 > 1000 && $6 && NF > 6 { print $column, $1 }' \
        "$TAKEN/judged" | sort -g | tail -n 1) || return 0
    if isMore "$value" "$3" && isMore "$value" "${best[$1]-0}"; then
        best[$1]=$value
        cp "$file" "$TAKEN/$1.xwd"
    fi
}

keepBestSeconds()
{
    local value first last file
    read -r value first last < <(bestSeconds)
    if isMore "${value:-0}" "${best[film]-0}"; then
        best[film]=$value
        rm -rf "$TAKEN/film"
        mkdir "$TAKEN/film"
        awk -v first="$first" -v last="$last" '$1 == first, $1 == last { print $1, $3 }' \
            "$TAKEN/judged" >"$TAKEN/film.frames"
        while read -r file _; do
            mv "$file" "$TAKEN/film/"
        done <"$TAKEN/film.frames"
    fi
}

judge()
{
    judgeFrames | searchFrames >"$TAKEN/judged"
    if [[ -z ${best[landing]-} ]] && awk 'NR == 1 { good = $4 } END { exit !good }' "$TAKEN/judged"; then
        best[landing]=1
        mv "$TAKEN/touchdown.xwd" "$TAKEN/landing.xwd"
    fi
    keepBest crowd 7 "$PEOPLE"
    keepBest under-fire 8 "$FIRE"
    keepBestSeconds
}

# ---- keeping ------------------------------------------------------------------------------------

keep() # NAME
{
    [[ -n ${best[$1]-} ]] || { lacking+=("$1"); return; }
    convert "xwd:$TAKEN/$1.xwd" -strip -quality 90 -define jpeg:extent=390KB "$TAKEN/$1.jpg"
    hasColoursOfAWorld "$TAKEN/$1.jpg"
    mv "$TAKEN/$1.jpg" "$KEPT/"
    echo "$PWD/$KEPT/$1.jpg"
}

# Prints arguments for convert, one in a line, that show each frame as long as the game showed it.
frameArguments()
{
    awk -v rate="$RATE" -v folder="$TAKEN/film/" '
        { file[NR] = $1; sub(/.*\//, "", file[NR]); ms[NR] = $2 }
        END {
            ms[NR + 1] = ms[NR] + 1000 / rate
            for (k = 1; k <= NR; ++k)
                printf "-delay\n%d\n%s.ppm\n", int(ms[k + 1] / 10) - int(ms[k] / 10),
                    folder file[k]
        }' "$TAKEN/film.frames"
}

keepFilm()
{
    local quality arguments
    [[ -n ${best[film]-} ]] || { lacking+=("play"); return; }
    find "$TAKEN/film" -name '*.xwd' -print0 |
        xargs -0 -P "$(nproc)" -I{} convert 'xwd:{}' -resize 640x480 '{}.ppm'
    mapfile -t arguments < <(frameArguments)
    for quality in 85 75 65 50 35 20; do
        convert -loop 0 "${arguments[@]}" -quality "$quality" "$TAKEN/play.webp"
        (($(stat -c %s "$TAKEN/play.webp") > LARGEST_FILM)) || break
    done
    mv "$TAKEN/play.webp" "$KEPT/"
    echo "$PWD/$KEPT/play.webp"
}

installPackages "${BUILD_PACKAGES[@]}" "${DISPLAY_PACKAGES[@]}"
build release
SECONDS=0
declare -A best=()
lacking=()
rm -rf "$TAKEN"
mkdir -p "$TAKEN" "$KEPT"
trap 'closeDisplay; rm -rf "$TAKEN"' EXIT
while ((SECONDS < LAST_START)); do
    record
    judge
done
for name in landing crowd under-fire; do
    keep "$name"
done
keepFilm
((!${#lacking[@]})) || fail "no game gave a good picture for: ${lacking[*]}. Is the machine idle?"
