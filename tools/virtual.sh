# shellcheck shell=bash disable=SC2034 # what it defines is used by those that source it
# virtual.sh - the real game on a virtual display, driven by real keys. Sourced.
# One game to a display: a second one would wait for ever for the grab of the keyboard.

complain()
{
    echo "$*" >&2
    return 1
}

waitFor() # SECONDS COMMAND...: until the command succeeds
{
    local end=$((SECONDS + $1))
    shift
    until "$@" 2>/dev/null; do
        ((SECONDS <= end)) || return 1
        sleep 0.1
    done
}

openDisplay() # FOLDER, for what the server and the game write
{
    scratch=$1
    rm -f "$scratch/display"
    # Without -noreset the server starts over when its last client leaves, and now and then the
    # game comes just then.
    Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1024x768x24 \
        3>"$scratch/display" >"$scratch/server" 2>&1 &
    serverPid=$!
    trap closeDisplay EXIT
    trap 'exit 130' INT TERM
    waitFor 20 test -s "$scratch/display" || complain "the virtual display does not start" || return
    DISPLAY=:$(cat "$scratch/display")
    export DISPLAY
}

stop() # SIGNAL [PID]
{
    [[ -n ${2-} ]] || return 0
    kill -s "$1" "$2" 2>/dev/null || true
    wait "$2" 2>/dev/null || true
}

closeDisplay()
{
    stop KILL "${gamePid-}"
    stop TERM "${serverPid-}" # and it takes its lock file along
    gamePid='' serverPid=''
}

startGame() # PROGRAM FOLDER [VARIABLE=VALUE...]
{
    local program=$1 folder=$2
    shift 2
    rm -f "$scratch/out" "$scratch/err"
    touch "$scratch/err"
    # A background job of a shell ignores SIGINT unless told otherwise.
    (cd "$folder" && exec env --default-signal=INT "$@" "$program") \
        >"$scratch/out" 2>"$scratch/err" </dev/null &
    gamePid=$!
}

hasEnded()
{
    ! kill -0 "$gamePid"
}

waitForEnd() # SECONDS; sets gameStatus
{
    waitFor "$1" hasEnded || complain "the game does not end" || return
    gameStatus=0
    wait "$gamePid" || gameStatus=$?
    gamePid=''
}

countBlocks()
{
    grep -c '^Camera Information' "$scratch/err" || true
}

hasBlocks() # COUNT
{
    hasEnded || (($(countBlocks) >= $1))
}

# Holds I until some blocks more stand there: the keys reach the game and its frames go on.
askForBlocks() # COUNT
{
    local wanted=$(($(countBlocks) + $1))
    xdotool keydown i
    waitFor 30 hasBlocks "$wanted" || complain "the game does not answer to the I key" || return
    xdotool keyup i
    ! hasEnded 2>/dev/null || complain "the game has ended" || return
}

waitForPlay() # until the game has drawn its first frames
{
    waitFor 60 grep -q 'Loading Tank texture' "$scratch/err" ||
        complain "the game does not start:" "$(tail -n 3 "$scratch/err")" || return
    askForBlocks 1
}

cubeVector() # NAME: x y z of the newest block
{
    awk -F '[(,)]' -v name="	$1:" 'index($1, name) == 1 { vector = $2 " " $3 " " $4 }
        /^Camera/ { newest = vector } END { print newest }' "$scratch/err"
}

hold() # KEY SECONDS
{
    xdotool keydown "$1"
    sleep "$2"
    xdotool keyup "$1"
}

grab() # FILE
{
    import -window root "$1" || complain "no picture could be taken"
}

hasLanded()
{
    local force
    force=$(cubeVector Force)
    [[ -n $force && $force != "0 0 0" ]]
}

waitForLanding()
{
    xdotool keydown i
    waitFor 120 hasLanded || complain "the cube does not land" || return
    xdotool keyup i
}
