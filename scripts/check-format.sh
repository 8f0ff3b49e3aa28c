#!/usr/bin/env bash
# Fails if clang-format would change a source. With --fix the sources are changed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh checks
mode=(--dry-run --Werror)
[ "${1:-}" != --fix ] || mode=(-i)
git ls-files -z --cached --others --exclude-standard -- '*.c' '*.cpp' '*.h' |
    xargs -0 clang-format-14 "${mode[@]}"
