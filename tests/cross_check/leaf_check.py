#!/usr/bin/env python3
"""Compares each leaf of each static variable that brindle reads in the full manner with what gdb says of
the same image: which variables there are, both ways, and of each leaf its path, address, size, bit position
and width.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images, BRINDLE_SOURCE the
sources: images that are too big to be kept are built here. Where gdb is wrong, or answers another question,
a function marked with @rule says so; there is no other tolerance.
"""

import collections
import concurrent.futures
import csv
import io
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import debug_entries
import gdb_answers
import symbols_check
import windows_images
from debug_entries import components, is_big_endian, is_discarded, rule

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLES = pathlib.Path(os.environ["BRINDLE_SOURCE"], "tests", "samples")
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
ORACLE_SCRIPT = pathlib.Path(__file__).with_name("leaf_oracle.py")

# Images that are made with a compiler that must be installed, and that compiler.
BIG_IMAGES = {"full/x86_64-hosted-c.exe": "x86_64-w64-mingw32-gcc",
              "full/x86_64-hosted-cpp.exe": "x86_64-w64-mingw32-g++"}
ELEMENTS = "100000"

Leaf = collections.namedtuple("Leaf", "address size bit width")


# What the reader tells otherwise than gdb ---------------------------------------------------------


@rule
def lies_in_virtual_base(variable, path):
    """gdb knows the place of a virtual base only for a living object: plant::sensor.mNumber."""
    return any(leaf[4] == "virtual base" for leaf in variable["leaves"]) and path not in variable["paths"]


@rule
def lies_in_split_class(path, variable, facts):
    """DWARF 2 without namespaces completes a class of a namespace by an entry without a name (gTimer of
    powerpc-cpp-dwarf2-O2.elf). The reader joins types by name, so that what refers to the declaration has
    no contents."""
    return facts.has_split_classes and any(leaf.size == 0 and path.startswith(place)
                                           for place, leaf in variable.leaves.items())


@rule
def is_declared_only(variable):
    """For an array that one unit declares without bounds (_ctype_ of newlib), gdb is asked for that
    declaration if the unit that defines it has no code."""
    return variable["isDeclaration"] and [leaf[2] for leaf in variable["leaves"]] == [0]


@rule
def is_symbol_of_linker(name):
    """gdb takes a declared variable for one of the linker's symbols that are local to the image
    (__init_array_start of newlib, which its script provides hidden), or that it makes up for a Windows image;
    the reader takes none that no other file can mean."""
    return re.fullmatch("__(preinit|init|fini)_array_(start|end)", name) is not None


@rule
def comparable_name(name, facts):
    """gdb respells Ada names: the entry of plant.weight is named plant__weight."""
    last = last_component(name)
    return last.replace(".", "__").rpartition("__")[2] if facts.language.startswith("Ada") else last


@rule
def packed_size(entry, facts):
    """Of an array whose elements are a few bits each (bits of plant.adb), the script makes elements of whole bytes;
    the reader tells the bytes alone. Gives how many there are, None for any other variable."""
    kind = facts.plain_type(entry)
    if kind is None or kind.tag != "DW_TAG_array_type" or "DW_AT_bit_stride" not in kind.attributes:
        return None
    bits = kind.number("DW_AT_bit_stride")
    for dimension in kind.children:
        lowest = dimension.number("DW_AT_lower_bound")
        bits *= dimension.number("DW_AT_upper_bound") - (1 if lowest is None else lowest) + 1
    return (bits + 7) // 8


@rule
def storage_size(size, offset, width):
    """A packed field may need a byte more than its type has (mixed_fields.third of timers.c, 27 bits from bit 6
    of its first byte on). No type is made up for it: it ends with the last byte that it needs."""
    needed = (offset + width + 7) // 8
    is_too_wide_for_type = needed == size + 1 and width > size * 8 - 7
    return needed if is_too_wide_for_type else size


# Names and addresses ------------------------------------------------------------------------------


def last_component(name):
    last = re.sub(r"\[abi:\w+\]$", "", components(name)[-1])
    return last if last.startswith("<") else last.split("<", 1)[0]


