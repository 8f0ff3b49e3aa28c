#!/usr/bin/env bash
# Looks for names that two sources of one group share. A release compiles the sources of a group as one, so
# that helpers of the same name in two unnamed namespaces break it, while all other builds pass. This reads
# the groups as the release has them, without compiling: seconds instead of a release build.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=build/groups
cmake --preset program -B "$folder" -DBRINDLE_BUILD_APP=OFF >/dev/null
groups=("$folder"/src/CMakeFiles/brindle_objects.dir/Unity/unity_*.cxx)
[ -e "${groups[0]}" ] || { echo "check-groups: the release has no groups of sources" >&2; exit 1; }
status=0
for group in "${groups[@]}"; do
    # Only includes, and no warnings: other builds report everything except the names.
    c++ -std=c++20 -w -fsyntax-only -I src -I "$folder/src/generated" "$group" || status=1
    echo "$(basename "$group" .cxx): $(grep -c '^#include' "$group") sources"
done
exit $status
