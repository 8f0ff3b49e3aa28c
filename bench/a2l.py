#!/usr/bin/env python3
"""Measures `brindle a2l update` and `export` on a description of many objects: time, time of the processor
and peak memory, beside those of the read of the image alone.

    bench/a2l.py PROGRAM [--objects N]

Image and description are made in a temporary folder, the image with the system's C compiler. A third of
the objects have moved, some have no symbol in the image.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

MEMBERS = 20
ELEMENTS = 50

OBJECT = """\
    /begin MEASUREMENT {name}\r
      "Generated signal number {number}, as tools for models describe it \xe4"\r
      FLOAT32_IEEE CM_signal_{table} 0 0. -1000. 1000.\r
      DISPLAY_IDENTIFIER Signal_{number}\r
      ECU_ADDRESS 0x{address:08X}\r
      ECU_ADDRESS_EXTENSION 0x0\r
      FORMAT "%7.3"\r
      SYMBOL_LINK "{name}" 0\r
      /begin IF_DATA CANAPE_EXT\r
        100\r
        LINK_MAP "{name}" 0x{address:08X} 0x0 0 0x0 1 0x8F 0x0\r
        DISPLAY 0 0 20\r
      /end IF_DATA\r
    /end MEASUREMENT\r
\r
"""


def make_image(folder, variables):
    members = "\n".join(f"    float signal_{index};" for index in range(MEMBERS))
    source = [f"struct module {{\n{members}\n}};"]
    source += [f"struct module module_{index}[{ELEMENTS}];" for index in range(variables)]
    source.append("int main(void) { return 0; }")
    path = folder / "image.c"
    path.write_text("\n".join(source))
    image = folder / "image.elf"
    subprocess.run(["gcc", "-g", "-gdwarf-4", "-O0", "-no-pie", "-static", "-nostartfiles", "-Wl,-emain",
                    "-o", image, path], check=True)
    return image


def make_description(folder, image, variables):
    symbols = subprocess.run(["nm", image], capture_output=True, text=True, check=True).stdout
    addresses = {name: int(address, 16)
                 for address, name in re.findall(r"^([0-9a-f]+) \w (module_\d+)$", symbols, re.M)}
    path = folder / "description.a2l"
    number = 0
    with open(path, "w", encoding="latin-1", newline="") as file:
        file.write('ASAP2_VERSION 1 60\r\n/begin PROJECT bench ""\r\n  /begin MODULE bench ""\r\n')
        for variable in range(variables):
            for element in range(ELEMENTS):
                for member in range(MEMBERS):
                    address = addresses[f"module_{variable}"] + 4 * (element * MEMBERS + member)
                    gone = "x" if number % 1000 == 0 else ""
                    file.write(OBJECT.format(
                        name=f"module_{variable}[{element}].signal_{member}{gone}", number=number,
                        table=number % 300, address=address + (64 if number % 3 == 0 else 0)))
                    number += 1
        file.write("  /end MODULE\r\n/end PROJECT\r\n")
    return path, number


def run(*command):
    """Seconds, seconds of the processor and megabytes of a program that ends well."""
    start = time.monotonic()
    process = subprocess.Popen([str(part) for part in command], stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE)
    message = process.stderr.read().decode(errors="replace")
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command}: {message[-500:]}")
    return (time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024,
            message.strip().splitlines()[-1:])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("--objects", type=int, default=300_000)
    arguments = parser.parse_args()
    variables = max(arguments.objects // (MEMBERS * ELEMENTS), 1)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        image = make_image(folder, variables)
        path, count = make_description(folder, image, variables)
        size = path.stat().st_size / 1e6
        read_time, read_busy, read_memory, _ = run(arguments.program, "find", image, "module_0")
        print(f"{count} objects, {size:.1f} MB; image read alone: {read_time:.2f} s, {read_memory:.0f} MB")
        for title, command in [
                ("update", ["update", path, image, "-o", folder / "out.a2l"]),
                ("update with a report", ["update", path, image, "-o", folder / "out.a2l", "--report",
                                          folder / "report.csv"]),
                ("export", ["export", image, "-o", folder / "export.a2l"]),
                ("export --structures", ["export", image, "--structures", "-o", folder / "types.a2l"])]:
            seconds, busy, memory, last = run(arguments.program, "a2l", *command)
            print(f"{title}: {seconds - read_time:.2f} s ({busy - read_busy:.2f} s of the processor) and "
                  f"{memory - read_memory:.0f} MB beside the read, "
                  f"{(memory - read_memory) / size:.1f} times the file; {' '.join(last)}")


if __name__ == "__main__":
    main()
