#!/usr/bin/env python3
"""Makes the big images that the measurements read, from generated sources: C++ for x86-64 and C for
32-bit ARM, both with DWARF 4, each a second time from the first half of its units, the C++ with DWARF 5 as
well, a C firmware whose variables use a fifth of its types, and a symbol table without debug
information. One more is a real program: the optimized brindle itself. What is up to date is kept.

At scale 100 the C++ image has about 100 MB of .debug_info, the one for ARM about 30 MB, and the
symbol table 500,000 data symbols; the real program has one size at all scales. The images go to
build/bench-images/SCALE, whose path is printed.
"""
import argparse
import dataclasses
import os
import pathlib
import shutil
import subprocess
import sys

import arm_units
import cpp_units
import firmware_units
import symbol_image

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build" / "bench-images"
SYMBOLS = 500_000

RULES = """\
rule compile
  command = nice {compile} -c $in -o $out
  description = compile {kind}/$in
rule precompile
  command = nice {compile} -x c++-header $in -o $out
  description = precompile {kind}/$in
rule link
  command = nice {link} @$out.rsp -o $out
  rspfile = $out.rsp
  rspfile_content = $in
  description = link $out
"""


@dataclasses.dataclass
class Kind:
    """How the units of one image are written, compiled and linked."""
    sources: object
    units: int
    compile: str
    link: str
    precompiled: str = ""


# With this, types of a C++ header are kept although the unit uses none of them: so a unit has what its
# headers have, without functions that would use the types.
CPP_COMPILE = "g++ -std=c++20 -w -O0 -g -gdwarf-{} -fno-eliminate-unused-debug-types"
CPP_LINK = "g++ -no-pie -Wl,--no-gc-sections,--unresolved-symbols=ignore-all"
KINDS = {
    "cpp": Kind(cpp_units.sources, 96, CPP_COMPILE.format(4), CPP_LINK, "heavy.h"),
    "cpp-dwarf5": Kind(cpp_units.sources, 96, CPP_COMPILE.format(5), CPP_LINK, "heavy.h"),
    "arm": Kind(arm_units.sources, 94,
                "arm-none-eabi-gcc -mcpu=cortex-m4 -mthumb -ffreestanding -w -O0 -g -gdwarf-4",
                "arm-none-eabi-gcc -mcpu=cortex-m4 -mthumb -nostdlib -Wl,--no-gc-sections,-e,0"),
    "firmware": Kind(firmware_units.sources, 90,
                     "arm-none-eabi-gcc -mcpu=cortex-m4 -mthumb -ffreestanding -w -O2 -g -gdwarf-4"
                     " -fno-eliminate-unused-debug-types",
                     "arm-none-eabi-gcc -mcpu=cortex-m4 -mthumb -nostdlib"
                     " -Wl,--no-gc-sections,-e,0,--unresolved-symbols=ignore-all"),
}

REAL_FLAGS = "-O2 -g -gdwarf-4"


def write_if_changed(path, text):
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def is_source(name):
    return not name.endswith(".h")


def build_images(name, folder, scale):
    """The image of a kind and the one of half its units. Objects are shared by all scales."""
    kind = KINDS[name]
    units = max(2, kind.units * scale // 100 // 2 * 2)
    objects = BUILD / "objects" / name
    objects.mkdir(parents=True, exist_ok=True)
    files = kind.sources(units)
    for file, text in files.items():
        write_if_changed(objects / file, text)

    headers = " ".join(file for file in files if not is_source(file))
    compiled = [file for file in files if is_source(file)]
    half = [file for file in compiled if not file.startswith("unit")]
    half += [file for file in compiled if file.startswith("unit")][:units // 2]
    lines = [RULES.format(kind=name, compile=kind.compile, link=kind.link)]
    if kind.precompiled:
        lines.append(f"build {kind.precompiled}.gch: precompile {kind.precompiled}\n")
        headers = f"{kind.precompiled}.gch"
    for file in compiled:
        lines.append(f"build {file}.o: compile {file} | {headers}\n")
    for image, parts in ((f"{name}.elf", compiled), (f"{name}-half.elf", half)):
        inputs = " ".join(f"{file}.o" for file in parts)
        lines.append(f"build {folder / image}: link {inputs}\n")
    write_if_changed(objects / "build.ninja", "".join(lines))
    subprocess.run(["ninja", "-C", objects, "-j", str(len(os.sched_getaffinity(0)))],
                   stdout=sys.stderr, check=True)


def build_symbols(folder, scale):
    path = folder / "symbols.elf"
    script = pathlib.Path(symbol_image.__file__)
    if not path.exists() or path.stat().st_mtime < script.stat().st_mtime:
        symbol_image.write_image(path, SYMBOLS * scale // 100)


def build_real(folder):
    """The program of this project, as a distribution would build it for debugging."""
    objects = BUILD / "objects" / "real"
    path = folder / "real.elf"
    if path.exists():
        return
    for command in (["cmake", "-S", ROOT, "-B", objects, "-G", "Ninja",
                     "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                     f"-DCMAKE_CXX_FLAGS_RELWITHDEBINFO={REAL_FLAGS}",
                     "-DBRINDLE_BUILD_TESTS=OFF", "-DBRINDLE_BUILD_BENCHMARKS=OFF"],
                    ["cmake", "--build", objects, "--target", "brindle_program"]):
        subprocess.run(command, stdout=sys.stderr, check=True)
    shutil.copy(objects / "app" / "brindle", path)


def main():
    names = [*KINDS, "real", "symbols"]
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--scale", type=int, default=100, metavar="PERCENT",
                        help="size of the images in percent (100)")
    parser.add_argument("images", nargs="*", metavar="IMAGE", help=", ".join(names))
    arguments = parser.parse_args()
    unknown = set(arguments.images) - set(names)
    if unknown or arguments.scale < 1:
        parser.error(f"unknown image: {', '.join(unknown)}" if unknown else "the scale is below 1")

    folder = BUILD / str(arguments.scale)
    folder.mkdir(parents=True, exist_ok=True)
    for name in arguments.images or names:
        if name == "symbols":
            build_symbols(folder, arguments.scale)
        elif name == "real":
            build_real(folder)
        else:
            build_images(name, folder, arguments.scale)
    print(folder)


if __name__ == "__main__":
    main()
