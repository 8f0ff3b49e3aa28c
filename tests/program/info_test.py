#!/usr/bin/env python3
"""Checks of what the program tells of files, addresses and values, and of its JSON against the schemas.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources, BRINDLE_SAMPLE_IMAGES that of
the sample images.
"""

import csv
import io
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

import jsonschema

from program_test import GLOBAL_OBJECT, elf_image

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SCHEMAS = pathlib.Path(os.environ["BRINDLE_SOURCE"], "docs", "schema")
IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
PLANT = IMAGES / "arm-c-dwarf4-O0.elf"
BIG_ENDIAN = IMAGES / "powerpc-c-dwarf2-O0.elf"


def run(*arguments, text="", status=0):
    """Runs the program and returns what it wrote to standard output and standard error."""
    done = subprocess.run([PROGRAM, *map(str, arguments)], input=text.encode(), capture_output=True,
                          timeout=60)
    if done.returncode != status:
        raise AssertionError(f"{arguments}: {done.returncode}, {done.stderr.decode()}")
    return done.stdout.decode(), done.stderr.decode()


def rows(*arguments, **settings):
    return json.loads(run(*arguments, "--format", "json", **settings)[0])["rows"]


def compiled(folder, source):
    """An image of this machine, in a folder."""
    pathlib.Path(folder, "source.c").write_text(source)
    subprocess.run(["gcc", "-g", "-o", "image", "source.c"], cwd=folder, check=True)
    return pathlib.Path(folder, "image")


