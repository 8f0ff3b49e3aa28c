"""Writes an ELF file for 32-bit ARM that holds a symbol table of data symbols and no debug
information.

build.py calls it. The mixture is that of firmware: plain names most of all, file-local ones with a
number, mangled ones of the double underscore, sizes from 1 byte to a few hundred, and a twentieth of
functions on top.
"""
import struct

OBJECT, FUNCTION = 1, 2
LOCAL, GLOBAL = 0, 1
PROGBITS, SYMTAB, STRTAB, NOBITS = 1, 2, 3, 8
BSS = 1


def symbol_name(index):
    if index % 8 == 0:
        return f"value_{index}__Q2_6Engine{len(str(index)) + 4}Unit{index}"
    if index % 8 == 1:
        return f"sCounter.{index}"
    return f"gModule{index % 97}_Signal_{index}"


def symbol_records(count):
    """The records of the symbol table and the bytes of its string table."""
    records, names, offset = [bytes(16)], [b"\0"], 1
    address = 0x20000000
    for index in range(count):
        name = symbol_name(index).encode() + b"\0"
        size = 1 << (index % 9)
        binding = LOCAL if index % 8 == 1 else GLOBAL
        records.append(struct.pack("<IIIBBH", offset, address, size, binding << 4 | OBJECT, 0, BSS))
        names.append(name)
        offset += len(name)
        address += max(size, 4)
    for index in range(count // 20):
        name = f"Function{index}".encode() + b"\0"
        records.append(struct.pack("<IIIBBH", offset, 0x8000 + 4 * index, 4, GLOBAL << 4 | FUNCTION,
                                   0, BSS))
        names.append(name)
        offset += len(name)
    return b"".join(records), b"".join(names), address - 0x20000000


def write_image(path, count):
    """Writes the file with `count` data symbols."""
    symbols, names, memory = symbol_records(count)
    section_names = b"\0.bss\0.symtab\0.strtab\0.shstrtab\0"
    contents = [symbols, names, section_names]
    positions, position = [], 52
    for content in contents:
        positions.append(position)
        position += len(content) + -len(content) % 4
    headers = [
        (0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
        (section_names.index(b".bss"), NOBITS, 3, 0x20000000, 52, memory, 0, 0, 4, 0),
        (section_names.index(b".symtab"), SYMTAB, 0, 0, positions[0], len(symbols), 3, 1, 4, 16),
        (section_names.index(b".strtab"), STRTAB, 0, 0, positions[1], len(names), 0, 0, 1, 0),
        (section_names.index(b".shstrtab"), STRTAB, 0, 0, positions[2], len(section_names), 0, 0, 1, 0),
    ]
    identification = b"\x7fELF" + bytes([1, 1, 1]) + bytes(9)
    elf_header = identification + struct.pack("<HHIIIIIHHHHHH", 2, 40, 1, 0, 0, position, 0x05000000,
                                              52, 0, 0, 40, len(headers), 4)
    with open(path, "wb") as file:
        file.write(elf_header)
        for content in contents:
            file.write(content + bytes(-len(content) % 4))
        for header in headers:
            file.write(struct.pack("<10I", *header))

