#!/usr/bin/env python3
"""Holds what tells of the program against the program itself: man page, completion and README.

BRINDLE_PROGRAM names the program, BRINDLE_SOURCE the folder of the sources.
"""

import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SOURCE = pathlib.Path(os.environ["BRINDLE_SOURCE"])


def output_of(*arguments):
    return subprocess.run(arguments, capture_output=True, check=True, timeout=60).stdout.decode()


def commands_of(*group):
    """The commands that a help lists, none for the help of a command."""
    parts = output_of(PROGRAM, *group, "--help").split("Commands:")
    return re.findall(r"^  ([a-z0-9]+) ", parts[1], re.M) if len(parts) > 1 else []


def commands():
    """All commands, those of a group with its name in front."""
    return [" ".join([name, *inner]) for name in commands_of()
            for inner in ([[inner] for inner in commands_of(name)] or [[]])]


def options(*command):
    """Long options of a command, or of the program, by its help."""
    text = output_of(PROGRAM, *command, "--help").split("\nOptions:\n")[1]
    return re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.M)


def choices(option):
    return re.search(rf"{option} ([a-z|]+) ", output_of(PROGRAM, "vars", "--help"))[1].split("|")


def reader_options():
    return [line.split()[0] for line in output_of(PROGRAM, "--list-options").splitlines()[1:]]


class ManPageTest(unittest.TestCase):
    def setUp(self):
        self.text = (SOURCE / "app" / "brindle.1").read_text()

    def test_it_has_the_commands_and_options_of_the_program_and_no_others(self):
        synopsis = self.text.split(".Sh SYNOPSIS")[1].split(".Sh DESCRIPTION")[0]
        self.assertEqual(re.findall(r"^\.Cm ([\w ]+)$", synopsis, re.M), commands())
        self.assertEqual(re.findall(r"^\.It Cm ([\w ]+)$", self.text, re.M), commands())
        known = {option for command in commands() for option in options(*command.split())}
        known |= {*options()}
        told = {"-" + option for option in re.findall(r"Fl (-[a-z-]+)", self.text)}
        self.assertEqual(told, known)
        items = "\n".join(re.findall(r"^\.It .*$", self.text, re.M))
        self.assertEqual({"-" + option for option in re.findall(r"Fl (-[a-z-]+)", items)}, known)
        for option in ["--container", "--format"]:
            self.assertIn(f".It Fl -{option[2:]} Cm {' | '.join(choices(option))}\n", self.text)

    def test_its_examples_are_calls_that_the_program_takes(self):
        for call in re.findall(r"^\.Dl brindle (.*)$", self.text, re.M):
            with self.subTest(call=call):
                with tempfile.TemporaryDirectory() as folder:
                    done = subprocess.run(["sh", "-c", f'"$0" {call}', PROGRAM], cwd=folder,
                                          capture_output=True, timeout=60)
                self.assertIn(b"No such file or directory", done.stderr)


class CompletionTest(unittest.TestCase):
    SCRIPT = """
source "$1/app/completion/brindle.bash"
compopt() { :; }
shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_brindle "$1" "${COMP_WORDS[COMP_CWORD]}" ""
((${#COMPREPLY[@]} == 0)) || printf '%s\\n' "${COMPREPLY[@]}"
"""

    def complete(self, *words, folder="."):
        done = subprocess.run(
            ["bash", "-c", self.SCRIPT, "bash", str(SOURCE), PROGRAM, *words],
            capture_output=True, check=True, cwd=folder, timeout=60)
        self.assertEqual(done.stderr, b"")
        return done.stdout.decode().splitlines()

    def test_commands_and_options_are_those_of_the_program(self):
        self.assertEqual(self.complete(""), commands_of())
        self.assertEqual(self.complete("d"), [name for name in commands_of() if name[0] == "d"])
        self.assertEqual(self.complete("a2l", ""), commands_of("a2l"))
        self.assertEqual(self.complete("--"), options())
        for command in [*commands(), "a2l"]:
            with self.subTest(command=command):
                words = command.split()
                self.assertEqual(self.complete(*words, "--"), options(*words))

    def test_values_of_options(self):
        for option in ["--format", "--container", "--sort", "--color"]:
            with self.subTest(option=option):
                self.assertEqual(self.complete("vars", option, ""), choices(option))
                # The line editor takes "=" for a word of its own.
                self.assertEqual(self.complete("vars", option, "="), choices(option))
                last = choices(option)[-1]
                self.assertEqual(self.complete("vars", option, "=", last[:1]), [last])
        names = [name + "=" for name in reader_options()]
        self.assertEqual(self.complete("dump", "--set", ""), names)
        self.assertEqual(self.complete("demangle", "--set", "=", "mModule"), ["mModuleOffset="])
        self.assertEqual(self.complete("vars", "--set", "mModuleOffset", "=", "1"), [])
        self.assertEqual(self.complete("vars", "--language", ""), [])

    def test_files_have_any_name(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ["an image.elf", "another.elf", "text"]:
                (pathlib.Path(folder) / name).touch()
            for words in [["vars", "an"], ["vars", "--format", "=", "csv", "an"],
                          ["diff", "--no-progress", "x.elf", "an"]]:
                with self.subTest(words=words):
                    self.assertEqual(sorted(self.complete(*words, folder=folder)),
                                     ["an image.elf", "another.elf"])
            self.assertEqual(self.complete("demangle", "an", folder=folder), [])


class ReadmeTest(unittest.TestCase):
    def test_it_has_all_commands_and_real_output(self):
        text = (SOURCE / "README.md").read_text()
        session = text.split("## A session")[1].split("\n## ")[0]
        calls = re.findall(r"^\$ (brindle .*)\n((?:(?!\$ |```).*\n)*)", session, re.M)
        self.assertGreater(len(calls), 3)
        for call, shown in calls:
            with self.subTest(call=call):
                done = subprocess.run([PROGRAM, *shlex.split(call)[1:]], cwd=SOURCE, timeout=60,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                self.assertEqual(shown, done.stdout.decode())
        self.assertEqual(re.findall(r"^\| `brindle ((?:a2l )?\w+) ", text, re.M), commands())


if __name__ == "__main__":
    unittest.main()
