#!/usr/bin/env python3
"""Walks over all debug entries of an image with pyelftools, as scripts do, and prints their number."""
import sys

from elftools.elf.elffile import ELFFile

with open(sys.argv[1], "rb") as stream:
    print(sum(1 for unit in ELFFile(stream).get_dwarf_info().iter_CUs() for _ in unit.iter_DIEs()))
