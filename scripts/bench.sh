#!/usr/bin/env bash
# Builds and runs the benchmarks. Arguments go to the benchmark program, such as
# --benchmark_filter=Symbols.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-packages.sh"
cd "$root"
cmake --preset release >&2
cmake --build --preset release --target brindle_benchmarks >&2
build/release/bench/brindle_benchmarks "$@"
