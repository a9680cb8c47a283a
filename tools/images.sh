# shellcheck shell=bash disable=SC2034 # the scripts that source this file use its variable
# images.sh - compares painted images with those in data/. Sourced after setup.sh.

SHIPPED_LAND=(--seed 8 --side 801) # for tumbledown-land

# Succeeds if both files have the same size and no byte differs by more than 1. Another processor or
# C library may round a colour to the next level.
isNearly() # FILE FILE
{
    cmp -s "$1" "$2" && return
    (($(stat -c %s "$1") == $(stat -c %s "$2"))) || return
    { cmp -l "$1" "$2" || true; } | awk '
        function level(octal) { return int(octal / 100) * 64 + int(octal % 100 / 10) * 8 + octal % 10 }
        { step = level($2) - level($3) } step < -1 || step > 1 { exit 1 }'
}

# Fails unless both folders have the same images.
haveSameImages() # FOLDER FOLDER
{
    local image
    diff <(cd "$1" && ls ./*.tga) <(cd "$2" && ls ./*.tga)
    for image in "$1"/*.tga; do
        isNearly "$image" "$2/$(basename "$image")" || fail "$image differs from the painted one"
    done
}
