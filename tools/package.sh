#!/bin/bash
# package.sh - builds the Debian package of the files in this checkout, committed or not, and prints
# its path as the last line. Clean checkouts of a commit give the same package, byte by byte,
# wherever they are.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
source tools/setup.sh

# Prints the time that all files in the package get: the time of the commit. A tree without a
# repository takes the time of the newest entry in packaging/debian/changelog.
timeOfSource()
{
    if [[ -e .git ]]; then
        git log -1 --format=%ct || fail "git cannot read the time of the commit; see above"
    else
        dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp
    fi
}

nameOfSource()
{
    local commit changes
    if [[ ! -e .git ]]; then
        echo "a tree without a repository"
        return
    fi
    commit=$(git rev-parse --short HEAD) || fail "git cannot read the commit; see above"
    changes=$(git status --porcelain) || fail "git cannot read the files; see above"
    echo "commit $commit${changes:+ with changes that are not committed}"
}

installPackages "${BUILD_PACKAGES[@]}" "${PACKAGE_PACKAGES[@]}"
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(timeOfSource)}
export SOURCE_DATE_EPOCH
name=$(nameOfSource)
echo "Packaging $name"
# Debian's usual flags, except those that write the path of this folder into the program.
export DEB_BUILD_MAINT_OPTIONS="hardening=+all reproducible=-fixfilepath,-fixdebugpath"
export DEB_CXXFLAGS_MAINT_STRIP=-g
CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
LDFLAGS=$(dpkg-buildflags --get LDFLAGS)
export CXXFLAGS LDFLAGS
umask 022 # permissions are part of the package
rm -f build/package/*.deb
build package --fresh
cpack --preset package
echo "$PWD"/build/package/*.deb
