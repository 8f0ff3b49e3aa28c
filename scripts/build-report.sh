#!/usr/bin/env bash
# Rebuilds the page of `brindle report`, app/report/bundle/report.html, from its sources and from the npm
# packages that app/report/package-lock.json pins, after checking its types and running its tests. Needs Node
# 20 or later. With --check nothing is written: it fails if the committed bundle differs from what the sources
# give.
set -euo pipefail
cd "$(dirname "$0")/../app/report"

npm ci --ignore-scripts --no-fund --no-audit --loglevel=error
npm run --silent check
npm test --silent
for package in @leeoniya/ufuzzy d3-hierarchy; do
    cmp "node_modules/$package/LICENSE" "licences/$(case $package in
        @leeoniya/ufuzzy) echo uFuzzy ;;
        *) echo "$package" ;;
    esac).txt"
done
if [ "${1:-}" = --check ]; then
    committed=$(mktemp)
    trap 'rm -f "$committed"' EXIT
    cp bundle/report.html "$committed"
    npm run --silent build
    if ! cmp -s bundle/report.html "$committed"; then
        cp "$committed" bundle/report.html
        echo "app/report/bundle/report.html is not what the sources give; run scripts/build-report.sh" >&2
        exit 1
    fi
else
    npm run --silent build
fi
