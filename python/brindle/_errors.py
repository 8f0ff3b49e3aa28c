"""What can go wrong."""

from __future__ import annotations

from typing import TYPE_CHECKING, Optional

if TYPE_CHECKING:
    from ._image import Image


class Error(Exception):
    """Any error of this package."""


class ReadError(Error):
    """A file could not be read to its end; the text is the reader's.

    `image` holds what was delivered before; it is sound as far as it goes.
    """

    def __init__(self, text: str, image: Optional[Image] = None) -> None:
        super().__init__(text)
        self.image = image


class BusyError(Error):
    """Another read runs in this process. `read(..., wait=True)` waits for its end."""


class OptionError(Error, ValueError):
    """There is no such option of the reader, or it takes no such value."""


class PathError(Error, LookupError):
    """A path leads nowhere, or there is nothing of this name; the text tells how far it leads."""


class MemoryGapError(Error, LookupError):
    """The bytes of an address are not known."""


class ClosedError(Error):
    """The image is closed."""
