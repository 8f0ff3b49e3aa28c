#!/usr/bin/env bash
# Checks the types of the Python package in mypy's strict mode; every finding is an error.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh checks
mypy --config-file python/pyproject.toml --cache-dir=build/mypy python/brindle
