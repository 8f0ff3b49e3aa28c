#!/usr/bin/env bash
# Builds the program and prints the variables of each FILE; without one, the variables of a sample firmware,
# and how to see more of it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-packages.sh"
{
    cd "$root"
    # Also where somebody built only the library in this folder.
    cmake --preset program -DBRINDLE_BUILD_APP=ON
    cmake --build --preset program
} >&2
cd - >/dev/null

brindle=$root/build/program/app/brindle
samples=$root/tests/samples/images/full
if [ $# -eq 0 ]; then
    "$brindle" vars "$samples/arm-c-O0.elf"
    cat <<END

These are the variables of a sample firmware. More of it:
  its variables, down to scalars:  $brindle leaves $samples/arm-c-O0.elf motors
  one place by its name:           $brindle find $samples/arm-c-O0.elf 'motors[1].loops[0].gain'
  the layouts of its types:        $brindle types $samples/arm-c-O0.elf motor
  what another build changes:      $brindle diff $samples/arm-c-O0.elf $samples/arm-c-O2.elf
  all at once, in a browser:       $brindle report $samples/arm-c-O0.elf -o report.html
END
    exit
fi
status=0
for file in "$@"; do
    "$brindle" vars "$file" || status=$?
done
exit "$status"
