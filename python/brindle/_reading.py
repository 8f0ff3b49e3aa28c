"""Reading a file."""

from __future__ import annotations

import ctypes
import os
from ctypes import byref, c_void_p
from typing import Any, Callable, Dict, List, Mapping, NoReturn, Optional, Tuple, Union

from . import _native
from ._errors import BusyError, Error, OptionError, ReadError
from ._image import Image
from ._model import Model
from ._problems import message

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview]
# Receives what the reader is doing and how far it has come with that, from 0 to 1.
Progress = Callable[[str, float], object]

_CONTAINERS = {"auto": -1, "elf": 0, "coff": 1, "pe": 2}


def library_version() -> str:
    """The version of the loaded library."""
    return str(_native.library.brindle_version().decode())


def read(source: Source, *, full: bool = False, all_types: bool = False, container: str = "auto",
         options: Optional[Mapping[str, object]] = None, progress: Optional[Progress] = None,
         wait: bool = False, name: Optional[str] = None) -> Image:
    """Reads an ELF, TI-COFF or PE file.

    source: its path, or its content.
    full: read in the full manner, which knows DWARF 5 and addresses of 64 bits; see docs/full-reading.md.
        If false, the library's option decides.
    all_types: also read types that no variable uses.
    container: "auto", "elf", "coff" or "pe".
    options: options of the reader for only this read; see docs/options.md.
    progress: called from time to time; an exception in it ends the read and is raised here.
    wait: if another thread is reading, wait for its end instead of raising BusyError.
    name: names a content in messages; `Image.path` returns it.
    """
    if container not in _CONTAINERS:
        raise ValueError(f"container is one of {', '.join(_CONTAINERS)}, not {container!r}")
    settings: Dict[str, object] = {"mIsFullReading": 1} if full else {}
    settings.update(options or {})
    wanted = _native.Input(container=_CONTAINERS[container], waits=int(wait))
    kept = _take_source(wanted, source, name)
    _take_settings(wanted, settings)
    try:
        with _Reader(progress) as reader:
            _native.library.brindle_reader_set_read_all_types(reader.handle, int(all_types))
            return reader.read(wanted)
    except ReadError as error:
        file = os.fsdecode(wanted.path)
        error.args = ((f"{file}: " if file else "") + message(kept, str(error), container),)
        raise


def _take_source(wanted: Any, source: Source, name: Optional[str]) -> Union[bytes, str]:
    """Returns what must live as long as the input."""
    if isinstance(source, (bytes, bytearray, memoryview)):
        content = bytes(source)
        wanted.bytes = ctypes.cast(ctypes.c_char_p(content), c_void_p)
        wanted.byte_count = len(content)
        wanted.path = os.fsencode(name or "")
        return content
    path = os.fsencode(source)
    if b"\0" in path:
        raise ValueError("a path has no null character")
    wanted.path = path
    return os.fsdecode(path)


def _take_settings(wanted: Any, settings: Mapping[str, object]) -> None:
    texts = {option: str(int(value)) if isinstance(value, bool) else str(value)
             for option, value in settings.items()}
    wanted.settings = (_native.Setting * len(texts))(
        *[_native.Setting(option.encode(), text.encode()) for option, text in texts.items()])
    wanted.setting_count = len(texts)


class _Reader:
    """A reader of the library for one read."""

    def __init__(self, progress: Optional[Progress]) -> None:
        self._progress = progress
        self._error: Optional[BaseException] = None
        # The reader names only the phases that follow the first one.
        self._phase = "Reading..."
        self._start = 0
        self._length = 1
        self.handle = c_void_p()
        _check(_native.library.brindle_reader_create(byref(self.handle)))
        # The functions must live as long as the reader. They are set even without a progress function: an
        # interrupt of the user reaches Python in one of them.
        self._callbacks = _native.Callbacks(
            SetProgressText=_native.SetProgressText(self._on_text),
            SetProgressInterval=_native.SetProgressInterval(self._on_interval),
            SetProgressValue=_native.SetProgressValue(self._on_value))
        _check(_native.library.brindle_reader_set_callbacks(self.handle, byref(self._callbacks)))

    def __enter__(self) -> _Reader:
        return self

    def __exit__(self, *_: object) -> None:
        _native.library.brindle_reader_destroy(self.handle)

    def read(self, wanted: Any) -> Image:
        handle = c_void_p()
        status = _native.library.brindle_reader_read_input(self.handle, byref(wanted), byref(handle))
        image = Image(Model(handle.value), self._remarks()) if handle.value else None
        if self._error is not None:
            raise self._error
        if status != _native.OK or image is None:
            self._fail(status, image)
        return image

    def _remarks(self) -> Tuple[str, ...]:
        remarks: List[str] = []
        while True:
            status, text = _native.status_and_text(
                _native.library.brindle_reader_remark_at, self.handle, len(remarks), None)
            if status != _native.OK:
                return tuple(remarks)
            remarks.append(text)

    def _fail(self, status: int, image: Optional[Image]) -> NoReturn:
        text = _native.text_of(_native.library.brindle_reader_error_text, self.handle)
        if status == _native.BUSY:
            raise BusyError(f"{text}; read(..., wait=True) waits for its end")
        if status == _native.OUT_OF_MEMORY:
            raise MemoryError(text)
        if status in (_native.NOT_FOUND, _native.INVALID_VALUE):
            raise OptionError(text)
        if status == _native.READ_FAILED:
            raise ReadError(text, image)
        raise Error(text)

    def _tell(self, value: int) -> None:
        """No exception may leave a function that the library calls: keep it, and end the read."""
        try:
            if self._progress is not None and self._error is None:
                share = (value - self._start) / self._length if self._length else 0.0
                self._progress(self._phase, min(max(share, 0.0), 1.0))
        except BaseException as error:
            self._give_up(error)

    def _give_up(self, error: BaseException) -> None:
        self._error = error
        _native.library.brindle_reader_cancel(self.handle)

    def _on_text(self, _user: Any, text: bytes) -> None:
        self._phase = text.decode("utf-8", "replace")

    def _on_interval(self, _user: Any, start: int, end: int) -> None:
        self._start, self._length = start, end - start
        self._tell(start)

    def _on_value(self, _user: Any, value: int) -> None:
        self._tell(value)


def _check(status: int) -> None:
    if status == _native.OUT_OF_MEMORY:
        raise MemoryError
    if status != _native.OK:
        raise Error(_native.library.brindle_status_text(status).decode())


__all__: List[str] = ["library_version", "read"]
