#!/usr/bin/env python3
"""Checks of the brindle program as its user meets it: arguments, output, messages, exit status.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images. All other
inputs are made here, in a temporary folder.
"""

import base64
import csv
import fcntl
import io
import json
import os
import pathlib
import pty
import re
import shlex
import shutil
import signal
import struct
import subprocess
import tempfile
import termios
import unicodedata
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
CLASSIC = ["--set", "mIsFullReading=0"]

GLOBAL_OBJECT = 0x11
FUNCTION = 0x12

IMAGE_OF_BITS = str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf")
COMMANDS = ["vars", "leaves", "find", "info", "types", "diff", "report", "dump", "trace", "demangle", "help"]

SYMBOL_SCOPE = "_Symbol_Table_BKR_"
TWO_SYMBOLS = [("gSpeed", 0x20001000, 4, GLOBAL_OBJECT),
               ("main", 0x08000100, 32, FUNCTION),
               ("gTable", 0x20001004, 12, GLOBAL_OBJECT)]


def elf_image(symbols, is_64=False, order="<"):
    """An ELF file with a symbol table and nothing else of interest."""
    section_names = b"\0.symtab\0.strtab\0.shstrtab\0"
    names = b"\0"
    entry = "IBBHQQ" if is_64 else "IIIBBH"
    table = bytes(struct.calcsize(order + entry))
    for name, value, size, info in symbols:
        fields = (info, 0, 1, value, size) if is_64 else (value, size, info, 0, 1)
        table += struct.pack(order + entry, len(names), *fields)
        names += name.encode() + b"\0"

    word = "Q" if is_64 else "I"
    header_size, section_size, entry_size = (64, 64, 24) if is_64 else (52, 40, 16)
    contents = [(1, 2, table, entry_size), (9, 3, names, 0), (17, 3, section_names, 0)]
    sections = bytes(section_size)
    body = b""
    for name, kind, content, item in contents:
        link = 2 if kind == 2 else 0
        sections += struct.pack(f"{order}II{word}{word}{word}{word}II{word}{word}", name, kind, 0, 0,
                                header_size + len(body), len(content), link, 1, 1, item)
        body += content
    ident = b"\x7fELF" + bytes([2 if is_64 else 1, 1 if order == "<" else 2, 1]) + bytes(9)
    header = ident + struct.pack(f"{order}HHI{word}{word}{word}IHHHHHH", 2, 40, 1, 0, 0,
                                 header_size + len(body), 0, header_size, 0, 0, section_size, 4, 3)
    return header + body + sections


class ProgramTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="brindle-test-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return str(path)

    def run_program(self, *arguments, status=0):
        """Runs the program and returns what it wrote to standard output and standard error."""
        done = subprocess.run([PROGRAM, *arguments], capture_output=True, timeout=60)
        error = done.stderr.decode()
        self.assertEqual(done.returncode, status, f"{arguments}: {error}")
        return done.stdout.decode(), error

    def end_of(self, *arguments, stdout):
        """Runs the program and returns its exit status."""
        return subprocess.run([PROGRAM, *arguments], stdout=stdout, stderr=subprocess.DEVNULL,
                              timeout=60).returncode

    def run_json(self, *arguments, status=0):
        """The document that the program writes; of a table its rows."""
        document = json.loads(self.run_program(*arguments, status=status)[0])
        return document["rows"] if set(document) == {"version", "rows"} else document


