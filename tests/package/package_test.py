#!/usr/bin/env python3
"""Installs the library into a folder of the build tree and uses it as its users do: the examples are
built with find_package and with pkg-config, and what they print is compared with the program.

BRINDLE_BUILD and BRINDLE_SOURCE name the build tree and the sources, BRINDLE_PROGRAM the program,
BRINDLE_COMPILER and BRINDLE_COMPILER_FLAGS how the library was compiled.
"""

import csv
import io
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import unittest

BUILD = pathlib.Path(os.environ["BRINDLE_BUILD"])
SOURCE = pathlib.Path(os.environ["BRINDLE_SOURCE"])
PROGRAM = os.environ["BRINDLE_PROGRAM"]
COMPILER = os.environ["BRINDLE_COMPILER"]
FLAGS = os.environ.get("BRINDLE_COMPILER_FLAGS", "")

WORK = BUILD / "package-test"
PREFIX = WORK / "prefix"
EXAMPLES = SOURCE / "examples" / "cpp"
IMAGES = [SOURCE / "tests" / "samples" / "images" / name
          for name in ("arm-c-dwarf4-O0.elf", "arm-cpp-dwarf4-O0.elf", "powerpc-c-dwarf2-O0.elf",
                       "x86_64-symbols.elf", "i686-cpp-dwarf4-O0.exe")]


def run(*command, expect_success=True, **options):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=300, **options)
    if expect_success and done.returncode != 0:
        raise AssertionError(f"{command} failed:\n{done.stdout}")
    return done.stdout


def library_folder():
    return next(PREFIX.rglob("libbrindle.so")).parent


def needed_libraries(executable):
    return re.findall(r"NEEDED.*\[(.*)\]", run("readelf", "--dynamic", executable))


def program_rows(command, *arguments):
    # The hosts keep the library's manner of reading, the program has one of its own.
    text = run(PROGRAM, command, "--set", "mIsFullReading=0", "--format", "csv", *arguments)
    return list(csv.DictReader(io.StringIO(text)))


def program_variables(image):
    """What the program says of all variables: address, size, name."""
    return sorted((int(row["address"], 0), int(row["size"]), row["name"])
                  for row in program_rows("vars", image))


def host_variables(host, image, **options):
    lines = run(host, image, **options).splitlines()
    fields = [line.split(" ", 2) for line in lines]
    return sorted((int(address, 0), int(size), name) for address, size, name in fields)


def configure_examples(folder, *settings):
    run("cmake", "-S", EXAMPLES, "-B", folder, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={PREFIX}",
        f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_CXX_FLAGS={FLAGS} -Wall -Wextra -Wpedantic",
        "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON", *settings)


def compile_with_pkg_config(source, program):
    environment = {**os.environ, "PKG_CONFIG_PATH": str(library_folder() / "pkgconfig")}
    flags = run("pkg-config", "--cflags", "--libs", "brindle", env=environment)
    run(COMPILER, "-std=c++20", *shlex.split(FLAGS), source, *shlex.split(flags), "-o", program)
    return {"env": {**os.environ, "LD_LIBRARY_PATH": str(library_folder())}}


def setUpModule():
    shutil.rmtree(WORK, ignore_errors=True)
    for component in ("runtime", "development"):
        run("cmake", "--install", BUILD, "--component", component, "--prefix", PREFIX)


