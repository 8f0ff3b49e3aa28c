#!/usr/bin/env bash
# Runs cppcheck over the library and the program; every finding is an error.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh checks
# clang-tidy checks the style.
cppcheck --quiet --std=c++20 --language=c++ --error-exitcode=1 --inline-suppr -j 2 \
    --enable=warning,performance,portability --suppressions-list=.cppcheck-suppressions \
    -I src -I app src app
