#!/usr/bin/env python3
"""Looks for names that two sources of one target share.

All builds but the one for debugging compile sources in groups, as one. A helper of the same name in two unnamed
namespaces breaks such a group, while the debug build passes. Groups shift with every new source, so this
joins all sources of each target and reads them, without making code: a minute instead of a release.
"""

import json
import pathlib
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDER = ROOT / "build" / "groups"
# Smaller targets are the same sources again, or so small that each build tells.
FEWEST_SOURCES = 5


def configure():
    """Gives the commands that compile a whole target each; a group of size 0 holds all sources."""
    subprocess.run(["cmake", "--preset", "sanitizers", "-B", FOLDER, "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0"],
                   cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    commands = json.loads((FOLDER / "compile_commands.json").read_text(encoding="utf-8"))
    groups = [command for command in commands if "/Unity/" in command["file"]]
    return [group for group in groups if sources_of(group) >= FEWEST_SOURCES]


def sources_of(group):
    return pathlib.Path(group["file"]).read_text(encoding="utf-8").count("#include")


def read_group(command):
    """Returns what the compiler has against a group."""
    arguments = shlex.split(command["command"])
    output = arguments.index("-o")
    del arguments[output:output + 2]
    result = subprocess.run([*arguments, "-O0", "-fsyntax-only"], cwd=command["directory"],
                            check=False, capture_output=True, text=True)
    return result.returncode, result.stderr


def main():
    groups = configure()
    if not groups:
        sys.exit("check-groups: no target has sources in groups")
    failed = False
    with ThreadPoolExecutor(2) as readers:
        for command, (status, errors) in zip(groups, readers.map(read_group, groups)):
            target = pathlib.Path(command["file"]).parents[1].stem
            print(f"{target}: {sources_of(command)} sources")
            if status != 0:
                failed = True
                print(errors, file=sys.stderr)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
