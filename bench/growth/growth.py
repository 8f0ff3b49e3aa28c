#!/usr/bin/env python3
"""Measures how the cost of a read grows with its input: worst cases of n, 2n and 4n entries.

For each case: bytes of the largest input, time and memory of its read, each for one byte of input too,
and the exponent of growth from n to 4n; 1 is proportional. The costs of the program's commands are measured
in the same way, against input and output together. The results are the tables of docs/growth-measurements.md.

Exit status 1 if a cost passes the bounds of that page, or grows faster than the input beyond what the noise of
the measurement explains.
"""
import argparse
import math
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import cases  # noqa: E402

BUILD = pathlib.Path(__file__).resolve().parents[2] / "build" / "release"
READ_ONCE = BUILD / "bench" / "read_once"
PROGRAM = BUILD / "app" / "brindle"

# The limits: a fixed part, and one for each byte of input; for commands, for each byte of input and
# output.
FIXED_SECONDS = 1
FIXED_BYTES = 64 << 20
NANOSECONDS = 1000
BYTES = 256
# A command may visit 1000 scopes for each object.
COMMAND_NANOSECONDS = 10_000
# Times are noisy, and memory comes in steps of doubled tables.
TIME_EXPONENT = 1.35
MEMORY_EXPONENT = 1.5
TIME_LIMIT = 120
# Smaller costs can't be distinguished from the start of the program.
LEAST_SECONDS = 0.2
LEAST_BYTES = 32 << 20


class Run:
    """Processor seconds and peak memory in bytes of one run, the bytes that it wrote, and the last of them."""

    def __init__(self, command):
        limit = (TIME_LIMIT, TIME_LIMIT)
        child = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, limit))
        self.written = 0
        end = b""
        while block := child.stdout.read1(1 << 20):
            self.written += len(block)
            end = (end + block)[-2000:]
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        self.seconds = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss * 1024
        self.text = " ".join(end.decode(errors="replace").split())
        self.status = child.returncode


def write(function, n, path):
    """Writes an image in a process of its own: the memory of this process would count for those it starts."""
    child = os.fork()
    if child == 0:
        path.write_bytes(function(n).content())
        os._exit(0)
    if os.waitpid(child, 0)[1] != 0:
        raise RuntimeError(f"{function.__name__} wrote no image")


def measure(function, n, command, repeats, path):
    """Size, seconds, memory, bytes written and last run for n, 2n and 4n."""
    rows = []
    for factor in (1, 2, 4):
        write(function, n * factor, path)
        runs = [Run(command) for _ in range(repeats)]
        rows.append((path.stat().st_size, min(run.seconds for run in runs), min(run.memory for run in runs),
                     runs[-1]))
    return rows


def exponent(small, large, least, sizes):
    """Growth of a cost relative to the growth of the input."""
    if large < least:
        return 0.0
    return math.log(large / max(small, least / 4)) / math.log(sizes[1] / sizes[0])


def problems(seconds, memory, size, growths, nanoseconds):
    found = []
    if growths[0] > TIME_EXPONENT or growths[1] > MEMORY_EXPONENT:
        found.append("grows faster than its input")
    if seconds > FIXED_SECONDS + nanoseconds * 1e-9 * size or memory > FIXED_BYTES + BYTES * size:
        found.append("costs too much for a byte")
    return found


def show(name, rows, is_command=False):
    """Prints one row of the table; returns what is wrong with it."""
    sizes = [size + (run.written if is_command else 0) for size, _, _, run in rows]
    seconds = [row[1] for row in rows]
    memories = [row[2] for row in rows]
    # Once the output reaches a limit, the input still grows.
    ends = (1, max(sizes[-1] / sizes[0], rows[-1][0] / rows[0][0]))
    growths = (exponent(seconds[0], seconds[-1], LEAST_SECONDS, ends),
               exponent(memories[0], memories[-1], LEAST_BYTES, ends))
    texts = [f"{growth:.2f}" if growth else "" for growth in growths]
    written = f" {rows[-1][3].written / 1e6:.1f} |" if is_command else ""
    print(f"| {name.replace('_', ' ')} | {rows[-1][0] / 1e6:.1f} |{written} {seconds[-1] * 1e3:.0f} | "
          f"{seconds[-1] * 1e9 / sizes[-1]:.0f} | {texts[0]} | {memories[-1] / 1e6:.0f} | "
          f"{memories[-1] / sizes[-1]:.1f} | {texts[1]} |", flush=True)
    found = problems(seconds[-1], memories[-1], sizes[-1], growths,
                     COMMAND_NANOSECONDS if is_command else NANOSECONDS)
    return [f"{name}: {problem}" for problem in found]


def measure_reads(arguments, path):
    failures = []
    for subsystem, all_of_it in cases.all_cases():
        chosen = [case for case in all_of_it if not arguments.cases or case[0] in arguments.cases]
        if chosen:
            failures += measure_subsystem(subsystem, chosen, arguments, path)
    return failures


def measure_subsystem(subsystem, chosen, arguments, path):
    print(f"\n### {subsystem}\n")
    print("| Read of | Input, MB | Time, ms | ns per byte | Growth of time | Memory, MB | Bytes per byte "
          "| Growth of memory |")
    print("|---|---|---|---|---|---|---|---|")
    failures = []
    for name, function, n, options in chosen:
        rows = measure(function, max(1, int(n * arguments.scale)), [READ_ONCE, *options, path], arguments.repeats,
                       path)
        failures += show(name, rows)
        run = rows[-1][3]
        if run.status != 0 or not run.text.startswith("read"):
            failures.append(f"{name}: ended with {run.status}: {run.text[-200:]}")
    return failures


def measure_commands(arguments, path):
    print("\n| Command and case | Input, MB | Output, MB | Time, ms | ns per byte | Growth of time | Memory, MB "
          "| Bytes per byte | Growth of memory |")
    print("|---|---|---|---|---|---|---|---|---|")
    failures = []
    image = path.with_name("one.elf")
    write(cases.variables_of_one_name, 1, image)
    path.with_name("part").write_text("/* nothing */\n")
    # Commands that find nothing to list fail, such as those that meet only types.
    commands = [(command, function, n, [command, path, *(["v", "v[0][0]", "v.m.m"] if command == "find" else [])],
                 (0, 1), "") for command, function, n in cases.COMMANDS]
    for function, n, times in cases.DESCRIPTIONS:
        main = path
        if times > 0:
            main = path.with_name(function.__name__)
            main.write_bytes(cases.Description(f'/include "{path}" ' * times).content())
        # Changes of an included file are only reported without a place to write it. A refusal has the same status.
        statuses, text = ((1,), "places to change") if times > 0 else ((0,), "")
        commands.append(("a2l update", function, n, ["a2l", "update", main, image], statuses, text))
    for command, function, n, words, statuses, text in commands:
        name = f"{command} {function.__name__}"
        if arguments.cases and function.__name__ not in arguments.cases:
            continue
        words = [PROGRAM, *words]
        rows = measure(function, max(1, int(n * arguments.scale)), words, arguments.repeats, path)
        failures += show(name, rows, is_command=True)
        if rows[-1][3].status not in statuses or text not in rows[-1][3].text:
            failures.append(f"{name}: ended with {rows[-1][3].status}: {rows[-1][3].text[-200:]}")
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scale", type=float, default=1, help="factor on every n")
    parser.add_argument("--repeats", type=int, default=3)
    parser.add_argument("cases", nargs="*", help="names of cases; all if none is given")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "image"
        failures = measure_reads(arguments, path) + measure_commands(arguments, path)
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