# What the debug entries say -----------------------------------------------------------------------


class Facts(debug_entries.VariableFacts):
    """What gdb doesn't report."""

    def __init__(self, image, tree):
        languages = [entry.attributes["DW_AT_language"] for entry in tree.entries
                     if "DW_AT_language" in entry.attributes]
        self.language = languages[0].partition("(")[2].title() if languages else ""
        self.has_split_classes = any(
            entry.tag in ("DW_TAG_class_type", "DW_TAG_structure_type") and not entry.name()
            and "DW_AT_specification" in entry.attributes for entry in tree.entries)
        super().__init__(image, tree, windows_images.whole_delivered_address)

    def name_of(self, entry):
        return comparable_name(super().name_of(entry) or "", self)


# The two sides ------------------------------------------------------------------------------------


def ask_gdb(image, tree, facts):
    """The variables that gdb knows, in lists by name and address; those of one list are one variable that
    several units declare."""
    variables = gdb_answers.ask(image, tree, ORACLE_SCRIPT)
    known = collections.defaultdict(list)
    for variable in variables:
        variable["address"] = windows_images.whole_delivered_address(image, variable["address"])
        variable["paths"] = {leaf[0] for leaf in variable["leaves"]}
        known[comparable_name(variable["name"], facts), variable["address"]].append(variable)
    return known


def run_brindle(command, image):
    done = subprocess.run([PROGRAM, command, "--set", "mIsFullReading=1", "--format", "csv", str(image),
                           *(["--max-elements", ELEMENTS] if command == "leaves" else [])],
                          capture_output=True, text=True, timeout=120)
    return done.returncode, done.stderr, list(csv.DictReader(io.StringIO(done.stdout)))


class Delivered:
    """A variable of the reader, with its leaves by path."""

    def __init__(self, row, big_endian):
        self.qualified_name, self.address = row["name"], int(row["address"], 16)
        self.name = re.sub(r"\.\d+$", "", self.qualified_name)
        self.leaves, self.faults = {}, []
        self._is_big_endian = big_endian

    def owns(self, row):
        rest = row["name"][len(self.qualified_name):]
        return row["name"].startswith(self.qualified_name) and (not rest or rest[0] in ".[")

    def add(self, row):
        path, start, size = row["name"][len(self.qualified_name):], int(row["address"], 16), int(row["size"])
        bit, width = 0, int(row["bitSize"] or 0)
        if width:
            offset = int(row["bitOffset"])
            storage = storage_size(size, offset, width)
            bit = storage * 8 - offset - width if self._is_big_endian else offset
            if not 0 <= offset <= offset + width <= storage * 8:
                self.faults.append(f"{row['name']}: bits {offset} to {offset + width} in {size} bytes")
        if path in self.leaves:
            self.faults.append(f"{row['name']}: twice")
        self.leaves[path] = Leaf(start, size, (start - self.address) * 8 + bit if width else None, width)


def read_brindle(image):
    """Exit status and message of a read, and its variables; without those that only the symbol table has."""
    status, message, rows = run_brindle("vars", image)
    _, _, leaves = run_brindle("leaves", image)
    big_endian = is_big_endian(image)
    variables, place = [], 0
    for row in rows:
        variable = Delivered(row, big_endian)
        while place < len(leaves) and variable.owns(leaves[place]) \
                and int(leaves[place]["address"], 16) >= variable.address:
            if leaves[place]["name"] == variable.qualified_name and variable.leaves:
                break
            if leaves[place]["name"][len(variable.qualified_name):] in variable.leaves:
                break
            variable.add(leaves[place])
            place += 1
        variables.append(variable)
    if place != len(leaves):
        raise AssertionError(f"{image.name}: leaf {leaves[place]['name']} belongs to no variable")
    described = [variable for variable in variables
                 if not variable.qualified_name.startswith("_Symbol_Table_BKR_::")]
    return status, message, described


# Comparison ---------------------------------------------------------------------------------------


