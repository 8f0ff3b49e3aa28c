"""The debug entries of an image as binutils show them, for the checks of this folder.

Everything here is parsed from the text of `readelf --debug-dump=info` or, for Windows images, from that of
`objdump --dwarf=info`, which is the same; the program under test is never asked.
"""

import dataclasses
import re
import subprocess

import windows_images

ENTRY_LINE = re.compile(r"\s*<([0-9a-f]+)><([0-9a-f]+)>: Abbrev Number: (\d+)(?: \((\S+)\))?")
ATTRIBUTE_LINE = re.compile(r"\s*<[0-9a-f]+>\s+(DW_AT_\S+?)\s*: ?(.*)")
ADDRESS = re.compile(r"\(DW_OP_addr: ([0-9a-f]+)\)$")
REFERENCE = re.compile(r"<0x([0-9a-f]+)>")


@dataclasses.dataclass
class DebugEntry:
    """One entry: `offset` counts from the start of .debug_info, `attributes` hold readelf's texts."""

    offset: int
    tag: str
    parent: "DebugEntry | None"
    attributes: dict = dataclasses.field(default_factory=dict)
    children: list = dataclasses.field(default_factory=list)

    def name(self):
        """The name without readelf's note on where the string lies; None if there is none."""
        text = self.attributes.get("DW_AT_name")
        return None if text is None else re.sub(r"^\(indirect string, offset: \S+\): ", "", text).strip()

    def number(self, attribute):
        text = self.attributes.get(attribute)
        return None if text is None else int(text.split()[0], 0)

    def address(self):
        """The address of a location that is nothing but an address; else None."""
        found = ADDRESS.search(self.attributes.get("DW_AT_location", ""))
        return int(found.group(1), 16) if found else None

    def reference(self, attribute):
        """The offset that the attribute refers to; None without one."""
        found = REFERENCE.search(self.attributes.get(attribute, ""))
        return int(found.group(1), 16) if found else None


def debug_entries(image):
    """All entries of the image in file order; null entries are none."""
    is_windows_image = windows_images.is_windows_image(image)
    command = ["objdump", "--dwarf=info"] if is_windows_image else ["readelf", "--debug-dump=info"]
    done = subprocess.run([*command, str(image)], capture_output=True, text=True,
                          errors="surrogateescape", check=True, timeout=120)
    entries = []
    open_entries = []
    for line in done.stdout.splitlines():
        found = ENTRY_LINE.match(line)
        if found:
            depth, offset, code = int(found[1], 16), int(found[2], 16), int(found[3])
            del open_entries[depth:]
            if code != 0:
                parent = open_entries[-1] if open_entries else None
                entries.append(DebugEntry(offset, found[4], parent))
                open_entries.append(entries[-1])
                if parent:
                    parent.children.append(entries[-1])
            continue
        found = ATTRIBUTE_LINE.match(line)
        if found and open_entries:
            open_entries[-1].attributes[found[1]] = found[2]
    return entries


def count_entries(image):
    """How many debug entries the image has, null entries apart."""
    return len(debug_entries(image))