class InfoTest(unittest.TestCase):
    def test_each_kind_of_file(self):
        for name, facts, units in [
                ("arm-c-dwarf4-O0.elf", ("elf", "little", 4, 40, "ARM"), {(4, "C99")}),
                ("powerpc-c-dwarf2-O0.elf", ("elf", "big", 4, 20, "PowerPC"), {(2, "C89")}),
                ("full/x86_64-rust.elf", ("elf", "little", 8, 62, "x86-64"), {(4, "Rust")}),
                ("x86_64-c-dwarf4-O0.exe", ("pe", "little", 8, 0x8664, "x86-64"), {(4, "C99")}),
                ("arm-symbols.elf", ("elf", "little", 4, 40, "ARM"), set())]:
            with self.subTest(name=name):
                info = json.loads(run("info", "--format", "json", IMAGES / name)[0])["files"][0]
                image = info["image"]
                self.assertEqual((info["container"], image["byteOrder"], image["addressSize"],
                                  image["machine"], image["machineName"]), facts)
                self.assertLessEqual(units, {(unit["dwarfVersion"], unit["languageName"])
                                             for unit in info["units"]})
                self.assertEqual(bool(units), info["entries"] > 100)
                self.assertEqual(sum(unit["count"] for unit in info["units"]),
                                 sum(producer["count"] for producer in info["producers"]))
                self.assertGreater(info["symbols"], 5)
                self.assertEqual(info["variables"], len(rows("vars", IMAGES / name)))
                self.assertEqual("no debug information" in " ".join(info["notes"]), not units)
                self.assertTrue({"code", "data"} <= {section["kind"] for section in image["sections"]})

    def test_numbers_are_those_of_readelf(self):
        info = json.loads(run("info", "--format", "json", PLANT)[0])["files"][0]
        def lines(*options):
            return subprocess.run(["readelf", "--wide", *options, PLANT], capture_output=True, check=True,
                                  text=True).stdout.splitlines()
        entries = [line for line in lines("--debug-dump=info") if line.startswith(" <")]
        self.assertEqual(info["entries"], len(entries))
        symbols = [line for line in lines("--symbols") if line.lstrip()[:1].isdigit()]
        self.assertEqual(info["symbols"], len(symbols) - 1)
        row = re.compile(r"  \[ *\d+\] (\S+) +\S+ +([0-9a-f]{8}) [0-9a-f]+ ([0-9a-f]+) \S+ +[A-Z]*A")
        sections = [(name, int(address, 16), int(size, 16))
                    for name, address, size in map(re.Match.groups, filter(None, map(row.match, lines("--sections"))))]
        self.assertGreater(len(sections), 3)
        self.assertEqual([(section["name"], section["address"], section["size"])
                          for section in info["image"]["sections"]],
                         sorted((section for section in sections if section[2]), key=lambda one: one[1]))

    def test_a_person_reads_it(self):
        output, error = run("info", PLANT, BIG_ENDIAN)
        self.assertEqual(error, "")
        for text in ["ELF, 32 bits, little-endian", "ARM (40)", "of DWARF 4 in C99", "by GNU C11",
                     "big-endian"]:
            self.assertIn(text, output)
        self.assertRegex(output, r"0x20000278 +148 +zero +\.bss\n")

    def test_what_cannot_be_read_is_told(self):
        with tempfile.TemporaryDirectory(prefix="brindle-test-") as folder:
            files = {"empty.elf": b"", "text.txt": b"Of all the files this is none.\n" * 20,
                     "cut.elf": PLANT.read_bytes()[:3000], "MZ.exe": b"MZ" + bytes(100),
                     "image.hex": b":020000040800F2\n", "image.s19": b"S00600004844521B\n",
                     "objects.a": b"!<arch>\n", "image.a2l": b"/* of old */\nASAP2_VERSION 1 61\n"}
            reasons = {"image.hex": "an Intel HEX file has", "image.s19": "a file of S-records has",
                       "objects.a": "an archive of object files", "image.a2l": "an A2L file: read",
                       "empty.elf": "(The file is empty)", "text.txt": "(Read as COFF",
                       "cut.elf": "(the file ends before its headers say", ".": "(Is a directory)",
                       "missing.elf": "(No such file"}
            for name, content in files.items():
                pathlib.Path(folder, name).write_bytes(content)
            for name in [*files, ".", "missing.elf"]:
                with self.subTest(name=name):
                    path = pathlib.Path(folder, name)
                    output, error = run("info", path, PLANT, status=1)
                    self.assertIn("not read", output)
                    self.assertIn("ARM (40)", output, "the other file isn't read")
                    info = json.loads(run("info", "--format", "json", path, status=1)[0])["files"][0]
                    if name == "MZ.exe":
                        # A sound program for DOS.
                        self.assertEqual((info["ok"], error), (True, ""))
                        self.assertIn("a file of another kind", output)
                        error = run("vars", path, status=1)[1]
                        self.assertIn("neither debug information nor symbols", error)
                        continue
                    self.assertEqual(len(error.splitlines()), 1, error)
                    self.assertIn(reasons[name], error)
                    if name == "cut.elf":
                        self.assertIn("(die Datei endet vor", run("vars", "--language", "49", path, status=1)[1])
                    self.assertIn(reasons[name], output)
                    self.assertTrue(error.startswith(f"brindle: {path}: "), error)
                    self.assertEqual("corrupt" in error, name == "text.txt", error)
                    self.assertEqual((info["ok"], bool(info["error"])), (False, True))

    def test_a_windows_image_has_no_variables_without_debug_information(self):
        with tempfile.TemporaryDirectory(prefix="brindle-test-") as folder:
            path = pathlib.Path(folder, "bare.exe")
            content = (IMAGES / "x86_64-c-dwarf4-O0.exe").read_bytes()
            path.write_bytes(content.replace(b".debug_", b".other_"))
            text = "no debug information: variables of a Windows image come from it alone"
            info = json.loads(run("info", "--format", "json", path)[0])["files"][0]
            self.assertEqual((info["variables"], info["symbols"] > 5), (0, True))
            self.assertEqual([note.startswith(text) for note in info["notes"]], [True])
            self.assertIn(text, run("vars", path, status=1)[1])
            self.assertIn("eines Windows-Programms", run("vars", "--language", "49", path, status=1)[1])

    def test_remarks_are_results(self):
        image = IMAGES / "full" / "arm-c-split.elf"
        output, error = run("info", image)
        self.assertEqual(error, "")
        self.assertRegex(output, r"not read +\d+ of \d+ units")


