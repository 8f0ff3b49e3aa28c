#!/usr/bin/env python3
"""Builds the embedded example from nothing: the library along with a host of it, as a project does that
takes Brindle in.

BRINDLE_BUILD and BRINDLE_SOURCE name the build tree and the sources, BRINDLE_PROGRAM the program,
BRINDLE_COMPILER how the library was compiled.
"""

import os
import pathlib
import shutil
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["BRINDLE_SOURCE"])
WORK = pathlib.Path(os.environ["BRINDLE_BUILD"]) / "embedding-test"
IMAGE = SOURCE / "tests" / "samples" / "images" / "arm-c-dwarf4-O0.elf"


def run(*command):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=1500)
    if done.returncode != 0:
        raise AssertionError(f"{command} failed:\n{done.stdout}")
    return done.stdout


def configure(folder, *settings):
    shutil.rmtree(folder, ignore_errors=True)
    run("cmake", "-S", SOURCE / "examples" / "embedded", "-B", folder, "-G", "Ninja",
        f"-DCMAKE_CXX_COMPILER={os.environ['BRINDLE_COMPILER']}", *settings)


class EmbeddingTest(unittest.TestCase):
    def assert_the_library_comes_alone(self, folder):
        targets = run("ninja", "-C", folder, "-t", "targets", "all")
        self.assertIn("own_model:", targets)
        for unwanted in ("brindle_tests", "brindle_program", "_benchmark", "list_variables"):
            self.assertNotIn(unwanted, targets)
        run("cmake", "--install", folder, "--prefix", folder / "prefix")
        self.assertFalse(list(folder.glob("prefix/**/*brindle*")))

    def test_fetched_content_builds_from_nothing(self):
        folder = WORK / "fetched"
        # The sources at hand stand for the repository.
        configure(folder, f"-DFETCHCONTENT_SOURCE_DIR_BRINDLE={SOURCE}")
        run("cmake", "--build", folder, "--target", "own_model", "default_model")
        line = run(folder / "default_model", IMAGE, "motors[1].loops[0].gain")
        self.assertTrue(line.startswith("0x200000cc 4 float"), line)
        self.assertIn(" motors\n", run(folder / "own_model", IMAGE))
        self.assert_the_library_comes_alone(folder)

    def test_a_subdirectory_gives_the_documented_headers(self):
        folder = WORK / "subdirectory"
        configure(folder, f"-DBRINDLE_FOLDER={SOURCE}")
        # The library is the one that fetched content builds: here the host alone is compiled.
        objects = [target.split(":")[0]
                   for target in run("ninja", "-C", folder, "-t", "targets", "all").splitlines()
                   if target.split(":")[0].endswith("_model.cpp.o")]
        self.assertEqual(len(objects), 2)
        run("ninja", "-C", folder, *objects)
        self.assert_the_library_comes_alone(folder)


if __name__ == "__main__":
    unittest.main()
