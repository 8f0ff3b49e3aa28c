#!/usr/bin/env python3
"""Compares the tree of debug entries that brindle reads with what binutils show of the same images: the
number of entries, and of each its offset, tag, name, size and type; in both manners of reading.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images. The tree is that
of the node dump.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import debug_entries

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])

HEAD_LINE = re.compile(r"\t*([0-9a-f]{8}) \{(\d+)\. node-rec\.: ")
TAG_LINE = re.compile(r"\t*(DW_TAG_\w+|DW_TAG_\.\.unknown).*\(0x[0-9a-f]+\)>")
UNKNOWN_TAG = "DW_TAG_..unknown"
# The dump knows the names of DWARF 4.
LATER_TAGS = {"DW_TAG_coarray_type", "DW_TAG_generic_subrange", "DW_TAG_dynamic_type", "DW_TAG_atomic_type",
              "DW_TAG_call_site", "DW_TAG_call_site_parameter", "DW_TAG_immutable_type"}
NAME_LINE = re.compile(r'\t*  Name\.+: "(.*)" \[Parent name ".*"\]')
TYPE_LINE = re.compile(r"\t*  Type-Reference\.+: 0x([0-9a-f]+) ->")
SIZE_LINE = re.compile(r"\t*  Byte-size\.+: (-?\d+)")


# Classes without a name of their own have none, whatever the entry says; names of units are shortened.
NAMELESS_TAGS = {"DW_TAG_array_type", "DW_TAG_lexical_block", "DW_TAG_pointer_type", "DW_TAG_reference_type",
                 "DW_TAG_subroutine_type", "DW_TAG_inheritance", "DW_TAG_subrange_type", "DW_TAG_compile_unit"}

AGGREGATES = {"DW_TAG_class_type", "DW_TAG_structure_type", "DW_TAG_union_type"}


class Node:
    def __init__(self, offset):
        self.offset = offset
        self.tag = self.name = self.type = self.size = None


def read_nodes(image, is_full):
    """The nodes of an image in the order of the dump."""
    with tempfile.TemporaryDirectory(prefix="brindle-nodes-") as folder:
        copy = shutil.copy(image, folder)
        subprocess.run([PROGRAM, "vars", "--set", f"mIsFullReading={is_full:d}", "--set", "mDumpDebugInfoNodes=1", copy],
                       capture_output=True, timeout=60)
        text = pathlib.Path(copy + ".debugInfoNodes0.rec0.log.txt").read_text(encoding="latin-1")
    nodes = []
    for line in text.splitlines():
        if found := HEAD_LINE.match(line):
            nodes.append(Node(int(found[1], 16)))
            assert int(found[2]) == len(nodes)
        elif found := TAG_LINE.match(line):
            nodes[-1].tag = found[1]
        elif found := NAME_LINE.match(line):
            nodes[-1].name = found[1]
        elif found := TYPE_LINE.match(line):
            nodes[-1].type = int(found[1], 16)
        elif found := SIZE_LINE.match(line):
            nodes[-1].size = int(found[1])
    return nodes


# Kinds of unit that are compile units in the full manner.
UNIT_TAGS = {"DW_TAG_partial_unit", "DW_TAG_skeleton_unit"}


class ClassicManner:
    """What the nodes of the classic manner should contain, entry by entry."""

    is_full = False

    def __init__(self, image, tree):
        pass

    def offset(self, entry):
        return entry.offset

    def tag(self, entry):
        """The tag of an entry; None for entries to which the reader gives another meaning."""
        if entry.tag == "DW_TAG_enumeration_type" and entry.number("DW_AT_byte_size") is None:
            return None
        is_unknown = entry.tag.startswith("DW_TAG_GNU_") or entry.tag in LATER_TAGS
        return UNKNOWN_TAG if is_unknown else entry.tag

    def tells_type(self, entry):
        """Whether the type of a node is only that of its entry."""
        return True

    def type(self, entry):
        return entry.reference("DW_AT_type")

    def size(self, entry):
        return entry.number("DW_AT_byte_size")


class FullManner(ClassicManner):
    is_full = True

    def __init__(self, image, tree):
        self._tree = tree
        self._start_of_types = debug_entries.section_size(image, ".debug_info")

    def offset(self, entry):
        return entry.offset + (self._start_of_types if entry.section == ".debug_types" else 0)

    def tag(self, entry):
        return "DW_TAG_compile_unit" if entry.tag in UNIT_TAGS else super().tag(entry)

    def tells_type(self, entry):
        """Variables take the types of their origins; an enumeration by signature has the type of its
        definition."""
        is_completed = {"DW_AT_abstract_origin", "DW_AT_specification"} & set(entry.attributes)
        return "DW_AT_signature" not in entry.attributes and ("DW_AT_type" in entry.attributes or not is_completed)

    def type(self, entry):
        target = self._tree.target(entry, "DW_AT_type")
        return target and self.offset(target)

    def size(self, entry):
        """A bit field is where its bits lie, which leaf_check.py compares."""
        return None if "DW_AT_bit_size" in entry.attributes else super().size(entry)


class NodesCheck(unittest.TestCase):
    def test_every_entry_is_a_node(self):
        self.assert_all_nodes(ClassicManner, "*-dwarf*.*", 20)

    def test_every_entry_is_a_node_in_the_full_manner(self):
        self.assert_all_nodes(FullManner, "full/*.*", 40)

    def assert_all_nodes(self, manner, images, fewest):
        images = sorted(SAMPLE_IMAGES.glob(images))
        self.assertGreater(len(images), fewest, f"images are missing in {SAMPLE_IMAGES}")
        for image in images:
            with self.subTest(image=image.name):
                tree = debug_entries.EntryTree(image)
                nodes = read_nodes(image, manner.is_full)
                self.assertEqual(len(nodes), len(tree.entries))
                expected = manner(image, tree)
                for node, entry in zip(nodes, sorted(tree.entries, key=expected.offset)):
                    self.assert_same(node, entry, expected)

    def test_an_entry_that_is_cut_off_before_its_name_is_no_node(self):
        sections = {".debug_info": "0d000000 0400 00000000 04 01 612e6300 03",
                    ".debug_abbrev": "01 1101 0308 0000 03 1300 0308 0000 00"}
        with tempfile.TemporaryDirectory(prefix="brindle-nodes-") as folder:
            command = ["objcopy", SAMPLE_IMAGES / "x86_64-symbols.elf", image := pathlib.Path(folder, "cut.elf")]
            for name, contents in sections.items():
                part = pathlib.Path(folder, name)
                part.write_bytes(bytes.fromhex(contents))
                command += ["--add-section", f"{name}={part}"]
            subprocess.run(command, check=True, timeout=60)
            nodes = read_nodes(image, is_full=False)
        self.assertEqual([(node.tag, node.name) for node in nodes], [("DW_TAG_compile_unit", "a_c")])

    def assert_same(self, node, entry, expected):
        where = f"entry at {entry.offset:#x}"
        self.assertEqual(node.offset, expected.offset(entry))
        if (tag := expected.tag(entry)) is not None:
            self.assertEqual(node.tag, tag, where)
        if node.tag not in NAMELESS_TAGS and "<" not in (node.name or ""):
            self.assertEqual(node.name, entry.name(), where)
        if expected.tells_type(entry):
            self.assertEqual(node.type, expected.type(entry), where)
        size = expected.size(entry)
        if size is not None:
            self.assertEqual(node.size, size, where)
        elif entry.tag in AGGREGATES:
            self.assertEqual(node.size, 0, where)


if __name__ == "__main__":
    unittest.main()
