#!/usr/bin/env python3
"""Runs the commands of the program over files of any kind, in both manners of reading, and looks for findings:

- the program crashes, a sanitizer reports an error, or the exit status is none that the program documents;
- a run fails without a message;
- a run takes more time or memory than its bounds (docs/reliability.md), with the given factors, or waits for ever.

Standard output has a row for each file and one for all of them. What a finding wrote is kept in a folder, in a
file named after the input in its folder, the command and the manner. Exit status 1 if there are findings, 2 if
there is nothing to read.
"""
import argparse
import collections
import hashlib
import os
import pathlib
import re
import resource
import selectors
import subprocess
import sys
import time

COMMANDS = ["vars", "leaves", "types", "dump", "info", "report"]
MANNERS = {"full": [], "classic": ["--set", "mIsFullReading=0"]}

# The bounds of a command, for a release build: a fixed part, and one for each byte read and written.
FIXED_SECONDS = 1
SECONDS = 10e-6
FIXED_BYTES = 64 << 20
BYTES = 256

# As sanitizers and assertions begin their reports, since messages of the program have names of files, which may say
# anything: "brindle: Assertion.elf: ...".
SANITIZER_REPORT = re.compile(
    rb"""^(?:==\d+==\s?(?:ERROR|WARNING):\ |WARNING:\ )(?P<report>\w+Sanitizer\b.*)
       | ^(?:<unknown>|[^:\n]+(?:(?::\d+){1,2}|\+0x[0-9a-f]+)):\ (?P<behaviour>runtime\ error:.*)
       | ^(?:[^:\n]+:\ )?[^:\n]+:\d+:\ .*(?P<assertion>Assertion\ [`'].*'\ failed\.)\s*$""",
    re.MULTILINE | re.VERBOSE)
POLL_SECONDS = 0.05
# Of the beginning of what a run writes; of its messages, also of the end, where the report of a crash is.
KEPT_BYTES = 1 << 20
LONGEST_NAME = 255
# A run may wait for a disk or for other processes, but not take longer by the clock than this times its bound of
# processor time, besides a fixed part.
WAIT_FACTOR = 10
PAGE = os.sysconf("SC_PAGE_SIZE")
TICKS = os.sysconf("SC_CLK_TCK")


class Run:
    """One run of the program: its status, what it took, and what is wrong with it, if anything."""

    def __init__(self, words, size, factors, wait):
        self.words = words
        self.written = 0
        self.messages = b""
        self.last_messages = b""
        self.output = b""
        self.finding = ""
        self.seconds = 0.0
        self.memory = 0
        child = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE)
        self.follow(child, size, factors, wait)
        _, status, usage = os.wait4(child.pid, 0)
        self.messages += self.last_messages
        child.returncode = self.status = os.waitstatus_to_exitcode(status)
        self.seconds = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss * 1024
        self.judge(size, factors)

    def bounds(self, size, factors):
        count = size + self.written
        return (factors[0] * (FIXED_SECONDS + SECONDS * count), factors[1] * (FIXED_BYTES + BYTES * count))

    def follow(self, child, size, factors, wait):
        """Reads what the program writes until it ends, and ends it where it passes its bounds."""
        with selectors.DefaultSelector() as pipes:
            for pipe in (child.stdout, child.stderr):
                pipes.register(pipe, selectors.EVENT_READ)
            started = checked = time.monotonic()
            while pipes.get_map():
                for key, _ in pipes.select(POLL_SECONDS):
                    self.take(child, pipes, key.fileobj)
                if time.monotonic() - checked > POLL_SECONDS:
                    checked = time.monotonic()
                    self.check(child, size, factors)
                    self.check_wait(child, checked - started, wait + WAIT_FACTOR * self.bounds(size, factors)[0])

    def take(self, child, pipes, pipe):
        block = pipe.read1(1 << 16)
        if not block:
            pipes.unregister(pipe)
        elif pipe is child.stdout:
            self.written += len(block)
            self.output = (self.output + block)[:KEPT_BYTES]
        else:
            room = KEPT_BYTES - len(self.messages)
            self.messages += block[:room]
            self.last_messages = (self.last_messages + block[room:])[-KEPT_BYTES:]

    def check(self, child, size, factors):
        try:
            process = pathlib.Path("/proc", str(child.pid))
            times = process.joinpath("stat").read_text().rpartition(")")[2].split()[11:13]
            memory = int(process.joinpath("statm").read_text().split()[1]) * PAGE
        except (OSError, IndexError):
            return  # it has just ended
        seconds = sum(map(int, times)) / TICKS
        limits = self.bounds(size, factors)
        if not self.finding and (seconds > limits[0] or memory > limits[1]):
            self.finding = f"ended after {seconds:.1f} s with {memory / 1e6:.0f} MB: above its bounds"
            child.kill()

    def check_wait(self, child, waited, limit):
        if not self.finding and waited > limit:
            self.finding = f"ended after waiting {waited:.0f} s"
            child.kill()

    def judge(self, size, factors):
        limits = self.bounds(size, factors)
        report = SANITIZER_REPORT.search(self.messages)
        if self.finding:
            return
        if report:
            self.finding = report[report.lastgroup].decode(errors="replace")[:100]
        elif self.status not in (0, 1):
            self.finding = f"ended with {self.status}"
        elif self.status == 1 and not self.messages.strip():
            self.finding = "failed without a message"
        elif self.seconds > limits[0]:
            self.finding = f"took {self.seconds:.1f} s: above its bound"
        elif self.memory > limits[1]:
            self.finding = f"took {self.memory / 1e6:.0f} MB: above its bound"


