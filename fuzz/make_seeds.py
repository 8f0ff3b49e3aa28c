#!/usr/bin/env python3
"""Makes the inputs that fuzzing starts from, a folder for each target, from the sample images.

Whole images are cut down to the sections that the reader uses, then to one compile unit each, so that
inputs stay small. Nothing is made of an image that isn't ELF but the image itself.
"""
import argparse
import pathlib
import random
import struct

ROOT = pathlib.Path(__file__).resolve().parents[1]
CHOICE_BYTES = 8
CONTAINERS = {"elf": 0, "coff": 1, "pe": 2}
SECTIONS = [".debug_info", ".debug_abbrev", ".debug_str", ".debug_loc", ".symtab", ".strtab",
            ".debug_types", ".debug_line_str", ".debug_str_offsets", ".debug_addr", ".debug_loclists"]
TABLES = SECTIONS[7:]
ENTRY_BYTES = 14
# Machine, byte order, version and format of a tree, as the first byte of an input names them.
TARGETS = [0, 1, 2, 4, 8, 9, 11, 0x20, 0x28, 0x40, 0x43, 0x60, 0x81, 0x89]

# Choices that matter, with their purpose: all types with a search for damaged units; demangled symbol
# names; symbols of no type; log and dumps; the full manner of reading.
CHOICES = [
    bytes([0, 1, 0, 0, 0, 0, 0, 0]),
    bytes([0, 1, 1, 0, 0x40, 0, 0, 0]),
    bytes([0, 0, 2, 0x60, 0, 0, 0, 0]),
    bytes([0, 1, 3, 0x6F, 0x05, 0xD0, 0, 0]),
    bytes([0, 1, 0, 0, 0, 0, 1, 0]),
]
FULL = CHOICES[-1]

# Images with type units, index tables of texts and addresses, references by signature, other languages,
# units whose entries are elsewhere, and 64-bit DWARF.
MODERN = ["arm-c-types-dwarf5", "arm-cpp-types-dwarf4", "x86_64-clang-device-O2", "x86_64-clang-cpp-lto",
          "x86_64-rust", "x86_64-ada", "x86_64-fortran", "arm-c-split", "x86_64-clang-cpp-split", "arm-c-dwarf64"]

# Sections of an image, and names that the reader only reports.
RENAMED = [(b".debug_aranges", b".zdebug_str"), (b".debug_str", b".debug_sup"),
           (b".debug_gnu_pubnames", b".gnu_debugaltlink")]

DEMANGLER = """
_ZN5plant6Device6sCountE _ZN1aIiE1bE _ZNK3ns18Outer5InnerIcLi3EE4nameE _ZN12_GLOBAL__N_13fooE _ZL4gMax
_ZZ4mainE5count _ZN3std6vectorIiSaIiEE4sizeE _ZTV6Device _ZStlsISt11char_traitsIcE _Z3fooi ___Z3foo
count__6Device count__Q25plant6Device count__Q_12_5plant6Device f__Fv get__6DeviceCFi __ct__6DeviceFv
__vtbl__6Device var__Q3_1a1b1c t__t4List1Zi x__10Abcdefghij __1x a.b.c <lambda> _underscore
""".split()

DATATYPES = ["", "BYTE", "UBYTE", "WORD", "UWORD", "DWORD", "UDWORD", "QWORD", "UQWORD", "INT", "UINT",
             "LONG", "ULONG", "BIT1", "UBIT1", "BIT64", "UBIT12", "BIT65", "FLOAT", "FLOAT16", "DOUBLE",
             "NONE", "STRING(8)", "ubit3"]

PATHS = ["a", "a.n[1][2].a", "::a.u", "ns::a[0]", "a.Base::id", "a[0].n.bits", "T<a.b>.n[0][0]", "a.b",
         "a..b", "a[", "a[99999999999999999999]", "[", "::", "", "0x100A",
         "0Xffffffffffffffff", "0x10000000000000000"]

PATTERNS = ["*", "?", "a.?", "ns::*[*].n", "a.n[?][*].bits", "[a-z]*", "[!a].b", "[^a-", "[]a]*", "[[:alpha:]].b",
            "*[[:digit:]]*", "T<*>.*.u", "a\\[0\\]", "\\*", "a\\", "A*B"]

