#!/usr/bin/env bash
# Makes a wheel of the Python package with the shared library in it. Needs no network.
#     scripts/build-wheel.sh [LIBRARY [FOLDER]]
# It takes the named library, otherwise it builds one; the wheel goes to build/wheel or to the named folder,
# which is emptied first.
set -euo pipefail
cd "$(dirname "$0")/.."

library=${1:-}
if [ -z "$library" ]; then
    cmake --preset release >&2
    cmake --build --preset release --target brindle_shared >&2
    library=build/release/src/libbrindle.so
fi

output=$(realpath -m "${2:-build/wheel}")
rm -rf "$output"
mkdir -p "$output"
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp -r python/brindle python/pyproject.toml python/README.md "$stage"
cp --dereference "$library" "$stage/brindle/libbrindle.so"
strip --strip-unneeded "$stage/brindle/libbrindle.so"
# Not pure, since it contains a library; for any Python 3, since ctypes loads the library.
cat >"$stage/setup.cfg" <<END
[bdist_wheel]
plat_name = linux_$(uname -m)
END

# The system's interpreter, which has setuptools.
cd "$stage"
/usr/bin/python3 -c "from setuptools import build_meta; print(build_meta.build_wheel('$output'))" \
    >"$output/log" 2>&1 || { cat "$output/log" >&2; exit 1; }
rm "$output/log"
ls "$output"/*.whl
