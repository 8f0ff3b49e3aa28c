#!/usr/bin/env python3
"""Checks of scripts/corpus.sh: what it says of sound, broken and foreign files, and that it notices each kind of
finding.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources, BRINDLE_SAMPLE_IMAGES that of
the sample images.
"""

import os
import pathlib
import subprocess
import sys
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

    def script(self, body):
        """A program that does this for the command `types` alone."""
        program = self.folder / "program"
        program.write_text(f"#!/bin/sh\n[ $1 != types ] || {{ {body}; }}\n")
        program.chmod(0o755)
        return program

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
        short = ["--time-factor", "0.2"]
        for body, text, options in [
                ("kill -SEGV $$", "ended with -11", short),
                ("exit 1", "failed without a message", short),
                ("exit 3", "ended with 3", short),
                ("echo 'x.cpp:1: runtime error: shift' >&2; exit 1", "runtime error: shift", short),
                ("head -c 3000000 /dev/zero >&2; printf '\\n==7==ERROR: AddressSanitizer: SEGV' >&2; exit 1",
                 "AddressSanitizer: SEGV", short),
                ("echo \"program: x.cpp:1: int f(): Assertion \\`x' failed.\" >&2; exit 1", "Assertion `x' failed.",
                 short),
                ("while :; do :; done", "above its bounds", short),
                (f"exec {sys.executable} -c 'len(b\"x\" * (100 << 20))'", "MB: above its bound",
                 ["--memory-factor", "1"]),
                ("exec sleep 600", "ended after waiting", [*short, "--wait", "1"])]:
            with self.subTest(body=body):
                status, rows, messages = self.corpus(self.script(body), SCRIPT, *options)
                self.assertEqual((status, rows[-1][-1]), (1, "2"))
                self.assertIn(f"types, classic reading: {text}" if "above" not in text else text, messages)
                self.assertIn("status", (self.folder / "kept" / "corpus.sh.types.full.txt").read_text())

    def test_names_of_any_kind(self):
        files = self.folder / "files"
        files.mkdir()
        names = [b"m\xf6tor.elf", b"x.c:1: runtime error: AddressSanitizer: Assertion `a' failed.", b"y" * 250 + b".elf"]
        for name in names:
            pathlib.Path(os.fsdecode(os.fsencode(files) + b"/" + name)).write_bytes(name)
        status, rows, messages = self.corpus(self.script('for file; do :; done; echo "program: $file: no image" >&2; exit 1'), files)
        self.assertEqual((status, rows[-1][-1], messages), (0, "0", ""))
        status, rows, messages = self.corpus(self.script("exit 3"), files)
        self.assertEqual((status, rows[-1][-1]), (1, "6"))
        self.assertIn(r"m\udcf6tor.elf: types, full reading: ended with 3", messages)
        kept = [os.fsencode(each) for each in (self.folder / "kept").iterdir()]
        self.assertEqual(len(kept), 6)
        self.assertIn(names[0] + b".types.full.txt", [each.rpartition(b"/")[2] for each in kept])

    def test_nothing_to_read_is_an_error(self):
        (self.folder / "empty").mkdir()
        for name, text in [("empty", "no files there"), ("missing", "no file or folder")]:
            status, _, messages = self.corpus(PROGRAM, self.folder / name)
            self.assertEqual(status, 2)
            self.assertIn(text, messages)

    def test_files_of_one_name_keep_a_finding_each(self):
        files = self.folder / "files"
        for name in ("one/motor.elf", "two/motor.elf", "two_motor.elf"):
            (files / name).parent.mkdir(parents=True, exist_ok=True)
            (files / name).write_text(name)
        _, rows, _ = self.corpus(self.script("exit 3"), files)
        self.assertEqual([row[0] for row in rows], ["one/motor.elf", "two/motor.elf", "two_motor.elf (2)", "all"])
        for name, path in [("one_motor.elf", "one/motor.elf"), ("two_motor.elf", "two/motor.elf"),
                           ("two_motor.elf (2)", "two_motor.elf")]:
            self.assertIn(f"{files / path}\n", (self.folder / "kept" / f"{name}.types.full.txt").read_text())


if __name__ == "__main__":
    unittest.main()
