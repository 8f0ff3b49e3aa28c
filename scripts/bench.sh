#!/usr/bin/env bash
# Builds and runs the benchmarks. Arguments go to the benchmark program, such as
# --benchmark_filter=Symbols. The phases of a read are timed on the image that BRINDLE_BENCH_IMAGE
# names, by default a small C++ image that is made first.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-packages.sh" tests
cd "$root"
cmake --preset release >&2
cmake --build --preset release --target brindle_benchmarks >&2
if [ -z "${BRINDLE_BENCH_IMAGE:-}" ]; then
    BRINDLE_BENCH_IMAGE=$(bench/images/build.py --scale 4 cpp)/cpp.elf
fi
export BRINDLE_BENCH_IMAGE
build/release/bench/brindle_benchmarks "$@"
