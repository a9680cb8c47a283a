# shellcheck shell=bash disable=SC2034 # the scripts that source this file use its variables
# virtual.sh - runs the real game on a virtual display, presses keys and reads what the game prints.
# Sourced. A script that calls openDisplay calls closeDisplay when it ends, best in a trap for EXIT.
# Two games must not run on one display at the same time: a game takes the keyboard for itself, and
# the other game waits until the keyboard is free.

COLOURS_OF_A_WORLD=50 # A picture with fewer colours shows no land and no sky.

complain()
{
    echo "$*" >&2
    return 1
}

waitFor() # SECONDS COMMAND...: waits until the command succeeds
{
    local end=$((SECONDS + $1))
    shift
    until "$@" 2>/dev/null; do
        ((SECONDS <= end)) || return 1
        sleep 0.1
    done
}

hasDisplay()
{
    [[ -s $scratch/display ]] || ! kill -0 "$serverPid"
}

# The server writes its screen and its messages into the folder, and so does the game.
openDisplay() # FOLDER
{
    scratch=$1
    rm -f "$scratch/display"
    # With -noreset the server is not reset when its last client leaves: a server that is reset
    # sometimes refuses the next game. With -r a held key does not repeat, so that the game never
    # sees the key released in between.
    Xvfb -displayfd 3 -noreset -r -nocursor -nolisten tcp -fbdir "$scratch" \
        -screen 0 1024x768x24 3>"$scratch/display" >"$scratch/server" 2>&1 &
    serverPid=$!
    waitFor 20 hasDisplay && [[ -s $scratch/display ]] ||
        complain "the virtual display does not start:" "$(tail -n 3 "$scratch/server")" || return
    DISPLAY=:$(cat "$scratch/display")
    export DISPLAY SDL_VIDEODRIVER=x11 # SDL 2 might otherwise open a window on a Wayland desktop.
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
    stop TERM "${serverPid-}"
    gamePid='' serverPid=''
}

startGame() # PROGRAM FOLDER [VARIABLE=VALUE...]
{
    local program=$1 folder=$2
    shift 2
    rm -f "$scratch/out" "$scratch/err"
    touch "$scratch/out" "$scratch/err"
    # A shell makes its background jobs ignore SIGINT; env undoes this.
    (cd "$folder" && exec env --default-signal=INT "$@" "$program") \
        >"$scratch/out" 2>"$scratch/err" </dev/null &
    gamePid=$!
}

hasEnded()
{
    ! kill -0 "$gamePid" 2>/dev/null
}

isRunning()
{
    ! hasEnded || complain "the game has ended:" "$(tail -q -n 3 "$scratch/out" "$scratch/err")"
}

waitForEnd() # SECONDS; sets gameStatus
{
    waitFor "$1" hasEnded || complain "the game does not end" || return
    gameStatus=0
    wait "$gamePid" || gameStatus=$?
    gamePid=''
}

# ---- diagnostic blocks, which the game prints in each frame while I is held ---------------------

countBlocks()
{
    grep -c '^Camera Information' "$scratch/err" || true
}

hasBlocks() # COUNT
{
    hasEnded || (($(countBlocks) >= $1))
}

waitForBlocks() # COUNT: waits until the game has printed this number of further blocks
{
    waitFor 30 hasBlocks $(($(countBlocks) + $1)) ||
        complain "the game prints nothing while I is held" || return
    isRunning
}

askForBlocks() # COUNT: holds I until the game has printed this number of further blocks
{
    local status=0
    xdotool keydown i
    waitForBlocks "$1" || status=$?
    xdotool keyup i
    return $status
}

hasStarted()
{
    hasEnded || grep -q 'Loading Tank texture' "$scratch/err"
}

waitForPlay() # waits until the game draws frames
{
    waitFor 60 hasStarted || complain "the game does not start" || return
    isRunning && askForBlocks 1
}

cubeVector() # NAME: prints x, y and z of this vector in the newest block
{
    tail -c 2000 "$scratch/err" | awk -F '[(,)]' -v name="	$1:" '
        index($1, name) == 1 { vector = $2 " " $3 " " $4 }
        /^Camera/ { newest = vector } END { print newest }'
}

# Prints one line for each block: the last step in milliseconds, the position of the cube, the
# position of the camera, 1 from the landing on, 1 from the end of the game on, and 1 when the cube
# touches the ground. The game does not print that it is over, but the momentum shows it. In play,
# each step adds gravity and the contact force to the momentum. After game over, the momentum is
# only the last force times the step. The game is over when that is so in three steps in a row.
track() # FILE, which is what the game printed
{
    awk -F '[(,)]' '
        function near(k) { return (p[k] - f[k] * step / 1000) ^ 2 }
        function length2(v) { return v[1] ^ 2 + v[2] ^ 2 + v[3] ^ 2 }
        function read(v) { v[1] = $2; v[2] = $3; v[3] = $4 }
        /^Frame Rate/ {
            split($0, rate, " ")
            step = rate[3] > 0 ? int(1000 / rate[3] + 0.5) : 0
        }
        /^\tPosition/ && !camera { cube = $2 " " $3 " " $4 }
        /^\tForce/ { read(force) }
        /^\tMomentum/ {
            read(p)
            still = near(1) + near(2) + near(3) <= 0.001 * length2(p) + 12 ? still + 1 : 0
            over = over || still >= 3
            touches = length2(force) > 0
            landed = landed || touches
            for (k in force) f[k] = force[k]
        }
        /^\tPosition.*\)$/ && camera { print step, cube, $2, $3, $4, landed + 0, over + 0, touches }
        /^[CF]/ { camera = /^Camera/ }' "$1"
}

# ---- keys, pictures and images ------------------------------------------------------------------

hold() # KEY SECONDS
{
    xdotool keydown "$1"
    sleep "$2"
    xdotool keyup "$1"
}

# Copies the file in which the server keeps the screen, which hardly slows the game down. If the
# screen has changed meanwhile, the copy may show parts of two frames, and the screen is copied
# again.
copyScreen() # FILE
{
    local attempt
    for attempt in {1..30}; do
        cp "$scratch/Xvfb_screen0" "$1" || return
        ! cmp -s "$scratch/Xvfb_screen0" "$1" || return 0
    done
    complain "no picture could be taken: the screen changes all the time"
}

grab() # FILE
{
    copyScreen "$scratch/screen.xwd" && convert "xwd:$scratch/screen.xwd" "$1"
}

hasColoursOfAWorld() # FILE
{
    (($(identify -format %k "$1") >= COLOURS_OF_A_WORLD)) || complain "$1 shows no world"
}

sideOf() # IMAGE: prints the width of this TGA file in pixels
{
    od -An -tu2 --endian=little -j12 -N2 "$1" | tr -d ' '
}

hasLanded()
{
    hasEnded || awk '/^\tForce/ && !/\(0,0,0\)/ { landed = 1 } END { exit !landed }' "$scratch/err"
}

waitForLanding() # I must have been held since the start of the game.
{
    waitFor 60 hasLanded || complain "the cube does not land" || return
    isRunning
}
