"""The debug entries of an image as binutils show them, for the checks of this folder, and what these checks
allow gdb to tell otherwise.

Everything here is parsed from the text of `readelf --debug-dump=info` or, for Windows images, from that of
`objdump --dwarf=info`, which is the same; the program under test is never asked.
"""

import collections
import dataclasses
import functools
import re
import subprocess

import windows_images

ENTRY_LINE = re.compile(r"\s*<([0-9a-f]+)><([0-9a-f]+)>: Abbrev Number: (\d+)(?: \((\S+)\))?")
ATTRIBUTE_LINE = re.compile(r"\s*<[0-9a-f]+>\s+(DW_AT_\S+?)\s*: ?(.*)")
SECTION_LINE = re.compile(r"Contents of the (\S+) section")
UNIT_LINE = re.compile(r"\s*Compilation Unit @ offset (?:0x)?([0-9a-f]+)")
SIGNATURE_LINE = re.compile(r"\s*Signature:\s+0x([0-9a-f]+)")
TYPE_OFFSET_LINE = re.compile(r"\s*Type Offset:\s+0x([0-9a-f]+)")
ADDRESS = re.compile(r"\(DW_OP_addr: ([0-9a-f]+)\)$")
ADDRESS_INDEX = re.compile(r"\(DW_OP_addrx <(?:0x)?([0-9a-f]+)>\)$")
# 64-bit DWARF has no brackets.
REFERENCE = re.compile(r"<(?:alt )?0x([0-9a-f]+)>|^0x([0-9a-f]+)$")
SIGNATURE = re.compile(r"signature: 0x([0-9a-f]+)$")
STRING_NOTE = re.compile(r"^\((?:alt )?(?:indirect|indexed)(?: line)? string[^)]*\): ")


@dataclasses.dataclass
class DebugEntry:
    """One entry: `offset` and `unit` count from the start of the section, `attributes` has readelf's
    texts."""

    offset: int
    tag: str
    parent: "DebugEntry | None"
    section: str = ".debug_info"
    unit: int = 0
    attributes: dict = dataclasses.field(default_factory=dict)
    children: list = dataclasses.field(default_factory=list)

    def name(self):
        """The name without readelf's note on where the string is; None if there is none."""
        text = self.attributes.get("DW_AT_name")
        return None if text is None else STRING_NOTE.sub("", text).strip()

    def linkage_name(self):
        """The linkage name; None if there is none."""
        text = self.attributes.get("DW_AT_linkage_name", self.attributes.get("DW_AT_MIPS_linkage_name"))
        return None if text is None else STRING_NOTE.sub("", text).strip()

    def number(self, attribute):
        text = self.attributes.get(attribute)
        return None if text is None else int(text.split()[0], 0)

    def address(self, image=None):
        """The address of a location that is only an address; else None. The image has the addresses that
        are given by index."""
        location = self.attributes.get("DW_AT_location", "")
        if image and (found := ADDRESS_INDEX.search(location)):
            return self._address_of_index(image, int(found.group(1), 16))
        found = ADDRESS.search(location)
        return int(found.group(1), 16) if found else None

    def _address_of_index(self, image, index):
        # readelf shows this section only if it accepts all its headers; it doesn't accept those of
        # link-time optimisation by clang.
        unit = self
        while unit.parent is not None:
            unit = unit.parent
        contents, order, size = address_section(image)
        start = unit.number("DW_AT_addr_base") + index * size
        return int.from_bytes(contents[start:start + size], order)

    def reference(self, attribute):
        """The offset that the attribute refers to; None if there is no such attribute."""
        found = REFERENCE.search(self.attributes.get(attribute, ""))
        return int(found[1] or found[2], 16) if found else None


class EntryTree:
    """The entries of an image and their references."""

    def __init__(self, image):
        self.entries = debug_entries(image)
        self._by_place = {(entry.section, entry.offset): entry for entry in self.entries}
        self._by_signature = {
            signature: self._by_place[section, unit + offset]
            for section, unit, signature, offset in type_units(image)}

    def target(self, entry, attribute):
        """The entry that an attribute refers to; None if there is no such attribute."""
        text = entry.attributes.get(attribute, "")
        if found := SIGNATURE.search(text):
            return self._by_signature.get(int(found[1], 16))
        return self._by_place.get((entry.section, entry.reference(attribute)))

    def origin(self, entry):
        """The entry that an entry completes or is a copy of; else the entry itself."""
        for attribute in ("DW_AT_abstract_origin", "DW_AT_specification"):
            if (target := self.target(entry, attribute)) is not None:
                return self.origin(target)
        return entry


def _dump(image, part):
    is_windows_image = windows_images.is_windows_image(image)
    command = [f"--dwarf={part}"] if is_windows_image else [f"--debug-dump={part}"]
    done = subprocess.run(["objdump" if is_windows_image else "readelf", *command, str(image)],
                          capture_output=True, text=True, errors="surrogateescape", timeout=120)
    if not done.stdout:
        raise AssertionError(f"{image}: {done.stderr}")
    return done.stdout.splitlines()


@functools.cache
def address_section(image):
    """The contents of .debug_addr, the byte order, and the size of an address."""
    data = image.read_bytes()
    is_64_bit, order = data[4] == 2, "big" if data[5] == 2 else "little"
    start, size = _section(image, ".debug_addr")
    return data[start:start + size], order, 8 if is_64_bit else 4


def _section(image, name):
    """File position and size of a section; 0 if it doesn't exist."""
    done = subprocess.run(["readelf", "--sections", "--wide", str(image)], capture_output=True, text=True,
                          check=True, timeout=60)
    found = re.search(rf"\] {re.escape(name)} +PROGBITS +[0-9a-f]+ ([0-9a-f]+) ([0-9a-f]+)", done.stdout)
    return (int(found[1], 16), int(found[2], 16)) if found else (0, 0)


