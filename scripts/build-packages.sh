#!/usr/bin/env bash
# Makes the Debian packages of program and library and checks them against Debian's rules:
# build/packages/packages/*.deb.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh packages
# The prefix decides where Debian puts its libraries.
cmake --preset program -B build/packages -DCMAKE_INSTALL_PREFIX=/usr >&2
cmake --build build/packages >&2
rm -rf build/packages/packages
cpack --config build/packages/CPackConfig.cmake >&2
# The first upload to Debian would close the bug that requests the package: there is none. cpack writes
# maintainer scripts that call ldconfig, which the trigger would do as well.
lintian --fail-on error,warning \
    --suppress-tags initial-upload-closes-no-bugs,maintscript-calls-ldconfig \
    build/packages/packages/*.deb >&2
ls build/packages/packages/*.deb
