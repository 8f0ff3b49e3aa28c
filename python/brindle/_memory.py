"""Bytes of the target's memory, from any source."""

from __future__ import annotations

import bisect
from typing import List, Protocol, Tuple, Union

from ._errors import MemoryGapError

Bytes = Union[bytes, bytearray, memoryview]


class MemorySource(Protocol):
    """Anything that knows the target's memory: a Memory, an Image with its initial values, or an object of
    yours that asks a debugger."""

    def read_memory(self, address: int, size: int) -> bytes:
        """The bytes of a range; raises MemoryGapError if they aren't known."""


class Memory:
    """Ranges of memory by address, such as the regions of a dump:

        memory = Memory(ram_dump, address=0x20000000)
        memory.add(0x08000000, flash_dump)

    What is added is kept, not copied. A later range hides an earlier one if it covers everything that
    is read.
    """

    def __init__(self, content: Bytes = b"", *, address: int = 0) -> None:
        # By ascending address, each with its turn.
        self._starts: List[int] = []
        self._stretches: List[Tuple[int, int, memoryview]] = []
        self._longest = 0
        if len(content):
            self.add(address, content)

    def add(self, address: int, content: Bytes) -> None:
        """Adds the bytes of a range that begins at `address`."""
        view = memoryview(content).cast("B")
        position = bisect.bisect_right(self._starts, address)
        self._starts.insert(position, address)
        self._stretches.insert(position, (len(self._stretches), address, view))
        self._longest = max(self._longest, len(view))

    def read_memory(self, address: int, size: int) -> bytes:
        """The bytes of a range; raises MemoryGapError if they aren't known."""
        # Only ranges that begin here or not further back than the longest one is long can hold the bytes.
        first = bisect.bisect_left(self._starts, address - self._longest)
        last = bisect.bisect_right(self._starts, address)
        holders = [stretch for stretch in self._stretches[first:last]
                   if address - stretch[1] + size <= len(stretch[2])]
        if not holders:
            raise MemoryGapError(f"the memory has no {size} bytes at {address:#x}")
        _, start, content = max(holders, key=lambda stretch: stretch[0])
        return bytes(content[address - start : address - start + size])
