#!/usr/bin/env bash
# Builds everything and runs all tests. The argument names a preset: debug (the default), release or
# sanitizers.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
preset=${1:-debug}

"$root/scripts/install-packages.sh" tests
cd "$root"
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
