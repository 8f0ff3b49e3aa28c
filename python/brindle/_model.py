"""One finished model of the library: its handle and its queries, in plain values. Images, types and places
share it; it is destroyed with the last of them, or when the image is closed."""

from __future__ import annotations

import ctypes
import weakref
from ctypes import byref, c_size_t, c_uint32, c_uint64
from typing import TYPE_CHECKING, Any, Callable, Dict, Iterator, List, MutableMapping, NamedTuple, Optional, Tuple

from . import _native
from ._errors import ClosedError, Error, PathError

if TYPE_CHECKING:
    from ._types import Type
    from ._values import Decoder

KIND_ANY = 0
KIND_COMPILE_UNIT = 3
KIND_BASE = 4
KIND_UNKNOWN = 5
KIND_CLASS = 6
KIND_STRUCT = 7
KIND_UNION = 8
KIND_BIT_FIELD = 11
MEMBER_KINDS = frozenset((9, 10, KIND_BIT_FIELD))
KIND_ARRAY = 12
KIND_POINTER = 13
KIND_ENUM = 14
KIND_TYPEDEF = 15
KIND_FUNCTION_TYPE = 16
KIND_GLOBAL = 18

_LONGEST_ZEROS = 256 * 1024 * 1024


class ObjectRow(NamedTuple):
    """An object of the model; members that its kind doesn't have are 0."""

    id: int
    kind: int
    basic_type: int
    name: str
    scope: int
    type: int
    size: int
    address: int
    offset: int
    bit_offset: int
    bit_size: int
    list_length: int
    anonymous: bool


class PlaceRow(NamedTuple):
    """Where a path leads."""

    variable: int
    type: int
    address: int
    size: int
    indexed_dimensions: int
    is_bit_field: bool
    bit_offset: int
    bit_size: int
    candidates: int


