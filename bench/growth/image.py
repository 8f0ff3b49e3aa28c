"""Writes images with debug entries fast, entry by entry, for inputs of millions of entries: ELF of class 32,
TI COFF and Windows PE."""
import struct

TAGS = dict(array=0x01, class_=0x02, enumeration=0x04, parameter=0x05, block=0x0B, member=0x0D, pointer=0x0F,
            unit=0x11, struct=0x13, subroutine=0x15, typedef=0x16, union=0x17, variant=0x19, inheritance=0x1C, subrange=0x21,
            base=0x24, const=0x26, enumerator=0x28, subprogram=0x2E, template_parameter=0x2F, variant_part=0x33, variable=0x34,
            namespace=0x39, partial_unit=0x3C, imported_unit=0x3D, type_unit=0x41)

# Those that end with "nothing" take no byte: the form itself means a value, which is 1 then.
ATTRIBUTES = dict(name=(0x03, 0x08), long_name=(0x03, 0x0E), type=(0x49, 0x10), size=(0x0B, 0x0F),
                  encoding=(0x3E, 0x0B), address=(0x02, 0x0A), location_list=(0x02, 0x17),
                  offset=(0x38, 0x0F), upper=(0x2F, 0x0F), value=(0x1C, 0x0D), declaration=(0x3C, 0x19),
                  external=(0x3F, 0x19), specification=(0x47, 0x10), origin=(0x31, 0x10), linkage_name=(0x6E, 0x08),
                  long_linkage_name=(0x6E, 0x0E), producer=(0x25, 0x08), name_nothing=(0x03, 0x19),
                  type_nothing=(0x49, 0x19), size_nothing=(0x0B, 0x19), offset_nothing=(0x38, 0x19),
                  bit_size_nothing=(0x0D, 0x19), indexed_name=(0x03, 0x1A), type_signature=(0x49, 0x20),
                  signature=(0x69, 0x20), imported=(0x18, 0x10), text_offsets_base=(0x72, 0x17),
                  addresses_base=(0x73, 0x17), indexed_address=(0x02, 0x18), lists_base=(0x8C, 0x17),
                  indexed_list=(0x02, 0x22))


def uleb(value):
    out = bytearray()
    while True:
        group = value & 0x7F
        value >>= 7
        out.append(group | (0x80 if value else 0))
        if not value:
            return bytes(out)


class Image:
    """Sections of one file. `entry` returns the section offset of what it wrote; a reference may be such
    an offset or a `Later`, which is filled in when the image is done."""

    class Later:
        offset = 0

    def __init__(self):
        self.info = bytearray()
        self.abbreviations = bytearray()
        self.strings = bytearray(b"\0")
        self.locations = bytearray()
        self.location_lists = bytearray()
        self.text_offsets = bytearray(8)
        self.addresses = bytearray(8)
        self.symbols = bytearray(16)
        self.names = bytearray(b"\0")
        self.codes = {}
        self.fixes = []
        self.unit_start = None

    def begin_modern_unit(self, **attributes):
        """A unit of DWARF 5."""
        self.unit_start = len(self.info)
        self.info += struct.pack("<IHBBI", 0, 5, 1, 4, 0)
        self.entry("unit", children=True, **{"name": "unit.c", **attributes})

    def begin_type_unit(self, signature):
        """A unit of DWARF 5 whose type is the first entry under the root."""
        self.unit_start = len(self.info)
        self.info += struct.pack("<IHBBIQI", 0, 5, 2, 4, 0, signature, 0)
        self.entry("type_unit", children=True)
        struct.pack_into("<I", self.info, self.unit_start + 20, len(self.info) - self.unit_start)

    def begin_unit(self, *, open_root=True, **attributes):
        self.unit_start = len(self.info)
        self.info += struct.pack("<IHIB", 0, 4, 0, 4)
        if open_root:
            self.entry("unit", children=True, **{"name": "unit.c", **attributes})

    def end_unit(self, *, open_root=True):
        if open_root:
            self.end()
        struct.pack_into("<I", self.info, self.unit_start, len(self.info) - self.unit_start - 4)

    def entry(self, tag, children=False, at=None, **attributes):
        key = (tag, children, tuple(attributes))
        code = self.codes.get(key)
        if code is None:
            code = self.codes[key] = uleb(len(self.codes) + 1)
            self.abbreviations += code + uleb(TAGS[tag]) + bytes([children])
            for name in attributes:
                attribute, form = ATTRIBUTES[name]
                self.abbreviations += uleb(attribute) + uleb(form)
            self.abbreviations += b"\0\0"
        offset = len(self.info)
        if at is not None:
            at.offset = offset
        self.info += code
        for name, value in attributes.items():
            self.value(name, value)
        return offset

    def value(self, name, value):
        form = ATTRIBUTES[name][1]
        if form == 0x08:
            self.info += value.encode() + b"\0"
        elif form == 0x10:
            if isinstance(value, Image.Later):
                self.fixes.append((len(self.info), value))
                value = 0
            self.info += struct.pack("<I", value)
        elif form == 0x0A:
            self.info += b"\5\3" + struct.pack("<I", value)
        elif form == 0x18:
            expression = b"\xA1" + uleb(value)
            self.info += uleb(len(expression)) + expression
        elif form == 0x19:
            pass
        elif form == 0x20:
            self.info += struct.pack("<Q", value)
        elif form in (0x0E, 0x17):
            self.info += struct.pack("<I", value)
        elif form in (0x0F, 0x1A, 0x22):
            self.info += uleb(value)
        elif form in (0x0B, 0x0D):
            self.info.append(value & 0x3F)

    def end(self, count=1):
        self.info += bytes(count)

    def string(self, text):
        self.strings += text.encode() + b"\0"
        return len(self.strings) - len(text) - 1

    def symbol_name(self, name):
        self.names += name.encode() + b"\0"
        return len(self.names) - len(name) - 1

    def symbol(self, name_offset, address, size=4, info=0x11):
        self.symbols += struct.pack("<IIIBBH", name_offset, address, size, info, 0, 1)

    def local_symbol(self, name_offset, address):
        self.symbol(name_offset, address, info=0x01)

    def source_file(self, name_offset):
        """The source of the local symbols that follow."""
        self.symbol(name_offset, 0, 0, info=0x04)

    def sections(self):
        """Names and contents of the debug sections."""
        for position, later in self.fixes:
            struct.pack_into("<I", self.info, position, later.offset)
        return {".debug_info": self.info, ".debug_abbrev": self.abbreviations + b"\0",
                ".debug_str": self.strings, ".debug_loc": self.locations,
                ".debug_loclists": self.location_lists, ".debug_addr": self.addresses,
                ".debug_str_offsets": self.text_offsets} if self.info else {}

    def content(self):
        contents = {**self.sections(), ".symtab": self.symbols, ".strtab": self.names}
        section_names = b"\0"
        headers = bytes(40)
        parts = [bytes(52)]
        position = 52
        for name, content in {**contents, ".shstrtab": b""}.items():
            place = len(section_names)
            section_names += name.encode() + b"\0"
            if name == ".shstrtab":
                content = section_names
            entry_size = 16 if name == ".symtab" else 0
            headers += struct.pack("<IIIIIIIIII", place, 1, 0, 0, position, len(content), 0, 0, 1, entry_size)
            parts.append(bytes(content))
            position += len(content)
        count = len(headers) // 40
        parts[0] = (b"\x7fELF\1\1\1" + bytes(9) +
                    struct.pack("<HHIIIIIHHHHHH", 2, 40, 1, 0, 0, position, 0, 52, 0, 0, 40, count, count - 1))
        return b"".join(parts) + headers


