#!/usr/bin/env python3
"""Compares the tree of debug entries that brindle reads with what binutils show of the same images: the
number of entries, and of each its offset, tag, name, size and type.

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
NAME_LINE = re.compile(r'\t*  Name\.+: "(.*)" \[Parent name ".*"\]')
TYPE_LINE = re.compile(r"\t*  Type-Reference\.+: 0x([0-9a-f]+) ->")
SIZE_LINE = re.compile(r"\t*  Byte-size\.+: (-?\d+)")


# Classes without a name of their own keep none, whatever the entry says; names of units are shortened.
NAMELESS_TAGS = {"DW_TAG_array_type", "DW_TAG_lexical_block", "DW_TAG_pointer_type", "DW_TAG_reference_type",
                 "DW_TAG_subroutine_type", "DW_TAG_inheritance", "DW_TAG_subrange_type", "DW_TAG_compile_unit"}

AGGREGATES = {"DW_TAG_class_type", "DW_TAG_structure_type", "DW_TAG_union_type"}


class Node:
    def __init__(self, offset):
        self.offset = offset
        self.tag = self.name = self.type = self.size = None


def read_nodes(image):
    """The nodes of an image in the order of the dump."""
    with tempfile.TemporaryDirectory(prefix="brindle-nodes-") as folder:
        copy = shutil.copy(image, folder)
        subprocess.run([PROGRAM, "vars", "--set", "mIsFullReading=0", "--set", "mDumpDebugInfoNodes=1", copy],
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


class NodesCheck(unittest.TestCase):
    def test_every_entry_is_a_node(self):
        images = sorted(SAMPLE_IMAGES.glob("*-dwarf*.*"))
        self.assertGreater(len(images), 20, f"images are missing in {SAMPLE_IMAGES}")
        for image in images:
            with self.subTest(image=image.name):
                nodes = read_nodes(image)
                entries = debug_entries.debug_entries(image)
                self.assertEqual(len(nodes), len(entries))
                for node, entry in zip(nodes, entries):
                    self.assert_same(node, entry)

    def assert_same(self, node, entry):
        where = f"entry at {entry.offset:#x}"
        self.assertEqual(node.offset, entry.offset)
        if entry.tag != "DW_TAG_enumeration_type" or entry.number("DW_AT_byte_size") is not None:
            known_tag = UNKNOWN_TAG if entry.tag.startswith("DW_TAG_GNU_") else entry.tag
            self.assertEqual(node.tag, known_tag, where)
        if entry.tag not in NAMELESS_TAGS and "<" not in (node.name or ""):
            self.assertEqual(node.name, entry.name(), where)
        self.assertEqual(node.type, entry.reference("DW_AT_type"), where)
        size = entry.number("DW_AT_byte_size")
        if size is not None:
            self.assertEqual(node.size, size, where)
        elif entry.tag in AGGREGATES:
            self.assertEqual(node.size, 0, where)


if __name__ == "__main__":
    unittest.main()
