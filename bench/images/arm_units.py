"""Writes the sources of the big C image for 32-bit ARM: shared headers with a thousand structures,
and any number of units over them.

build.py calls it. Every unit is of about the same size, so that half the units give half the image.
The text depends on the number of the unit alone: two runs write the same sources.
"""
HEADERS = 10
STRUCTURES_PER_HEADER = 100
VARIABLES_PER_UNIT = 60

SCALARS = ["uint8_t", "int16_t", "uint32_t", "int32_t", "float", "Ticks", "uint64_t", "Quality"]

COMMON = """\
#pragma once
typedef unsigned char uint8_t;
typedef short int16_t;
typedef unsigned short uint16_t;
typedef int int32_t;
typedef unsigned int uint32_t;
typedef unsigned long long uint64_t;
typedef uint32_t Ticks;
typedef enum { QUALITY_GOOD, QUALITY_POOR = 4, QUALITY_BAD = -1 } Quality;
typedef void (*Callback)(Ticks, const void *);
"""

STRUCTURE = """\
struct Part{number};
enum Mode{number} {{ MODE{number}_OFF, MODE{number}_ON, MODE{number}_TEST = {number} }};
typedef struct Part{number} {{
    {first} setpoint;
    {second} actual[{length}];
    enum Mode{number} mode;
    unsigned valid : 1;
    unsigned channel : {width};
    union {{ uint32_t word; uint8_t bytes[4]; }} raw;
    Callback changed;
    struct Part{number} *next;
    {third} gain[2][{length}];
{nested}}} Part{number}_t;
"""


def header(index):
    begin = index * STRUCTURES_PER_HEADER
    parts = ["#pragma once\n", '#include "common.h"\n']
    if index > 0:
        parts.append(f'#include "parts{index - 1}.h"\n')
    for number in range(begin, begin + STRUCTURES_PER_HEADER):
        nested = f"    Part{number - 1}_t *previous;\n" if number > 0 else ""
        if number % 10:
            nested += f"    struct {{ Part{number - 1}_t inner; uint16_t count; }} group;\n"
        parts.append(STRUCTURE.format(
            number=number, first=SCALARS[number % 8], second=SCALARS[(number + 3) % 8],
            third=SCALARS[(number + 5) % 8], length=number % 7 + 1, width=number % 15 + 1,
            nested=nested))
    return "".join(parts)


def unit_source(unit):
    total = HEADERS * STRUCTURES_PER_HEADER
    parts = [f'#include "parts{HEADERS - 1}.h"\n',
             f"Part{total - 1}_t gLast_{unit};\n"]
    for index in range(VARIABLES_PER_UNIT):
        number = (unit * 37 + index * 16) % total
        parts.append(f"""\
typedef struct {{ Part{number}_t part; uint32_t checksum[{index + 1}]; }} Record{unit}_{index}_t;
Record{unit}_{index}_t gRecord{unit}_{index};
static volatile uint32_t sCounter{index};
void Update{unit}_{index}(Part{number}_t *part, uint32_t value)
{{
    static Part{number}_t sSaved;
    const uint32_t sum = value + sCounter{index};
    sCounter{index} = sum;
    sSaved.raw.word = part->raw.word;
    gRecord{unit}_{index}.checksum[0] = sum + sSaved.raw.word;
}}
""")
    return "".join(parts)


def sources(units):
    """Texts of all source files by name."""
    files = {"common.h": COMMON}
    files.update((f"parts{index}.h", header(index)) for index in range(HEADERS))
    files.update((f"unit{unit:04}.c", unit_source(unit)) for unit in range(units))
    return files