class Model:
    """Owns the handle of a model. May be used by any number of threads."""

    def __init__(self, handle: int) -> None:
        self._handle: Optional[int] = handle
        self._finalizer = weakref.finalize(self, _native.library.brindle_model_destroy, handle)
        self.types: MutableMapping[int, Type] = weakref.WeakValueDictionary()
        self.decoders: Dict[int, Decoder] = {}
        self.type_texts: Dict[int, str] = {}
        image = _native.Image()
        self._check(_native.library.brindle_model_image(handle, byref(image)))
        self.image: Any = image
        self.image_path = str(image.path)

    def close(self) -> None:
        self._handle = None
        self._finalizer()

    @property
    def handle(self) -> int:
        if self._handle is None:
            raise ClosedError("the image is closed")
        return self._handle

    @property
    def byte_order(self) -> str:
        return "big" if self.image.byte_order else "little"

    def _check(self, status: int) -> None:
        if status == _native.OUT_OF_MEMORY:
            raise MemoryError
        if status == _native.INVALID_HANDLE:
            raise ClosedError("the image is closed")
        if status not in (_native.OK, _native.NOT_FOUND):
            raise Error(_native.library.brindle_status_text(status).decode())

    def _number(self, function: Callable[..., int], *arguments: object, number: Any = None) -> int:
        """The number that a function returns; 0 if there is none."""
        result = c_uint64() if number is None else number
        self._check(function(self.handle, *arguments, byref(result)))
        return int(result.value)

    def object(self, identifier: int) -> ObjectRow:
        found = _native.Object()
        self._check(_native.library.brindle_model_object(self.handle, identifier, byref(found)))
        return ObjectRow(
            found.id, found.kind, found.basic_type, str(found.name), found.scope, found.type,
            found.size, found.address, found.offset, found.bit_offset, found.bit_size,
            found.list_length, bool(found.anonymous))

    def objects_in(self, scope: int) -> Iterator[ObjectRow]:
        identifier = self._number(_native.library.brindle_model_first_in, scope)
        while identifier:
            yield self.object(identifier)
            identifier = self._number(_native.library.brindle_model_next_in, identifier)

    def identifiers_of_kind(self, kind: int) -> Iterator[int]:
        identifier = 0
        while True:
            identifier = self._number(
                _native.library.brindle_model_next_of_kind, kind, identifier)
            if not identifier:
                return
            yield identifier

    def base_classes(self, row: ObjectRow) -> List[Tuple[int, int]]:
        found = _native.BaseClass()
        result = []
        for index in range(row.list_length):
            self._check(_native.library.brindle_model_base_class(
                self.handle, row.id, index, byref(found)))
            result.append((found.type, found.offset))
        return result

    def enumerators(self, row: ObjectRow) -> List[Tuple[str, int]]:
        found = _native.Enumerator()
        result = []
        for index in range(row.list_length):
            self._check(_native.library.brindle_model_enumerator(
                self.handle, row.id, index, byref(found)))
            result.append((str(found.name), found.whole_value))
        return result

    def dimensions(self, row: ObjectRow) -> Tuple[int, ...]:
        return tuple(
            self._number(_native.library.brindle_model_dimension, row.id, index, number=c_uint32())
            for index in range(row.list_length))

    def parameters(self, row: ObjectRow) -> List[int]:
        return [self._number(_native.library.brindle_model_parameter, row.id, index)
                for index in range(row.list_length)]

    def size_of(self, identifier: int) -> int:
        return self._number(_native.library.brindle_model_size_of, identifier)

    def element_stride(self, identifier: int) -> int:
        return self._number(_native.library.brindle_model_element_stride, identifier)

    def without_typedefs(self, identifier: int) -> int:
        return self._number(_native.library.brindle_model_without_typedefs, identifier)

    def compile_unit_of(self, identifier: int) -> int:
        return self._number(_native.library.brindle_model_compile_unit_of, identifier)

    def qualified_name(self, identifier: int) -> str:
        return _native.text_of(
            _native.library.brindle_model_qualified_name, self.handle, identifier)

    def type_text(self, identifier: int) -> str:
        text = self.type_texts.get(identifier)
        if text is None:
            text = _native.text_of(
                _native.library.brindle_model_type_text, self.handle, identifier)
            self.type_texts[identifier] = text
        return text

    def find(self, name: str, kind: int) -> Iterator[int]:
        """The objects of a qualified name, in the order of delivery."""
        encoded = name.encode("utf-8", "surrogatepass")
        identifier = 0
        while "\0" not in name:
            identifier = self._number(
                _native.library.brindle_model_find, encoded, kind, identifier)
            if not identifier:
                return
            yield identifier

    def resolve(self, path: str, index: int = 0) -> PlaceRow:
        """The place of a path; raises PathError if the path doesn't resolve."""
        encoded = path.encode("utf-8", "surrogatepass")
        found = _native.Place()
        if "\0" in path:
            raise PathError(f"{path!r}: a path has no null character")
        status = _native.library.brindle_model_resolve_path(
            self.handle, encoded, index, byref(found))
        self._check(status)
        if status == _native.NOT_FOUND:
            raise PathError(self._problem(path, encoded))
        return _place_row(found)

    def find_address(self, address: int) -> Iterator[Tuple[str, PlaceRow, int]]:
        """Path, place and offset for everything that holds the byte at an address."""
        count = 1
        index = 0
        found = _native.Place()
        offset = c_uint64()
        while index < count and 0 <= address < 1 << 64:
            status, path = _native.status_and_text(
                _native.library.brindle_model_find_address, self.handle, address, index,
                byref(found), byref(offset))
            if status == _native.NOT_FOUND:
                return
            self._check(status)
            count = found.candidates
            yield path, _place_row(found), offset.value
            index += 1

    def _problem(self, path: str, encoded: bytes) -> str:
        resolved = c_size_t()
        problem = _native.text_of(
            _native.library.brindle_model_path_problem, self.handle, encoded, byref(resolved))
        if not resolved.value:
            return f"{path!r}: {problem}"
        lead = encoded[:resolved.value].decode("utf-8", "replace")
        return f"{path!r}: resolves up to {lead!r}, then {problem}"

    def sections(self) -> List[Any]:
        result = []
        for index in range(self.image.section_count):
            section = _native.Section()
            self._check(_native.library.brindle_model_section(
                self.handle, index, byref(section)))
            result.append(section)
        return result

    def initial_bytes(self, address: int, size: int) -> Optional[bytes]:
        # Don't allocate for bytes that can't be there; the library gives no longer run of zeros.
        if size <= 0 or size > self.image.file_size + _LONGEST_ZEROS or not 0 <= address < 1 << 64:
            return None
        buffer = (ctypes.c_uint8 * size)()
        status = _native.library.brindle_model_initial_bytes(self.handle, address, buffer, size)
        self._check(status)
        return bytes(buffer) if status == _native.OK else None


def _place_row(found: Any) -> PlaceRow:
    return PlaceRow(
        getattr(found, "global"), found.type, found.address, found.size,
        found.indexed_dimensions, bool(found.is_bit_field), found.bit_offset, found.bit_size,
        found.candidates)
