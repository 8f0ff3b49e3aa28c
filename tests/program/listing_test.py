#!/usr/bin/env python3
"""What `vars`, `leaves` and `types` list, in which order, and how they end.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import csv
import io
import unittest

from program_test import GLOBAL_OBJECT, SAMPLE_IMAGES, SYMBOL_SCOPE, ProgramTest, elf_image

IMAGE = str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf")


class PatternTest(ProgramTest):
    def names(self, *arguments, status=0):
        output, error = self.run_program(*arguments, "--format", "csv", status=status)
        return [row["name"] for row in csv.DictReader(io.StringIO(output))], error

    def test_a_word_without_an_exact_match_is_looked_for_in_the_names(self):
        names = ["gSpeed", "gSpeedMax", "aSpeed", "a*b", "axb", "größe"]
        file = self.file("names.elf", elf_image(
            [(name, 0x1000 + 4 * place, 4, GLOBAL_OBJECT) for place, name in enumerate(names)]))
        said = f"brindle: {file}: no exact match for '{{}}'; listing the variables whose names contain it\n"
        missing = f"brindle: {file}: no variable matches '{{}}'"
        for arguments, found, message in [
                (["gSpeed"], ["gSpeed"], ""),
                (["Speed"], ["gSpeed", "gSpeedMax", "aSpeed"], said),
                (["speed"], [], missing),
                (["-i", "speed"], ["gSpeed", "gSpeedMax", "aSpeed"], said),
                (["--ignore-case", "GSPEED"], ["gSpeed"], ""),
                (["GRÖSS*"], [], missing),
                (["-i", "GRÖ*"], ["größe"], ""),
                (["a\\*b"], ["a*b"], ""),
                (["a[*x]b"], ["a*b", "axb"], ""),
                (["*Spee"], [], missing),
                # The scope of symbols is no part of a name, but a whole one begins with it.
                (["Table"], [], missing),
                ([f"{SYMBOL_SCOPE}::a*"], ["aSpeed", "a*b", "axb"], "")]:
            with self.subTest(arguments=arguments):
                listed, error = self.names("vars", file, *arguments, status=0 if found else 1)
                self.assertEqual(listed, [f"{SYMBOL_SCOPE}::{name}" for name in found])
                self.assertIn(message.format(arguments[-1]), error)
                self.assertEqual(bool(error), bool(message))

    def test_leaves_and_types_take_words_and_indices(self):
        gains = [f"motors[{motor}].loops[{loop}].gain" for motor in range(3) for loop in range(2)]
        for pattern, found in [("gain", gains), ("motors[1].loops[0].gain", gains[2:3]),
                               ("motors[*].loops[0].gain", gains[::2]), ("loops[1].gain", gains[1::2]),
                               ("motors\\[[01]\\].loops\\[1\\].gain", gains[1:4:2])]:
            with self.subTest(pattern=pattern):
                self.assertEqual(self.names("leaves", IMAGE, pattern)[0], found)
        self.assertIn("struct motor {", self.run_program("types", IMAGE, "oto")[0])

    def test_a_compile_unit_tells_statics_of_one_name_apart(self):
        rows = self.run_json("vars", IMAGE, "counter", "--format", "json")
        self.assertEqual([row["compileUnit"] for row in rows], ["motor_c", "sensors_c", "supply_c"])
        for row in rows:
            for arguments in [[f"{row['compileUnit']}::counter"],
                              ["counter", "--unit", row["compileUnit"]]]:
                self.assertEqual(self.run_json("vars", IMAGE, *arguments, "--format", "json"), [row])
            found, = self.run_json("find", IMAGE, f"{row['compileUnit']}::{row['name']}", "--format",
                                   "json")
            self.assertEqual((found["address"], found["compileUnit"]),
                             (row["address"], row["compileUnit"]))
        self.run_program("find", IMAGE, "main_c::counter", status=1)
        self.assertEqual(self.names("leaves", IMAGE, "--unit", "supply", "*.cells\\[1].*")[0],
                         [f"main_supply.cells[1].{member}" for member in ["millivolts", "celsius", "neighbour"]])
        error = self.run_program("leaves", IMAGE, "motors", "--unit", "motor_c", status=1)[1]
        self.assertIn("--unit takes no global variables", error)
        error = self.run_program("vars", IMAGE, "--unit", "moter_c", status=1)[1]
        self.assertIn("no compile unit matches 'moter_c'; similar names: motor_c", error)


class OrderTest(ProgramTest):
    def rows(self, *arguments):
        return self.run_json(*arguments, "--format", "json")

    def test_rows_are_sorted_by_what_the_user_names(self):
        symbols = [("t10", 0x3000, 4, GLOBAL_OBJECT), ("t9", 0x1000, 12, GLOBAL_OBJECT),
                   ("a", 0x2000, 4, GLOBAL_OBJECT)]
        file = self.file("three.elf", elf_image(symbols))
        for order, expected in [([], ["t9", "a", "t10"]), (["address"], ["t9", "a", "t10"]),
                                (["name"], ["a", "t9", "t10"]), (["size"], ["t9", "a", "t10"]),
                                (["file"], ["t10", "t9", "a"])]:
            for command in ["vars", "leaves"]:
                with self.subTest(order=order, command=command):
                    arguments = [f"--sort={order[0]}"] if order else []
                    self.assertEqual([row["name"].split("::")[1]
                                      for row in self.rows(command, file, *arguments)], expected)
        leaves = self.rows("leaves", IMAGE)
        self.assertEqual([row["address"] for row in leaves],
                         sorted(row["address"] for row in leaves))
        self.assertGreater(len(leaves), 200)

    def test_sections_and_sizes(self):
        rows = self.rows("vars", IMAGE, "--section", "--min-size", "40", "--sort", "size")
        self.assertEqual([(row["name"], row["section"]) for row in rows],
                         [("motors", ".data"), ("main_supply", ".data"), ("sine", ".rodata"),
                          ("ring", ".bss")])
        self.assertNotIn("section", self.rows("vars", IMAGE)[0])
        found = self.rows("find", IMAGE, "--section", "sine[0][0][0]", "0x20000278")
        self.assertEqual([row["section"] for row in found], [".rodata", ".bss"])
        sizes = {row["size"] for row in self.rows("leaves", IMAGE, "--min-size", "8")}
        self.assertEqual(min(sizes), 8)


class ExitStatusTest(ProgramTest):
    def test_an_empty_list_ends_with_1_unless_it_is_allowed(self):
        empty = self.file("empty.elf", elf_image([]))
        for file, pattern in [(empty, []), (IMAGE, ["nothing*"])]:
            for command in ["vars", "leaves", "types"]:
                with self.subTest(command=command, pattern=pattern):
                    output, error = self.run_program(command, file, *pattern, status=1)
                    self.assertEqual(output, "")
                    self.assertRegex(error, f": no (variable|leaf|type)( matches 'nothing\\*')?\n")
                    self.run_program(command, file, *pattern, "--allow-empty")
        self.run_program("vars", str(self.folder / "missing.elf"), "--allow-empty", status=1)


if __name__ == "__main__":
    unittest.main()