A2L = [
    'ASAP2_VERSION 1 60 /begin PROJECT p "" /begin MODULE m "" %s /end MODULE /end PROJECT',
    '/begin MEASUREMENT a "" UWORD C 0 0 0 1 ECU_ADDRESS 0x0000 /end MEASUREMENT',
    '/begin MEASUREMENT s.b "" UWORD C 0 0 0 1 BIT_MASK 0x1 ECU_ADDRESS 0X0a /end MEASUREMENT',
    '/begin CHARACTERISTIC k "" VAL_BLK 12 RL 0 C 0 1 SYMBOL_LINK "s.t._1_" 2 MATRIX_DIM 3 1 1 '
    '/end CHARACTERISTIC /begin RECORD_LAYOUT RL FNC_VALUES 1 UWORD ROW_DIR DIRECT /end RECORD_LAYOUT',
    '/begin AXIS_PTS x@u.c "" 0x00 N RL 0 C 3 0 1 /* c */ /end AXIS_PTS // end',
    '/begin INSTANCE s "" T 0x1 /end INSTANCE /begin TYPEDEF_STRUCTURE T "" 16 '
    '/begin STRUCTURE_COMPONENT m M 0 /end STRUCTURE_COMPONENT /end TYPEDEF_STRUCTURE',
    '/begin MEASUREMENT s.m "" UWORD CM 0 0 0 1 ECU_ADDRESS 1 /end MEASUREMENT /begin COMPU_METHOD CM "" '
    'TAB_VERB "%1.0" "" COMPU_TAB_REF V /end COMPU_METHOD /begin COMPU_VTAB V "" TAB_VERB 1 1 "OFF" '
    '/end COMPU_VTAB',
    '/begin GROUP g "" /begin REF_MEASUREMENT gone a /end REF_MEASUREMENT /end GROUP /begin BLOB gone "" '
    '1 2 /begin IF_DATA X "\\"" /end IF_DATA /end BLOB',
    '/include part', '/include "main"', '/begin BLOB far "" 0x100000000 1 /end BLOB',
]

# Kind of an object and its name.
REPORT = [(0, b"ns</script>"), (7, b"a<!--"), (2, b"T<int>"), (3, b"m\\\"\n"), (7, b"--><script>"), (1, b"u.c"),
          (4, b"\xe2\x80\xa8"), (7, b"\xff\xfe"), (5, b".data\0"), (6, b"can't read '</SCRIPT'"), (7, b"")]

# int a; struct T { int a : 5; int b : 11; int c; } b; each line has the arguments of `entry`.
SIBLING, PARENT, LAST = 0, 1, 2
BIT_FIELDS = [
    (SIBLING, 0, [0, 2, 7], 0, 6, 0, 4),
    (SIBLING, 0, [0, 2, 7], 1, 2, 0, 12),
    (PARENT, 1, [0, 4], 3, 0, 8),
    (SIBLING, 2, [0, 2, 5, 6, 8], 0, 6, 4),
    (SIBLING, 2, [0, 2, 5, 6, 8], 1, 6, 0x0A0A),
    (LAST, 2, [0, 2, 8], 2, 6, 4),
    (SIBLING, 3, [0, 4, 14], 15, 0, 0),
]

# Variables whose places are in lists: the ranges of each agree or not, and the last one is empty or not.
LISTS = [(SIBLING, 0, [0, 2, 7], name, 4, name, 2 + 8 * name) for name in range(4)]
LISTS.append((SIBLING, 3, [0, 4, 14], 15, 0, 4))

# T a; struct T { int a; variants { { int b; } { int c; } {} } int outer; }
VARIANTS = [
    (SIBLING, 0, [0, 2, 7], 0, 1, 0, 4),
    (PARENT, 1, [0, 4], 3, 0, 16),
    (SIBLING, 2, [0, 2, 8], 0, 10, 0),
    (PARENT, 48, [], 0),
    (PARENT, 49, [], 0),
    (LAST, 2, [0, 2, 8], 1, 10, 4),
    (PARENT, 49, [], 0),
    (LAST, 2, [0, 2, 8], 2, 10, 4),
    (LAST, 49, [], 0),
    (LAST, 2, [0, 2, 8], 8, 10, 12),
    (SIBLING, 3, [0, 4, 14], 15, 0, 4),
]

LOCATIONS = ["0300100000", "0800", "09ff", "0a0001", "0cffffffff", "10ff01", "117f", "034000000023 10",
             "0340000000 0804 22", "0340000000 0804 1c", "0340000000 9d 03 05", "9100", "2304", "50", "9f"]


