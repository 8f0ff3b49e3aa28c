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
    # In groups of sources, the library compiles three times as fast.
    run("cmake", "-S", SOURCE / "examples" / "embedded", "-B", folder, "-G", "Ninja",
        f"-DCMAKE_CXX_COMPILER={os.environ['BRINDLE_COMPILER']}", "-DCMAKE_UNITY_BUILD=ON",
        "-DCMAKE_UNITY_BUILD_BATCH_SIZE=16", *settings)


class EmbeddingTest(unittest.TestCase):
    def assert_the_hosts_work(self, folder):
        # Other tests run beside this one, and some of them measure time.
        run("cmake", "--build", folder, "--parallel", "1", "--target", "own_model", "default_model")
        line = run(folder / "default_model", IMAGE, "motors[1].loops[0].gain")
        self.assertTrue(line.startswith("0x200000cc 4 float"), line)
        self.assertIn(" motors\n", run(folder / "own_model", IMAGE))

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
        self.assert_the_hosts_work(folder)
        self.assert_the_library_comes_alone(folder)

    def test_a_subdirectory_builds_from_nothing(self):
        folder = WORK / "subdirectory"
        configure(folder, f"-DBRINDLE_FOLDER={SOURCE}")
        self.assert_the_hosts_work(folder)
        self.assert_the_library_comes_alone(folder)


if __name__ == "__main__":
    unittest.main()
