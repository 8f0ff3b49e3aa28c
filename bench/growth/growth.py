#!/usr/bin/env python3
"""Measures how the cost of a read grows with its input: worst cases of n, 2n and 4n entries.

For each case: bytes of the largest input, time and memory of its read, each for one byte of input too,
and the exponent of growth from n to 4n; 1 is proportional. Exit status 1 if a case grows faster than the
input beyond what the noise of the measurement explains, or costs more for a byte than the bound.
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

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = ROOT / "build" / "release" / "bench" / "read_once"

# Bounds for one byte of input, and on the exponent of growth.
NANOSECONDS = 1000
BYTES = 100
EXPONENT = 1.25
TIME_LIMIT = 300
# What costs less than this is not told from the cost of starting the program.
LEAST_SECONDS = 0.05
LEAST_BYTES = 8 << 20


def read(path, options):
    """Processor seconds and peak memory in bytes of one read, and what the program printed."""
    with tempfile.TemporaryFile("w+") as output:
        child = subprocess.Popen([PROGRAM, *options, path], stdout=output, stderr=output,
                                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, (TIME_LIMIT,) * 2))
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        output.seek(0)
        text = " ".join(output.read().split())
    if child.returncode != 0:
        text = f"ended with {child.returncode}"
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, text


def measure(function, n, options, repeats, folder):
    """Size, seconds, memory and text for n, 2n and 4n."""
    rows = []
    for factor in (1, 2, 4):
        path = folder / "image.elf"
        path.write_bytes(function(n * factor).content())
        runs = [read(path, options) for _ in range(repeats)]
        rows.append((path.stat().st_size, min(run[0] for run in runs), min(run[1] for run in runs), runs[0][2]))
    return rows


def exponent(small, large, least, sizes):
    """Growth of a cost beyond its fixed part, against that of the input."""
    if large < least:
        return 0.0
    return math.log(large / max(small, least / 4)) / math.log(sizes[1] / sizes[0])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scale", type=float, default=1, help="factor on every n")
    parser.add_argument("--repeats", type=int, default=3)
    parser.add_argument("cases", nargs="*", help="names of cases; all if none is given")
    arguments = parser.parse_args()
    _, base_memory, _ = read(os.devnull, [])
    print("| Case | Input, MB | Time, ms | ns per byte | Growth of time | Memory, MB | Bytes per byte "
          "| Growth of memory |")
    print("|---|---|---|---|---|---|---|---|")
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        for name, function, n, options in cases.all_cases():
            if arguments.cases and name not in arguments.cases:
                continue
            rows = measure(function, max(1, int(n * arguments.scale)), options, arguments.repeats,
                           pathlib.Path(folder))
            size, seconds, memory, text = rows[-1]
            memories = [max(row[2] - base_memory, 1) for row in rows]
            sizes = (rows[0][0], size)
            time_growth = exponent(rows[0][1], seconds, LEAST_SECONDS, sizes)
            memory_growth = exponent(memories[0], memories[-1], LEAST_BYTES, sizes)
            per_byte = (seconds * 1e9 / size, memories[-1] / size)
            print(f"| {name.replace('_', ' ')} | {size / 1e6:.1f} | {seconds * 1e3:.0f} | {per_byte[0]:.0f} | "
                  f"{time_growth:.2f} | {memories[-1] / 1e6:.0f} | {per_byte[1]:.1f} | {memory_growth:.2f} |",
                  flush=True)
            if not text.startswith("read"):
                failures.append(f"{name}: {text}")
            if max(time_growth, memory_growth) > EXPONENT:
                failures.append(f"{name}: grows faster than its input")
            if per_byte[0] > NANOSECONDS or (per_byte[1] > BYTES and memories[-1] > LEAST_BYTES):
                failures.append(f"{name}: costs too much for a byte")
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