class Elf:
    """The parts of an ELF image that the sections above need."""

    def __init__(self, data):
        self.is64 = data[4] == 2
        self.order = ">" if data[5] == 2 else "<"
        self.machine = struct.unpack_from(self.order + "H", data, 18)[0]
        where, table, record = ("Q", 0x28, 0x3A) if self.is64 else ("I", 0x20, 0x2E)
        start = struct.unpack_from(self.order + where, data, table)[0]
        size, count, names_index = struct.unpack_from(self.order + "HHH", data, record)
        headers = [self.header(data, start + index * size) for index in range(count)]
        names = headers[names_index][1]
        self.sections = {}
        for name_offset, content in headers:
            name = names[name_offset:names.index(b"\0", name_offset)].decode()
            self.sections[name] = content

    def header(self, data, position):
        if self.is64:
            name, kind, _, _, offset, size = struct.unpack_from(self.order + "IIQQQQ", data, position)
        else:
            name, kind, _, _, offset, size = struct.unpack_from(self.order + "IIIIII", data, position)
        return name, b"" if kind == 8 else data[offset:offset + size]

    def has_wide_units(self):
        """Its units are in 64-bit DWARF."""
        return self.sections.get(".debug_info", b"").startswith(b"\xff\xff\xff\xff")

    def units(self):
        info = self.sections.get(".debug_info", b"")
        position = 0
        while position < len(info):
            length = struct.unpack_from(self.order + "I", info, position)[0] + 4
            yield info[position:position + length]
            position += length

    def target(self):
        machines = {40: 0, 118: 1, 141: 2}
        return self.is64 | (self.order == ">") << 1 | machines.get(self.machine, 3) << 2


def pack_sections(elf, contents, container=0):
    packed = bytes([elf.target() | container << 4, 1])
    for name in SECTIONS:
        content = contents.get(name, b"")
        packed += struct.pack("<I", len(content))[:3] + content
    return packed


def version(elf, unit):
    return struct.unpack_from(elf.order + "H", unit, 4)[0]


def place_of_abbreviations(elf, unit):
    """Unit offset of the field that says where the unit's abbreviations are."""
    return 8 if version(elf, unit) >= 5 else 6


def abbreviations_of(elf, unit):
    return struct.unpack_from(elf.order + "I", unit, place_of_abbreviations(elf, unit))[0]


def one_unit(elf, unit, strings):
    """The sections of one unit, with only its abbreviation table, at the start of the section."""
    offset = abbreviations_of(elf, unit)
    abbreviations = elf.sections[".debug_abbrev"][offset:]
    following = [abbreviations_of(elf, other) for other in elf.units()]
    end = min((other - offset for other in following if other > offset), default=len(abbreviations))
    place = place_of_abbreviations(elf, unit)
    contents = {name: elf.sections.get(name, b"") for name in TABLES}
    contents |= {
        ".debug_info": unit[:place] + bytes(4) + unit[place + 4:],
        ".debug_abbrev": abbreviations[:end],
        ".debug_loc": elf.sections.get(".debug_loc", b""),
    }
    if strings:
        contents[".debug_str"] = elf.sections.get(".debug_str", b"")
        contents[".symtab"] = elf.sections.get(".symtab", b"")[:1024]
        contents[".strtab"] = elf.sections.get(".strtab", b"")[:2048]
    return contents


def entry(structure, tag, attributes, name, kind=0, number=0, location=0):
    """An entry as the inputs of trees describe it; the attributes by their bits."""
    bits = sum(1 << attribute for attribute in attributes)
    return struct.pack("<BBHBHHHBBB", structure, tag, bits, name, kind, 0, number, location, 0, 0)


