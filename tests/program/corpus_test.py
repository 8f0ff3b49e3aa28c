#!/usr/bin/env python3
"""Checks of scripts/corpus.sh: what it says of sound, broken and foreign files, and that it notices each kind of
finding.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources, BRINDLE_SAMPLE_IMAGES that of
the sample images.
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SCRIPT = pathlib.Path(os.environ["BRINDLE_SOURCE"], "scripts", "corpus.sh")
IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])


class CorpusTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def corpus(self, program, path, *options):
        """Exit status, cells of each row after the head, and messages."""
        done = subprocess.run([SCRIPT, "--program", program, "--keep", self.folder / "kept", *options, path],
                              capture_output=True, text=True, timeout=300)
        rows = [line.strip("| ").split(" | ") for line in done.stdout.splitlines()[2:]]
        return done.returncode, rows, done.stderr

    def test_sound_broken_and_foreign_files(self):
        files = self.folder / "files"
        files.mkdir()
        image = (IMAGES / "arm-c-dwarf4-O0.elf").read_bytes()
        (files / "classic.elf").write_bytes(image)
        (files / "modern.elf").write_bytes((IMAGES / "full" / "arm-c-O2.elf").read_bytes())
        (files / "cut.elf").write_bytes(image[:9000])
        (files / "text.txt").write_text("no image\n")
        status, rows, messages = self.corpus(PROGRAM, files)
        self.assertEqual((status, messages), (0, ""))
        # Name, files; then read and refused in the full manner, read and refused in the classic one.
        self.assertEqual([row[:2] + row[3:7] + row[-1:] for row in rows], [
            ["classic.elf", "1", "1", "0", "1", "0", "0"],
            ["cut.elf", "1", "0", "1", "0", "1", "0"],
            ["modern.elf", "1", "1", "0", "0", "1", "0"],
            ["text.txt", "1", "0", "1", "0", "1", "0"],
            ["all", "4", "2", "2", "1", "3", "0"]])

    def test_each_kind_of_finding(self):
        for body, text in [("kill -SEGV $$", "ended with -11"),
                           ("exit 1", "failed without a message"),
                           ("exit 3", "ended with 3"),
                           ("echo 'x.cpp:1: runtime error: shift' >&2; exit 1", "runtime error: shift"),
                           ("while :; do :; done", "above its bounds")]:
            with self.subTest(body=body):
                program = self.folder / "program"
                program.write_text(f"#!/bin/sh\n[ $1 != types ] || {{ {body}; }}\n")
                program.chmod(0o755)
                status, rows, messages = self.corpus(program, SCRIPT, "--time-factor", "0.2")
                self.assertEqual((status, rows[-1][-1]), (1, "2"))
                self.assertIn(f"types, classic reading: {text}" if "bounds" not in text else text, messages)
                self.assertIn("status", (self.folder / "kept" / "corpus.sh.types.full.txt").read_text())


if __name__ == "__main__":
    unittest.main()