def compare(image):
    """The differences between both sides, one text each, and the number of leaves that were compared."""
    tree = debug_entries.EntryTree(image)
    facts = Facts(image, tree)
    known = ask_gdb(image, tree, facts)
    status, message, variables = read_brindle(image)
    # Without a symbol table a read fails, but only after its delivery.
    is_failure_expected = image.name == symbols_check.WITHOUT_SYMBOLS
    differences = [] if (status != 0) == is_failure_expected else [f"read ended with {status}: {message}"]
    compared, delivered = 0, collections.Counter()
    for variable in variables:
        key = comparable_name(variable.name, facts), variable.address
        delivered[key] += 1
        differences += variable.faults
        if key in known:
            compared += compare_leaves(variable, known[key], key, facts, differences)
        elif not facts.is_hidden_from_gdb(*key):
            differences.append(f"{variable.qualified_name} at {variable.address:#x}: unknown to gdb")
    for (name, address), candidates in known.items():
        if delivered[name, address] != 1 and not is_symbol_of_linker(name) and not is_discarded(address):
            owner = candidates[0]["function"] or candidates[0]["unit"]
            differences.append(f"{owner}: {name} at {address:#x}: delivered {delivered[name, address]} times")
    return differences, compared


def compare_leaves(variable, candidates, key, facts, differences):
    # An incomplete declaration says less than the definition.
    best = max(candidates, key=lambda candidate: sum(leaf[2] for leaf in candidate["leaves"]))
    expected, found = collections.defaultdict(list), collections.defaultdict(list)
    if is_declared_only(best):
        return 0
    sizes = [packed_size(entry, facts) for entry in facts.entries_of(*key)]
    if sizes and sizes[0] is not None:
        best = {**best, "leaves": [["", 0, sizes[0], 0, "packed array", False]], "paths": {""}}
    for path, bits, size, width, kind, _ in best["leaves"]:
        if kind != "virtual base":
            size = 0 if facts.is_unspecified(*key) else size
            place = f"bits {bits}:{width}" if width else f"{variable.address + bits // 8:#x}, {size} bytes"
            expected[path].append(place)
    for path, leaf in variable.leaves.items():
        place = f"bits {leaf.bit}:{leaf.width}" if leaf.width else f"{leaf.address:#x}, {leaf.size} bytes"
        found[path].append(place)
    for path in sorted(expected.keys() | found.keys()):
        if sorted(expected[path]) != sorted(found[path]) and not lies_in_virtual_base(best, path) \
                and not lies_in_split_class(path, variable, facts):
            differences.append(f"{variable.qualified_name}{path}: {found[path] or 'not delivered'}, "
                               f"gdb says {expected[path] or 'none'}")
    return len(expected)


# The check ----------------------------------------------------------------------------------------


class LeafCheck(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        if shutil.which("gdb-multiarch") is None:
            raise unittest.SkipTest("gdb-multiarch isn't there")

    def assert_agreement(self, images):
        with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
            for image, (differences, compared) in zip(images, pool.map(compare, images)):
                with self.subTest(image=image.name):
                    self.assertEqual(differences, [])
                    # The variables of split units are elsewhere.
                    if "split" not in image.name:
                        self.assertGreater(compared, 5)

    def test_kept_images(self):
        images = sorted(image for image in SAMPLE_IMAGES.rglob("*.*")
                        if image.suffix != ".o" and "symbols" not in image.name)
        self.assertGreater(len(images), 70, f"images are missing in {SAMPLE_IMAGES}")
        self.assert_agreement(images)

    def test_images_with_their_run_time_library(self):
        names = [name for name, compiler in BIG_IMAGES.items() if shutil.which(compiler)]
        if not names:
            self.skipTest("no compiler for them")
        with tempfile.TemporaryDirectory(prefix="brindle-images-") as folder:
            subprocess.run([SAMPLES / "build.sh", "--into", folder, *names], check=True, timeout=300)
            self.assert_agreement([pathlib.Path(folder, name) for name in names])


if __name__ == "__main__":
    unittest.main()