class Seeds:
    def __init__(self, folder):
        self.folder = folder

    def add(self, target, name, content):
        folder = self.folder / target
        folder.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(content)

    def images(self, samples, all_choices):
        for path in samples:
            data = path.read_bytes()
            is_elf = data.startswith(b"\x7fELF")
            container = "elf" if is_elf else "pe" if data.startswith(b"MZ") else "coff"
            for index, choices in enumerate(all_choices[:2] if len(data) > 20000 else all_choices):
                head = bytes([CONTAINERS[container]]) + choices[1:]
                for target in ("read", "memory") if index == 0 else ("read",):
                    self.add(target, f"{path.name}-{index}", head + data)
            if is_elf and not Elf(data).has_wide_units():
                self.sections(path.name, Elf(data))

    def unreadable(self, path):
        """The image as a relocatable one, and with compressed sections or names in another file."""
        data = path.read_bytes()
        self.add("read", f"{path.name}-relocatable", FULL + data[:16] + b"\1" + data[17:])
        for index, (old, new) in enumerate(RENAMED):
            content = data.replace(old + b"\0", new.ljust(len(old) + 1, b"\0"))
            self.add("read", f"{path.name}-renamed-{index}", FULL + content)

    def sections(self, name, elf):
        for index, unit in enumerate(elf.units()):
            choices = FULL if version(elf, unit) >= 5 else CHOICES[index % len(CHOICES)]
            contents = one_unit(elf, unit, strings=index % 2 == 0)
            packed = pack_sections(elf, contents, container=index % 3)
            self.add("sections", f"{name}-{index}", choices + packed)
        if ".debug_types" in elf.sections:
            types = {key: elf.sections[key] for key in (".debug_types", ".debug_abbrev")}
            types[".debug_info"] = next(elf.units())
            self.add("sections", f"{name}-types", FULL + pack_sections(elf, types))
        symbols = {key: elf.sections.get(key, b"") for key in (".symtab", ".strtab")}
        self.add("sections", f"{name}-symbols", CHOICES[2] + pack_sections(elf, symbols))

    def entries(self, count):
        numbers = random.Random(1)
        for index in range(count):
            size = ENTRY_BYTES * numbers.choice([4, 10, 30, 80])
            target = bytes([numbers.choice(TARGETS)])
            self.tree(f"random-{index}", CHOICES[index % len(CHOICES)] + target + numbers.randbytes(size))
        for target in TARGETS:
            for name, entries in (("bits", BIT_FIELDS), ("lists", LISTS), ("variants", VARIANTS)):
                content = b"".join(entry(*each) for each in entries)
                self.tree(f"{name}-{target}", CHOICES[0] + bytes([target]) + content)

    def tree(self, name, content):
        for target in ("entries", "manners", "versions"):
            self.add(target, name, content)

    def texts(self):
        for index, name in enumerate(DEMANGLER):
            for choice in (0, 1, 0x40, 0x4F):
                self.add("demangler", f"{index}-{choice}", bytes([choice, 200]) + name.encode())
        for index, text in enumerate(DATATYPES):
            self.add("datatype", str(index), bytes([0x80 + index, 1, 0, 0, index, 0]) + text.encode())
        for index, text in enumerate(PATHS + PATTERNS):
            self.add("paths", str(index), text.encode())
        for shape in range(5):
            for basic in range(19):
                order, width = shape % 2, basic % 4 * 5
                head = bytes([2 * shape + order, basic, 1 << basic % 4, basic, width])
                self.add("values", f"{shape}-{basic}", head + b"on\0\xc3\x80\x7c\0\1\xff"[basic % 3:])
        objects = [bytes([kind, len(name)]) + name for kind, name in REPORT]
        for count in range(len(objects) + 1):
            self.add("report", str(count), bytes([count]) + b"".join(objects[:6] + objects))
        for index, text in enumerate(A2L[1:]):
            for choice in (0, 1, 3, 4, 8, 16):
                self.add("a2l", f"{index}-{choice}", bytes([choice]) + text.encode())
            whole = A2L[0] % text
            self.add("a2l", f"{index}-whole", b"\1" + whole.encode())
            self.add("a2l", f"{index}-wide", b"\1\xff\xfe" + whole.encode("utf-16-le"))
        for index, text in enumerate(LOCATIONS):
            expression = bytes.fromhex(text.replace(" ", ""))
            self.add("locations", f"entry-{index}", bytes([4, 0, len(expression), 0]) + expression)
            entry = struct.pack("<IIH", 0, 8, len(expression)) + expression
            self.add("locations", f"list-{index}", bytes([4, 4, 10, 0]) + entry)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", type=pathlib.Path)
    seeds = Seeds(parser.parse_args().folder)
    images = sorted((ROOT / "tests" / "samples" / "images").glob("*.*"))
    seeds.images([path for path in images if path.stat().st_size < 40000], CHOICES)
    seeds.images([ROOT / "tests" / "samples" / "images" / "full" / f"{name}.elf" for name in MODERN], [FULL])
    seeds.unreadable(ROOT / "tests" / "samples" / "images" / "full" / "arm-c-split.elf")
    seeds.entries(60)
    seeds.texts()


if __name__ == "__main__":
    main()
