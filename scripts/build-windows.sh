#!/usr/bin/env bash
# Builds the program and the library for Windows with MinGW-w64, tests them if Wine is installed, and packs
# them: build/windows/brindle-VERSION-windows-ARCHITECTURE.zip.
#     scripts/build-windows.sh [--unit-tests] [x86_64 | i686]
# The architecture is x86_64 unless named. --unit-tests builds and runs the unit tests for Windows as well,
# which takes several times as long.
set -euo pipefail
cd "$(dirname "$0")/.."

architecture=x86_64
unit_tests=OFF
for argument in "$@"; do
    case $argument in
    --unit-tests) unit_tests=ON ;;
    x86_64 | i686) architecture=$argument ;;
    *)
        echo "build-windows.sh: unknown argument '$argument'" >&2
        exit 2
        ;;
    esac
done
preset=windows-$architecture
build=build/$preset

case $architecture in
x86_64) scripts/install-packages.sh windows ;;
i686) scripts/install-packages.sh windows-i686 ;;
esac

cmake --preset "$preset" -DBRINDLE_BUILD_UNIT_TESTS=$unit_tests
# The command that runs the programs, and the program of this machine with which they are compared.
wine=$(sed -n 's/^BRINDLE_WINE:FILEPATH=\(.*\)/\1/p' "$build/CMakeCache.txt")
if [ -x "$wine" ]; then
    for native in release tests debug program; do
        [ ! -e "build/$native/build.ninja" ] || break
    done
    [ -e "build/$native/build.ninja" ] || cmake --preset "$native"
    cmake --build --preset "$native" --target brindle_program
    cmake --preset "$preset" -DBRINDLE_NATIVE_PROGRAM="$PWD/build/$native/app/brindle"
fi
cmake --build --preset "$preset"

if [ -x "$wine" ]; then
    # A Wine installation of its own, without the parts that would be downloaded, served by one process.
    export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
    mkdir -p "$WINEPREFIX"
    # One server for all runs, for as long as this script lasts.
    "$(dirname "$wine")/wineserver" -f -p >/dev/null 2>&1 </dev/null &
    trap '"$(dirname "$wine")/wineserver" -k >/dev/null 2>&1 || true' EXIT
    "$wine" wineboot -i >/dev/null 2>&1
    ctest --preset "$preset"
else
    echo "build-windows.sh: no Wine for $architecture here: what was built has not been run" >&2
fi

# The zip: bin, lib and include as in an installation, the documentation with the examples and the managed
# library that it speaks of, and the licences of everything in the files.
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
output=$PWD/build/windows
name=brindle-$version-windows-$architecture
stage=$output/$name
rm -rf "$stage" "$stage.zip"
for component in runtime development program; do
    cmake --install "$build" --component $component --prefix "$stage" >/dev/null
done
"$architecture-w64-mingw32-strip" --strip-unneeded "$stage"/bin/*
cp "$build/src/brindle.def" "$stage/lib"
mkdir -p "$stage/docs" "$stage/licences"
cp README.md CHANGELOG.md "$stage"
cp -r docs/*.md docs/*.png docs/schema "$stage/docs"
cp -r examples managed "$stage"
cp packaging/copyright "$stage/licences/brindle.txt"
cp -r app/report/licences "$stage/licences/report"
cp /usr/src/utf8proc/LICENSE.md "$stage/licences/utf8proc.md"
for package in libcli11-dev rapidjson-dev mingw-w64-common gcc-mingw-w64-base; do
    cp "/usr/share/doc/$package/copyright" "$stage/licences/$package.txt"
done
(cd "$output" && zip -qr "$name.zip" "$name")
rm -rf "$stage"
ls "$output/$name.zip"
