#!/usr/bin/env bash
# Reads every file of a folder with each command of the program in both manners, and prints what happened to
# each: corpus.sh [OPTIONS] FILE_OR_FOLDER... The program is built with the address and undefined-behaviour
# sanitizers, unless --program PROGRAM names another; corpus.py has the other options.
set -euo pipefail
scripts=$(cd "$(dirname "$0")" && pwd)
program=()
if [[ " $* " != *" --program"[\ =]* && " $* " != *" --help "* && " $* " != *" -h "* ]]; then
    {
        "$scripts/install-packages.sh"
        cd "$scripts/.."
        cmake --preset sanitizers
        cmake --build --preset sanitizers --target brindle_program
        cd - >/dev/null
    } >&2
    program=(--program "$scripts/../build/sanitizers/app/brindle")
fi
exec "$scripts/corpus.py" "${program[@]}" "$@"
