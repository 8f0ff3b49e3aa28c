#!/usr/bin/env python3
"""What `diff` tells a person and a build server.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images,
BRINDLE_SOURCE that of the sources.
"""

import json
import os
import pathlib
import shutil
import subprocess
import unittest

import jsonschema

from program_test import (GLOBAL_OBJECT, SAMPLE_IMAGES, TWO_SYMBOLS, ProgramTest, elf_image)

OLD = str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf")
NEW = str(SAMPLE_IMAGES / "arm-c-dwarf4-O2.elf")
OTHER = str(SAMPLE_IMAGES / "arm-cpp-dwarf4-O0.elf")
CUT = str(SAMPLE_IMAGES / "arm-c-dwarf4-O2-nosymtab.elf")
SCHEMA = json.loads(
    (pathlib.Path(os.environ["BRINDLE_SOURCE"]) / "docs" / "schema" / "diff.json").read_text())


class DiffTest(ProgramTest):
    def document(self, *arguments, status=0):
        document = self.run_json("diff", *arguments, "--format", "json", status=status)
        jsonschema.validate(document, SCHEMA)
        return document

    def test_a_variable_that_only_moved_is_one_row(self):
        before, after = ({row["name"]: row for row in
                          self.run_json("vars", file, "--format", "json")} for file in (OLD, NEW))
        rows = self.document(OLD, NEW)["rows"]
        told = {row["name"]: row for row in rows}
        self.assertEqual(len({(row["name"], row["compileUnit"]) for row in rows}), len(rows))
        unique = {name for name in before if name in after and "::" not in name} - {"counter"}
        self.assertGreater(len(unique), 20)
        for name in unique:
            is_moved = before[name]["address"] != after[name]["address"]
            self.assertEqual(name in told, is_moved, name)
            if is_moved:
                self.assertEqual((told[name]["change"], told[name]["kind"],
                                  told[name]["oldAddress"], told[name]["newAddress"]),
                                 ("moved", "variable", before[name]["address"],
                                  after[name]["address"]))
        self.assertEqual(self.document(OLD, NEW, "*.output.low")["rows"], [])
        # A variable that is there in one build only is one row as well, whatever its parts.
        rows = self.document(OTHER, OLD)["rows"]
        self.assertIn(("motors", "appeared"), {(row["name"], row["change"]) for row in rows})
        self.assertEqual({row["kind"] for row in rows if row["change"] in ("appeared", "vanished")},
                         {"variable"})

    def test_the_summary_counts_the_rows(self):
        document = self.document(OLD, NEW, "--symbols")
        counts = {}
        for row in document["rows"]:
            if row["kind"] == "variable":
                change = row["change"] if row["change"] in ("appeared", "vanished", "moved") else "changed"
            else:
                change = {"leaf": "leaves", "symbol": "symbols"}[row["kind"]]
            counts[change] = counts.get(change, 0) + 1
        summary = document["summary"]
        self.assertEqual({name: count for name, count in summary.items() if count}, counts)
        self.assertGreater(summary["symbols"], 0)
        self.assertGreater(summary["moved"], 20)
        without = self.document(OLD, NEW)
        self.assertEqual(without["summary"], summary)
        self.assertEqual(without["rows"],
                         [row for row in document["rows"] if row["kind"] != "symbol"])
        error = self.run_program("diff", OLD, NEW)[1]
        self.assertIn(f"{summary['moved']} variables moved", error)
        self.assertIn("(--symbols lists them)", error)
        self.assertEqual(self.run_program("diff", OLD, OLD), ("", "brindle: no differences\n"))
        self.assertIn("no differences; only variables were compared",
                      self.run_program("diff", "--variables-only", OLD, OLD)[1])

    def test_exit_code(self):
        missing = str(self.folder / "missing.elf")
        two = self.file("two.elf", elf_image(TWO_SYMBOLS))
        one = self.file("one.elf", elf_image(TWO_SYMBOLS[:2]))
        for arguments, status in [([OLD, OLD], 0), ([OLD, NEW], 1), ([OLD, missing], 2),
                                  ([missing, OLD], 2), ([OLD, CUT], 2), ([OLD, OLD, "no*thing"], 2),
                                  ([OLD, NEW, "*.output.low"], 0), ([OLD], 2),
                                  ([two, one], 0), ([two, one, "--symbols"], 1)]:
            with self.subTest(arguments=arguments):
                self.run_program("diff", "--exit-code", *arguments, status=status)
        if os.path.exists("/dev/full"):
            with open("/dev/full", "wb") as full:
                self.assertEqual(self.end_of("diff", "--exit-code", OLD, NEW, stdout=full), 2)

    def test_patterns(self):
        for pattern, text, status in [
                ("motors*", "no differences\n", 0),
                ("motors[1].loops[0].gain", "no differences\n", 0),
                ("motor", "no exact match for 'motor'; listing the variables and", 0),
                ("no*thing", "no variable or leaf of the two files matches 'no*thing'\n", 1),
                ("motrs", "matches 'motrs'; similar names: motors\n", 1)]:
            with self.subTest(pattern=pattern):
                output, error = self.run_program("diff", OLD, OLD, pattern, status=status)
                self.assertEqual(output, "")
                self.assertIn(text, error)

    @unittest.skipUnless(shutil.which("gcc"), "needs gcc")
    def test_variables_that_share_a_name_are_never_mixed_up_in_silence(self):
        """Their numbers follow the order of the file, which the second build has reversed."""
        blocks = ["{{ static int s{0}; static int z; z++; return s++; }}".format(value)
                  for value in (" = 1", " = 2")]
        images = []
        for name, (one, two) in [("old", blocks), ("new", reversed(blocks))]:
            source = self.file("blocks.c", f"int f(int c) {{ if (c) {one} else {two} }}\n".encode())
            images.append(str(self.folder / (name + ".elf")))
            subprocess.run(["gcc", "-g", "-nostdlib", "-static", "-no-pie", "-Wl,-e,f", source,
                            "-o", images[-1]], check=True)
        before, after = [
            {(row["name"], row["value"]): row["address"] for row in self.run_json(
                "find", "--values", "--format", "json", image, "f::s")} for image in images]
        self.assertEqual(list(before), [("f::s", 1), ("f::s.2", 2)])
        self.assertEqual(list(after), [("f::s", 2), ("f::s.2", 1)])
        document = self.document(*images, "f::s")
        self.assertEqual(document["summary"]["renumbered"], 2)
        self.assertEqual({(row["oldAddress"], row["newAddress"]) for row in document["rows"]},
                         {pair for pair in zip(before.values(), reversed(after.values()))
                          if pair[0] != pair[1]})
        _, error = self.run_program("diff", *images, "f::s")
        self.assertIn("2 variables have another number now: 'f::s' is 'f::s.2', ...", error)
        description = str(self.folder / "f.a2l")
        self.run_program("a2l", "export", "-o", description, images[0], "f::s")
        _, error = self.run_program("a2l", "update", "--check", description, images[1])
        self.assertIn("2 objects: 0 updated, 0 unchanged, 2 ambiguous", error)
        _, error = self.run_program("diff", *images, "f::z")
        self.assertIn("2 variables share their names with others and are compared by their order, "
                      "which may have changed: 'f::z', ...", error)
        self.assertIn("no differences that are certain; ", error)

    def test_a_build_that_could_not_be_read_to_its_end_claims_nothing_missing(self):
        document = self.document(OLD, CUT, status=1)
        self.assertFalse(document["complete"])
        self.assertGreater(document["summary"]["moved"], 0)
        self.assertEqual(document["summary"]["vanished"], 0)
        missing = str(self.folder / "missing.elf")
        for files in [(missing, OLD), (OLD, missing)]:
            output, error = self.run_program("diff", *files, status=1)
            self.assertEqual(output, "")
            self.assertIn(f"{missing}: not read to its end", error)
            self.assertIn("no differences, as far as the files were read", error)


if __name__ == "__main__":
    unittest.main()