class FindTest(unittest.TestCase):
    def test_every_leaf_is_found_by_its_address(self):
        for image in [PLANT, BIG_ENDIAN, IMAGES / "arm-cpp-dwarf4-O0.elf"]:
            with self.subTest(image=image.name):
                leaves = rows("leaves", image)
                addresses = "\n".join(hex(leaf["address"]) for leaf in leaves if leaf["size"]
                                      and leaf["bitSize"] is None)
                found = {(row["name"], row["address"]) for row in
                         rows("find", image, "-", text=addresses) if row["offset"] == 0}
                missing = {(leaf["name"], leaf["address"]) for leaf in leaves
                           if leaf["size"] and leaf["bitSize"] is None} - found
                self.assertEqual(missing, set())

    def test_addresses_and_expressions_in_one_call(self):
        gain = rows("find", PLANT, "motors[1].loops[0].gain")[0]
        inside = hex(gain["address"] + 2)
        found = rows("find", PLANT, "tick", "-", "0x20000010", text=f"\n  {inside} \r\nmotors[2]\n")
        self.assertEqual([(row["query"], row["name"], row["offset"]) for row in found],
                         [(None, "tick", None), (inside, "motors[1].loops[0].gain", 2),
                          (None, "motors[2]", None), ("0x20000010", "machine_word", 0)])

    def test_what_leads_nowhere_is_told(self):
        for query, text in [
                ("0x1", "no variable lies here"),
                ("0x200002b5", "no variable lies here, in section .bss; 'is_ready' ends just before"),
                ("0x20000005", "no variable lies here, in section .data; 'small' ends 3 bytes before"),
                ("20000010", "an address is a hexadecimal number that begins with 0x"),
                ("0x2000001g", "an address is a hexadecimal number"),
                ("0x", "an address is a hexadecimal number"),
                ("0x10000000000000000", "an address is a hexadecimal number")]:
            with self.subTest(query=query):
                output, error = run("find", PLANT, query, "tick", status=1)
                self.assertTrue(error.startswith(f"brindle: {PLANT}: '{query}': {text}"), error)
                self.assertIn("tick", output)

    def test_an_address_behind_what_has_no_stated_end_may_belong_to_it(self):
        with tempfile.NamedTemporaryFile(suffix=".elf") as file:
            file.write(elf_image([("ring", 0x3000, 0, GLOBAL_OBJECT), ("next", 0x3010, 4, GLOBAL_OBJECT)]))
            file.flush()
            error = run("find", file.name, "0x3002", "0x3014", status=1)[1]
        self.assertIn("'0x3002': may belong to '_Symbol_Table_BKR_::ring', which begins 2 bytes before", error)
        self.assertIn("'0x3014': no variable lies here; '_Symbol_Table_BKR_::next' ends just before", error)

    def test_many_addresses_are_named_at_once(self):
        addresses = [hex(0x20000050 + offset) for offset in range(336)] * 100
        found = rows("find", PLANT, "-", text="\n".join(addresses))
        self.assertEqual([row["query"] for row in found][:3], addresses[:3])
        self.assertGreaterEqual(len(found), len(addresses))


class ValuesTest(unittest.TestCase):
    def test_cleared_and_unknown_are_told_apart(self):
        for image, name, value, text in [
                (PLANT, "letter", ord("a"), None), (PLANT, "small", -1, None),
                (PLANT, "is_ready", False, None), (BIG_ENDIAN, "machine_word", 6, None),
                (IMAGES / "arm-symbols.elf", "machine_word", None, None)]:
            with self.subTest(image=image.name, name=name):
                row = rows("find", image, name, "--values")[0]
                self.assertEqual((row["value"], row["valueText"]), (value, text))

    def test_vars_leaves_and_find_agree(self):
        for image in [PLANT, BIG_ENDIAN]:
            leaves = rows("leaves", image, "--values", "motors")
            found = rows("find", image, "--values", "-", text="\n".join(leaf["name"] for leaf in leaves))
            self.assertEqual([leaf["value"] for leaf in leaves], [row["value"] for row in found])
            source = rows("leaves", image, "--values", "main_supply.source")[0]
            self.assertEqual((source["value"], source["valueText"]), (300, "SUPPLY_MAINS"))
            variables = {row["name"]: row["value"] for row in rows("vars", image, "--values")}
            self.assertEqual((variables["machine_word"], variables["motors"]), (6, None))

    def test_an_array_of_characters_is_text(self):
        with tempfile.TemporaryDirectory(prefix="brindle-test-") as folder:
            image = compiled(folder, 'char name[8] = "Motor"; char numbers[4] = {1, 2, 3, 4};\n'
                                     'char two[2][4] = {"ab", "c"};\n'
                                     "int main(void) { return name[0] + numbers[0] + two[0][0]; }\n")
            texts = {row["name"]: (row["value"], row["valueText"]) for row in
                     rows("leaves", image, "--values", "name") + rows("leaves", image, "--values", "two")
                     + rows("find", image, "--values", "name", "numbers", "two[1]")}
            self.assertEqual(texts["name[0]"], (ord("M"), "Motor"))
            self.assertEqual(texts["name[1]"], (ord("o"), None))
            self.assertEqual(texts["two[1][0]"], (ord("c"), "c"))
            self.assertEqual(texts["name"], (None, "Motor"))
            self.assertEqual(texts["numbers"], (None, None))
            self.assertEqual(texts["two[1]"], (None, "c"))

    def test_a_section_that_the_start_leaves_alone_has_no_values(self):
        with tempfile.TemporaryDirectory(prefix="brindle-test-") as folder:
            image = compiled(folder, 'int kept __attribute__((section(".noinit,\\"aw\\",@nobits#")));\n'
                                     "int cleared;\nint main(void) { return kept + cleared; }\n")
            self.assertEqual([row["value"] for row in rows("find", image, "--values", "kept", "cleared")],
                             [None, 0])


