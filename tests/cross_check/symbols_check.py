#!/usr/bin/env python3
"""Compares the variables that brindle reads from symbol tables with what readelf says of the same
images.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images. The list
that is expected follows from the raw records of readelf alone; nothing is asked of the program.
"""

import csv
import io
import os
import pathlib
import subprocess
import unittest

import windows_images

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])

SCOPE = "_Symbol_Table_BKR_::"
VIRTUAL_TABLE_PREFIXES = ("__vtbl", "_ZTV")
SYMBOLS_ONLY = ["--set", "mElfForceSymbolTable=1"]
CLASSIC = ["--set", "mIsFullReading=0"]
FULL = ["--set", "mIsFullReading=1"]
WITHOUT_SYMBOLS = "arm-c-dwarf4-O2-nosymtab.elf"


def readelf(*arguments):
    done = subprocess.run(["readelf", "--wide", *arguments], capture_output=True, text=True,
                          check=True, timeout=60)
    return done.stdout


def raw_records(image):
    """All records of .symtab in table order: (name, value, size, type, section). A Windows image has no
    such section."""
    if windows_images.is_windows_image(image):
        return
    for line in readelf("--symbols", str(image)).splitlines():
        fields = line.split(maxsplit=7)
        if len(fields) >= 7 and fields[0].rstrip(":").isdigit():
            yield (fields[7] if len(fields) == 8 else "", int(fields[1], 16), int(fields[2], 0),
                   fields[3], fields[6])


def raw_symbols(image):
    """The same without the section."""
    for *record, _ in raw_records(image):
        yield record


def expected_variables(image, names=(), addresses=(), is_full=False):
    """The variables that the symbol table gives, as (address, size, name), in the order of delivery.

    `names` and `addresses` are those of variables that were delivered before. In the classic manner a symbol
    counts as delivered if its name or its address does, in the full one if both do together; and 0 is an
    address like any other in the full one.
    """
    variables = []
    names, addresses, pairs = set(names), set(addresses), set()
    for name, value, size, kind, section in raw_records(image):
        is_placed = section != "UND" if is_full else value != 0
        if kind != "OBJECT" or not is_placed or name == "" or name.startswith(VIRTUAL_TABLE_PREFIXES):
            continue
        if (name, value) in pairs if is_full else name in names or value in addresses:
            continue
        names.add(name)
        addresses.add(value)
        pairs.add((name, value))
        variables.append((value, size, SCOPE + name))
    return variables


def run_vars(image, *arguments):
    return subprocess.run([PROGRAM, "vars", "--format", "csv", "--sort", "file", "--allow-empty", str(image),
                           *arguments],
                          capture_output=True, text=True, timeout=60)


class SymbolsCheck(unittest.TestCase):
    maxDiff = None

    def assert_agreement(self, image, *arguments):
        for manner in (CLASSIC, FULL):
            with self.subTest(manner=manner):
                self.assert_agreement_in(manner, image, *arguments)

    def assert_agreement_in(self, manner, image, *arguments):
        done = run_vars(image, *manner, *arguments)
        if manner is FULL and image.suffix == ".o":
            self.assertIn("the linker assigns its addresses", done.stderr)
            self.assertEqual((done.returncode, done.stdout.count("\n")), (0, 1))
            return
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        rows = list(csv.DictReader(io.StringIO(done.stdout)))
        delivered = [(int(row["address"], 16), int(row["size"]), row["name"]) for row in rows]
        expected = expected_variables(image, is_full=manner is FULL)
        self.assertGreater(len(expected), 5)
        self.assertEqual(delivered, expected)
        for row in rows:
            self.assertEqual((row["type"], row["compileUnit"]), (f"unknown({row['size']})", ""))

    def images(self, pattern):
        found = sorted(SAMPLE_IMAGES.glob(pattern))
        self.assertTrue(found, f"no {pattern} in {SAMPLE_IMAGES}")
        return [image for image in found if image.name != WITHOUT_SYMBOLS]

    def test_images_without_debug_information(self):
        images = self.images("*-symbols.elf")
        self.assertEqual(len(images), 3)
        for image in images:
            with self.subTest(image=image.name):
                self.assertNotIn(".debug_info", readelf("--sections", str(image)))
                self.assert_agreement(image)

    def test_symbol_tables_of_images_with_debug_information(self):
        for image in self.images("*-dwarf*.elf") + self.images("*-dwarf*.o"):
            with self.subTest(image=image.name):
                self.assert_agreement(image, *SYMBOLS_ONLY)

    def test_the_images_hold_the_cases_that_the_rules_are_about(self):
        records = list(raw_symbols(SAMPLE_IMAGES / "arm-symbols.elf"))
        objects = [record for record in records if record[3] == "OBJECT"]
        names = [name for name, _, _, _ in objects]
        addresses = [value for _, value, _, _ in objects]
        self.assertLess(len(set(names)), len(names), "no name twice")
        self.assertLess(len(set(addresses)), len(addresses), "no address twice")
        self.assertTrue(any(name.startswith("_ZTV") for name in names), "no virtual table")
        self.assertTrue(any(kind == "NOTYPE" and name for name, _, _, kind in records))
        self.assertTrue(any(value == 0 for _, value, _, kind
                            in raw_symbols(SAMPLE_IMAGES / "arm-c-dwarf4-O2-object.o")
                            if kind == "OBJECT"), "no object at address 0")
        self.assertTrue(any(value > 0xFFFFFFFF for _, value, _, _
                            in raw_symbols(SAMPLE_IMAGES / "x86_64-symbols.elf")))

    def test_an_image_without_symbol_table_is_refused(self):
        done = run_vars(SAMPLE_IMAGES / WITHOUT_SYMBOLS, *SYMBOLS_ONLY)
        self.assertEqual(done.returncode, 1)
        self.assertIn("The ELF file is missing .strtab section.", done.stderr)

    def test_windows_images_have_their_variables_where_nm_says(self):
        images = self.images("*.exe") + self.images("*.dll")
        self.assertEqual(len(images), 8)
        for image in images:
            for manner, delivered_address in ((CLASSIC, windows_images.delivered_address),
                                              (FULL, windows_images.whole_delivered_address)):
                with self.subTest(image=image.name, manner=manner):
                    self.assert_windows_agreement(image, manner, delivered_address)

    def assert_windows_agreement(self, image, manner, delivered_address):
        done = run_vars(image, *manner)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        symbols = windows_images.data_symbols(image)
        compared = 0
        for row in csv.DictReader(io.StringIO(done.stdout)):
            addresses = symbols.get(windows_images.last_part(row["name"]), set())
            compared += bool(addresses)
            expected = {delivered_address(image, address) for address in addresses}
            self.assertTrue(not addresses or int(row["address"], 16) in expected,
                            f"{row['name']} at {row['address']}, nm says {expected}")
        self.assertGreater(compared, 20)


if __name__ == "__main__":
    unittest.main()
