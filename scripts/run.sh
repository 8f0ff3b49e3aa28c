#!/usr/bin/env bash
# Builds the program and prints the variables of each FILE; without one, those of the sample firmware.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-packages.sh"
{
    cd "$root"
    cmake --preset program
    cmake --build --preset program
} >&2
cd - >/dev/null

[ $# -gt 0 ] || set -- "$root/tests/samples/images/arm-symbols.elf"
status=0
for file in "$@"; do
    "$root/build/program/app/brindle" vars "$file" || status=$?
done
exit "$status"
