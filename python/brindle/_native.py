"""The C interface of the library for ctypes: loading, structures and functions, under the names of
brindle.h. Apart from this module, only the callbacks of a read use ctypes."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import pathlib
import sys
from ctypes import POINTER, c_char, c_char_p, c_int32, c_int64, c_size_t, c_uint8, c_uint32, c_uint64, c_void_p
from typing import Any, Callable, List, Tuple

OK = 0
READ_FAILED = 1
CANCELLED = 2
BUSY = 3
INVALID_HANDLE = 4
NOT_FOUND = 6
INVALID_VALUE = 7
OUT_OF_MEMORY = 9

_OLDEST_INTERFACE = 3


class Text(ctypes.Structure):
    _fields_ = [("data", c_void_p), ("size", c_size_t)]

    def __str__(self) -> str:
        return ctypes.string_at(self.data, self.size).decode("utf-8", "replace") if self.size else ""


class Sized(ctypes.Structure):
    """A structure that begins with its size."""

    def __init__(self, **fields: Any) -> None:
        super().__init__(struct_size=ctypes.sizeof(self), **fields)


def _structure(name: str, *fields: Tuple[str, Any]) -> Any:
    return type(name, (Sized,), {"_fields_": [("struct_size", c_size_t), *fields]})


Object = _structure(
    "Object", ("id", c_uint64), ("kind", c_int32), ("basic_type", c_int32), ("name", Text),
    ("scope", c_uint64), ("type", c_uint64), ("compile_unit", c_uint64), ("size", c_uint64),
    ("address", c_uint64), ("offset", c_uint32), ("bit_offset", c_uint32), ("bit_size", c_uint64),
    ("list_length", c_size_t), ("anonymous", c_int32))
Place = _structure(
    "Place", ("global", c_uint64), ("type", c_uint64), ("address", c_uint64), ("size", c_uint64),
    ("indexed_dimensions", c_size_t), ("is_bit_field", c_int32), ("bit_offset", c_uint32),
    ("bit_size", c_uint64), ("candidates", c_size_t))
BaseClass = _structure("BaseClass", ("type", c_uint64), ("offset", c_uint32))
Enumerator = _structure("Enumerator", ("name", Text), ("value", c_int32), ("whole_value", c_int64))
LeafCuts = _structure(
    "LeafCuts", ("arrays", c_uint64), ("wholes", c_uint64), ("is_exhausted", c_int32))
RowChoice = _structure(
    "RowChoice", ("variables", c_int32), ("globals", POINTER(c_uint64)), ("global_count", c_size_t),
    ("array_elements", c_uint64), ("leaves", c_uint64))
RowBlock = _structure(
    "RowBlock", ("count", c_size_t), ("globals", c_void_p), ("types", c_void_p),
    ("addresses", c_void_p), ("sizes", c_void_p), ("bit_offsets", c_void_p), ("bit_sizes", c_void_p),
    ("path_starts", c_void_p), ("paths", c_void_p), ("path_bytes", c_size_t))
Image = _structure(
    "Image", ("path", Text), ("file_size", c_uint64), ("container", c_int32), ("byte_order", c_int32),
    ("address_size", c_int32), ("pointer_size", c_int32), ("machine", c_int32),
    ("is_linked", c_int32), ("is_word_addressed", c_int32), ("section_count", c_size_t),
    ("has_contents", c_int32))
Section = _structure(
    "Section", ("name", Text), ("address", c_uint64), ("size", c_uint64), ("file_position", c_uint64),
    ("file_size", c_uint64), ("kind", c_int32))


class Setting(ctypes.Structure):
    _fields_ = [("name", c_char_p), ("value", c_char_p)]


Input = _structure(
    "Input", ("path", c_char_p), ("bytes", c_void_p), ("byte_count", c_size_t),
    ("container", c_int32), ("waits", c_int32), ("settings", POINTER(Setting)),
    ("setting_count", c_size_t))

SignalError = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_uint32, c_char_p, c_char_p)
SetProgressText = ctypes.CFUNCTYPE(None, c_void_p, c_char_p)
SetProgressInterval = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_int32)
SetProgressValue = ctypes.CFUNCTYPE(None, c_void_p, c_int32)
Callbacks = _structure(
    "Callbacks", ("user_data", c_void_p), ("SignalError", SignalError),
    ("SetProgressText", SetProgressText), ("SetProgressInterval", SetProgressInterval),
    ("SetProgressValue", SetProgressValue))

# Arguments of the functions that return a status. Handles are numbers.
_TEXT_TARGET: Tuple[Any, ...] = (POINTER(c_char), c_size_t, POINTER(c_size_t))
_FUNCTIONS: Tuple[Tuple[Any, ...], ...] = (
    ("brindle_reader_create", POINTER(c_void_p)),
    ("brindle_reader_destroy", c_void_p),
    ("brindle_reader_error_text", c_void_p, *_TEXT_TARGET),
    ("brindle_reader_set_read_all_types", c_void_p, c_int32),
    ("brindle_reader_set_callbacks", c_void_p, POINTER(Callbacks)),
    ("brindle_reader_read_input", c_void_p, POINTER(Input), POINTER(c_void_p)),
    ("brindle_reader_remark_at", c_void_p, c_size_t, c_void_p, *_TEXT_TARGET),
    ("brindle_reader_cancel", c_void_p),
    ("brindle_model_destroy", c_void_p),
    ("brindle_model_object", c_void_p, c_uint64, POINTER(Object)),
    ("brindle_model_next_of_kind", c_void_p, c_int32, c_uint64, POINTER(c_uint64)),
    ("brindle_model_first_in", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_next_in", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_base_class", c_void_p, c_uint64, c_size_t, POINTER(BaseClass)),
    ("brindle_model_enumerator", c_void_p, c_uint64, c_size_t, POINTER(Enumerator)),
    ("brindle_model_dimension", c_void_p, c_uint64, c_size_t, POINTER(c_uint32)),
    ("brindle_model_parameter", c_void_p, c_uint64, c_size_t, POINTER(c_uint64)),
    ("brindle_model_size_of", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_element_stride", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_without_typedefs", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_compile_unit_of", c_void_p, c_uint64, POINTER(c_uint64)),
    ("brindle_model_qualified_name", c_void_p, c_uint64, *_TEXT_TARGET),
    ("brindle_model_type_text", c_void_p, c_uint64, *_TEXT_TARGET),
    ("brindle_model_find", c_void_p, c_char_p, c_int32, c_uint64, POINTER(c_uint64)),
    ("brindle_model_resolve_path", c_void_p, c_char_p, c_size_t, POINTER(Place)),
    ("brindle_model_path_problem", c_void_p, c_char_p, POINTER(c_size_t), *_TEXT_TARGET),
    ("brindle_model_find_address", c_void_p, c_uint64, c_size_t, POINTER(Place), POINTER(c_uint64),
     *_TEXT_TARGET),
    ("brindle_rows_create", c_void_p, POINTER(RowChoice), POINTER(c_void_p)),
    ("brindle_rows_next", c_void_p, c_size_t, POINTER(RowBlock)),
    ("brindle_rows_cuts", c_void_p, POINTER(LeafCuts)),
    ("brindle_rows_destroy", c_void_p),
    ("brindle_model_image", c_void_p, POINTER(Image)),
    ("brindle_model_section", c_void_p, c_size_t, POINTER(Section)),
    ("brindle_model_initial_bytes", c_void_p, c_uint64, POINTER(c_uint8), c_size_t),
)


def _candidates() -> List[str]:
    """Where the library may be, the most specific place first."""
    wanted = os.environ.get("BRINDLE_LIBRARY")
    if wanted:
        return [wanted]
    name = "brindle.dll" if sys.platform == "win32" else "libbrindle.so"
    packaged = pathlib.Path(__file__).with_name(name)
    if packaged.exists():
        return [str(packaged)]
    installed = ctypes.util.find_library("brindle")
    return [*([installed] if installed else []), name]


def _load() -> ctypes.CDLL:
    problems = []
    for path in _candidates():
        try:
            library = ctypes.CDLL(path)
        except OSError as error:
            problems.append(str(error))
            continue
        library.brindle_interface_version.restype = c_int32
        version = library.brindle_interface_version()
        if version >= _OLDEST_INTERFACE:
            return library
        problems.append(f"{path} has interface {version}, {_OLDEST_INTERFACE} is needed")
    raise ImportError(
        "the library of Brindle can't be loaded; set BRINDLE_LIBRARY to its path: "
        + "; ".join(problems))


library = _load()
library.brindle_version.restype = c_char_p
library.brindle_status_text.restype = c_char_p
library.brindle_status_text.argtypes = [c_int32]
for _name, *_arguments in _FUNCTIONS:
    _function = getattr(library, _name)
    _function.restype = c_int32
    _function.argtypes = _arguments


def status_and_text(function: Callable[..., int], *arguments: object) -> Tuple[int, str]:
    """How a call ended, and the text that it copied into a buffer."""
    length = c_size_t()
    buffer = ctypes.create_string_buffer(256)
    status = function(*arguments, buffer, len(buffer), ctypes.byref(length))
    if length.value >= len(buffer):
        buffer = ctypes.create_string_buffer(length.value + 1)
        status = function(*arguments, buffer, len(buffer), ctypes.byref(length))
    return status, buffer.value.decode("utf-8", "replace")


def text_of(function: Callable[..., int], *arguments: object) -> str:
    """The text that a function copies into a buffer."""
    return status_and_text(function, *arguments)[1]
