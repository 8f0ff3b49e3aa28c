"""Why a read failed, where the reader's own words don't say it: what the system says of the file, and what
its first bytes look like."""

from __future__ import annotations

import os
import stat
from typing import Union

# What the reader says of a file that isn't opened, or whose Windows headers can't be read.
_NOT_OPENED = "ELF file Open has failed."
# What the reader says of a file that ends before the place where it looks.
_ENDED_EARLY = ("ELF file Seek has failed.", "ELF file Read has failed.")


def reason(source: Union[bytes, str], error: str, container: str) -> str:
    """The reason for an error of the reader, or "" where its text says all. The source is a content, or
    the path of a file."""
    if isinstance(source, bytes):
        start = source[:4]
    else:
        try:
            mode = os.stat(source).st_mode
            if stat.S_ISDIR(mode):
                return "Is a directory"
            if stat.S_ISFIFO(mode):
                # Opening it would wait for somebody who writes.
                return "a pipe can't be read: seeking is required"
            with open(source, "rb") as file:
                start = file.read(4)
        except OSError as problem:
            return problem.strerror or ""
    if not start:
        return "The file is empty"
    if container == "auto" and start != b"\x7fELF" and not start.startswith(b"MZ"):
        return "Read as COFF, being neither ELF nor a Windows image"
    if error == _NOT_OPENED and (container == "pe" or start.startswith(b"MZ")):
        return "not a Windows image, or truncated"
    if error in _ENDED_EARLY:
        return "the file ends before its headers say: truncated, or not copied to the end"
    return ""
