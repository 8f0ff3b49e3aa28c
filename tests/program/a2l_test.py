#!/usr/bin/env python3
"""Checks of `brindle a2l` as its user meets it: files that are written or left alone, reports, exit
status; and of its exports, which are read by a strict reader and by the update.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources, BRINDLE_SAMPLE_IMAGES
that of the sample images.
"""

import collections
import csv
import itertools
import json
import os
import pathlib
import re
import resource
import shutil
import stat
import subprocess
import tempfile
import unittest

import jsonschema

import a2l_grammar

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
SCHEMAS = pathlib.Path(os.environ["BRINDLE_SOURCE"]) / "docs" / "schema"
IMAGE = SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf"


def measurement(name, address, datatype="ULONG", parts=""):
    return (f'/begin MEASUREMENT {name} ""\n  {datatype} NO_COMPU_METHOD 0 0 0 1\n'
            f"  ECU_ADDRESS {address} {parts}\n/end MEASUREMENT\n")


def description(content):
    return f'ASAP2_VERSION 1 60\n/begin PROJECT p ""\n/begin MODULE m ""\n{content}/end MODULE\n' \
           "/end PROJECT\n"


class A2lTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="brindle-a2l-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def file(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text.encode("latin-1"))
        return path

    def run_program(self, *arguments, status=0):
        done = subprocess.run([PROGRAM, "a2l", *map(str, arguments)], capture_output=True, timeout=60,
                              cwd=self.folder)
        error = done.stderr.decode()
        self.assertEqual(done.returncode, status, f"{arguments}: {error}")
        return done.stdout.decode("latin-1"), error

    def files(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*")
                      if path.is_file())

    def address_of(self, name):
        rows = subprocess.run([PROGRAM, "find", "--format", "json", IMAGE, name], capture_output=True,
                              check=True, timeout=60).stdout
        return json.loads(rows)["rows"][0]["address"]