class InstalledLibraryTest(unittest.TestCase):
    def assert_same_variables(self, host, **options):
        for image in IMAGES:
            with self.subTest(host=host.name, image=image.name):
                expected = program_variables(image)
                self.assertTrue(expected)
                self.assertEqual(host_variables(host, image, **options), expected)

    def test_examples_build_with_find_package_and_agree_with_the_program(self):
        folder = WORK / "examples"
        configure_examples(folder)
        run("cmake", "--build", folder)
        soname = re.search(r"SONAME.*\[(.*)\]",
                           run("readelf", "--dynamic", library_folder() / "libbrindle.so")).group(1)
        self.assertRegex(soname, r"^libbrindle\.so\.\d")
        for host in ("own_model", "default_model"):
            self.assertIn(soname, needed_libraries(folder / host))
            self.assert_same_variables(folder / host)

        paths = ["motors[1].loops[0].gain", "motors[0].status.phase", "motor_step::stops"]
        lines = run(folder / "default_model", IMAGES[0], *paths).splitlines()
        rows = program_rows("find", IMAGES[0], *paths)
        self.assertEqual(len(rows), len(paths))
        for line, row in zip(lines, rows, strict=True):
            expected = f"{int(row['address'], 0):#x} {row['size']} {row['type']}"
            if row["bitSize"]:
                first = int(row["bitOffset"])
                expected += f" bits {first} to {first + int(row['bitSize']) - 1}"
            self.assertEqual(line, expected)
        self.assertRegex(run(folder / "default_model", IMAGES[0], "motors[1].no.such",
                             expect_success=False),
                         r"^motors\[1\]\.no\.such: .* after 'motors\[1\]'")

    def test_the_examples_in_c_build_with_find_package(self):
        folder = WORK / "examples-c"
        run("cmake", "-S", EXAMPLES.parent / "c", "-B", folder, "-G", "Ninja",
            f"-DCMAKE_PREFIX_PATH={PREFIX}", f"-DCMAKE_EXE_LINKER_FLAGS={FLAGS}")
        run("cmake", "--build", folder)
        self.assert_finds_a_variable(folder / "find_variable")

    def assert_finds_a_variable(self, host):
        row = program_rows("find", IMAGES[0], "motors[1].loops[0].gain")[0]
        self.assertEqual(run(host, IMAGES[0], row["name"]),
                         f"{row['address']} {row['size']} bytes, {row['type']}\n")

    def test_projects_in_c_alone_take_the_static_library(self):
        folder = WORK / "examples-c-static"
        run("cmake", "-S", EXAMPLES.parent / "c", "-B", folder, "-G", "Ninja",
            f"-DCMAKE_PREFIX_PATH={PREFIX}", f"-DCMAKE_EXE_LINKER_FLAGS={FLAGS}",
            "-DBUILD_SHARED_LIBS=OFF")
        run("cmake", "--build", folder)
        self.assertFalse([name for name in needed_libraries(folder / "find_variable")
                          if "brindle" in name])
        self.assert_finds_a_variable(folder / "find_variable")

        # An installation without the shared library.
        prefix = WORK / "static-prefix"
        shutil.copytree(PREFIX, prefix, symlinks=True, dirs_exist_ok=True)
        for library in prefix.rglob("libbrindle.so*"):
            library.unlink()
        pkg_config = next(prefix.rglob("brindle.pc")).parent
        flags = run("pkg-config", "--static", "--cflags", "--libs", "brindle",
                    env={**os.environ, "PKG_CONFIG_PATH": str(pkg_config)})
        host = WORK / "find_variable_static"
        run("cc", "-std=c99", EXAMPLES.parent / "c" / "find_variable.c", *shlex.split(flags),
            *shlex.split(FLAGS), "-o", host)
        self.assert_finds_a_variable(host)

    def test_a_project_without_shared_libraries_gets_the_static_one(self):
        folder = WORK / "static-examples"
        configure_examples(folder, "-DBUILD_SHARED_LIBS=OFF")
        run("cmake", "--build", folder, "--target", "own_model")
        self.assertFalse([name for name in needed_libraries(folder / "own_model")
                          if "brindle" in name])
        self.assert_same_variables(folder / "own_model")

    def test_pkg_config_gives_what_a_compiler_needs(self):
        options = compile_with_pkg_config(EXAMPLES / "own_model.cpp", WORK / "own_model")
        self.assert_same_variables(WORK / "own_model", **options)

    def test_options_exceptions_and_types_cross_the_border_of_the_shared_library(self):
        options = compile_with_pkg_config(SOURCE / "tests" / "package" / "boundary_host.cpp",
                                          WORK / "boundary_host")
        self.assertEqual(run(WORK / "boundary_host", IMAGES[0], **options), "")

    def test_only_the_own_minor_version_is_found(self):
        header = next(PREFIX.rglob("Version.h")).read_text()
        major, minor = (int(re.search(rf"BRINDLE_VERSION_{part} (\d+)", header).group(1))
                        for part in ("MAJOR", "MINOR"))
        project = WORK / "version"
        project.mkdir(exist_ok=True)
        for wanted, is_found in ((f"{major}.{minor}", True), (f"{major}.{minor + 1}", False),
                                 (f"{major + 1}.0", False)):
            (project / "CMakeLists.txt").write_text(
                "cmake_minimum_required(VERSION 3.25)\nproject(version LANGUAGES NONE)\n"
                f"find_package(brindle {wanted})\nmessage(STATUS \"found=${{brindle_FOUND}}\")\n")
            output = run("cmake", "-S", project, "-B", project / wanted,
                         f"-DCMAKE_PREFIX_PATH={PREFIX}")
            self.assertIn(f"found={1 if is_found else 0}", output, wanted)

    def test_public_headers_need_only_public_headers(self):
        folder = PREFIX / "include"
        headers = sorted(path.relative_to(folder) for path in folder.rglob("*.h"))
        self.assertGreater(len(headers), 20)
        self.assertEqual({path.parts[0] for path in headers}, {"brindle"})
        source = WORK / "all_headers.cpp"
        source.write_text("".join(f"#include <{header}>\n" for header in headers))
        run(COMPILER, "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only",
            "-I", folder, source)


def qualified_name(symbol):
    """The name of a demangled symbol, without result, arguments and what says that it is a table."""
    head = re.sub(r"^(?:vtable|typeinfo|typeinfo name) for ", "", symbol).split("(")[0]
    return re.search(r"([\w:~=]+)(?:<.*>)?(?:\[abi:\w+\])?$", head).group(1)


class ExportedSymbolsTest(unittest.TestCase):
    def exported_names(self):
        """The names that the public headers mark, qualified: those of classes and of functions."""
        classes, functions = set(), set()
        for header in (PREFIX / "include").rglob("*.h"):
            namespace = ""
            for line in header.read_text().splitlines():
                if match := re.match(r"namespace ([\w:]+) \{", line):
                    namespace = match.group(1) + "::"
                elif match := re.match(r"(?:class|struct) BRINDLE_EXPORT (\w+)", line):
                    classes.add(namespace + match.group(1))
                elif match := re.match(r"BRINDLE_EXPORT .*?(\w+)\(", line):
                    functions.add(namespace + match.group(1))
                elif match := re.match(r"BRINDLE_C_API .*?(\w+)\(", line):
                    functions.add(match.group(1))
        return classes, functions

    def test_the_shared_library_shows_what_the_public_headers_mark_and_nothing_else(self):
        classes, functions = self.exported_names()
        lines = run("nm", "--dynamic", "--defined-only", "--demangle",
                    library_folder() / "libbrindle.so").splitlines()
        symbols = [line.split(" ", 2)[2] for line in lines]
        self.assertGreater(len(symbols), 100)

        strangers, seen = [], set()
        for symbol in symbols:
            name = qualified_name(symbol)
            seen.add(name)
            parts = name.split("::")
            owners = {"::".join(parts[:length]) for length in range(1, len(parts) + 1)}
            if name not in functions and not owners & classes:
                strangers.append(symbol)
        self.assertEqual(strangers, [])
        self.assertEqual(functions - seen, set())


if __name__ == "__main__":
    unittest.main()
