#!/usr/bin/env python3
"""Compares the addresses that `brindle a2l update` writes for the sample images with those that gdb
gives, for every kind of object, in the forms of each version and in all notations of names.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])

# An expression of gdb and the names that descriptions have for it.
C_NAMES = {
    "tick": ["tick"],
    "motors": ["motors"],
    "motors[1].loops[0].gain": ["motors[1].loops[0].gain", "motors._1_.loops._0_.gain",
                                "motors_1_.loops_0_.gain", "motors.1.loops.0.gain"],
    "sine[1][2][1]": ["sine[1][2][1]", "sine._1_._2_._1_", "sine_1__2__1_"],
    "motors[2].status.phase": ["motors[2].status.phase"],
    "main_supply.cells[3].celsius": ["main_supply.cells[3].celsius", "supply_c.main_supply.cells._3_.celsius"],
    "'motor.c'::counter": ["motor_c.counter", "counter.motor_c"],
    "'sensors.c'::counter": ["sensors_c.counter"],
    "header.serial": ["header.serial"],
}
CPP_NAMES = {
    "plant::gTimer": ["plant.gTimer"],
    "plant::Device::sCount": ["plant.Device.sCount"],
    "plant::gMainValve": ["plant.gMainValve"],
}
LINKS = {
    "'motor.c'::counter": ["motor.c::counter", "motor_c::counter", "counter@motor.c", "counter{motor.c}"],
    "plant::gTimer": ["plant::gTimer", "_ZN5plant6gTimerE"],
}

# What an object looks like, by version, with its name, address and link.
FORMS = {
    51: ['/begin MEASUREMENT {n} "" UBYTE C 0 0 0 1 ARRAY_SIZE 2 ECU_ADDRESS {a} /end MEASUREMENT',
         '/begin CHARACTERISTIC {n} "" VALUE {a} RL 0 C 0 1 /end CHARACTERISTIC',
         '/begin AXIS_PTS {n} "" {a} N RL 0 C 3 0 1 /end AXIS_PTS'],
    60: ['/begin MEASUREMENT {n} "" UBYTE C 0 0 0 1 ECU_ADDRESS {a} {l} MATRIX_DIM 2 1 1 /end MEASUREMENT',
         '/begin CHARACTERISTIC {n} "" CURVE {a} RL 0 C 0 1 {l} /begin AXIS_DESCR STD_AXIS N C 3 0 1 '
         '/end AXIS_DESCR /end CHARACTERISTIC',
         '/begin AXIS_PTS {n} "" {a} N RL 0 C 3 0 1 {l} /end AXIS_PTS'],
    71: ['/begin MEASUREMENT {n} "" UBYTE C 0 0 0 1 ECU_ADDRESS {a} {l} MATRIX_DIM 2 /end MEASUREMENT',
         '/begin CHARACTERISTIC {n} "" VAL_BLK {a} RL 0 C 0 1 {l} MATRIX_DIM 3 /end CHARACTERISTIC',
         '/begin AXIS_PTS {n} "" {a} N RL 0 C 3 0 1 {l} /end AXIS_PTS',
         '/begin BLOB {n} "" {a} 4 {l} /end BLOB',
         '/begin INSTANCE {n} "" T {a} {l} /end INSTANCE'],
}


def gdb_addresses(image, expressions):
    """The address of each expression, without those that gdb can't find in this image."""
    commands = []
    for expression in expressions:
        commands += ["-ex", f"print/x (unsigned long long)&{expression}", "-ex", f"echo of {expression}\\n"]
    done = subprocess.run(["gdb-multiarch", "-nx", "-batch", "-iex", "set auto-load off", str(image),
                           *commands], capture_output=True, text=True, check=False, timeout=120)
    found = re.findall(r"^\$\d+ = (0x[0-9a-f]+)\nof (.*)$", done.stdout, re.M)
    return {expression: int(address, 16) for address, expression in found}


class UpdateAgainstGdb(unittest.TestCase):
    def setUp(self):
        if shutil.which("gdb-multiarch") is None:
            self.fail("gdb-multiarch is needed: scripts/install-packages.sh installs it")

    def objects(self, version, names, addresses):
        """Texts of objects with the addresses that are expected of them."""
        objects = []
        for expression, spellings in names.items():
            if expression not in addresses:
                continue
            cases = [(name, "") for name in spellings]
            if version > 51:
                links = LINKS.get(expression, spellings)
                cases += [("other", f'SYMBOL_LINK "{link}" 0') for link in links]
                cases += [("other", f'SYMBOL_LINK "{links[0]}" 0x10')]
            for name, link in cases:
                expected = addresses[expression] + (0x10 if "0x10" in link else 0)
                for form in FORMS[version]:
                    objects.append((form.replace("{n}", name).replace("{l}", link), expected))
        return objects

    def check(self, image, version, names):
        objects = self.objects(version, names, gdb_addresses(image, names))
        if not objects:
            return 0
        content = "\n".join(form.replace("{a}", "0x00000000") for form, _ in objects)
        expected = "\n".join(form.replace("{a}", f"0x{address:08X}") for form, address in objects)
        head = f'ASAP2_VERSION 1 {version}\n/begin PROJECT p "" /begin MODULE m ""\n'
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "in.a2l"
            path.write_text(head + content + "\n/end MODULE /end PROJECT\n")
            done = subprocess.run([PROGRAM, "a2l", "update", path, image], capture_output=True,
                                  check=True, timeout=60)
        self.assertEqual(done.stdout.decode().splitlines()[2:-1], expected.splitlines())
        return len(objects)

    def test_each_object_has_the_address_that_gdb_gives(self):
        counts = {}
        for image in sorted(SAMPLE_IMAGES.glob("*-dwarf[234]-O?.elf")):
            names = CPP_NAMES if "-cpp-" in image.name else C_NAMES
            for version in FORMS:
                with self.subTest(image=image.name, version=version):
                    counts[image.name] = self.check(image, version, names)
        self.assertGreater(len([count for count in counts.values() if count > 30]), 10)


if __name__ == "__main__":
    unittest.main()
