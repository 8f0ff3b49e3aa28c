#!/usr/bin/env bash
# Runs clang-tidy over the sources of the library, the program, the tests, the benchmarks and the
# fuzz targets.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh checks
cmake --preset debug >/dev/null
run-clang-tidy-14 -quiet -p build/debug "^$PWD/(src|capi|app|tests|bench|fuzz)/.*\.cpp$"