class UsageTest(ProgramTest):
    def test_wrong_usage_ends_with_2_and_says_what_is_wrong(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        for arguments, text in [
                ([], "a command is required"),
                (["paint", file], "no command 'paint'\n"),
                (["var", file], "no command 'var'; similar names: vars\n"),
                (["-v"], "has no option '-v'"),
                (["help", "var"], "no command 'var'; similar names: vars\nTry 'brindle --help'.\n"),
                (["--list-options", "x"], "unexpected argument 'x'"),
                (["--formt=csv", "vars", file], "vars has no option '--formt'; similar"),
                (["vars"], "FILE is required"),
                (["trace"], "FILE is required"),
                (["demangle"], "NAME is required"),
                (["vars", file, "x", "y"], "unexpected argument 'y'"),
                (["vars", file, file], f"one file at a time: '{file}' is an image too"),
                (["types", file, "x", file], f"one file at a time: '{file}' is an image too"),
                (["vars", file, "--bogus"], "vars has no option '--bogus'\n"),
                (["vars", file, "--formt=csv"], "'--formt'; similar names: --format"),
                (["vars", file, "--container", "zip"], "'zip' is not one of auto, elf, coff, pe"),
                (["vars", file, "--format", "xml"], "'xml' is not one of table, csv, json"),
                (["dump", "--format", "csv", file], "dump has no option '--format'"),
                (["vars", file, "--language", "german"], "expected a number, got 'german'"),
                (["leaves", file, "--max-leaves", "0"], "a number of at least 1, got '0'"),
                (["diff", file], "NEW is required"),
                (["vars", file, "--set"], "brindle: --set needs a value\n"),
                (["vars", file, "--format"], "brindle: --format needs a value\n"),
                (["vars", file, "--set", "mSymTabSearchMode"], "OPTION=VALUE"),
                (["vars", file, "--set", "mSymTabSearchMode=yes"], "'yes' is not a value"),
                (["vars", file, "--set", "mSymTabSearchMode=99999999999"], "is not a value"),
                (["vars", file, "--set", "mLogAutoFlush=2"], "0, 1, true or false"),
                (["vars", file, "--set", "mSymTabSearchMod=1"], "mSymTabSearchMode"),
                (["vars", file, "--set", "foo=1"], "the reader has no option 'foo'\n"),
                (["vars", file, "--set", "scopeseparator=."], "mDemanglingOptions.mScopeSeparator"),
        ]:
            with self.subTest(arguments=arguments):
                output, error = self.run_program(*arguments, status=2)
                self.assertEqual(output, "")
                self.assertTrue(error.startswith("brindle: "), error)
                self.assertIn(text, error)

    def test_help_of_every_command_has_an_example_that_works(self):
        for name, image in [("firmware.elf", "arm-c-dwarf4-O0.elf"),
                            ("old.elf", "arm-c-dwarf4-O0.elf"), ("new.elf", "arm-c-dwarf4-O2.elf")]:
            shutil.copy(SAMPLE_IMAGES / image, self.folder / name)
        output, error = self.run_program("--help")
        self.assertEqual(error, "")
        for command in COMMANDS:
            with self.subTest(command=command):
                self.assertIn(f"\n  {command} ", output)
                help_text, error = self.run_program(command, "--help")
                self.assertEqual(error, "")
                example = help_text.split("Example:\n  brindle ")[1].split(" > ")[0]
                self.assertTrue(example.startswith(command + " "))
                done = subprocess.run([PROGRAM, *shlex.split(example)], capture_output=True,
                                      cwd=self.folder, timeout=60)
                said = b"brindle: 2 variables moved\n" if command == "diff" else b""
                self.assertEqual((done.returncode, done.stderr), (0, said))
                written = [file.read_bytes() for file in self.folder.glob("*.html")]
                self.assertGreater(len(b"".join([done.stdout, *written])), 10)

    def test_options_may_stand_before_the_command(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        expected = self.run_program("vars", "--format", "csv", file)
        for arguments in [["--format", "csv", "vars", file], ["--format=csv", "vars", file]]:
            self.assertEqual(self.run_program(*arguments), expected)
        self.assertEqual(self.run_program("help", "a2l", "update"),
                         self.run_program("a2l", "update", "--help"))
        self.assertEqual(self.run_program("help"), self.run_program("--help"))
        self.assertEqual(self.run_program("-V"), self.run_program("--version"))

    def test_the_later_of_two_values_counts(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        self.assertEqual(self.run_program("vars", file, "--format", "csv", "--format=json"),
                         self.run_program("vars", file, "--format", "json"))

    def test_version_is_a_name_and_three_numbers(self):
        self.assertRegex(self.run_program("--version")[0], r"\Abrindle \d+\.\d+\.\d+( \([0-9a-f]+(-dirty)?\))?\n\Z")


class ReportTest(ProgramTest):
    def data_of(self, page):
        return json.loads(page.split('<script type="application/json" id="data">')[1]
                          .split("</script>")[0])

    def numbers(self, table, column):
        width, text = table[column].split(":")
        content = base64.b64decode(text)
        if width == "0":
            return [0] * table["count"]
        return list(struct.unpack(f"<{table['count']}{' BH I   Q'[int(width)]}", content))

    def test_columns_hold_the_variables(self):
        names = ["gSpeed", "a</script><!--b", "zeros"]
        symbols = [(names[0], 0xffffffff80001000, 4, GLOBAL_OBJECT),
                   (names[1], 0x20001004, 70000, GLOBAL_OBJECT),
                   (names[2], 0, 0, GLOBAL_OBJECT)]
        file = self.file("three.elf", elf_image(symbols, is_64=True))
        page = self.run_program("report", file, "-o", "-")[0]
        self.assertEqual(page.count("</script>"), 2)
        image, = self.data_of(page)["images"]
        variables = image["variables"]
        shown = {image["texts"][name]: place for name, *place in zip(
            self.numbers(variables, "name"), self.numbers(variables, "address"),
            self.numbers(variables, "size"))}
        told = {row["name"].split("::")[-1]: [row["address"], row["size"]]
                for row in self.run_json("vars", file, "--format", "json")}
        self.assertEqual(shown, told)
        self.assertIn(names[1], shown)

    def test_a_report_is_written_whole_or_not_at_all(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        report = self.folder / "report.html"
        report.write_text("older")
        link = self.folder / "link.html"
        link.symlink_to(report)
        missing = str(self.folder / "missing.elf")
        for arguments, status, text in [
                ([missing, "-o", str(report)], 1, "missing.elf: "),
                ([file, missing, "-o", str(report)], 1, "missing.elf: "),
                ([file, "-o", str(self.folder / "no" / "report.html")], 1,
                 "report.html: the report can't be written: No such file or directory\n"),
                ([file, "-o", str(self.folder)], 1, "can't be written: Is a directory\n"),
                ([file, "-o", file], 2, "would overwrite the image"),
                ([file], 2, "--output is required")]:
            with self.subTest(arguments=arguments):
                output, error = self.run_program("report", *arguments, status=status)
                self.assertEqual(output, "")
                self.assertIn(text, error)
                self.assertEqual(report.read_text(), "older")
        self.assertEqual(sorted(each.name for each in self.folder.iterdir()),
                         ["link.html", "report.html", "two.elf"])
        self.run_program("report", file, "-o", str(link))
        self.assertTrue(link.is_symlink())
        self.assertIn("gSpeed", report.read_text())
        self.assertEqual(len(list(self.folder.iterdir())), 3)

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs /dev/full")
    def test_a_full_disk_is_a_failure(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        self.assertIn("No space left", self.run_program("report", file, "-o", "/dev/full", status=1)[1])


class GermanTest(ProgramTest):
    IMAGE = str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf")

    def test_what_the_program_says_is_german_to_the_end(self):
        other = str(SAMPLE_IMAGES / "arm-c-dwarf4-O2.elf")
        for status, arguments, text in [
                (2, ["vars"], "FILE fehlt\n'brindle vars --help' zeigt die Hilfe.\n"),
                (2, ["vars", self.IMAGE, "--sort", "x"], "--sort: 'x' ist keines von address, name, size, file"),
                (2, ["vars", self.IMAGE, "--set", "foo=1"], "der Leser hat keine Option 'foo'"),
                (2, ["var"], "es gibt keinen Befehl 'var'; ähnliche Namen: vars"),
                (1, ["vars", self.IMAGE, "moter"], "keine Variable passt zu 'moter'; ähnliche Namen: motors"),
                (0, ["vars", self.IMAGE, "supply"], "'supply' passt zu keinem ganzen Namen"),
                (1, ["find", self.IMAGE, "motors[7]"],
                 "'motors' ist gefunden, dann: Index 7 liegt außerhalb der Dimension von 3\n"),
                (1, ["find", self.IMAGE, "motors[0].gian"], 'kein Member "gian"'),
                (1, ["find", self.IMAGE, "0xffffffff"], "hier liegt keine Variable"),
                (0, ["leaves", self.IMAGE, "motors", "--max-elements", "2"],
                 "7 Arrays sind nur bis --max-elements 2 aufgelöst, zuerst 'motors'\n"),
                (0, ["diff", self.IMAGE, other, "header"], "brindle: 1 Variable verschoben\n"),
                (1, ["report", self.IMAGE, "-o", "/missing/x"],
                 "kann nicht geschrieben werden: Datei oder Verzeichnis nicht gefunden"),
        ]:
            with self.subTest(arguments=arguments):
                self.assertIn(text, self.run_program(*arguments, "--language", "49", status=status)[1])


class FailedReadTest(ProgramTest):
    def test_missing_file(self):
        missing = str(self.folder / "missing.elf")
        english = "ELF file Open has failed. (No such file or directory)"
        german = "Fehler beim Öffnen der ELF-Datei. (Datei oder Verzeichnis nicht gefunden)"
        for language, text in [([], english), (["--language", "44"], english),
                               (["--language", "49"], german)]:
            for command in ["vars", "dump", "trace"]:
                with self.subTest(command=command, language=language):
                    output, error = self.run_program(command, missing, *language, status=1)
                    self.assertEqual(error, f"brindle: {missing}: {text}\n")
                    self.assertNotIn("Failed to open", output)

    def test_a_file_that_is_none_of_the_kinds_or_cut_off_is_told(self):
        elf = elf_image(TWO_SYMBOLS)
        cut = "the file ends before its headers say: truncated, or not copied to the end"
        for content, text in [
                (b"", "ELF file Seek has failed. (The file is empty)"),
                (b"a text, not an image\n", "ELF file Read has failed. (Read as COFF, being neither "
                                           "ELF nor a Windows image; a raw binary or a text has "
                                           "no symbols: read the linked image)"),
                (elf[:20], f"ELF file Read has failed. ({cut})"),
                (elf[:-1], f"ELF file Read has failed. ({cut})"),
        ]:
            with self.subTest(content=content[:20], length=len(content)):
                file = self.file("input", content)
                for command in ["vars", "leaves", "types", "dump", "trace"]:
                    error = self.run_program(command, file, status=1)[1]
                    self.assertEqual(error.splitlines()[-1], f"brindle: {file}: {text}")
        for language, text in [("1", "(Is a directory)"), ("49", "(Ist ein Verzeichnis)")]:
            error = self.run_program("vars", str(self.folder), "--language", language, status=1)[1]
            self.assertIn(text, error)
        image = (SAMPLE_IMAGES / "i686-c-dwarf2-O0.exe").read_bytes()
        for content in [image[:len(image) // 2], image[:100], b"MZ"]:
            error = self.run_program("vars", self.file("input", content), status=1)[1]
            self.assertIn("(not a Windows image, or truncated)", error)

    def test_a_pipe_is_refused_without_waiting_for_it(self):
        pipe = str(self.folder / "pipe")
        os.mkfifo(pipe)
        error = self.run_program("vars", pipe, status=1)[1]
        self.assertEqual(error, f"brindle: {pipe}: ELF file Open has failed. "
                                "(a pipe can't be read: seeking is required)\n")

    def test_what_a_file_that_was_not_read_lacks_is_not_told(self):
        missing = str(self.folder / "missing.elf")
        for command in ["vars", "leaves", "find", "types"]:
            with self.subTest(command=command):
                error = self.run_program(command, missing, "speed", status=1)[1]
                self.assertEqual(len(error.splitlines()), 1, error)

    def test_container_follows_from_the_first_bytes_unless_named(self):
        elf = elf_image(TWO_SYMBOLS)
        for content, arguments, container in [
                (elf, [], "elf"),
                (b"MZ\x90\0 and more", [], "pe"),
                (b"MZ", [], "pe"),
                (b"\x7fELG", [], "coff"),
                (b"\x7fEL", [], "coff"),
                (b"", [], "elf"),
                (elf, ["--container", "coff"], "coff"),
                (elf, ["--container", "pe"], "pe"),
                (b"MZ\x90\0", ["--container", "elf"], "elf"),
        ]:
            with self.subTest(content=content[:4], arguments=arguments):
                file = self.file("input", content)
                is_read = content == elf and not arguments
                document = self.run_json("dump", file, *arguments, status=0 if is_read else 1)
                self.assertEqual(document["container"], container)
                self.assertEqual(document["ok"], is_read)
                self.assertEqual(document["error"] is None, is_read)
        self.assertEqual(self.run_json("dump", str(self.folder), status=1)["container"], "elf")

    def test_what_was_delivered_before_a_failure_is_printed(self):
        symbols = [("first", 0x1000, 4, GLOBAL_OBJECT), ("huge", 0x2000, 1 << 33, GLOBAL_OBJECT)]
        file = self.file("huge.elf", elf_image(symbols, is_64=True))
        output, error = self.run_program("dump", *CLASSIC, file, status=1)
        document = json.loads(output)
        self.assertFalse(document["ok"])
        self.assertEqual([item["name"] for item in document["objects"] if item["kind"] == "global"],
                         ["first"])
        self.assertEqual(error, f"brindle: {file}: {document['error']}\n")
        rows = self.run_json("vars", *CLASSIC, file, "--format", "json", status=1)
        self.assertEqual([row["address"] for row in rows], [0x1000])
        lines = self.run_program("trace", *CLASSIC, file, status=1)[0].splitlines()
        self.assertEqual(json.loads(lines[-3])["call"], "CreateGlobalData")
        self.assertEqual(json.loads(lines[-2])["args"][3], document["error"])


class VarsTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.two = self.file("two.elf", elf_image(TWO_SYMBOLS))

    def test_the_three_formats_tell_the_same(self):
        output, error = self.run_program("vars", self.two)
        self.assertEqual(error, "")
        self.assertEqual(output,
                         "   address  size  type         name                        compileUnit\n"
                         "0x20001000     4  unknown(4)   _Symbol_Table_BKR_::gSpeed\n"
                         "0x20001004    12  unknown(12)  _Symbol_Table_BKR_::gTable\n")

        output = self.run_program("vars", self.two, "--format", "csv")[0]
        self.assertTrue(output.startswith("address,size,type,name,compileUnit\n"))
        self.assertEqual(list(csv.reader(io.StringIO(output)))[1:], [
            ["0x20001000", "4", "unknown(4)", f"{SYMBOL_SCOPE}::gSpeed", ""],
            ["0x20001004", "12", "unknown(12)", f"{SYMBOL_SCOPE}::gTable", ""]])

        self.assertEqual(self.run_json("vars", self.two, "--format", "json"), [
            {"address": 0x20001000, "size": 4, "type": "unknown(4)",
             "name": f"{SYMBOL_SCOPE}::gSpeed", "compileUnit": ""},
            {"address": 0x20001004, "size": 12, "type": "unknown(12)",
             "name": f"{SYMBOL_SCOPE}::gTable", "compileUnit": ""}])

    def test_rows_keep_the_order_of_delivery_and_wide_addresses(self):
        symbols = [("high", 0xFFFFFFFF_80000000, 8, GLOBAL_OBJECT), ("low", 0x10, 1, GLOBAL_OBJECT)]
        file = self.file("wide.elf", elf_image(symbols, is_64=True, order=">"))
        arguments = ["vars", file, "--sort", "file", "--format"]
        output = self.run_program(*arguments, "csv")[0]
        self.assertEqual([row["address"] for row in csv.DictReader(io.StringIO(output))],
                         ["0xffffffff80000000", "0x00000010"])
        self.assertEqual([row["address"] for row in self.run_json(*arguments, "json")],
                         [0xFFFFFFFF_80000000, 0x10])

    def test_names_of_any_bytes_break_no_format(self):
        name = 'a,"b"\n\x1b[31m\u00e9\u009b'
        file = self.file("odd.elf", elf_image([(name, 0x1000, 4, GLOBAL_OBJECT)]))
        row = self.run_program("vars", file)[0].splitlines()
        self.assertTrue(row[1].endswith('::a,"b"??[31m\u00e9??'), row[1])
        output = self.run_program("vars", file, "--format", "csv")[0]
        self.assertEqual(next(csv.DictReader(io.StringIO(output)))["name"],
                         f"{SYMBOL_SCOPE}::{name}")
        self.assertEqual(self.run_json("vars", file, "--format", "json")[0]["name"],
                         f"{SYMBOL_SCOPE}::{name}")

    def test_options_of_the_reader_apply(self):
        file = self.file("mangled.elf", elf_image([("_value__3Foo", 0x1000, 4, GLOBAL_OBJECT)]))
        for settings, name in [
                ([], "_value__3Foo"),
                (["--set", "mDemangleSymTabNames=2"], "Foo::_value"),
                (["--set", "mRemoveLeadingUnderscore=0x1"], "value__3Foo"),
                (["--set", "mDemangleSymTabNames=2",
                  "--set=mDemanglingOptions.mScopeSeparator=="], "Foo=_value")]:
            with self.subTest(settings=settings):
                rows = self.run_json("vars", *settings, file, "--format", "json")
                self.assertEqual([row["name"] for row in rows], [f"{SYMBOL_SCOPE}::{name}"])


class SampleNamesTest(ProgramTest):
    """Names, places and types of a sample image with debug information."""

    IMAGE = str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf")

    def rows(self, *arguments, status=0):
        return self.run_json(*arguments, "--format", "json", status=status)

    def test_find_agrees_with_leaves(self):
        leaves = self.rows("leaves", self.IMAGE, "motors")
        self.assertGreater(len(leaves), 90)
        found = self.rows("find", self.IMAGE, *[leaf["name"] for leaf in leaves])
        self.assertEqual([{key: row[key] for key in leaves[0]} for row in found], leaves)
        phase = next(leaf for leaf in leaves if leaf["name"] == "motors[1].status.phase")
        self.assertEqual((phase["bitOffset"], phase["bitSize"]), (13, 12))
        gains = self.rows("leaves", self.IMAGE, "motors[?].loops[1].gain")
        self.assertEqual([leaf["name"] for leaf in gains],
                         [f"motors[{motor}].loops[1].gain" for motor in range(3)])

    def test_an_expression_that_stops_resolving_is_told_with_the_place(self):
        good = "main_supply.cells[1].millivolts"
        for expression, text in [
                ("motors[1].loops[5].gain",
                 "resolves up to 'motors[1].loops', then index 5 is beyond the dimension of 2"),
                ("motors[0].loopz", "resolves up to 'motors[0]', then no member named \"loopz\"; "
                                    "similar names: loops\n"),
                ("motors[0]->name", "resolves up to 'motors[0]', then \".\" or \"[\" is expected"),
                ("motors[0].next.name", "resolves up to 'motors[0].next', then a pointer is not"),
                ("motor[0].name", "no variable of this name; similar names: motors"),
                ("", "no variable of this name\n"),
                ("MAIN_SUPPLY", "no variable of this name; similar names: main_supply"),
        ]:
            with self.subTest(expression=expression):
                output, error = self.run_program("find", self.IMAGE, expression, good, status=1)
                self.assertTrue(
                    error.startswith(f"brindle: {self.IMAGE}: '{expression}': {text}"), error)
                self.assertIn(good, output)

    def test_variables_of_one_name_are_told_apart(self):
        rows = self.rows("find", self.IMAGE, "stops", "counter", "version")
        self.assertEqual([(row["name"], row["compileUnit"]) for row in rows],
                         [("motor_step::stops", "motor_c"), ("stop_motor::stops", "motor_c"),
                          ("stop_motor::1::stops", "motor_c"), ("counter", "motor_c"),
                          ("counter", "sensors_c"), ("version", "main_c")])
        again = self.rows("find", self.IMAGE, *[row["name"] for row in rows[:3]])
        self.assertEqual([{**row, "query": "stops"} for row in again], rows[:3])

    def test_a_pattern_without_a_match_is_told_with_near_names(self):
        for command, pattern, text in [
                ("vars", "Motors2", "no variable matches 'Motors2'; similar names: motors"),
                ("leaves", "motors[9].name", "no leaf matches 'motors[9].name'"),
                ("types", "moter", "no type matches 'moter'; similar names: motor"),
                ("vars", "nothing*", "no variable matches 'nothing*'\n"),
        ]:
            with self.subTest(command=command, pattern=pattern):
                output, error = self.run_program(command, self.IMAGE, pattern, status=1)
                self.assertEqual(output, "")
                self.assertIn(text, error)
                self.run_program(command, self.IMAGE, pattern, "--allow-empty")

    def test_types_gives_declarations_once_with_nameless_types_in_place(self):
        output, error = self.run_program("types", self.IMAGE, "supply")
        self.assertEqual(error, "")
        self.assertEqual(output, """\
struct supply {                             /* size 56, in supply_c */
    limits voltage;                         /* offset 0, size 8 */
    word identity;                          /* offset 8, size 4 */
    enum : uint16 {                         /* size 2 */
        SUPPLY_BATTERY = 0,
        SUPPLY_MAINS = 300,
    } source;                               /* offset 12, size 2 */
    /* hole of 2 bytes at offset 14 */
    cell cells[4];                          /* offset 16, size 32 */
    double energy;                          /* offset 48, size 8 */
};
""")
        whole = self.run_program("types", self.IMAGE)[0]
        self.assertEqual(whole.count("\nstruct motor {"), 1)
        self.assertIn("typedef void (*fault_handler_t)(motor*, alarm_t);", whole)
        self.assertEqual(whole, self.run_program("types", self.IMAGE, "*")[0])


class TerminalTest(ProgramTest):
    """The program on a terminal: a pair of pseudo terminals plays the screen."""

    IMAGE = str(SAMPLE_IMAGES / "arm-cpp-dwarf4-O0.elf")

    def screen(self, *arguments, on_screen, environment=None, columns=None):
        """What arrives on the screen; the other stream of the two goes nowhere."""
        ours, theirs = pty.openpty()
        if columns is not None:
            fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 25, columns, 0, 0))
        environment = {**os.environ, "TERM": "xterm", "NO_COLOR": "", **(environment or {})}
        streams = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, on_screen: theirs}
        program = subprocess.Popen([PROGRAM, *arguments], env=environment, **streams)
        os.close(theirs)
        text = b""
        try:
            while chunk := os.read(ours, 65536):
                text += chunk
        except OSError:
            pass  # the other end is closed
        os.close(ours)
        program.wait(timeout=60)
        return text.decode()

    def test_progress_tells_the_phases_and_leaves_a_clean_line(self):
        text = self.screen("vars", self.IMAGE, on_screen="stderr")
        phases = re.findall(r"reading|resolving|delivering", text)
        self.assertEqual(list(dict.fromkeys(phases)), ["reading", "resolving", "delivering"])
        self.assertNotIn("\n", text)
        self.assertRegex(text, r"\r +\r\Z")
        self.assertEqual(self.screen("vars", self.IMAGE, "--no-progress", on_screen="stderr"), "")

    def test_colours_are_for_a_screen_that_wants_them(self):
        for arguments, stream in [(["vars", self.IMAGE], "stdout"), (["paint"], "stderr")]:
            for environment, is_coloured in [({}, True), ({"NO_COLOR": "1"}, False),
                                             ({"TERM": "dumb"}, False)]:
                with self.subTest(arguments=arguments, environment=environment):
                    text = self.screen(*arguments, on_screen=stream, environment=environment)
                    self.assertNotEqual(text, "")
                    self.assertEqual("\x1b[" in text, is_coloured)
        text = self.screen("vars", self.IMAGE, "--format", "csv", on_screen="stdout")
        self.assertNotIn("\x1b[", text)

    def test_the_user_has_the_last_word_on_colours(self):
        for command in ["vars", "types"]:
            with self.subTest(command=command):
                text = self.screen(command, self.IMAGE, on_screen="stdout")
                self.assertIn("\x1b[", text)
                text = self.screen(command, self.IMAGE, "--color=never", on_screen="stdout")
                self.assertNotIn("\x1b[", text)
                plain = self.run_program(command, self.IMAGE)[0]
                coloured = self.run_program(command, self.IMAGE, "--color", "always")[0]
                self.assertNotIn("\x1b[", plain)
                self.assertEqual(re.sub(r"\x1b\[\d+m", "", coloured), plain)

    def test_tables_fit_the_screen_and_pipes_get_all(self):
        long_name = "ns::" + "a_very_long_template<argument>::" * 16 + "speed"
        symbols = [(long_name, 0x1000, 4, GLOBAL_OBJECT), ("温度", 0x1004, 4, GLOBAL_OBJECT),
                   ("e\u0301", 0x1008, 4, GLOBAL_OBJECT)]
        file = self.file("long.elf", elf_image(symbols))
        self.assertIn(long_name, self.run_program("vars", file)[0])
        for columns in [20, 40, 80, 200]:
            for locale, ellipsis in [("C", "..."), ("C.UTF-8", "…")]:
                with self.subTest(columns=columns, locale=locale):
                    text = self.screen("vars", file, on_screen="stdout", columns=columns,
                                       environment={"LC_ALL": locale, "NO_COLOR": "1"})
                    lines = text.splitlines()
                    self.assertEqual(len(lines), 4)
                    for line in lines:
                        self.assertLessEqual(self.width(line), columns)
                    self.assertIn(ellipsis, lines[1])
                    if columns >= 40:
                        self.assertIn("speed", lines[1])
                        self.assertIn("温度", lines[2])
                    # Numbers stand whole or not at all.
                    self.assertTrue(lines[1].startswith("0x00001000"))
                    table = self.screen("leaves", IMAGE_OF_BITS, "--values", on_screen="stdout",
                                        columns=columns, environment={"LC_ALL": locale}).splitlines()
                    heads = re.sub("\x1b\\[\\d+m", "", table[0]).split()
                    self.assertEqual(heads[-1].endswith(ellipsis), columns < 80, heads)
                    self.assertEqual("compileUnit" in heads, columns == 200, heads)
                    self.assertEqual("bitSize" in heads, columns >= 80, heads)
        bar = self.screen("vars", self.IMAGE, on_screen="stderr", columns=40)
        self.assertLess(max(len(line) for line in bar.split("\r")), 40)
        self.assertRegex(bar, r"#\.?\] 9\d%")

    def test_help_fits_the_screen_and_keeps_its_words(self):
        for command in ["find", "a2l update", "demangle"]:
            with self.subTest(command=command):
                whole = self.run_program("help", *command.split())[0]
                narrow = self.screen("help", *command.split(), on_screen="stdout", columns=40)
                self.assertEqual(narrow.split(), whole.split())
                long = [line for line in narrow.splitlines() if len(line) > 40]
                self.assertEqual(long, [line for line in whole.splitlines() if line.startswith("  brindle ")])

    @staticmethod
    def width(line):
        return sum(0 if unicodedata.combining(character) else
                   2 if unicodedata.east_asian_width(character) in "WF" else 1
                   for character in line)

    def test_columns_behind_wide_characters_stand_below_each_other(self):
        symbols = [("温度", 0x1000, 4, GLOBAL_OBJECT), ("e\u0301", 0x1004, 4, GLOBAL_OBJECT),
                   ("plain", 0x1008, 4, GLOBAL_OBJECT)]
        file = self.file("wide.elf", elf_image(symbols))
        lines = self.run_program("vars", file, "--section")[0].splitlines()
        self.assertEqual(len({self.width(line.split("BKR_")[0]) for line in lines[1:]}), 1)


class DumpTest(ProgramTest):
    def test_document(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        document = self.run_json("dump", file)
        self.assertEqual(list(document), ["file", "container", "ok", "error", "version", "image", "objects"])
        self.assertEqual(document["file"], file)
        self.assertEqual(document["objects"], [
            {"id": 1, "kind": "namespace", "scope": 0, "name": ""},
            {"id": 2, "kind": "namespace", "scope": 1, "name": "_Symbol_Table_BKR_"},
            {"id": 3, "kind": "unknown", "scope": 2, "size": 4},
            {"id": 4, "kind": "global", "scope": 2, "name": "gSpeed", "type": 3,
             "address": 0x20001000},
            {"id": 5, "kind": "unknown", "scope": 2, "size": 12},
            {"id": 6, "kind": "global", "scope": 2, "name": "gTable", "type": 5,
             "address": 0x20001004}])

    def test_a_path_that_is_no_utf8_gives_valid_json(self):
        path = os.fsencode(self.folder) + b"/gr\xf6\xdfe.elf"
        pathlib.Path(os.fsdecode(path)).write_bytes(elf_image(TWO_SYMBOLS))
        done = subprocess.run([PROGRAM, "dump", path], capture_output=True, timeout=60)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(json.loads(done.stdout)["file"], f"{self.folder}/größe.elf")


class TraceTest(ProgramTest):
    def trace(self, *arguments, status=0):
        output = self.run_program("trace", *arguments, status=status)[0]
        return [json.loads(line) for line in output.splitlines()]

    @staticmethod
    def symbol_lines(name, address, size, first_id):
        return [
            {"call": "GetGlobalData", "args": {"symName": name}, "result": 0},
            {"call": "GetGlobalDataByAddress", "args": {"address": address}, "result": 0},
            {"call": "GetUnknownEntryType",
             "args": {"sizeOfUnknownType": size, "objIdParentScope": 2}, "result": 0},
            {"call": "CreateUnknownEntryType",
             "args": {"sizeOfUnknownType": size, "objIdParentScope": 2}, "result": first_id},
            {"call": "CreateGlobalData",
             "args": {"symName": name, "objIdOfSymType": first_id, "address": address,
                      "objIdOfScopeParent": 2, "addressIsValid": True, "addressExtension": 0,
                      "addressExtensionIsValid": False},
             "result": first_id + 1}]

    def test_calls_callbacks_and_ends_come_in_order_and_each_file_has_a_fresh_model(self):
        file = self.file("two.elf", elf_image(TWO_SYMBOLS))
        missing = str(self.folder / "missing.elf")
        delivery = [
            {"call": "GetGlobalNamespace", "args": {}, "result": 1},
            {"call": "GetNamespace",
             "args": {"namespaceName": "_Symbol_Table_BKR_", "objIdParentScope": 1}, "result": 0},
            {"call": "CreateNamespace",
             "args": {"namespaceName": "_Symbol_Table_BKR_", "objIdParentScope": 1}, "result": 2},
            *self.symbol_lines("gSpeed", 0x20001000, 4, 3),
            *self.symbol_lines("gTable", 0x20001004, 12, 5),
            {"file": file, "result": True}]
        failure = [
            {"callback": "SignalError", "args": [2, 4112, "", "ELF file Open has failed."]},
            {"file": missing, "result": False}]
        lines = self.trace(*CLASSIC, file, missing, file, status=1)
        self.assertEqual(lines, delivery + failure + delivery)
        self.assertEqual(list(lines[3]["args"]), ["symName"])
        self.assertEqual(list(lines[7]["args"])[:3], ["symName", "objIdOfSymType", "address"])


class DemangleTest(ProgramTest):
    def test_both_families(self):
        self.assertEqual(
            self.run_program("demangle", "value__Q2_5Outer5Inner", "plain", "a-b", "dump")[0],
            "Outer::Inner::value\nplain\na_b\ndump\n")
        self.assertEqual(
            self.run_program("demangle", "--itanium", "_ZN3Foo3barEv", "value__3Foo")[0],
            "Foo::bar\nvalue__3Foo\n")
        self.assertEqual(
            self.run_program("demangle", "--set", "mDemanglingOptions.mScopeSeparator=.",
                             "value__3Foo")[0], "Foo.value\n")


class OutputTest(ProgramTest):
    def setUp(self):
        super().setUp()
        symbols = [(f"aVariableNumber{number}", 0x1000 + 4 * number, 4, GLOBAL_OBJECT)
                   for number in range(20000)]
        self.large = self.file("large.elf", elf_image(symbols))
        self.small = self.file("two.elf", elf_image(TWO_SYMBOLS))

    def test_a_full_disk_is_told(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("the platform has no /dev/full")
        for arguments in [["--help"], ["vars", self.small], ["dump", self.large],
                          ["trace", self.large], ["demangle", "x"]]:
            with self.subTest(arguments=arguments), open("/dev/full", "wb") as full:
                done = subprocess.run([PROGRAM, *arguments], stdout=full, stderr=subprocess.PIPE,
                                      timeout=60)
                self.assertEqual(done.returncode, 1)
                self.assertRegex(done.stderr.decode(), r"\Abrindle: standard output: .+\n\Z")

    def test_a_reader_that_leaves_ends_the_program_quietly(self):
        def ignore_signal():
            signal.signal(signal.SIGPIPE, signal.SIG_IGN)

        for arguments in [["vars", self.large], ["dump", self.large], ["trace", self.large]]:
            for prepare in [None, ignore_signal]:
                with self.subTest(arguments=arguments, ignored=prepare is not None):
                    program = subprocess.Popen([PROGRAM, *arguments], stdout=subprocess.PIPE,
                                               stderr=subprocess.PIPE, preexec_fn=prepare)
                    program.stdout.readline()
                    program.stdout.close()
                    error = program.stderr.read()
                    program.stderr.close()
                    self.assertIn(program.wait(timeout=60), [1, -signal.SIGPIPE])
                    self.assertEqual(error, b"")


class SampleImagesTest(ProgramTest):
    def test_the_container_of_every_image_is_found(self):
        containers = {".elf": "elf", ".o": "elf", ".exe": "pe", ".dll": "pe"}
        images = sorted(SAMPLE_IMAGES.glob("*.*"))
        self.assertGreater(len(images), 25)
        for image in images:
            with self.subTest(image=image.name):
                status = 1 if "nosymtab" in image.name else 0
                document = self.run_json("dump", str(image), status=status)
                self.assertEqual(document["container"], containers[image.suffix])
                # Only the linker gives the variables of an object file their addresses.
                self.assertEqual(any(item["kind"] == "global" for item in document["objects"]),
                                 image.suffix != ".o")

    def test_the_full_manner_is_read_unless_told_otherwise(self):
        image = str(SAMPLE_IMAGES / "full" / "arm-c-O2.elf")
        commands = {"vars": [], "leaves": [], "find": ["motors[1].speed"], "types": ["motor"], "dump": [],
                    "trace": []}
        for command, arguments in commands.items():
            with self.subTest(command=command):
                self.assertIn("speed" if command not in ("vars", "trace") else "motors",
                              self.run_program(command, image, *arguments)[0])
        self.run_program("diff", image, image)
        self.assertIn("Not supported DWARF version", self.run_program("vars", *CLASSIC, image, status=1)[1])

    def test_remarks_are_in_the_language_of_the_messages(self):
        for image, english, german in [
                ("full/arm-c-split.elf", "which aren't read: compile without -gsplit-dwarf.",
                 "die nicht gelesen werden: ohne -gsplit-dwarf übersetzen."),
                ("arm-c-dwarf4-O2-object.o", "Read the linked image.", "die gelinkte Datei lesen.")]:
            for language, text in [("44", english), ("49", german)]:
                with self.subTest(image=image, language=language):
                    error = self.run_program("vars", str(SAMPLE_IMAGES / image), "--allow-empty",
                                             "--language", language)[1]
                    self.assertIn(text, error)

    def test_every_image_gives_the_same_variables_in_vars_and_dump(self):
        images = [image for image in sorted(SAMPLE_IMAGES.glob("*.elf"))
                  if "nosymtab" not in image.name]
        self.assertTrue(images, f"no images in {SAMPLE_IMAGES}")
        for image in images:
            with self.subTest(image=image.name):
                symbols_only = ["--set", "mElfForceSymbolTable=1"]
                rows = self.run_json("vars", str(image), "--format", "json", "--sort", "file",
                                     *symbols_only)
                document = self.run_json("dump", str(image), *symbols_only)
                dumped = [item for item in document["objects"] if item["kind"] == "global"]
                self.assertTrue(rows)
                self.assertEqual([row["address"] for row in rows],
                                 [item["address"] for item in dumped])


if __name__ == "__main__":
    unittest.main()
