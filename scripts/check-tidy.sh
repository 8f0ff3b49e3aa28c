#!/usr/bin/env bash
# Runs clang-tidy over the sources of the library, the program, the tests, the benchmarks and the
# fuzz targets: check-tidy.sh [--deep] [PATTERN...]. With patterns of paths, only the groups that hold
# such a source are looked at. With --deep, the static analyzer follows as many ways through a function
# as is usual for it, almost four times as many: that takes twice the time.
set -euo pipefail
cd "$(dirname "$0")/.."

nodes=60000
if [ "${1:-}" = --deep ]; then
    nodes=225000
    shift
fi

scripts/install-packages.sh checks
# Looked at in groups: most of the time goes into the headers of the system, which a group meets once.
folder=build/tidy
cmake --preset debug -B "$folder" -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=40 >/dev/null
cmake --build "$folder" --target brindle_commit >/dev/null
# clang-tidy looks for its settings in the folders above a file.
git ls-files '*/.clang-tidy' | while read -r settings; do
    ln -sf "$PWD/$settings" "$folder/$settings"
done
# Groups that lost all their sources since an earlier run are of no interest.
pattern=$(printf '%s|' "$@") && pattern=${pattern%|}
mapfile -t files < <(python3 - "$folder/compile_commands.json" "$PWD" "$pattern" <<'END'
import json, pathlib, re, sys

commands, root, pattern = sys.argv[1:]
own = re.compile(rf"{root}/((src|capi|app|tests|bench|fuzz)/.*\.cpp|build/tidy/.*/Unity/.*\.cxx)$")
include = re.compile(r'#include "(.*)"')
seen = set()


def without_known(group):
    """The sources of a group that no earlier one has: some are compiled for several targets."""
    text = include.sub(lambda line: "" if line[1] in seen else line[0], group.read_text())
    seen.update(include.findall(text))
    group.write_text(text)
    return text


for command in json.load(open(commands)):
    path = command["file"]
    if own.match(path):
        text = path + (without_known(pathlib.Path(path)) if "/Unity/" in path else "")
        if (path.endswith(".cpp") or include.search(text)) and re.search(pattern, text):
            print(path)
END
)
# A group is a source that includes sources: the one check would take that for a slip, and the static analyzer
# would take them for headers and pass over what happens in their functions.
run-clang-tidy-14 -quiet -p "$folder" -checks=-bugprone-suspicious-include \
    -extra-arg=-Xclang -extra-arg=-analyzer-opt-analyze-headers \
    -extra-arg=-Xclang -extra-arg=-analyzer-config -extra-arg=-Xclang -extra-arg="max-nodes=$nodes" $(printf '^%s$ ' "${files[@]}")