class Measurements:
    """Objects of one name, as a file that others include."""

    def __init__(self, count):
        self.count = count

    def content(self):
        return b'/begin MEASUREMENT v "" UWORD C 0 0 0 1 ECU_ADDRESS 1 /end MEASUREMENT ' * self.count


class Description:
    """An A2L file of one module."""

    def __init__(self, body):
        self.body = body

    def content(self):
        return f'/begin PROJECT p "" /begin MODULE m "" {self.body} /end MODULE /end PROJECT\n'.encode()


class CoffImage(Image):
    """A TI COFF file. Symbols and the names of sections follow the sections."""

    def __init__(self):
        super().__init__()
        self.symbols = bytearray()
        self.names = bytearray(4)
        self.more_sections = []

    def symbol(self, name_offset, address, size=4):
        self.symbols += struct.pack("<IIIhHBB", 0, name_offset, address, 1, 0, 2, 0)

    def section(self, name_offset):
        """One more section, an empty one, by the offset of its name."""
        self.more_sections.append(name_offset)

    def content(self):
        sections = self.sections()
        places = {name: self.symbol_name(name) for name in sections}
        count = len(sections) + len(self.more_sections)
        position = 22 + 48 * count
        headers = b""
        for name, content in sections.items():
            headers += struct.pack("<IIIIII", 0, places[name], 0, 0, len(content), position) + bytes(24)
            position += len(content)
        headers += b"".join(struct.pack("<IIIIII", 0, place, 0, 0, 0, 0) + bytes(24)
                            for place in self.more_sections)
        struct.pack_into("<I", self.names, 0, len(self.names))
        header = struct.pack("<HHIIIHHH", 0xC2, count, 0, position, len(self.symbols) // 18, 0, 0, 0x9D)
        return b"".join([header, headers, *map(bytes, sections.values()), self.symbols, self.names])


class PeImage(CoffImage):
    """A Windows image of 32 bits."""

    def content(self):
        sections = self.sections()
        places = {name: self.symbol_name(name) for name in sections}
        optional_size = 96
        count = len(sections) + len(self.more_sections) + 1
        position = 64 + 24 + optional_size + 40 * count
        headers = struct.pack("<8sIIIIIIHHI", b".data", 16, 0x1000, 0, 0, 0, 0, 0, 0, 0)
        for name, content in sections.items():
            headers += struct.pack("<8sIIIIIIHHI", b"/%d" % places[name], len(content), 0, len(content), position,
                                   0, 0, 0, 0, 0)
            position += len(content)
        headers += b"".join(struct.pack("<8s", b"/%d" % place) + bytes(32) for place in self.more_sections)
        struct.pack_into("<I", self.names, 0, len(self.names))
        header = (b"MZ" + bytes(58) + struct.pack("<I", 64) + b"PE\0\0" +
                  struct.pack("<HHIIIHH", 0x14C, count, 0, position, len(self.symbols) // 18, optional_size, 0))
        return b"".join([header, bytes(optional_size), headers, *map(bytes, sections.values()), self.symbols,
                         self.names])