class UpdateTest(A2lTest):
    def setUp(self):
        super().setUp()
        self.old = description(measurement("tick", "0x0") + measurement("gone", "0x20000048"))
        self.new = self.old.replace("0x0 ", f"0x{self.address_of('tick'):X} ")
        self.input = self.file("in.a2l", self.old)

    def test_it_writes_to_standard_output_to_a_file_or_in_place(self):
        output, _ = self.run_program("update", "in.a2l", IMAGE)
        self.assertEqual(output, self.new)
        self.assertEqual(self.files(), ["in.a2l"])
        output, _ = self.run_program("update", "in.a2l", IMAGE, "-o", "out.a2l")
        self.assertEqual(output, "")
        self.assertEqual((self.folder / "out.a2l").read_text(), self.new)
        self.assertEqual(self.input.read_text(), self.old)
        os.chmod(self.input, 0o640)
        os.symlink("in.a2l", self.folder / "link.a2l")
        self.run_program("update", "--in-place", "link.a2l", IMAGE)
        self.assertEqual(self.input.read_text(), self.new)
        self.assertTrue((self.folder / "link.a2l").is_symlink())
        self.assertEqual(stat.S_IMODE(self.input.stat().st_mode), 0o640)
        self.assertEqual(self.files(), ["in.a2l", "link.a2l", "out.a2l"])

    def test_a_file_that_is_right_already_is_not_written(self):
        self.input.write_text(self.new)
        before = self.input.stat()
        self.run_program("update", "--in-place", "in.a2l", IMAGE)
        self.assertEqual(self.input.stat().st_mtime_ns, before.st_mtime_ns)
        self.assertEqual(self.input.stat().st_ino, before.st_ino)

    def test_check_tells_by_its_exit_status_and_writes_nothing_but_the_report(self):
        output, error = self.run_program("update", "--check", "--report", "r.json", "in.a2l", IMAGE,
                                         status=1)
        self.assertEqual(output, "")
        self.assertEqual(self.files(), ["in.a2l", "r.json"])
        self.assertIn("in.a2l:4: tick: moved from 0x00000000 to 0x20000048", error)
        self.input.write_text(self.new)
        self.run_program("update", "--check", "in.a2l", IMAGE)
        self.run_program("update", "--check", "--missing", "zero", "in.a2l", IMAGE, status=1)

    def test_the_report_has_a_row_for_each_object(self):
        self.input.write_text(self.old.replace("gone", "ticks"))
        for name in ["r.csv", "r.json"]:
            self.run_program("update", "in.a2l", IMAGE, "--report", name)
        with open(self.folder / "r.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual([(row["object"], row["line"], row["status"], row["action"]) for row in rows],
                         [("tick", "4", "updated", ""), ("ticks", "8", "notFound", "kept")])
        self.assertEqual(rows[0]["newAddress"], "0x20000048")
        self.assertEqual(rows[1]["nearNames"], "tick")
        self.assertEqual(rows[1]["nowAtOldAddress"], "tick")
        document = json.loads((self.folder / "r.json").read_text())
        schema = json.loads((SCHEMAS / "a2l-update.json").read_text())
        jsonschema.Draft202012Validator(schema).validate(document)
        self.assertEqual(list(document["rows"][0]),
                         list(schema["properties"]["rows"]["items"]["properties"]))
        document = document["rows"]
        self.assertEqual([row["status"] for row in document], ["updated", "notFound"])
        self.assertEqual(document[0]["newAddress"], 0x20000048)

    def test_a_file_with_every_block_keeps_all_but_its_addresses(self):
        template = (pathlib.Path(__file__).parent / "every_block.a2l").read_text(encoding="utf-8")
        marks = re.findall("@([^@ ]+):([0-9]*[xXd])@", template)
        self.assertEqual(len(marks), template.count("@") // 2)
        new = old = template
        for number, (name, form) in enumerate(marks):
            prefix = "" if form == "d" else "0x"
            mark = f"@{name}:{form}@"
            new = new.replace(mark, prefix + format(self.address_of(name), form))
            old = old.replace(mark, prefix + format(0x3B9ACA00 + 16 * number, form))
        for encoding, ending in [("utf-8", "\n"), ("latin-1", "\r\n"), ("utf-8-sig", "\r\n"), ("latin-1", "\r"),
                                 ("utf-16", "\r\n"), ("utf-16-be", "\n"), ("utf-32", "\n"), ("utf-32-be", "\n")]:
            with self.subTest(encoding=encoding, ending=ending):
                mark = "\ufeff" if encoding.endswith("-be") else ""
                before, after = ((mark + text.replace("\n", ending)).encode(encoding) for text in (old, new))
                self.input.write_bytes(before)
                _, error = self.run_program("update", "in.a2l", IMAGE, "-o", "out.a2l")
                self.assertEqual((self.folder / "out.a2l").read_bytes(), after)
                self.assertIn(f"{len(marks) + 1} objects: {len(marks)} updated, 0 unchanged, 1 not found", error)
                self.run_program("update", "out.a2l", IMAGE, "--check")

    def test_word_addresses_count_words(self):
        address = self.address_of("tick")
        content = measurement("tick", "0x1") + measurement("link", "0x1", parts='SYMBOL_LINK "tick" 2')
        self.input.write_text(description(content))
        output, _ = self.run_program("update", "--word-addresses", "in.a2l", IMAGE)
        found = [int(text, 16) for text in re.findall("ECU_ADDRESS (0x[0-9A-F]+)", output)]
        self.assertEqual(found, [address // 2, address // 2 + 2])
        _, error = self.run_program("export", "--word-addresses", IMAGE, "tick", "-o", "out.a2l")
        self.assertIn(f"ECU_ADDRESS 0x{address // 2:08X}", (self.folder / "out.a2l").read_text())
        self.run_program("update", "--word-addresses", "--check", "out.a2l", IMAGE)
        self.run_program("update", "--check", "out.a2l", IMAGE, status=1)

    def test_a_person_is_told_what_is_wrong(self):
        content = measurement("motors[1].loops[0].gain", "0x200000CC", "UWORD") \
            + measurement("counter", "0x1") + measurement("tick", "0x20000048", "ULONG", "ARRAY_SIZE 3")
        self.input.write_text(description(content))
        output, error = self.run_program("update", "in.a2l", IMAGE)
        self.assertEqual(output, description(content))
        german = self.run_program("update", "in.a2l", IMAGE, "--language", "49")[1]
        for text in ["datatype: UWORD in der Datei, float im Programm", "mehrere Variablen heißen so",
                     "3 Objekte: 0 geändert, 2 unverändert, 1 mehrdeutig, 2 mit anderem Typ"]:
            self.assertIn(text, german)
        self.assertIn("datatype: UWORD in the file, float in the image", error)
        self.assertIn("elements: 3 in the file, 1 in the image", error)
        self.assertIn("counter: several variables have this name: motor_c::counter at 0x200001a0", error)
        self.assertIn("3 objects: 0 updated, 2 unchanged, 1 ambiguous, 2 with another type or size "
                      "than the image", error)

    def test_included_files_are_updated_in_place_or_beside_the_output_or_named(self):
        part = measurement("tick", "0x0")
        main = description('/include "parts\\\\one.a2l"\n'.replace("\\\\", "\\"))
        new = part.replace("0x0 ", "0x20000048 ")
        self.file("main.a2l", main)
        path = self.file("parts/one.a2l", part)
        output, error = self.run_program("update", "main.a2l", IMAGE, status=1)
        self.assertEqual(output, main)
        self.assertIn("parts/one.a2l: this included file has 1 places to change", error)
        self.run_program("update", "main.a2l", IMAGE, "-o", "new.a2l", status=1)
        self.assertEqual(path.read_text(), part)
        (self.folder / "build").mkdir()
        self.run_program("update", "main.a2l", IMAGE, "-o", "build/main.a2l")
        self.assertEqual((self.folder / "build/main.a2l").read_text(), main)
        self.assertEqual((self.folder / "build/parts/one.a2l").read_text(), new)
        self.assertEqual(path.read_text(), part)
        self.run_program("update", "--in-place", "main.a2l", IMAGE)
        self.assertEqual(path.read_text(), new)
        self.assertEqual((self.folder / "main.a2l").read_text(), main)

    def test_bad_input_leaves_no_file_behind(self):
        self.file("bad.a2l", '/begin PROJECT p ""\n')
        self.file("circle.a2l", "/include circle.a2l")
        self.file("utf16.a2l", "\xff\xfe/\0b")
        self.file("bad.elf", "\x7fELF")
        self.file("nothing.exe", "MZ" + "\0" * 100)
        before = self.files()
        for arguments, message in [
                (["bad.a2l", IMAGE], "bad.a2l:2: expected /end PROJECT"),
                (["circle.a2l", IMAGE], "circle.a2l:1: 'circle.a2l' includes itself"),
                (["utf16.a2l", IMAGE], "UTF-16"),
                (["none.a2l", IMAGE], "none.a2l: "),
                ([self.folder, IMAGE], "Is a directory"),
                ([IMAGE, "in.a2l"], "expected an A2L text"),
                (["in.a2l", "bad.elf"], "bad.elf: "),
                (["in.a2l", "nothing.exe"], "neither debug information nor symbols"),
                (["in.a2l", SAMPLE_IMAGES / "arm-c-dwarf4-O2-object.o"], "")]:
            with self.subTest(arguments=arguments):
                output, error = self.run_program("update", *arguments, "-o", "out.a2l", "--report",
                                                 "report.csv", status=1)
                self.assertIn(message, error)
                self.assertEqual(output, "")
                self.assertEqual(self.files(), before)
        for arguments in (["-o", "none/out.a2l"], ["--in-place", "--report", "none/r.csv"],
                          ["-o", "/dev/full"], ["-o", "out.a2l", "--report", "/dev/full"]):
            with self.subTest(arguments=arguments):
                _, error = self.run_program("update", "in.a2l", IMAGE, *arguments, status=1)
                self.assertIn(f"{arguments[-1]}: No ", error)
                self.assertEqual(self.files(), before)
        self.assertEqual(self.input.read_text(), self.old)

    def test_nothing_is_written_over_an_input_or_another_result(self):
        main = self.file("main.a2l", description('/include "x.a2l" /include "sub/x.a2l"'))
        self.file("x.a2l", measurement("tick", "0x0"))
        self.file("sub/x.a2l", measurement("machine_word", "0x0"))
        shutil.copy(IMAGE, self.folder / "ok.elf")
        (self.folder / "link.elf").symlink_to("ok.elf")
        os.link(self.folder / "ok.elf", self.folder / "hard.elf")
        (self.folder / "here").symlink_to(".")
        image, a2l = "would overwrite the image; choose another ", "the description that is read"
        other = "would overwrite another result"
        update = ["update", "main.a2l", "ok.elf"]
        before = {path: path.read_bytes() for path in self.folder.rglob("*") if path.is_file()}
        for arguments, message in [
                (["export", "ok.elf", "-o", "link.elf"], image + "--output"),
                (["export", "link.elf", "-o", "ok.elf"], image + "--output"),
                (["export", "ok.elf", "-o", "hard.elf"], image + "--output"),
                ([*update, "-o", "./here/ok.elf"], image + "--output"),
                ([*update, "--report", "sub/../ok.elf"], image + "--report"),
                ([*update, "-o", "main.a2l"], a2l),
                ([*update, "-o", "x.a2l"], a2l),
                ([*update, "-o", "sub/new.a2l"], "sub/x.a2l: this would overwrite " + a2l),
                ([*update, "-o", "new/x.a2l"], other),
                ([*update, "--report", main], a2l),
                ([*update, "--in-place", "--report", "x.a2l"], a2l),
                ([*update, "--check", "--report", "here/sub/x.a2l"], a2l),
                ([*update, "-o", "o.a2l", "--report", "o.a2l"], other),
                ([*update, "-o", "o.a2l", "--report", "here/o.a2l"], other)]:
            with self.subTest(arguments=arguments):
                output, error = self.run_program(*arguments, status=2)
                self.assertIn(message, error)
                self.assertEqual(output, "")
                self.assertEqual({path: path.read_bytes() for path in self.folder.rglob("*")
                                  if path.is_file()}, before)
        # A device receives whatever is written to it.
        self.run_program(*update, "--check", "--report", "/dev/null", status=1)
        self.run_program("update", "in.a2l", "ok.elf", "-o", "/dev/null", "--report", "/dev/null")

    def test_a_disk_that_fills_up_leaves_every_file_as_it_was(self):
        """No file may grow beyond a limit, which is where the disk would be full."""
        self.file("main.a2l", description('/include "part.a2l" /include "long.a2l"'))
        self.file("part.a2l", measurement("machine_word", 0))
        self.file("long.a2l", measurement("machine_word", 0) + "/* " + "x" * 9000 + " */")
        self.file("old.html", "older")
        self.file("old.csv", "older")
        before = {path.name: path.read_bytes() for path in self.folder.iterdir()}
        for arguments in (["a2l", "update", "--in-place", "--report", "old.csv", "main.a2l", IMAGE],
                          ["a2l", "update", "-o", "new.a2l", "long.a2l", IMAGE],
                          ["a2l", "update", "-o", "part.a2l", "long.a2l", IMAGE],
                          ["a2l", "export", "-o", "new.a2l", IMAGE],
                          ["report", "-o", "old.html", IMAGE], ["report", "-o", "new.html", IMAGE]):
            with self.subTest(arguments=arguments):
                done = subprocess.run(
                    [PROGRAM, *arguments], capture_output=True, timeout=60, cwd=self.folder,
                    restore_signals=False,  # Python ignores the signal of the limit, and so does the program
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096)))
                self.assertEqual((done.returncode, done.stdout), (1, b""), done.stderr)
                self.assertIn("File too large", done.stderr.decode())
                self.assertEqual({path.name: path.read_bytes() for path in self.folder.iterdir()}, before)

    @unittest.skipUnless("BRINDLE_CUT_LIBRARY" in os.environ, "nothing to cut the file with")
    def test_an_image_that_is_cut_while_it_is_read_gives_a_whole_result_or_a_failure(self):
        self.file("in.a2l", description(measurement("machine_word", 0) + measurement("motors", 0)))
        image = self.folder / "image.elf"
        for command, result in [(["a2l", "update", "-o", "new.a2l", "in.a2l"], "new.a2l"),
                                (["a2l", "export", "-o", "new.a2l"], "new.a2l"),
                                (["report", "-o", "new.html"], "new.html")]:
            whole, failures = None, 0
            for number in itertools.count():
                shutil.copyfile(IMAGE, image)
                environment = {**os.environ, "LD_PRELOAD": os.environ["BRINDLE_CUT_LIBRARY"],
                               "ASAN_OPTIONS": "verify_asan_link_order=0", "BRINDLE_CUT_FILE": str(image),
                               "BRINDLE_CUT_READ": str(number)}
                done = subprocess.run([PROGRAM, *command, "image.elf"], capture_output=True, timeout=60,
                                      cwd=self.folder, env=environment)
                written = self.folder / result
                content = written.read_bytes() if written.exists() else None
                written.unlink(missing_ok=True)
                with self.subTest(command=command, number=number):
                    if done.returncode == 0:
                        whole = whole or content
                        self.assertEqual(content, whole)
                    else:
                        failures += 1
                        self.assertEqual(done.returncode, 1)
                        self.assertNotEqual(done.stderr, b"")
                        # A report tells what could be read, and that the read failed.
                        if command[0] != "report":
                            self.assertIsNone(content)
                        elif content is not None:
                            self.assertTrue(content.rstrip().endswith(b"</html>"))
                            self.assertTrue(b'"isComplete":false' in content or b"was changed" in done.stderr)
                if number > 0 and image.stat().st_size != 700:
                    break
            self.assertGreater(failures, 10, command)

    def test_wrong_usage_is_told(self):
        for arguments, message in [
                (["update", "in.a2l"], "IMAGE"), (["updat"], "similar names: update"), ([], ""),
                (["update", "in.a2l", IMAGE, "--in-place", "-o", "x"], "--in-place"),
                (["update", "in.a2l", IMAGE, "--missing", "drop"], "not one of keep, zero, remove"),
                (["export", IMAGE, "--structures", "--file-version", "1.6"], "1.7.1")]:
            with self.subTest(arguments=arguments):
                _, error = self.run_program(*arguments, status=2)
                self.assertIn(message, error)


class ExportTest(A2lTest):
    def export(self, image, *arguments, fragment_version=None):
        output, _ = self.run_program("export", image, *arguments)
        return output, a2l_grammar.Description(output, fragment_version)

    def test_every_sample_is_exported_and_read_again_without_a_change(self):
        full = ["--set", "mIsFullReading=1"]
        images = [(path, []) for path in sorted(SAMPLE_IMAGES.iterdir())]
        images += [(path, full) for path in sorted((SAMPLE_IMAGES / "full").iterdir())]
        for image, reading in images:
            # An object file has no addresses, and what can't be read to its end is refused.
            if image.is_dir() or image.suffix == ".o" or image in self.refused(image, reading):
                continue
            for arguments in ([], ["--file-version", "1.5.1"], ["--structures"]):
                with self.subTest(image=image.name, arguments=arguments):
                    output, found = self.export(image, *arguments, *reading)
                    self.file("out.a2l", output)
                    _, error = self.run_program("update", "--check", "--bit-masks", "--report", "r.csv",
                                                "out.a2l", image, *reading)
                    with open(self.folder / "r.csv", newline="", encoding="utf-8") as file:
                        rows = list(csv.DictReader(file))
                    alike = self.alike(image, reading)
                    wrong = [row for row in rows if row["status"] != "unchanged" or row["differences"]]
                    wrong = [row for row in wrong if not alike.intersection(re.split(r"[.[]|_\d+$", row["object"]))
                             or row["newAddress"] != row["oldAddress"]]
                    self.assertEqual(wrong, [], error)
                    self.assertEqual(len(rows), len(found.objects))

    def alike(self, image, reading):
        """Names that several variables have which nothing tells apart, as statics without debug
        information, or only the numbers of the reader: the update must not guess which is meant."""
        rows = subprocess.run([PROGRAM, "vars", "--format", "json", *reading, image], capture_output=True,
                              check=True, timeout=60).stdout
        names = collections.Counter((re.sub(r"\.\d+$", "", row["name"]), row["compileUnit"])
                                    for row in json.loads(rows)["rows"])
        return {name.split("::")[-1] for (name, _), count in names.items() if count > 1}

    def refused(self, image, reading):
        """The image, if it can't be read to its end; nothing is then exported."""
        done = subprocess.run([PROGRAM, "vars", *reading, image], capture_output=True, timeout=60)
        if done.returncode == 0:
            return []
        output, _ = self.run_program("export", image, *reading, status=1)
        self.assertEqual(output, "")
        return [image]

    def test_it_says_what_an_engineer_needs(self):
        _, found = self.export(IMAGE)
        self.assertEqual(found.byte_order, "MSB_LAST")
        sine = found.objects["sine"]
        self.assertEqual((sine["kind"], sine["type"], sine["layout"]),
                         ("CHARACTERISTIC", "VAL_BLK", "RL_SWORD"))
        self.assertEqual(sine["MATRIX_DIM"], [3, 4, 2])
        gain = found.objects["motors[1].loops[0].gain"]
        self.assertEqual((gain["kind"], gain["datatype"], gain["address"], gain["SYMBOL_LINK"]),
                         ("MEASUREMENT", "FLOAT32_IEEE", 0x200000CC, ("motors[1].loops[0].gain", 0)))
        phase = found.objects["motors[1].status.phase"]
        self.assertEqual((phase["BIT_MASK"], phase["limits"]), (0x1FFE000, (0, 4095)))
        source = found.objects["main_supply.source"]
        table = found.tables[found.conversions[source["conversion"]]]
        self.assertEqual(table, {0.0: "SUPPLY_BATTERY", 300.0: "SUPPLY_MAINS"})
        self.assertIn("motor_c.counter", found.objects)
        self.assertIn("sensors_c.counter", found.objects)
        _, big = self.export(SAMPLE_IMAGES / "powerpc-c-dwarf2-O0.elf")
        self.assertEqual(big.byte_order, "MSB_FIRST")

    def test_the_user_chooses_what_is_exported_and_what_is_calibrated(self):
        _, found = self.export(IMAGE, "motors[[]0].loops*".replace("[[]", "["), "tick")
        self.assertEqual({name.split(".")[0] for name in found.objects}, {"motors[0]", "tick"})
        _, found = self.export(IMAGE, "--characteristics", "motors*gain", "motors*")
        kinds = {name: facts["kind"] for name, facts in found.objects.items()}
        self.assertEqual(kinds["motors[2].loops[1].gain"], "CHARACTERISTIC")
        self.assertEqual(kinds["motors[2].loops[1].integral"], "MEASUREMENT")
        _, found = self.export(IMAGE, "--section", ".data", "tick", "spare_words")
        self.assertEqual({name: facts["kind"] for name, facts in found.objects.items()},
                         {"tick": "CHARACTERISTIC", "spare_words": "MEASUREMENT"})
        _, error = self.run_program("export", IMAGE, "--section", ".none", "-o", "x.a2l", status=1)
        self.assertIn("no section matches '.none'; the sections are ", error)
        self.assertEqual(self.files(), [])

    def test_an_export_of_nothing_writes_nothing(self):
        self.file("old.a2l", "older")
        for arguments, message in [(["motrs"], "no leaf matches 'motrs'; similar names: motors"),
                                   (["[xy]"], "no leaf matches '[xy]'")]:
            for place in ([], ["-o", "old.a2l"]):
                output, error = self.run_program("export", IMAGE, *arguments, *place, status=1)
                self.assertEqual(output, "")
                self.assertIn(message, error)
        self.assertEqual((self.folder / "old.a2l").read_text(), "older")
        # Brackets around a whole pattern are a set, as anywhere else in it.
        output, _ = self.run_program("export", "--fragment", IMAGE, "[t][i][c][k]")
        self.assertIn("MEASUREMENT tick ", output)

    def test_a_fragment_fits_into_a_module(self):
        self.assertEqual(self.run_program("--fragment", "export", IMAGE, "tick"),
                         self.run_program("export", "--fragment", IMAGE, "tick"))
        output, found = self.export(IMAGE, "--fragment", fragment_version=60)
        self.assertNotIn("PROJECT", output)
        self.assertGreater(len(found.objects), 100)
        whole, _ = self.export(IMAGE)
        self.assertIn(output.strip(), whole)

    def test_structures_become_types(self):
        _, found = self.export(IMAGE, "--structures")
        motors = found.objects["motors"]
        self.assertEqual((motors["kind"], motors["MATRIX_DIM"]), ("INSTANCE", [3]))
        components = found.types[motors["type"]]["components"]
        self.assertEqual(found.types[motors["type"]]["size"], 112)
        self.assertIn("loops", components)
        self.assertIn("loops", found.types[components["loops"][0]]["components"] | components)
        frame = found.objects["default_frame"]
        self.assertTrue(frame["type"].endswith("_cal"))

    def test_names_stay_from_build_to_build(self):
        names = []
        for image in ["arm-c-dwarf4-O0.elf", "arm-c-dwarf4-O2.elf", "powerpc-c-dwarf4-O2.elf"]:
            _, found = self.export(SAMPLE_IMAGES / image, "motors*", "counter", "*stops*")
            names.append(set(found.objects))
        self.assertEqual(names[0], names[1])
        self.assertEqual(names[0], names[2])


if __name__ == "__main__":
    unittest.main()
