#!/usr/bin/env python3
"""Holds what the example hosts of one language print against what the program prints.

BRINDLE_PROGRAM names the program, BRINDLE_LISTING_HOST and BRINDLE_FINDING_HOST the hosts, as command
lines, BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import csv
import io
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "program"))
import program_test  # for its images

PROGRAM = os.environ["BRINDLE_PROGRAM"]
LISTING_HOST = shlex.split(os.environ["BRINDLE_LISTING_HOST"])
FINDING_HOST = shlex.split(os.environ["BRINDLE_FINDING_HOST"])
# The hosts keep the library's manner of reading, the program has one of its own.
LIBRARY_MANNER = ["--set", "mIsFullReading=0"]
IMAGES = sorted(path for path in pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"]).iterdir()
                if path.is_file() and path.suffix != ".md")


def run(command, *arguments):
    return subprocess.run([*command, *map(str, arguments)], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, encoding="utf-8", timeout=120)


def program_listing(image):
    return run([PROGRAM, "vars", "--sort", "file", *LIBRARY_MANNER, "--no-progress", "--format", "csv"],
               image)


class HostsCheck(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_the_rows_are_those_of_the_program(self):
        self.assertGreater(len(IMAGES), 10)
        for image in IMAGES:
            with self.subTest(image=image.name):
                expected, given = program_listing(image), run(LISTING_HOST, image)
                self.assertGreater(expected.stdout.count("\n"), 5)
                self.assertEqual(given.stdout, expected.stdout)
                self.assertEqual(given.stderr, expected.stderr.replace("brindle: ", ""))
                self.assertEqual(given.returncode, expected.returncode)

    def test_names_and_paths_beyond_ascii(self):
        image = self.folder / "geänderte Übersicht 温度.elf"
        symbols = [("größe", 0x1000, 4, program_test.GLOBAL_OBJECT),
                   ("温度\"😀", 0x1004, 4, program_test.GLOBAL_OBJECT)]
        image.write_bytes(program_test.elf_image(symbols))
        given = run(LISTING_HOST, image)
        self.assertEqual(given.stdout, program_listing(image).stdout)
        self.assertIn("größe", given.stdout)
        self.assertIn("温度\"\"😀", given.stdout)

    def test_a_failed_read_is_told_and_keeps_what_came_before(self):
        image = self.folder / "Übersicht.elf"
        whole = next(path for path in IMAGES if path.name == "arm-c-dwarf4-O2-nosymtab.elf")
        image.write_bytes(whole.read_bytes())
        given = run(LISTING_HOST, image)
        self.assertEqual(given.returncode, 1)
        self.assertRegex(given.stderr, "Übersicht.elf: .*[.]strtab")
        self.assertGreater(given.stdout.count("\n"), 20)

    def test_a_path_leads_where_the_program_says(self):
        image = IMAGES[0]
        leaves = run([PROGRAM, "leaves", *LIBRARY_MANNER, "--no-progress", "--format", "csv"], image).stdout
        rows = [row for row in csv.DictReader(io.StringIO(leaves)) if not row["bitSize"]]
        for row in rows[::max(1, len(rows) // 10)]:
            with self.subTest(path=row["name"]):
                given = run(FINDING_HOST, image, row["name"])
                self.assertEqual(given.returncode, 0)
                self.assertTrue(
                    given.stdout.startswith(f"{row['address']} {row['size']} bytes"), given.stdout)
        self.assertEqual(run(FINDING_HOST, image, "nothing.like[1].this").returncode, 1)


if __name__ == "__main__":
    unittest.main()
