#!/usr/bin/env python3
"""What fish and zsh offer to complete. That of bash is in documents_test.py.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources.
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

PROGRAM = pathlib.Path(os.environ["BRINDLE_PROGRAM"])
SCRIPTS = pathlib.Path(os.environ["BRINDLE_SOURCE"]) / "app" / "completion"

# Stands in for the completion system of zsh and prints what it is given.
ZSH_SYSTEM = """
compdef() { : }
compset() { : }
_describe() { print -rl -- "${(P@)2}" }
_files() { print -rl -- *(N) }
compadd() {
    while [[ $1 == -* ]]; do
        [[ $1 != -S ]] || shift
        [[ $1 != -- ]] || { shift; break }
        shift
    done
    print -rl -- "$@"
}
script=$1
shift
words=("$@")
CURRENT=$#words
source $script
"""


class CompletionTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "image.elf").touch()

    def run_shell(self, *arguments):
        environment = {**os.environ, "PATH": f"{PROGRAM.parent}:{os.environ['PATH']}",
                       "HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder / "config")}
        done = subprocess.run(arguments, capture_output=True, cwd=self.folder, env=environment,
                              timeout=120)
        self.assertEqual(done.stderr, b"")
        return done.stdout.decode().splitlines()

    def fish(self, *words):
        script = f"source '{SCRIPTS}/brindle.fish'; complete -C \"$argv\""
        lines = self.run_shell("fish", "-c", script, " ".join(["brindle", *words]))
        return {line.split("\t")[0]: line.partition("\t")[2] for line in lines}

    def zsh(self, *words):
        lines = self.run_shell("zsh", "-fc", ZSH_SYSTEM, "zsh", str(SCRIPTS / "_brindle"),
                               "brindle", *words)
        return {line.split(":")[0]: line.partition(":")[2] for line in lines}

    def test_both_shells_offer_what_the_help_has(self):
        for shell in [self.fish, self.zsh]:
            for words, offered, missing in [
                    ([""], {"vars", "a2l", "help"}, {"update", "--sort"}),
                    (["a2l", ""], {"update", "export"}, {"vars"}),
                    (["help", ""], {"vars", "demangle"}, {"image.elf"}),
                    (["vars", "--"], {"--sort", "--unit", "--help", "--format"}, {"--output"}),
                    (["a2l", "export", "--"], {"--fragment", "--set"}, {"--sort"}),
                    (["vars", "--sort", ""], {"address", "name", "size", "file"}, {"image.elf"}),
                    (["leaves", "--no-progress", "--format", ""], {"table", "csv", "json"}, set()),
                    (["vars", "i"], {"image.elf"}, {"vars"}),
                    (["vars", "--section", "i"], {"image.elf"}, set()),
                    (["report", "x.elf", "-o", "i"], {"image.elf"}, set()),
                    (["dump", "--set", "mMod"], {"mModuleOffset="}, {"image.elf"}),
                    (["demangle", "i"], set(), {"image.elf"}),
                    (["vars", "--language", ""], set(), {"image.elf"})]:
                with self.subTest(shell=shell.__name__, words=words):
                    found = shell(*words)
                    self.assertLessEqual(offered, set(found))
                    self.assertFalse(missing & set(found))
            self.assertEqual(shell("vars", "--al")["--all-types"],
                             "Read types too that no variable uses")


if __name__ == "__main__":
    unittest.main()
