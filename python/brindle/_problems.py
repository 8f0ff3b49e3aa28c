"""Why a read failed, where the reader's own words don't say it: what the system says of the file, and what
its first bytes look like."""

from __future__ import annotations

import os
import re
import stat
from typing import Union

# What the reader says of a file that isn't opened, or whose Windows headers can't be read.
_NOT_OPENED = "ELF file Open has failed."
# What the reader says of a file that ends before the place where it looks.
_ENDED_EARLY = ("ELF file Seek has failed.", "ELF file Read has failed.")

# What users take for images, by its first bytes; the comments of an A2L file may be long. The program knows
# the same.
_START = 4096
_FOREIGN = (
    (re.compile(rb":[0-9A-Fa-f]{10}"),
     "an Intel HEX file has the bytes of memory only: read the linked image that it was made from"),
    (re.compile(rb"S[0-9A-Fa-f]{7}"),
     "a file of S-records has the bytes of memory only: read the linked image that it was made from"),
    (re.compile(rb"!<(arch|thin)>\n"),
     "an archive of object files, which have no addresses yet: read the linked image"),
    (re.compile(rb"(?s).*(ASAP2_VERSION|/begin PROJECT)"), "an A2L file: read the image that it describes"))


def message(source: Union[bytes, str], error: str, container: str) -> str:
    """An error of the reader with its reason. A file of another kind is not corrupt, as the reader says. The
    source is a content, or the path of a file."""
    why = _reason(source, error, container)
    if any(why == foreign for _, foreign in _FOREIGN):
        return why
    return f"{error} ({why})" if why else error


def _reason(source: Union[bytes, str], error: str, container: str) -> str:
    """The reason for an error of the reader, or "" where its text says all."""
    if isinstance(source, bytes):
        start = source[:_START]
    else:
        try:
            mode = os.stat(source).st_mode
            if stat.S_ISDIR(mode):
                return "Is a directory"
            if stat.S_ISFIFO(mode):
                # Opening it would wait for somebody who writes.
                return "a pipe can't be read: seeking is required"
            with open(source, "rb") as file:
                start = file.read(_START)
        except OSError as problem:
            return problem.strerror or ""
    if not start:
        return "The file is empty"
    for mark, foreign in _FOREIGN:
        if mark.match(start):
            return foreign
    if container == "auto" and not start.startswith(b"\x7fELF") and not start.startswith(b"MZ"):
        return ("Read as COFF, being neither ELF nor a Windows image; a raw binary or a text has no symbols: "
                "read the linked image")
    if error == _NOT_OPENED and (container == "pe" or start.startswith(b"MZ")):
        return "not a Windows image, or truncated"
    if error in _ENDED_EARLY:
        return "the file ends before its headers say: truncated, or not copied to the end"
    return ""
