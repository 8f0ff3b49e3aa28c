"""What binutils say of a Windows image, for the checks of this folder.

All is parsed from the text of objdump and nm; the program under test is never asked.
"""

import functools
import re
import subprocess


def is_windows_image(image):
    return image.suffix in (".exe", ".dll")


def _output(*command):
    done = subprocess.run(command, capture_output=True, text=True, check=True, timeout=60)
    return done.stdout


@functools.cache
def library_base(image):
    """The image base of a DLL; 0 for every other file."""
    if not is_windows_image(image):
        return 0
    headers = _output("objdump", "--private-headers", str(image))
    is_library = re.search(r"^\s+DLL$", headers, re.MULTILINE) is not None
    return int(re.search(r"^ImageBase\s+([0-9a-f]+)$", headers, re.MULTILINE)[1], 16) if is_library else 0


def delivered_address(image, address):
    """Where the reader says in the classic manner that a thing lies that the linker put at an address:
    addresses have 32 bits, and those of a DLL are relative to its base, unless the base has more bits than
    they."""
    base = library_base(image)
    cut = address & 0xFFFFFFFF
    return cut - base if cut > base else cut


def whole_delivered_address(image, address):
    """The same in the full manner, in which addresses have 64 bits."""
    return address - library_base(image)


def last_part(name):
    """The name without the scopes that it is qualified by."""
    return name.rpartition("::")[2]


def data_symbols(image):
    """Addresses of the data symbols by the last part of their readable name; a name that stands for
    several things has several addresses. The numbers that tell static variables of functions apart are
    left out."""
    addresses = {}
    for line in _output("nm", "--demangle", str(image)).splitlines():
        found = re.match(r"([0-9a-f]+) [bBdDrR] (.+?)(?:\.\d+)?$", line)
        if found:
            addresses.setdefault(last_part(found[2]), set()).add(int(found[1], 16))
    return addresses
