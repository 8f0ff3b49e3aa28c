"""What an image answers: target, variables, types, places, leaves."""

import csv
import io
import os
import re
import subprocess
import sys
import time

import brindle
import pytest


def test_the_target(images):
    for name, container, byte_order, size, machine in (
            ("arm-c-dwarf4-O0.elf", "elf", "little", 4, 40),
            ("powerpc-c-dwarf2-O0.elf", "elf", "big", 4, 20),
            ("x86_64-c-dwarf4-O0.exe", "pe", "little", 8, 0x8664)):
        with brindle.read(images / name) as image:
            assert (image.container, image.byte_order, image.address_size, image.pointer_size,
                    image.machine) == (container, byte_order, size, size, machine)
            assert image.is_linked and not image.is_word_addressed
            assert {section.kind for section in image.sections} >= {"code", "data", "zero"}
            assert [section.address for section in image.sections] == sorted(
                section.address for section in image.sections)


def test_variables_and_units(image):
    motors = image.variables["motors"]
    assert motors == next(found for found in image.variables if found.name == "motors")
    assert (motors.address, motors.size, motors.type.text) == (
        image["motors"].address, 336, "motor_t[3]")
    stops = image.variables["stops"]
    assert stops.qualified_name == "motor_step::stops" and stops.unit == "motor_c"
    assert "motor_step::stops" in image.variables and "nothing" not in image.variables
    assert "motors[0].loops" not in image.variables, "a path is no name"
    with pytest.raises(brindle.PathError):
        image.variables["nothing"]
    assert [found.name for found in image.variables.matching("mot?*rs")] == ["motors"]
    assert {found.qualified_name for found in image.variables.matching("stops")} > {
        "motor_step::stops"}
    assert "motor_c" in {unit.name for unit in image.units}


def test_types(image):
    motor = image["motors"].type.element.resolved
    assert isinstance(motor, brindle.StructType) and motor.kind == "struct"
    phase = motor["status"].type.resolved["phase"]
    assert (phase.bit_offset, phase.bit_size, phase.type.name) == (13, 12, "uint32")
    assert motor["status"].bit_size is None
    source = image["main_supply.source"].type
    assert isinstance(source, brindle.EnumType)
    assert ("SUPPLY_MAINS", 300) in source.enumerators
    gain = image["motors[1].loops[0].gain"].type
    assert (gain.name, gain.encoding, gain.size) == ("float", "float", 4)
    assert image["motors"].type.dimensions == (3,)
    assert image["motors"].type.stride == 112
    assert image.types["motor_t"].resolved == motor
    assert image.types["motor_t"] in set(image.types)
    with pytest.raises(brindle.PathError):
        image.types["motors"]


def test_classes_have_bases(images):
    with brindle.read(images / "arm-cpp-dwarf4-O0.elf", full=True) as image:
        derived = [found for found in image.types
                   if isinstance(found, brindle.StructType) and found.bases]
        assert derived
        value = next(variable for variable in image.variables
                     if variable.type.resolved in derived).value_of(image)
        assert isinstance(value, dict)


def test_paths_that_lead_nowhere_tell_how_far_they_lead(image):
    assert "motors[2].loops[1].gain" in image and "motors[3]" not in image
    with pytest.raises(brindle.PathError, match=r"up to 'motors\[1\]'"):
        image["motors[1].no.such"]
    for path in ("", "nothing", "mot\0rs", "\ud800"):
        with pytest.raises(brindle.PathError):
            image[path]
    assert image.places("nothing") == []


def test_a_name_stands_for_all_variables_that_share_it(images):
    with brindle.read(images / "full" / "x86_64-clang-c-O2.elf", full=True) as image:
        for name in ("stop_motor::stops", "stops"):
            found = [variable for variable in image.variables.all(name)
                     if variable.qualified_name.startswith("stop_motor")]
            assert [variable.name for variable in found] == ["stops", "stops.2"]
            addresses = {variable.address for variable in found}
            assert addresses <= {place.address for place in image.places(name)}
        assert [place.address for place in image.places("stop_motor::stops.2")] == [found[1].address]