class DemangleTest(unittest.TestCase):
    LONG = "_ZN5plant6DeviceIiE6sCountE"

    def test_names_from_standard_input(self):
        output, error = run("demangle", "--itanium", "-", "_ZN1a1bE", text="_ZN3Foo3barEv\n\nplain\n")
        self.assertEqual((output, error), ("Foo::bar\nplain\na::b\n", ""))

    def test_a_name_that_is_cut_is_told(self):
        output, error = run("demangle", "--itanium", self.LONG, "_ZTVN5plant6DeviceE", "_ZNK3Foo3barEv")
        self.assertEqual(output, "plant::Device\nplant::Device\nFoo::bar\n")
        self.assertEqual(error.count("\n"), 1)
        self.assertIn(f"'{self.LONG}' is cut", error)

    def test_full_names(self):
        output, error = run("demangle", "--full", self.LONG, "_ZN3Foo3barEv", "i", "value__3Foo")
        self.assertEqual((output, error), ("plant::Device<int>::sCount\nFoo::bar()\ni\nvalue__3Foo\n", ""))


class FormatTest(unittest.TestCase):
    COMMANDS = {"vars": [[], ["--values"]], "leaves": [[], ["--values", "--section"]],
                "find": [["0x20000050"], ["tick", "--values", "--section", "motors[1].status.phase"]], "info": [[]]}

    def assert_valid(self, schema, document):
        jsonschema.Draft202012Validator(schema).validate(document)

    def schema(self, command):
        schema = json.loads((SCHEMAS / f"{command}.json").read_text())
        jsonschema.Draft202012Validator.check_schema(schema)
        return schema

    def test_output_fits_its_schema(self):
        for command, calls in self.COMMANDS.items():
            schema = self.schema(command)
            for arguments in calls:
                with self.subTest(command=command, arguments=arguments):
                    document = json.loads(run(command, PLANT, *arguments, "--format", "json")[0])
                    self.assert_valid(schema, document)
                    items = document.get("rows") or document["files"]
                    self.assertTrue(items)
                    del items[0][list(items[0])[0]]
                    with self.assertRaises(jsonschema.ValidationError):
                        self.assert_valid(schema, document)

    def test_documents_of_whole_models_fit_their_schemas(self):
        dump, trace = self.schema("dump"), self.schema("trace")
        for name in ["arm-cpp-dwarf4-O0.elf", "x86_64-c-dwarf4-O0.exe", "arm-symbols.elf"]:
            with self.subTest(name=name):
                self.assert_valid(dump, json.loads(run("dump", IMAGES / name, "--all-types")[0]))
                for line in run("trace", IMAGES / name)[0].splitlines()[:300]:
                    self.assert_valid(trace, json.loads(line))
        self.assert_valid(dump, json.loads(run("dump", "missing.elf", status=1)[0]))

    def test_every_command_with_json_has_a_schema(self):
        for command in ["vars", "leaves", "find", "diff", "info", "dump", "trace"]:
            self.assertTrue((SCHEMAS / f"{command}.json").exists(), command)

    def test_only_texts_are_quoted_in_csv(self):
        output = run("find", "--format", "csv", "--values", PLANT, "motors[1].status.phase", "0x20000010")[0]
        lines = output.splitlines()
        self.assertEqual(lines[0], "query,address,size,type,name,offset,bitOffset,bitSize,compileUnit,"
                                   "value,valueText")
        self.assertRegex(lines[1], r'^,0x20000100,4,"uint32","motors\[1\]\.status\.phase",,13,12,"[^"]*",\d+,$')
        self.assertEqual([len(row) for row in csv.reader(io.StringIO(output))], [11] * 3)


if __name__ == "__main__":
    unittest.main()
