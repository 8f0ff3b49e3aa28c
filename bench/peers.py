#!/usr/bin/env python3
"""Measures brindle beside the tools that a user could run instead, on the same images in one run.

Prints time and peak memory as Markdown tables for docs/performance.md, with the machine's
description. All tools read the same file, write to a file, and run alone on one processor. They take
turns: a moment when the machine is slow then hits all of them, not one tool's only runs. peers.sh
builds what is needed and calls it.
"""
import argparse
import dataclasses
import os
import pathlib
import platform
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
PROGRAMS = ROOT / "build" / "release"


@dataclasses.dataclass
class Tool:
    """A program and its arguments before and after the image; `package` has it on Debian."""
    name: str
    command: list
    package: str
    isSlow: bool = False
    behind: list = dataclasses.field(default_factory=list)


def brindle(command, *arguments, behind=()):
    name = " ".join(["brindle", command, *arguments, *behind])
    return Tool(name, [str(PROGRAMS / "app/brindle"), command, *arguments, "--no-progress"], "",
                behind=list(behind))


def in_classic_manner(tool):
    return dataclasses.replace(tool, name=f"{tool.name}, classic",
                               command=[*tool.command, "--set", "mIsFullReading=0"])


BRINDLE = brindle("vars", "--all-types")
VARIABLES = brindle("vars")

DEBUG_TOOLS = [
    BRINDLE,
    in_classic_manner(BRINDLE),
    VARIABLES,
    in_classic_manner(VARIABLES),
    Tool("bare libdw walk", [str(PROGRAMS / "bench/libdw_walk")], "libdw-dev"),
    Tool("pahole", ["pahole"], "dwarves"),
    Tool("readelf --debug-dump=info", ["readelf", "--debug-dump=info"], "binutils"),
    Tool("llvm-dwarfdump", ["llvm-dwarfdump-14", "--debug-info"], "llvm-14"),
    Tool("eu-readelf --debug-dump=info", ["eu-readelf", "--debug-dump=info"], "elfutils"),
    Tool("abidw", ["abidw"], "abigail-tools", isSlow=True),
    Tool("gdb: info variables, info types",
         ["gdb", "-batch", "-nx", "-ex", "info variables", "-ex", "info types"], "gdb", isSlow=True),
    Tool("pyelftools walk", [str(ROOT / "bench/pyelftools_walk.py")], "python3-pyelftools",
         isSlow=True),
]

SYMBOL_TOOLS = [
    BRINDLE,
    Tool("nm --print-size", ["nm", "--print-size"], "binutils"),
    Tool("readelf --symbols", ["readelf", "--symbols", "--wide"], "binutils"),
    Tool("eu-readelf --symbols", ["eu-readelf", "--symbols"], "elfutils"),
    Tool("llvm-nm", ["llvm-nm-14", "--print-size"], "llvm-14"),
    Tool("gdb: info variables", ["gdb", "-batch", "-nx", "-ex", "info variables"], "gdb", isSlow=True),
]


def without_classic(tools):
    """The tools for versions of DWARF that the classic manner refuses."""
    return [tool for tool in tools if not tool.name.endswith(", classic")]


def with_find(expression):
    """The tools, with a row for what one expression of the image costs."""
    index = DEBUG_TOOLS.index(in_classic_manner(VARIABLES)) + 1
    return [*DEBUG_TOOLS[:index], brindle("find", behind=[expression]), *DEBUG_TOOLS[index:]]


IMAGES = [("cpp.elf", "C++, x86-64", DEBUG_TOOLS), ("cpp-half.elf", "C++, half the units", None),
          ("cpp-dwarf5.elf", "the same C++ with DWARF 5", without_classic(DEBUG_TOOLS)),
          ("real.elf", "a real C++ program at -O2", DEBUG_TOOLS),
          ("arm.elf", "C, 32-bit ARM", with_find("gLast_0.group.count")),
          ("arm-half.elf", "C, half the units", None),
          ("firmware.elf", "a C firmware at -O2", with_find("gDevice0_0.config.baudrate")),
          ("symbols.elf", "symbols alone", SYMBOL_TOOLS)]


@dataclasses.dataclass
class Measurement:
    """Seconds of processor and wall time, and peak memory in MiB, of one run; the best of several."""
    cpu: float = 0.0
    wall: float = 0.0
    memory: float = 0.0
    failure: str = ""


def run_once(tool, image, limit):
    """One run of a tool, killed after `limit` seconds. Its output goes to a file that is discarded."""
    # A process begins with the peak memory of the one that started it, so a small one starts it: time,
    # which reports its child's usage.
    with tempfile.TemporaryFile() as output, tempfile.NamedTemporaryFile("r") as peak:
        start = time.monotonic()
        process = subprocess.Popen(["time", "--quiet", "--format=%M", f"--output={peak.name}",
                                    *tool.command, str(image), *tool.behind], stdin=subprocess.DEVNULL,
                                   stdout=output, stderr=subprocess.DEVNULL, start_new_session=True)
        signal.signal(signal.SIGALRM, lambda *_: os.killpg(process.pid, signal.SIGKILL))
        signal.alarm(limit)
        _, status, usage = os.wait4(process.pid, 0)
        signal.alarm(0)
        process.returncode = os.waitstatus_to_exitcode(status)
        wall = time.monotonic() - start
        memory = int(peak.read() or 0) / 1024
    measurement = Measurement(usage.ru_utime + usage.ru_stime, wall, memory)
    if process.returncode == -signal.SIGKILL and wall >= limit:
        measurement.failure = f"stopped after {limit} s"
    elif process.returncode != 0:
        measurement.failure = f"failed, status {process.returncode}"
    return measurement