@pytest.mark.parametrize("pattern", [
    None, "motors*", "motors?1?.loops*.gain", "motors[*].loops[0].gain", "*.output.low", "stops", "motor_step::*", "he?der.*",
    "header", "nothing*", "*code"])
def test_leaves_are_those_of_the_program(image, pattern):
    command = [os.environ["BRINDLE_PROGRAM"], "leaves", "--no-progress", "--format", "csv", image.path]
    done = subprocess.run(command + ([pattern] if pattern else []), stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, encoding="utf-8")
    expected = [(row["name"], int(row["address"], 0), int(row["size"]), row["bitOffset"],
                 row["bitSize"]) for row in csv.DictReader(io.StringIO(done.stdout))]
    given = [(leaf.path, leaf.address, leaf.size,
              *("" if part is None else str(part) for part in (leaf.bit_offset, leaf.bit_size)))
             for leaf in image.leaves(pattern)]
    assert sorted(given) == sorted(expected)
    assert bool(given) == (pattern != "nothing*")


def test_an_address_leads_to_all_that_holds_its_byte(image):
    word = image["motors[1].serial.all"]
    assert {(hit.place.path, hit.offset) for hit in image.at(word.address + 3)} == {
        ("motors[1].serial.all", 3), ("motors[1].serial.halves.second", 1),
        ("motors[1].serial.bytes[3]", 0)}
    assert image.at(1) == [] and image.at(-1) == []


def test_limits_are_told(image):
    leaves = image.leaves("motors*", array_elements=1)
    assert all("[1]" not in leaf.path for leaf in leaves) and not leaves.is_complete
    leaves = image.leaves(limit=5)
    assert len(list(leaves)) == 5 and not leaves.is_complete
    leaves = image.variables["motors"].leaves()
    assert {leaf.variable.name for leaf in leaves} == {"motors"} and leaves.is_complete
    with pytest.raises(ValueError):
        image.leaves(limit=0)


def test_tables(image):
    pandas = pytest.importorskip("pandas")
    frame = image.leaves("header").to_dataframe()
    assert list(frame.columns) == ["path", "address", "size", "type", "bit_offset", "bit_size"]
    row = frame[frame.path == "header.code"].iloc[0]
    assert (row.address, row.bit_size) == (image["header.code"].address, 11)
    assert frame[frame.path == "header.kind"].bit_size.iloc[0] is pandas.NA
    assert len(image.variables.to_dataframe()) == len(image.variables)


def test_tables_without_pandas(image, monkeypatch):
    monkeypatch.setitem(sys.modules, "pandas", None)
    for rows in (image.leaves("header"), image.variables):
        with pytest.raises(ImportError, match="to_dataframe needs pandas"):
            rows.to_dataframe()


def test_a_million_leaves_take_less_than_two_seconds(tmp_path):
    source = tmp_path / "many.c"
    source.write_text("struct cell { int count; float gain; unsigned low : 4; short last; };\n"
                      + "".join(f"struct cell table_{number}[1000];\n" for number in range(250))
                      + "int main(void) { return 0; }\n")
    subprocess.run([os.environ["BRINDLE_COMPILER"], "-gdwarf-4", "-o", tmp_path / "many", source],
                   check=True)
    with brindle.read(tmp_path / "many") as image:
        start = time.process_time()
        total = sum(leaf.address != 0 and leaf.path != "" for leaf in image.leaves())
        elapsed = time.process_time() - start
    assert total == 1_000_000
    # Of a released library; the walk of one for debugging is several times slower.
    assert elapsed < (2 if os.environ["BRINDLE_BUILD_TYPE"] == "Release" else 20)


def test_the_version_is_that_of_the_library():
    assert brindle.library_version() == brindle.__version__
    assert re.fullmatch(r"\d+\.\d+\.\d+", brindle.__version__)
