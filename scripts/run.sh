#!/usr/bin/env bash
# Builds the program and prints the variables of each FILE; without one, those of the sample firmware.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-packages.sh"
{
    cd "$root"
    cmake --preset release
    cmake --build --preset release --target brindle_program
} >&2
cd - >/dev/null

[ $# -gt 0 ] || set -- "$root/tests/samples/images/arm-symbols.elf"
status=0
for file in "$@"; do
    "$root/build/release/app/brindle" vars "$file" || status=$?
done
exit "$status"
