#!/usr/bin/env bash
# Builds everything and runs all tests. The argument names a preset: tests (the default, debug code that is compiled
# in groups of sources), debug, release, sanitizers, or threads, which builds and runs only what reads in several
# threads.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
preset=${1:-tests}

"$root/scripts/install-packages.sh" tests
cd "$root"
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
