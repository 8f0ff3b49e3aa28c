#!/usr/bin/env python3
"""Holds the includes of the sources against the table of rooms in docs/architecture.md.

A room is a folder with a row in that table. It may include headers of the rooms that its row names, and the
row names only rooms below itself. So an include that points up fails, and so does one that leaves the table.
Files must not include each other in a circle either; a source and its header count as one file.
"""

import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "docs" / "architecture.md"
INCLUDE = re.compile(r'\s*#\s*include\s+"([^"]+)"')

# Files that still include a room above their own, and why. An unneeded entry fails, so that the list only
# gets shorter.
EXCEPTIONS: dict[tuple[str, str], str] = {}


def read_table():
    """Returns each room of the table, top first, with the rooms that it may know."""
    rooms = {}
    for line in TABLE.read_text(encoding="utf-8").splitlines():
        row = re.fullmatch(r"\| `([a-z0-9/]+)/` \|.*\|([^|]*)\|", line)
        if row:
            rooms[row[1]] = re.findall(r"`([a-z0-9/]+)/`", row[2])
    return rooms


def faults_of_table(rooms):
    """A row that names a room above itself, or none at all."""
    order = list(rooms)
    for room, known_rooms in rooms.items():
        for known in known_rooms:
            if known not in rooms:
                yield f"{TABLE.name}: the row of {room}/ names {known}/, which has no row"
            elif order.index(known) <= order.index(room):
                yield f"{TABLE.name}: the row of {room}/ names {known}/, which isn't below it"


def room_of(path, rooms):
    """The innermost room of a file, None for a file in no room."""
    return next((str(folder) for folder in path.parents if str(folder) in rooms), None)


def files_of(folder):
    """The C++ files in a folder, by the path that determines their room."""
    base = folder.parent if folder.name != "src" else folder
    return {path.relative_to(base): path for path in sorted(folder.rglob("*")) if path.suffix in (".h", ".cpp")}


def includes_of(files):
    """Each file with the files of this project that it includes."""
    names = {path: name for name, path in files.items()}
    for name, path in files.items():
        for line in path.read_text(encoding="utf-8").splitlines():
            match = INCLUDE.match(line)
            if not match:
                continue
            for folder in (path.parent, ROOT / "src", ROOT / "app", ROOT / "capi"):
                target = (folder / match[1]).resolve()
                if target in names:
                    yield name, names[target]
                    break


def faults_of_rooms(includes, rooms):
    """Includes that the table doesn't allow, and unneeded exceptions."""
    unused = set(EXCEPTIONS)
    for source, target in includes:
        from_room, to_room = room_of(source, rooms), room_of(target, rooms)
        if None in (from_room, to_room):
            yield f"{source if from_room is None else target}: its folder has no row in {TABLE.name}"
        elif from_room != to_room and to_room not in rooms[from_room]:
            if (str(source), to_room) in EXCEPTIONS:
                unused.discard((str(source), to_room))
            else:
                yield f"{source} includes {target}, but {from_room}/ may not know {to_room}/"
    for source, room in sorted(unused):
        yield f"{source} no longer includes {room}/: its exception can go"


def faults_of_circles(includes):
    """Each circle of files, once."""
    graph = collections.defaultdict(set)
    for source, target in includes:
        if source.with_suffix("") != target.with_suffix(""):
            graph[source.with_suffix("")].add(target.with_suffix(""))
    finished = set()

    def walk(file, trail):
        if file in trail:
            yield "circle: " + " -> ".join(map(str, trail[trail.index(file):] + [file]))
        elif file not in finished:
            for target in sorted(graph[file]):
                yield from walk(target, trail + [file])
            finished.add(file)

    for file in sorted(graph):
        yield from walk(file, [])


def main():
    rooms = read_table()
    files = {}
    for folder in ("src", "app", "capi"):
        files.update(files_of(ROOT / folder))
    includes = list(includes_of(files))
    if not rooms or not includes:
        sys.exit(f"{TABLE}: found {len(rooms)} rooms and {len(includes)} includes")
    faults = [*faults_of_table(rooms), *faults_of_rooms(includes, rooms), *faults_of_circles(includes)]
    for (source, room), reason in EXCEPTIONS.items():
        print(f"not in order yet: {source} knows {room}/: {reason}")
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(rooms)} rooms, {len(files)} files, {len(includes)} includes: {len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
