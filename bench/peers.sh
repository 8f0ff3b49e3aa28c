#!/usr/bin/env bash
# Measures brindle beside the tools that a user could run instead, and prints the tables of
# docs/performance.md. Builds the program, the yardstick and the images first.
#
# usage: peers.sh [--quick | --scale PERCENT] [OPTION...]
#   --quick          images of a twenty-fifth of the size, without gdb and abidw
#   --scale PERCENT  size of the images
#   OPTION           goes to peers.py: --no-slow leaves out gdb and abidw, --limit SECONDS stops a
#                    tool, --runs COUNT
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

scale=100
options=()
case "${1:-}" in
--quick)
    scale=4
    options=(--no-slow)
    shift
    ;;
--scale)
    scale=$2
    shift 2
    ;;
esac

"$root/scripts/install-packages.sh" bench
cd "$root"
{
    cmake --preset release
    cmake --build --preset release --target brindle_program libdw_walk
} >&2
images=$(bench/images/build.py --scale "$scale")
exec bench/peers.py "${options[@]}" "$@" "$images"
