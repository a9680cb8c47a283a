# shellcheck shell=bash disable=SC2034 # the scripts that source this file use its variables
# root.sh - makes a fresh minimal Debian in a folder and runs commands there. Sourced after setup.sh.
# A script that calls openRoot calls closeRoot when it ends, best in a trap for EXIT.

DEVELOPER=player # the ordinary user inside, who may use sudo without a password
SOURCE=/home/$DEVELOPER/tumbledown

needRoot()
{
    ((EUID == 0)) || fail "only root can make a Debian in a folder: sudo tools/$(basename "$0")"
}

# Prints the release that this machine runs, such as bookworm.
runningRelease()
{
    (. /etc/os-release && echo "${VERSION_CODENAME-}")
}

# Sets release to the one that is named, or to the one that runs here.
chooseRelease() # [RELEASE]
{
    release=${1:-$(runningRelease)}
    [[ $# -le 1 && $release =~ ^[a-z]+$ ]] ||
        fail "name one release of Debian, such as bookworm or trixie"
}

# Prints those sources of apt-get on this machine that name the running release, also with an ending
# such as -security, with the given release in its place. Prints nothing where no source names the
# running release or there is no Debian; mmdebstrap then uses deb.debian.org.
archives() # RELEASE
{
    apt-get indextargets --format "deb \$(REPO_URI) \$(RELEASE) \$(COMPONENT)" \
        'Created-By: Packages' 'Origin: Debian' |
        awk -v running="$(runningRelease)" -v wanted="$1" '
            running && index($3 "-", running "-") == 1 {
                $3 = wanted substr($3, length(running) + 1)
                if (!printed[$0]++) print
            }'
}

# A mirror may offer another release under the name that was asked for.
expectRelease() # RELEASE
{
    local made
    made=$(sed -n 's/^VERSION_CODENAME=//p' "$root/etc/os-release")
    [[ $made == "$1" ]] || fail "the Debian in $root is '$made' and not '$1'"
}

# Sets scratch, a new folder, and root, the folder of the Debian in it.
openRoot() # RELEASE
{
    local sources=()
    scratch=$(mktemp -d)
    chmod 755 "$scratch"
    root=$scratch/root
    echo "Making a Debian $1 in $root"
    archives "$1" >"$scratch/sources"
    [[ ! -s $scratch/sources ]] || sources=("$scratch/sources")
    mmdebstrap --quiet --variant=apt --include=sudo,passwd "$1" "$root" "${sources[@]}" \
        >"$scratch/log" 2>&1 ||
        showLogAndFail "mmdebstrap could not make a Debian $1"
    expectRelease "$1"
}

# Ends what still runs in the root and removes the root. The child of unshare is the first process of
# the root's process namespace: all others end with it, and so do the mounts. The option --kill-child
# does not work here, since the change to another user clears it.
closeRoot()
{
    local first
    if [[ -n ${inside-} ]]; then
        first=$(cat "/proc/$inside/task/$inside/children" 2>/dev/null || true)
        # shellcheck disable=SC2086 # one number or none
        kill -KILL ${first:-"$inside"} 2>/dev/null || true
        wait "$inside" 2>/dev/null || true
    fi
    inside=''
    [[ -z ${scratch-} ]] || rm -rf --one-file-system "$scratch"
}

showLogAndFail() # WORD...
{
    tail -n 60 "$scratch/log" >&2
    fail "$@"
}

# Runs a command in the root with processes, mounts and shared memory of its own. The output goes to
# $scratch/log, and its end is shown if the command fails.
inRoot() # USER COMMAND...
{
    # shellcheck disable=SC2016 # the inner shell expands it
    unshare --fork --pid --mount sh -c '
        root=$1 user=$2
        shift 2
        mount -t proc proc "$root/proc" && mount -t tmpfs -o mode=1777 shm "$root/dev/shm" || exit
        exec chroot "$root" setpriv --reuid="$user" --regid="$user" --init-groups \
            env -i USER="$user" HOME="$(chroot "$root" sh -c "echo ~$user")" LC_ALL=C.UTF-8 \
            DEBIAN_FRONTEND=noninteractive TERM=dumb \
            PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$@"
        ' - "$root" "$@" </dev/null >>"$scratch/log" 2>&1 &
    inside=$!
    wait "$inside" || showLogAndFail "failed in the fresh Debian: ${*:2}"
    inside=''
}

# Makes the ordinary user and copies the files of the commit that is checked out here to that user's
# folder. Changes that are not committed are left out.
addSource()
{
    inRoot root useradd -m -s /bin/bash "$DEVELOPER"
    echo "$DEVELOPER ALL=(ALL) NOPASSWD: ALL" >"$root/etc/sudoers.d/$DEVELOPER"
    mkdir "$root$SOURCE"
    # Git refuses to read a checkout of another user unless its folder is named as safe.
    git -c safe.directory="$PWD" archive HEAD | tar -x -C "$root$SOURCE" ||
        fail "git could not read the commit that is checked out in $PWD"
    inRoot root chown -R "$DEVELOPER:" "$SOURCE"
}

# Runs a command of the project in its folder as the ordinary user.
develop() # COMMAND...
{
    # shellcheck disable=SC2016 # the inner shell expands it
    inRoot "$DEVELOPER" sh -c 'cd "$0" && exec "$@"' "$SOURCE" "$@"
}

# Prints the version of an installed package of the root, or a dash.
versionOf() # PACKAGE
{
    # shellcheck disable=SC2016 # dpkg-query expands it
    chroot "$root" dpkg-query -W -f '${Version}\n' "$1" 2>/dev/null || echo -
}
