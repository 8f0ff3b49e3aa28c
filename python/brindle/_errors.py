"""The exceptions of the package."""

from __future__ import annotations

from typing import TYPE_CHECKING, Optional

if TYPE_CHECKING:
    from ._image import Image


class Error(Exception):
    """Any error of this package."""


class ReadError(Error):
    """A file could not be read to its end; the text names it, and says why.

    `image` holds what was delivered before the failure. It is sound, but not complete.
    """

    def __init__(self, text: str, image: Optional[Image] = None) -> None:
        super().__init__(text)
        self.image = image


class BusyError(Error):
    """Another read is running in this process. `read(..., wait=True)` waits for its end."""


class OptionError(Error, ValueError):
    """The reader has no such option, or the option doesn't take the value."""


class PathError(Error, LookupError):
    """A path doesn't resolve, or nothing has this name; the text says how far the path resolved."""


class MemoryGapError(Error, LookupError):
    """The bytes at an address are not known."""


class ClosedError(Error):
    """The image is closed."""
