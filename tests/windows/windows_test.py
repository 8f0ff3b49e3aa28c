#!/usr/bin/env python3
"""Holds the program and the DLL for Windows, which run under Wine, against the program of this machine:
results, messages and exit status are to be the same to the byte.

BRINDLE_WINDOWS_PROGRAM and BRINDLE_WINDOWS_HOST name the program and the host in C that lists variables,
BRINDLE_WINDOWS_LIBRARY the folder of the DLL, BRINDLE_WINE what runs them, BRINDLE_NATIVE_PROGRAM the program
of this machine, BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "program"))
import a2l_test  # for its descriptions
import program_test  # for its images

NATIVE = [os.environ["BRINDLE_NATIVE_PROGRAM"]]
WINE = os.environ["BRINDLE_WINE"]
WINDOWS = [WINE, os.environ["BRINDLE_WINDOWS_PROGRAM"]]
WINDOWS_HOST = [WINE, os.environ["BRINDLE_WINDOWS_HOST"]]
SAMPLES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
IMAGES = sorted(str(path.relative_to(SAMPLES)) for path in SAMPLES.rglob("*")
                if path.is_file() and path.suffix in (".elf", ".exe", ".dll", ".o"))
IMAGE = "arm-c-dwarf4-O0.elf"
# Wine passes arguments and names on in the encoding of the locale. Its own remarks are no results.
SETTING = dict(os.environ, LC_ALL="C.UTF-8", WINEDEBUG="-all",
               WINEPATH="Z:" + os.environ["BRINDLE_WINDOWS_LIBRARY"].replace("/", "\\"))


def run(program, *arguments, folder, stdin=b""):
    """Exit status, standard output and standard error."""
    done = subprocess.run([*program, *map(str, arguments)], capture_output=True, cwd=folder, input=stdin,
                          env=SETTING, timeout=300)
    return done.returncode, done.stdout, done.stderr


class WindowsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="brindle-windows-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def check(self, *arguments, folder=None, stdin=b"", status=0):
        """Both programs say the same; returns what that is."""
        folder = folder or self.folder
        expected = run(NATIVE, *arguments, folder=folder, stdin=stdin)
        with self.subTest(arguments=arguments):
            self.assertEqual(expected[0], status, expected[2])
            self.assertEqual(run(WINDOWS, *arguments, folder=folder, stdin=stdin), expected)
        return expected

    def file(self, name, content):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path


class SampleTest(WindowsTest):
    def check_all(self, *command):
        self.assertGreater(len(IMAGES), 30)
        for image in IMAGES:
            expected = run(NATIVE, *command, image, folder=SAMPLES)
            with self.subTest(image=image, command=command):
                self.assertEqual(run(WINDOWS, *command, image, folder=SAMPLES), expected)

    def test_dumps(self):
        self.check_all("dump")

    def test_leaves(self):
        self.check_all("leaves", "--format", "csv")

    def test_traces(self):
        for manner in ["0", "1"]:
            # Some of them can't be read in one manner or the other.
            output = self.check("trace", "--set", "mIsFullReading=" + manner, *IMAGES, folder=SAMPLES,
                                status=1)[1]
            self.assertGreater(output.count(b"\n"), 5000)

    def test_further_commands(self):
        for command in [["vars"], ["vars", "--format", "json", "--values"], ["info"], ["types"],
                        ["report", "-o", "-"], ["a2l", "export"]]:
            self.check(*command, IMAGE, folder=SAMPLES)
        self.check("diff", IMAGE, "arm-c-dwarf4-O2.elf", folder=SAMPLES)
        self.check("--help")
        self.check("leaves", "--help")

    def test_variables_over_the_dll(self):
        for image in [IMAGE, "x86_64-cpp-dwarf2-O2.exe", "powerpc-cpp-dwarf4-O0.elf"]:
            expected = run(NATIVE, "vars", "--sort", "file", "--set", "mIsFullReading=0", "--format", "csv",
                           image, folder=SAMPLES)
            status, output, error = run(WINDOWS_HOST, image, folder=SAMPLES)
            self.assertEqual((status, error), expected[::2])
            # The host writes text, whose lines end as the system likes.
            self.assertEqual(output.replace(b"\r\n", b"\n"), expected[1])


class FileTest(WindowsTest):
    def test_what_is_no_image_is_told_in_the_same_words(self):
        elf = program_test.elf_image(program_test.TWO_SYMBOLS)
        windows_image = (SAMPLES / "i686-c-dwarf2-O0.exe").read_bytes()
        for name, content in [("empty", b""), ("text", b"a text, not an image\n"), ("short", elf[:20]),
                              ("cut", elf[:-1]), ("half.exe", windows_image[:len(windows_image) // 2])]:
            self.file(name, content)
            self.check("vars", name, status=1)
        (self.folder / "folder").mkdir()
        for name in ["missing", "folder", "folder/"]:
            self.check("dump", name, status=1)
        self.check("vars", "missing", "--language", "49", status=1)
        self.check("a2l", "update", "missing.a2l", SAMPLES / IMAGE, status=1)
        self.check("a2l", "update", "folder", SAMPLES / IMAGE, status=1)
        for place in ["folder", "missing/out"]:
            for command in [["report", SAMPLES / IMAGE, "-o"], ["a2l", "export", SAMPLES / IMAGE, "-o"]]:
                self.check(*command, place, status=1)

    def test_names_beyond_ascii_and_long_ones(self):
        long_folder = pathlib.Path(*["Messgeräte und Regler " + str(index) * 60 for index in range(5)])
        for folder in [pathlib.Path("geänderte Übersicht"), pathlib.Path("温度"), long_folder]:
            image = folder / "Zünd größe.elf"
            self.file(image, (SAMPLES / IMAGE).read_bytes())
            self.check("dump", image)
            self.check("vars", image)
            for output in ["report", "export"]:
                command = ["report", image] if output == "report" else ["a2l", "export", image]
                expected = self.folder / folder / "native"
                given = self.folder / folder / "über.out"
                for program, path in [(NATIVE, expected), (WINDOWS, given)]:
                    # The second time the file is replaced.
                    for _ in range(2):
                        status = run(program, *command, "-o", path.relative_to(self.folder),
                                     folder=self.folder)
                        self.assertEqual(status[0], 0, status[2])
                self.assertEqual(given.read_bytes(), expected.read_bytes())
                self.assertEqual({path.name for path in given.parent.iterdir()},
                                 {image.name, "native", "über.out"})
                expected.unlink()
                given.unlink()

    def test_logs_are_the_same_and_never_replace_the_image(self):
        names = ["Zünd.log", "Zünd.elf.debugInfoNodes0.rec0.log.txt"]
        texts = []
        for program in [NATIVE, WINDOWS]:
            self.file("Zünd.elf", (SAMPLES / IMAGE).read_bytes())
            arguments = ["--set", "mIsLogFile=1", "--set", "mDumpDebugInfoNodes=1", "vars", "Zünd.elf"]
            self.assertEqual(run(program, *arguments, folder=self.folder)[0], 0)
            # The log has the time in some lines, as the node dump has not.
            texts.append((self.folder / names[1]).read_bytes())
            self.assertNotIn(b"\r", (self.folder / names[0]).read_bytes())
            for name in names:
                (self.folder / name).unlink()
        self.assertEqual(*texts)
        content = (SAMPLES / IMAGE).read_bytes()
        image = self.file("image.log", content)
        run(WINDOWS, "--set", "mIsLogFile=1", "vars", "image.log", folder=self.folder)
        self.assertEqual(image.read_bytes(), content)

    def test_files_beyond_four_gigabytes(self):
        content = program_test.elf_image(program_test.TWO_SYMBOLS, is_64=True)
        sections, = struct.unpack_from("<Q", content, 0x28)
        for place in [3 << 30, 5 << 30]:
            with open(self.folder / "huge.elf", "wb") as file:
                file.write(content[:0x28] + struct.pack("<Q", place) + content[0x30:sections])
                file.seek(place)
                file.write(content[sections:])
            output = self.check("vars", "huge.elf")[1]
            self.assertIn(b"gSpeed", output)

    def test_an_update_of_a_description_with_included_files(self):
        included = a2l_test.measurement("tick", "0x0").encode()
        main = a2l_test.description('/include "sub\\größe.a2l"\n' + a2l_test.measurement("gone", "0x4"))
        written = []
        for program in [NATIVE, WINDOWS]:
            shutil.rmtree(self.folder)
            self.file("sub/größe.a2l", included)
            self.file("main.a2l", main.replace("\n", "\r\n").encode())
            (self.folder / "neu").mkdir()
            result = run(program, "a2l", "update", "main.a2l", SAMPLES / IMAGE, "-o", "neu/ä.a2l", "--report",
                         "report.csv", folder=self.folder)
            # The report and the messages name files as the system writes paths.
            files = {str(path.relative_to(self.folder)): path.read_bytes().replace(b"sub\\", b"sub/")
                     for path in self.folder.rglob("*") if path.is_file() and path.suffix == ".a2l"}
            report = (self.folder / "report.csv").read_bytes().replace(b"sub\\", b"sub/")
            written.append((result[0], result[1], result[2].replace(b"sub\\", b"sub/"), files, report))
        self.assertEqual(written[0][0], 0, written[0][2])
        self.assertEqual(written[1], written[0])
        self.assertEqual(len(written[0][3]), 4)
        self.assertNotEqual(written[0][3]["neu/sub/größe.a2l"], included)


class ArgumentTest(WindowsTest):
    def test_words_reach_the_program_as_they_are(self):
        self.file("größe.elf", program_test.elf_image([
            ("größe", 0x1000, 4, program_test.GLOBAL_OBJECT),
            ("温度", 0x1004, 4, program_test.GLOBAL_OBJECT)]))
        # The first would fit the file's own name, too, if someone looked for files.
        for pattern in ["gr*", "größe", "温?", "[a-z]*"]:
            self.assertIn(b"0x", self.check("vars", "größe.elf", pattern)[1])
        self.check("find", "größe.elf", "-", stdin="größe\r\n温度\n".encode())
        self.check("demangle", 'a "quoted" name\\', "_ZN3fooC1Ev", "--itanium")
        self.check("vars", "größe.elf", "--größe", status=2)


if __name__ == "__main__":
    unittest.main()
