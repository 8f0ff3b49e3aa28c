"""Bytes to values."""

import csv
import json
import os
import pickle
import random
import shutil
import struct
import subprocess

import brindle
import pytest
from conftest import SOURCE

ASK_GDB = """
import gdb, json
values = {}
for path in json.load(open(PATHS)):
    value = gdb.parse_and_eval(path)
    code = value.type.strip_typedefs().code
    values[path] = float(value) if code == gdb.TYPE_CODE_FLT else int(value)
print(json.dumps(values))
"""


@pytest.mark.parametrize("name", ["arm-c-dwarf4-O0.elf", "powerpc-c-dwarf2-O0.elf",
                                  "x86_64-c-dwarf4-O0.elf"])
def test_initial_values_are_those_that_gdb_prints(images, tmp_path, name):
    gdb = shutil.which("gdb-multiarch")
    assert gdb, "scripts/install-packages.sh installs it"
    values = {}
    with brindle.read(images / name, full=True) as image:
        for leaf in image.leaves():
            # gdb finds statics of functions by other names.
            if "::" not in leaf.path and image.initial_bytes(leaf.address, leaf.size) is not None:
                values[leaf.path] = leaf.value_of(image)
    values = {path: value for path, value in values.items() if not isinstance(value, bytes)}
    assert len(values) > 150
    paths, script = tmp_path / "paths.json", tmp_path / "ask.py"
    paths.write_text(json.dumps(list(values)))
    script.write_text(ASK_GDB.replace("PATHS", repr(str(paths))))
    done = subprocess.run([gdb, "-batch", "-nx", "-x", script, images / name],
                          stdout=subprocess.PIPE, encoding="utf-8", check=True)
    expected = json.loads(done.stdout.splitlines()[-1])
    for path, value in values.items():
        assert value == expected[path], path


