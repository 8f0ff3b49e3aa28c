#!/usr/bin/env python3
"""Holds the headers of `types --c` against C compilers: they take them, and lay out every bit field
where the image has it.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images.
"""

import re
import shutil
import subprocess
import unittest

from program_test import SAMPLE_IMAGES, ProgramTest

# The compiler of the machine as one for 32 bits, which needs no library; that of the samples where
# it is installed.
COMPILERS = {"arm": [["gcc", "-m32"], ["arm-none-eabi-gcc"]],
             "powerpc": [["powerpc-linux-gnu-gcc", "-m32"], ["gcc", "-m32"]],
             "other": [["gcc"]]}
OPTIONS = ["-std=c11", "-ffreestanding", "-Wall", "-Wextra", "-Werror", "-Wno-packed-bitfield-compat"]


class CHeaderTest(ProgramTest):
    def compile(self, compiler, source, *options):
        done = subprocess.run([*compiler, *OPTIONS, *options, "-xc", "-"], input=source.encode(),
                              capture_output=True, timeout=120)
        self.assertEqual(done.returncode, 0, done.stderr.decode()[:2000])

    def test_compilers_take_the_types_of_every_image(self):
        images = [image for image in sorted(SAMPLE_IMAGES.rglob("*.*"))
                  if image.suffix in (".elf", ".exe", ".dll") and "nosymtab" not in image.name
                  and "symbols" not in image.name and "split" not in image.name]
        self.assertGreater(len(images), 60)
        asserted = 0
        for image in images:
            header, error = self.run_program("types", "--c", str(image), "--allow-empty")
            self.assertNotIn("no type", error)
            asserted += header.count("_Static_assert")
            family = image.name.split("-")[0]
            for compiler in COMPILERS.get(family, COMPILERS["other"]):
                if shutil.which(compiler[0]):
                    with self.subTest(image=image.name, compiler=compiler):
                        self.compile(compiler, header, "-fsyntax-only")
        self.assertGreater(asserted, 5000)

    def bits_of(self, compiler, objcopy, source):
        """The bytes of the variable `probe`."""
        binary = self.folder / "probe.o"
        self.compile(compiler, source, "-c", "-o", str(binary))
        content = self.folder / "probe.bin"
        subprocess.run([objcopy, "-O", "binary", "-j", ".data", str(binary), str(content)],
                       check=True, timeout=60)
        return int.from_bytes(content.read_bytes(), "little")

    def test_bit_fields_lie_where_the_image_has_them(self):
        compared = 0
        for image, compiler, objcopy, order in [
                ("arm-c-dwarf4-O0.elf", ["gcc", "-m32"], "objcopy", "little"),
                ("arm-c-dwarf4-O0.elf", ["arm-none-eabi-gcc"], "arm-none-eabi-objcopy", "little"),
                ("powerpc-c-dwarf4-O2.elf", ["powerpc-linux-gnu-gcc"], "powerpc-linux-gnu-objcopy",
                 "big")]:
            if not shutil.which(compiler[0]):
                continue
            path = str(SAMPLE_IMAGES / image)
            for variable, name in [("motors[0].status", "status"), ("header", "packed_header")]:
                compared += self.compare(path, variable, name, compiler, objcopy, order)
        self.assertGreaterEqual(compared, 14)

    def compare(self, path, variable, name, compiler, objcopy, order):
        """Compares the places of a variable's bit fields with those that a compiler gives to the header."""
        header = self.run_program("types", "--c", path, name)[0]
        first = self.run_json("find", path, variable, "--format", "json")[0]["address"]
        leaves = self.run_json("leaves", path, "--format", "json")
        fields = [leaf for leaf in leaves
                  if leaf["name"].startswith(variable + ".") and leaf["bitSize"] is not None]
        self.assertGreater(len(fields), 1)
        for field in fields:
            member = field["name"].rsplit(".", 1)[1]
            value = "1" if field["bitSize"] == 1 else "-1"
            source = f"{header}\nstruct {name} probe = {{.{member} = {value}}};\n"
            # All bits of the field, whatever its sign.
            bits = self.bits_of([*compiler, "-Wno-overflow", "-Wno-sign-conversion"], objcopy, source)
            with self.subTest(image=path, compiler=compiler, field=field["name"]):
                self.assertEqual(self.positions(bits), self.expected(field, first, order))
        return len(fields)

    def test_fields_that_exceed_their_type_and_arrays_without_length(self):
        source = self.folder / "source.c"
        source.write_text("""
            struct __attribute__((packed)) crossing {
                unsigned char x; unsigned long long y : 60; unsigned char z : 5; int w : 31; short v : 15;
            } crossing = {1, 2, 3, 4, 5};
            struct message { unsigned length; unsigned char text[]; } *message;
            struct odd { unsigned length; unsigned char kind; unsigned char text[]; } *odd;
            """)
        for compiler, objcopy, order in [(["gcc"], "objcopy", "little"),
                                         (["powerpc-linux-gnu-gcc"], "powerpc-linux-gnu-objcopy", "big")]:
            if not shutil.which(compiler[0]):
                continue
            image = str(self.folder / "image.elf")
            subprocess.run([*compiler, "-g", "-nostdlib", "-static", "-Wl,-e,0", "-Wno-packed-bitfield-compat",
                            "-o", image, str(source)], check=True, timeout=120)
            self.assertEqual(self.compare(image, "crossing", "crossing", compiler, objcopy, order), 4)
            header = self.run_program("types", "--c", image)[0]
            self.compile(compiler, header, "-fsyntax-only")
            self.assertIn("    uint8_t text[]; /* uint8[0] */\n}", header)
            # C has no array at an offset within the padding.
            self.assertIn("_pad5[3];\n    /* not expressible in C: uint8 text[0] at offset 5 */\n}", header)

    def test_enumerations_without_integer_type_have_the_sign_of_their_values(self):
        source = self.folder / "source.c"
        source.write_text("enum level { LOW = -1, HIGH = 5 }; struct { enum level now; } state;\n"
                          "enum port { PORT = 0xF0000000u } port;\n")
        image = str(self.folder / "image.elf")
        subprocess.run(["gcc", "-gdwarf-2", "-gstrict-dwarf", "-nostdlib", "-static", "-Wl,-e,0", "-o", image,
                        str(source)], check=True, timeout=120)
        header = self.run_program("types", "--c", image)[0]
        for text in ["LOW = -1,", "PORT = 4026531840,", "int32_t now; /* level */"]:
            self.assertIn(f"    {text}\n" if text.endswith(",") else f" {text}", header)

    @staticmethod
    def positions(bits):
        """Byte and bit of each bit that is set."""
        return {(number // 8, number % 8) for number in range(bits.bit_length()) if bits >> number & 1}

    @staticmethod
    def expected(field, first, order):
        size = max(field["size"], (field["bitOffset"] + field["bitSize"] + 7) // 8)
        result = set()
        for bit in range(field["bitOffset"], field["bitOffset"] + field["bitSize"]):
            byte = bit // 8 if order == "little" else size - 1 - bit // 8
            result.add((field["address"] - first + byte, bit % 8))
        return result

    def test_what_a_header_is_made_of(self):
        header = self.run_program("types", "--c", str(SAMPLE_IMAGES / "arm-c-dwarf4-O0.elf"), "supply")[0]
        self.assertEqual(header.count("struct supply {"), 1)
        self.assertLess(header.index("struct cell {"), header.index("struct supply {"))
        self.assertIn("    struct limits voltage; /* limits */\n", header)
        self.assertIn("    uint8_t _pad14[2];\n", header)
        self.assertIn("    SUPPLY_MAINS = 300,\n", header)
        self.assertIn('_Static_assert(sizeof(struct supply) == 56, "size of struct supply");\n', header)
        self.assertIn("_Static_assert(offsetof(struct supply, energy) == 48,", header)
        self.assertIsNone(re.search(r"struct motor", header))


if __name__ == "__main__":
    unittest.main()