class Result:
    """What the runs over one file, or over all of them, gave."""

    def __init__(self):
        self.files = 0
        self.bytes = 0
        self.read = collections.Counter()
        self.milliseconds = 0.0
        self.memory = 0
        self.findings = 0

    def add(self, other):
        self.files += other.files
        self.bytes += other.bytes
        self.read += other.read
        self.milliseconds = max(self.milliseconds, other.milliseconds)
        self.memory = max(self.memory, other.memory)
        self.findings += other.findings

    def row(self, name):
        cells = [name, self.files, f"{self.bytes / 1e6:.2f}"]
        for manner in MANNERS:
            cells += [self.read[manner], self.files - self.read[manner]]
        cells += [f"{self.milliseconds:.0f}", f"{self.memory / 1e6:.0f}", self.findings]
        return "| " + " | ".join(map(str, cells)) + " |"


HEAD = ["File", "Files", "MB", *(f"{what}, {manner}" for manner in MANNERS for what in ("Read", "Refused")),
        "Worst ms/MB", "Most MB", "Findings"]


def kept_name(name, ending):
    """The name of a file as part of another one; a long one is cut, and a digest tells it from others."""
    name = os.fsencode(name.replace(os.sep, "_"))
    room = LONGEST_NAME - len(ending)
    if len(name) > room:
        digest = "." + hashlib.sha256(name).hexdigest()[:16]
        name = name[:room - len(digest)] + digest.encode()
    return os.fsdecode(name) + ending


def keep(folder, name, command, manner, run):
    folder.mkdir(parents=True, exist_ok=True)
    kept = folder / kept_name(name, f".{command}.{manner}.txt")
    text = f"{' '.join(map(str, run.words))}\nstatus {run.status}: {run.finding}\n"
    kept.write_bytes(text.encode(errors="surrogateescape") + run.messages + run.output[:1000])
    print(f"corpus: {name}: {command}, {manner} reading: {run.finding}; see {kept}", file=sys.stderr,
          flush=True)


def read(path, name, arguments):
    """Runs every command over one file in both manners. The file counts as read if `dump` succeeds: other
    commands fail too if they find nothing to list."""
    result = Result()
    result.files = 1
    result.bytes = path.stat().st_size
    for manner, options in MANNERS.items():
        for command in COMMANDS:
            words = [arguments.program, command, "--no-progress", *options, path]
            if command == "report":
                words += ["--output", "-"]
            run = Run(words, result.bytes, (arguments.time_factor, arguments.memory_factor), arguments.wait)
            # The start of the program doesn't count for a small file.
            megabytes = max((result.bytes + run.written) / 1e6, 1.0)
            result.milliseconds = max(result.milliseconds, run.seconds * 1e3 / megabytes)
            result.memory = max(result.memory, run.memory)
            if command == "dump":
                result.read[manner] = int(run.status == 0)
            if run.finding:
                result.findings += 1
                keep(arguments.keep, name, command, manner, run)
    return result


def files_of(paths):
    """Each file, and its name in the folder that was given."""
    for path in paths:
        if path.is_dir():
            yield from ((each, each.relative_to(path)) for each in sorted(path.rglob("*")) if each.is_file())
        else:
            yield path, path.name


def named_files(paths):
    """Each file, and a name that no other file has, also where it stands for a path in a file's name."""
    seen = collections.Counter()
    for path, name in files_of(paths):
        key = str(name).replace(os.sep, "_")
        seen[key] += 1
        yield path, str(name) if seen[key] == 1 else f"{name} ({seen[key]})"


def main():
    parser = argparse.ArgumentParser(prog="corpus.sh", description=__doc__.split("\n\n")[0],
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("paths", nargs="+", type=pathlib.Path, metavar="FILE_OR_FOLDER")
    parser.add_argument("--program", required=True, help="the program to run (corpus.sh builds one)")
    parser.add_argument("--time-factor", type=float, default=5,
                        help="times the bound that a run may take (default: 5, for a build with sanitizers)")
    parser.add_argument("--memory-factor", type=float, default=8,
                        help="times the bound of memory (default: 8, since the address sanitizer keeps up to "
                             "256 MB of freed memory)")
    parser.add_argument("--wait", type=float, default=60,
                        help=f"seconds that a run may take by the clock, besides {WAIT_FACTOR} times its bound of "
                             "processor time (default: 60)")
    parser.add_argument("--keep", type=pathlib.Path, default=pathlib.Path("corpus-findings"),
                        help="folder for what findings wrote (default: corpus-findings)")
    arguments = parser.parse_args()
    for path in arguments.paths:
        if not path.exists():
            parser.error(f"no file or folder '{path}'")
    total = Result()
    print("| " + " | ".join(HEAD) + " |\n|" + "---|" * len(HEAD))
    for path, name in named_files(arguments.paths):
        result = read(path, name, arguments)
        print(result.row(name), flush=True)
        total.add(result)
    print(total.row("all"))
    if not total.files:
        print("corpus: no files there", file=sys.stderr)
        return 2
    return 1 if total.findings else 0


if __name__ == "__main__":
    # Names of files needn't be UTF-8.
    sys.stdout.reconfigure(errors="backslashreplace")
    sys.stderr.reconfigure(errors="backslashreplace")
    # A finding may be a crash: no core file for each.
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    sys.exit(main())