@pytest.mark.parametrize("name", ["arm-device-O2.elf", "powerpc-device-O2.elf", "arm-cpp-types-dwarf4.elf"])
def test_random_bytes_are_the_number_of_their_bits(images, name):
    """Bits are taken one by one from the text of all of them, the most significant first."""
    random_numbers = random.Random(1)
    wide = 0
    with brindle.read(images / "full" / name, full=True) as image:
        for leaf in (leaf for leaf in image.leaves() if leaf.size):
            first, width = leaf.bit_offset or 0, leaf.bit_size or 8 * leaf.size
            count = max(leaf.size, (first + width + 7) // 8)
            wide += count > leaf.size
            part = bytes(random_numbers.choices(range(256), k=count))
            bits = "".join(f"{byte:08b}" for byte in (part if image.byte_order == "big" else part[::-1]))
            number = int("0" + bits[len(bits) - first - width:len(bits) - first], 2)
            value = leaf.value_of(brindle.Memory(part, address=leaf.address))
            if isinstance(value, float):
                code = {2: ">e", 4: ">f", 8: ">d"}[leaf.size]
                assert value != value or struct.pack(code, value) == number.to_bytes(leaf.size, "big")
            elif isinstance(value, bool):
                assert value == (number != 0), leaf
            elif isinstance(value, int):
                assert value % (1 << width) == number, leaf
                assert -(1 << width - 1) <= value < 1 << width, leaf
    assert wide or "device" not in name


@pytest.fixture(scope="module", params=["-gdwarf-4", "-gdwarf-2 -gstrict-dwarf"])
def values(request, tmp_path_factory):
    """An image with a variable of each kind of value; in strict DWARF 2, enums have no integer type."""
    program = tmp_path_factory.mktemp("values") / "values"
    subprocess.run([os.environ["BRINDLE_COMPILER"], *request.param.split(), "-w", "-o", program,
                    SOURCE / "tests" / "values" / "values.c"], check=True)
    with brindle.read(program, full=True) as image:
        yield image


def test_bytes_become_the_values_of_the_table(values):
    with open(SOURCE / "tests" / "values" / "values.csv", encoding="utf-8") as file:
        for row in csv.DictReader(file):
            value = values[row["place"]].decode(bytes.fromhex(row["bytes"]))
            if isinstance(value, float):
                assert value == float(row["value"]) or (value != value and row["value"] == "NaN"), row
            else:
                assert str(value) == row["value"], row


def test_bits_at_the_end_of_a_packed_structure_have_a_value(values, images):
    """Their storage unit goes beyond the structure, and beyond the dump."""
    for name in ("arm-device-O2.elf", "powerpc-device-O2.elf"):
        with brindle.read(images / "full" / name, full=True) as image:
            assert image["last_frame"].value_of(image)["check"] == 8
    fields = values["fields"]
    dump = (b"\xff" * fields.size)[:-1] + b"\x01"
    memory = brindle.Memory(dump, address=fields.address)
    assert fields.value_of(memory) == {"lead": 31, "wide": 2**62 - 1, "last": -1, "phase": 1}
    assert values["fields.phase"].value_of(memory).name == "PHASE_RUN"
    with pytest.raises(brindle.MemoryGapError):
        values["fields.phase"].value_of(brindle.Memory(dump[:-1], address=fields.address))


def test_a_dump_becomes_values(image):
    motors = image["motors"]
    dump = bytearray(motors.size)
    gain, phase, mode = (image[f"motors[1].{path}"]
                         for path in ("loops[0].gain", "status.phase", "status.mode"))
    for place in (gain, phase, mode):
        assert place.variable == image.variables["motors"]
    struct.pack_into("<f", dump, gain.address - motors.address, 2.5)
    struct.pack_into("<I", dump, phase.address - motors.address, 0xABC << phase.bit_offset)
    memory = brindle.Memory(dump, address=motors.address)
    assert gain.value_of(memory) == 2.5
    assert phase.value_of(memory) == 0xABC
    whole = motors.value_of(memory)
    assert len(whole) == 3 and whole[1]["loops"][0]["gain"] == 2.5
    assert whole[1]["status"]["phase"] == 0xABC
    assert image["motors[1]"].value_of(memory) == whole[1]
    assert {leaf.path: leaf.value_of(memory) for leaf in image.leaves("motors")}[phase.path] == 0xABC
    with pytest.raises(brindle.MemoryGapError, match="no 4 bytes"):
        image["machine_word"].value_of(memory)
    with pytest.raises(ValueError, match="4 bytes"):
        gain.decode(b"abc")


def test_signs_and_names(image):
    source = image["main_supply.source"]
    mains = source.decode(struct.pack("<H", 300))
    assert (mains, mains.name, str(mains)) == (300, "SUPPLY_MAINS", "SUPPLY_MAINS")
    assert pickle.loads(pickle.dumps(mains)).name == "SUPPLY_MAINS"
    unnamed = source.decode(struct.pack("<H", 7))
    assert (unnamed, unnamed.name, str(unnamed)) == (7, None, "7")

    trim, mode = image["motors[0].status.trim"], image["motors[0].status.mode"]
    ones = b"\xff" * trim.size
    assert trim.decode(ones) == -1
    assert mode.decode(b"\xff" * mode.size).name == "MODE_FAULT"
    assert image["motors[0].status.enabled"].decode(
        b"\xff" * image["motors[0].status.enabled"].size) is True
    stop = next(found for found in image.types
                if isinstance(found, brindle.EnumType)
                and any(name == "ALARM_STOP" for name, _ in found.enumerators))
    assert stop.size == 4


def test_later_stretches_of_memory_hide_earlier_ones():
    memory = brindle.Memory(b"0123456789", address=100)
    memory.add(104, b"ab")
    assert memory.read_memory(104, 2) == b"ab"
    assert memory.read_memory(103, 3) == b"345"
    memory.add(90, b"x" * 15)
    assert memory.read_memory(103, 2) == memory.read_memory(104, 1) * 2 == b"xx"
    assert memory.read_memory(104, 2) == b"ab"
    for address, size in ((89, 1), (108, 3), (200, 1)):
        with pytest.raises(brindle.MemoryGapError):
            memory.read_memory(address, size)
