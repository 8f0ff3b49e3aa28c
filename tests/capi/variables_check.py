#!/usr/bin/env python3
"""Holds what an example host prints of the sample images against what the program prints.

BRINDLE_PROGRAM names the program, BRINDLE_HOST the host, as a command line, and
BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import os
import pathlib
import shlex
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
HOST = shlex.split(os.environ["BRINDLE_HOST"])
IMAGES = sorted(path for path in pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"]).iterdir()
                if path.suffix in (".elf", ".o", ".out", ".exe"))


def run(command, path):
    return subprocess.run([*command, str(path)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          encoding="utf-8", timeout=120)


def program_rows(path):
    return run([PROGRAM, "vars", "--no-progress", "--format", "csv"], path)


class VariablesCheck(unittest.TestCase):
    def test_rows_are_those_of_the_program(self):
        self.assertGreater(len(IMAGES), 10)
        for image in IMAGES:
            with self.subTest(image=image.name):
                expected, given = program_rows(image), run(HOST, image)
                self.assertEqual(given.stdout, expected.stdout)
                self.assertEqual(given.returncode, expected.returncode)
                self.assertEqual(given.stderr, expected.stderr.replace("brindle: ", ""))
                self.assertGreater(expected.stdout.count("\n"), 10)

    def test_a_failed_read_is_told(self):
        with tempfile.TemporaryDirectory() as folder:
            cut = pathlib.Path(folder, "geänderte Übersicht.elf")
            cut.write_bytes(IMAGES[0].read_bytes()[:-100])
            given = run(HOST, cut)
        self.assertEqual(given.returncode, 1)
        self.assertIn("ELF", given.stderr)
        self.assertIn("Übersicht", given.stderr)


if __name__ == "__main__":
    unittest.main()