def section_size(image, name):
    return _section(image, name)[1]


def type_units(image):
    """Section, offset, signature and offset of the type, of each unit that holds a single type."""
    section, unit, signature = ".debug_info", 0, 0
    for line in _dump(image, "info"):
        if found := SECTION_LINE.match(line):
            section = found[1]
        elif found := UNIT_LINE.match(line):
            unit = int(found[1], 16)
        elif found := SIGNATURE_LINE.match(line):
            signature = int(found[1], 16)
        elif found := TYPE_OFFSET_LINE.match(line):
            yield section, unit, signature, int(found[1], 16)


def debug_entries(image):
    """All entries of the image in file order, without null entries."""
    entries = []
    open_entries = []
    section, unit = ".debug_info", 0
    for line in _dump(image, "info"):
        if line.startswith("Contents of"):
            section = SECTION_LINE.match(line)[1]
        elif found := UNIT_LINE.match(line):
            unit = int(found[1], 16)
        found = ENTRY_LINE.match(line)
        if found:
            depth, offset, code = int(found[1], 16), int(found[2], 16), int(found[3])
            del open_entries[depth:]
            if code != 0:
                parent = open_entries[-1] if open_entries else None
                entries.append(DebugEntry(offset, found[4], parent, section, unit))
                open_entries.append(entries[-1])
                if parent:
                    parent.children.append(entries[-1])
            continue
        found = ATTRIBUTE_LINE.match(line)
        if found and open_entries:
            open_entries[-1].attributes[found[1]] = found[2]
    return entries


def count_entries(image):
    """The number of debug entries in the image, without null entries."""
    return len(debug_entries(image))


# What the checks against gdb share ----------------------------------------------------------------


def rule(function):
    """Marks an intended difference between gdb and the reader; its docstring is the reason."""
    assert function.__doc__
    return function


def components(name):
    """The parts of a qualified name; colons within brackets don't separate."""
    parts, depth, start = [], 0, 0
    for place, character in enumerate(name):
        if character in "<({":
            depth += 1
        elif character in ">)}":
            depth -= 1
        elif depth == 0 and name.startswith("::", place):
            parts.append(name[start:place])
            start = place + 2
    return parts + [name[start:]]


def is_big_endian(image):
    start = image.read_bytes()[:6]
    return start[:4] == b"\x7fELF" and start[5] == 2


@rule
def is_discarded(address):
    """gdb takes the address to which a linker moves discarded variables, all ones (spare_words of spare.c,
    by lld), for an ordinary address."""
    return address in (0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF)


class VariableFacts:
    """What gdb doesn't report about the variables of an image: how the compiler wrote their entries."""

    def __init__(self, image, tree, delivered_address):
        self.tree = tree
        self._constants = {entry.name() for entry in tree.entries
                           if entry.tag == "DW_TAG_variable" and "DW_AT_const_value" in entry.attributes
                           and entry.linkage_name() is not None}
        self._linkage_names = collections.Counter(entry.linkage_name() for entry in tree.entries
                                                  if "DW_AT_location" in entry.attributes)
        self._variables = collections.defaultdict(list)
        for entry in tree.entries:
            if entry.tag == "DW_TAG_variable" and (address := entry.address(image)) is not None:
                self._variables[self.name_of(entry), delivered_address(image, address)].append(entry)

    def name_of(self, entry):
        """The name under which a variable is found."""
        return self.tree.origin(entry).name()

    def entries_of(self, name, address):
        return self._variables[name, address]

    @rule
    def is_hidden_from_gdb(self, name, address):
        """gdb leaves out the static variables of functions that exist as inlined copies only (limited::seen of
        timers.c), and variables without a name (the anonymous union in a namespace of main.cpp, by gcc); it takes
        a static member whose declaration tells a value for a constant (Sensor::kLimit). Of variables with one
        linkage name it keeps the first (word and bytes of that union, by clang), and of a declaration with a value
        the value (gThreshold of signals.cpp)."""
        return not name or name in self._constants or any(
            self._shares_linkage_name(entry) or self._has_constant_declaration(entry)
            for entry in self.entries_of(name, address)) or self.function_without_code(name, address) is not None

    @rule
    def is_unspecified(self, name, address):
        """A type that the compiler leaves unspecified (that of nullptr) is void; gdb makes an integer of
        it."""
        return any(self._has_unspecified_type(entry) for entry in self.entries_of(name, address))

    def function_without_code(self, name, address):
        """The function of a static variable, if the function exists only as inlined copies; else None."""
        for entry in self.entries_of(name, address):
            owner = entry.parent
            while owner is not None and owner.tag != "DW_TAG_subprogram":
                owner = owner.parent
            if owner is not None and not {"DW_AT_low_pc", "DW_AT_ranges"} & set(owner.attributes):
                return self.tree.origin(owner).name() or "<unnamed-subprogram>"
        return None

    def _has_constant_declaration(self, entry):
        return "DW_AT_const_value" in self.tree.origin(entry).attributes

    def _shares_linkage_name(self, entry):
        return entry.linkage_name() is not None and self._linkage_names[entry.linkage_name()] > 1

    def plain_type(self, entry):
        """The type of a variable without typedefs and qualifiers; None if there is none."""
        kind = self.tree.target(self.tree.origin(entry), "DW_AT_type")
        while kind is not None and kind.tag in ("DW_TAG_typedef", "DW_TAG_const_type", "DW_TAG_volatile_type"):
            kind = self.tree.target(kind, "DW_AT_type")
        return kind

    def _has_unspecified_type(self, entry):
        kind = self.plain_type(entry)
        return kind is not None and kind.tag == "DW_TAG_unspecified_type"
