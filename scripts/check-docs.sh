#!/usr/bin/env bash
# Builds the reference of the public headers; an operation without a docstring is an error, like any
# other warning of doxygen. The reference lies in build/debug/docs/html.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh docs
cmake --preset debug >/dev/null
mkdir -p build/debug/docs
doxygen build/debug/Doxyfile