def best_of(measurement, again):
    return Measurement(min(measurement.cpu, again.cpu), min(measurement.wall, again.wall),
                       min(measurement.memory, again.memory), again.failure)


def measure(tools, image, arguments):
    """The best of the runs of each tool, in the order of the tools. A slow tool is run only once:
    disturbances matter little for it."""
    best = [run_once(tool, image, arguments.limit) for tool in tools]
    for _ in range(arguments.runs - 1):
        for index, tool in enumerate(tools):
            if not best[index].failure and best[index].wall <= arguments.repeat_below:
                best[index] = best_of(best[index], run_once(tool, image, arguments.limit))
    return best


def section_size(image, name):
    """Bytes of a section, 0 if the image has none."""
    listing = subprocess.run(["size", "-A", "-d", str(image)], capture_output=True, text=True,
                             check=True).stdout
    sizes = {fields[0]: int(fields[1]) for fields in map(str.split, listing.splitlines())
             if len(fields) == 3 and fields[1].isdigit()}
    return sizes.get(name, 0)


def megabytes(count):
    return f"{count / 1e6:.1f} MB"


def ratio(value, reference):
    return f"{value / reference:.2f}" if reference > 0 else "-"


def table_row(tool, measurement, reference):
    if measurement.failure:
        return f"| {tool.name} | {measurement.failure} | | | | |"
    has_reference = reference is not None and not reference.failure
    return (f"| {tool.name} | {measurement.cpu:.2f} s | {measurement.wall:.2f} s "
            f"| {ratio(measurement.cpu, reference.cpu) if has_reference else '-'} "
            f"| {measurement.memory:.0f} MiB "
            f"| {ratio(measurement.memory, reference.memory) if has_reference else '-'} |")


def is_there(tool):
    return shutil.which(tool.command[0]) is not None


def reason_to_skip(tool, arguments):
    if not is_there(tool):
        return f"missing: package {tool.package}"
    return "left out" if tool.isSlow and arguments.no_slow else ""


def print_table(tools, image, arguments):
    print("| Tool | Processor time | Wall time | Time / brindle | Peak memory | Memory / brindle |")
    print("|---|---|---|---|---|---|")
    print(f"{image.name} ...", file=sys.stderr)
    measured = [tool for tool in tools if not reason_to_skip(tool, arguments)]
    measurements = iter(measure(measured, image, arguments))
    reference = None
    for tool in tools:
        reason = reason_to_skip(tool, arguments)
        measurement = Measurement(failure=reason) if reason else next(measurements)
        reference = measurement if tool is BRINDLE else reference
        print(table_row(tool, measurement, reference))
    print(flush=True)
    return reference


def print_growth(folder, whole, arguments):
    """Brindle on the image of half the units, relative to the whole."""
    for name, title, tools in IMAGES:
        image = folder / name
        full = whole.get(name.replace("-half", ""))
        if tools is not None or not image.exists() or full is None:
            continue
        half = measure([BRINDLE], image, arguments)[0]
        if half.failure or full.failure:
            print(f"- {title}: {half.failure or full.failure}")
        else:
            print(f"- {title}: time {ratio(half.cpu, full.cpu)}, memory "
                  f"{ratio(half.memory, full.memory)} of the whole image's")
    print()


def version_of(command):
    output = subprocess.run([command, "--version"], capture_output=True, text=True, check=False)
    lines = [line.strip() for line in (output.stdout or output.stderr).splitlines() if line.strip()]
    named = [line for line in lines if any(character.isdigit() for character in line)]
    return named[0] if named else "unknown version"


def processor_name():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return platform.machine()


def print_machine():
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    system = platform.freedesktop_os_release().get("PRETTY_NAME", platform.system())
    print(f"Machine: {processor_name()}, {os.cpu_count()} processors, {memory:.0f} GiB, {system}, "
          f"Linux {platform.release()}. Load at the start: {os.getloadavg()[0]:.1f}.\n")
    commands = {tool.command[0] for tool in DEBUG_TOOLS + SYMBOL_TOOLS
                if not tool.command[0].startswith("/") and is_there(tool)}
    print("Versions: " + "; ".join(f"{command}: {version_of(command)}" for command in sorted(commands))
          + ".\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path, help="where the images lie")
    parser.add_argument("--no-slow", action="store_true", help="leave out gdb and abidw")
    parser.add_argument("--limit", type=int, default=600, help="seconds until a tool is stopped (600)")
    parser.add_argument("--runs", type=int, default=3, help="runs of a tool, the best counts (3)")
    parser.add_argument("--repeat-below", type=float, default=15, metavar="SECONDS",
                        help="a tool that takes longer is run once (15)")
    arguments = parser.parse_args()

    # One processor for all: a tool with several threads must not look faster than it is.
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    print_machine()
    whole = {}
    for name, title, tools in IMAGES:
        image = arguments.folder / name
        if tools is None or not image.exists():
            continue
        size = section_size(image, ".debug_info")
        content = f"{megabytes(size)} of .debug_info" if size else megabytes(image.stat().st_size)
        print(f"### {title}: {content}\n")
        whole[name] = print_table(tools, image, arguments)
    print("### Half the units\n")
    print_growth(arguments.folder, whole, arguments)


if __name__ == "__main__":
    main()
