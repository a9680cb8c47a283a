#!/bin/bash
# package.sh - builds the Debian package of this commit and says where it is. From one commit it is
# the same file to the byte, wherever the checkout lies.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/setup.sh

# The commit's time; without a repository that of the newest entry in the package's list of changes.
timeOfSource()
{
    git log -1 --format=%ct 2>/dev/null ||
        dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp
}

installPackages "${BUILD_PACKAGES[@]}" "${PACKAGE_PACKAGES[@]}"
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(timeOfSource)}
# Debian's usual flags, without what would bring the name of this folder into the program.
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
