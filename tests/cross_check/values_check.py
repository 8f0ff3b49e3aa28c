#!/usr/bin/env python3
"""Checks the initial values of leaves against those that gdb reads from the same file."""

import csv
import io
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
ORACLE_SCRIPT = pathlib.Path(__file__).with_name("values_oracle.py")
IMAGES = ["arm-c-dwarf4-O0.elf", "powerpc-c-dwarf2-O0.elf", "x86_64-clang-c-dwarf4-O2.elf",
          "full/avr-device-dwarf4.elf"]


def rows_of(command, image, *arguments, text=""):
    done = subprocess.run([PROGRAM, command, "--format", "csv", str(image), *arguments], input=text,
                          capture_output=True, text=True, timeout=120)
    return list(csv.DictReader(io.StringIO(done.stdout)))


def ask_gdb(image, expressions):
    with tempfile.TemporaryDirectory(prefix="brindle-oracle-") as folder:
        questions, answers = pathlib.Path(folder, "questions"), pathlib.Path(folder, "answers")
        questions.write_text(json.dumps(expressions), encoding="utf-8")
        subprocess.run(
            ["gdb-multiarch", "-nx", "-batch", "-iex", "set auto-load off", str(image), "-x", str(ORACLE_SCRIPT)],
            env={**os.environ, "ORACLE_QUESTIONS": str(questions), "ORACLE_ANSWERS": str(answers)},
            capture_output=True, check=True, timeout=300)
        return json.loads(answers.read_text(encoding="utf-8"))


def number(text):
    if text in ("true", "false"):
        return int(text == "true")
    return int(text, 0) if text.lstrip("-").isdigit() or text.startswith("0x") else float(text)


@unittest.skipIf(shutil.which("gdb-multiarch") is None, "gdb-multiarch isn't there")
class ValuesCheck(unittest.TestCase):
    maxDiff = None

    def test_leaves_have_the_values_that_gdb_reads(self):
        for name in IMAGES:
            image = SAMPLE_IMAGES / name
            with self.subTest(image=name):
                self.assertTrue(image.exists())
                # gdb knows statics of a function by other names.
                paths = [row["name"] for row in rows_of("leaves", image) if "::" not in row["name"]]
                rows = rows_of("find", image, "--values", "-", text="\n".join(paths))
                names = [row["name"] for row in rows]
                rows = [row for row in rows if names.count(row["name"]) == 1 and row["value"]]
                answers = ask_gdb(image, [row["name"] for row in rows])
                known = {row["name"]: number(row["value"]) for row in rows}
                wrong = {path: (value, answers[path]) for path, value in known.items()
                         if value != answers[path]
                         and not (isinstance(value, float) and abs(value - answers[path]) <= 1e-6 * abs(value))}
                self.assertEqual(wrong, {})
                self.assertGreater(len([value for value in known.values() if value]), 30)


if __name__ == "__main__":
    unittest.main()
