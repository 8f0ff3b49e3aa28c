"""Writes the sources of a C firmware as a user reads it: vendor headers that declare the registers and
drivers of a whole family of controllers, and units whose variables use a fifth of their types.

build.py calls it. The text depends on the number of the unit alone: two runs write the same sources.
"""
PERIPHERALS = 300
PERIPHERALS_PER_UNIT = 12
#: Peripherals from this one on are declared and used by no variable.
USED_PERIPHERALS = PERIPHERALS // 5

COMMON = """\
#pragma once
typedef unsigned char uint8_t;
typedef unsigned short uint16_t;
typedef int int32_t;
typedef unsigned int uint32_t;
"""

PERIPHERAL = """\
typedef enum {{ DEVICE{number}_IDLE, DEVICE{number}_RUN, DEVICE{number}_FAULT = {number} }} Device{number}_State;
typedef struct {{
    union {{ volatile uint32_t CTRL; struct {{ uint32_t enable : 1; uint32_t mode : {width}; uint32_t rest : 8; }} CTRL_b; }};
    union {{ volatile uint32_t STATUS; struct {{ uint32_t ready : 1; uint32_t error : 4; }} STATUS_b; }};
    volatile uint32_t DATA[{length}];
    uint32_t reserved[{gap}];
}} Device{number}_Registers;
typedef struct {{
    uint32_t baudrate;
    uint16_t timeout;
    uint8_t priority;
    Device{number}_State start;
    uint32_t calibration[{length}][2];
}} Device{number}_Config;
typedef struct Device{number}_Handle {{
    Device{number}_Registers *registers;
    Device{number}_Config config;
    volatile Device{number}_State state;
    struct Device{number}_Handle *next;
    void (*completed)(struct Device{number}_Handle *handle, uint32_t events);
    uint8_t buffer[{length} * 8];
    uint32_t errors;
}} Device{number}_Handle;
int32_t Device{number}_Init(Device{number}_Handle *handle, const Device{number}_Config *config);
static inline uint32_t Device{number}_Read(Device{number}_Handle *handle, uint32_t index)
{{
    const uint32_t status = handle->registers->STATUS;
    uint32_t value = handle->registers->DATA[index % {length}u];
    if (status & 2u) {{
        uint32_t retries = handle->errors + 1u;
        handle->errors = retries;
        value ^= retries;
    }}
    return value;
}}
"""


def vendor_header():
    return "#pragma once\n#include \"common.h\"\n" + "".join(
        PERIPHERAL.format(number=number, width=number % 6 + 1, length=number % 9 + 2,
                          gap=number % 5 + 1)
        for number in range(PERIPHERALS))


def unit_source(unit):
    parts = ['#include "vendor.h"\n']
    for index in range(PERIPHERALS_PER_UNIT):
        number = (unit * 7 + index * 5) % USED_PERIPHERALS
        parts.append(f"""\
Device{number}_Handle gDevice{unit}_{index};
static uint32_t sTotal{index};
volatile const Device{number}_Config cConfig{unit}_{index} = {{ 9600u, {index}u, 1u, DEVICE{number}_RUN }};
uint32_t Poll{unit}_{index}(uint32_t count)
{{
    static uint16_t sCalls;
    uint32_t sum = sTotal{index};
    for (uint32_t step = 0; step < count; ++step) {{
        const uint32_t value = Device{number}_Read(&gDevice{unit}_{index}, step);
        sum += value;
    }}
    ++sCalls;
    sTotal{index} = sum;
    return sum + sCalls;
}}
""")
    return "".join(parts)


def sources(units):
    """Texts of all source files by name."""
    files = {"common.h": COMMON, "vendor.h": vendor_header()}
    files.update((f"unit{unit:04}.c", unit_source(unit)) for unit in range(units))
    return files
