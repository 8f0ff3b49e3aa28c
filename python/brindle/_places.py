"""Places in the target's memory: what paths lead to, variables, and their leaves."""

from __future__ import annotations

import ctypes
import re
import weakref
from array import array
from ctypes import byref, c_uint64, c_void_p
from typing import TYPE_CHECKING, Any, Dict, Iterable, Iterator, List, Optional, Tuple

from . import _model, _native
from ._errors import MemoryGapError, PathError
from ._memory import MemorySource
from ._model import Model, PlaceRow
from ._types import Type, type_or_nothing
from ._values import (
    Decoder,
    Value,
    bits_decoder_of,
    bytes_of_bits,
    decoder_of,
    held_bytes,
    rest_decoder_of,
)

if TYPE_CHECKING:
    import pandas


class _Located:
    """Anything with an address, a type and a size."""

    __slots__ = ()

    _model: Model
    path: str
    address: int
    size: int
    bit_offset: Optional[int]
    bit_size: Optional[int]
    _type: int

    @property
    def type(self) -> Type:
        """For a bit field, the type of its storage unit."""
        return type_or_nothing(self._model, self._type)

    def _decoder(self) -> Decoder:
        if self.bit_size is None:
            return decoder_of(self._model, self._type)
        return bits_decoder_of(self._model, self._type, self.bit_offset or 0, self.bit_size)

    def _byte_count(self) -> int:
        if self.bit_size is None:
            return self.size
        return bytes_of_bits(self.size, self.bit_offset or 0, self.bit_size) or self.size

    def decode(self, content: bytes) -> Value:
        """The value of `content`, the bytes of the place. Their number must be `size`, and one more for a
        packed bit field that extends beyond its storage unit."""
        if len(content) != self._byte_count():
            raise ValueError(f"{self.path} has {self._byte_count()} bytes, not {len(content)}")
        return self._decoder()(content)

    def value_of(self, memory: MemorySource) -> Value:
        """The value in a memory: an Image has the initial value, a Memory the value in a dump. Raises
        MemoryGapError if the memory doesn't have the bytes."""
        return self._decoder()(self._read(memory))

    def _read(self, memory: MemorySource) -> bytes:
        count = self._byte_count()
        try:
            return memory.read_memory(self.address, count)
        except MemoryGapError:
            first, width = self.bit_offset or 0, self.bit_size
            if width is None or not bytes_of_bits(self.size, first, width):
                raise
            # The memory may end with the bits, before the storage unit does.
            return memory.read_memory(self.address, held_bytes(self._model, count, first, width))

    def __repr__(self) -> str:
        bits = f", {self.bit_size} bits at {self.bit_offset}" if self.bit_size is not None else ""
        text = self._model.type_text(self._type)
        return f"<{type(self).__name__} {self.path} at {self.address:#x}, {text}{bits}>"


class Place(_Located):
    """Where a path leads."""

    __slots__ = ("_model", "_row", "path")

    def __init__(self, model: Model, path: str, row: PlaceRow) -> None:
        self._model = model
        self._row = row
        self.path = path

    @property
    def _type(self) -> int:  # type: ignore[override]
        return self._row.type

    @property
    def address(self) -> int:  # type: ignore[override]
        """Address of the first byte."""
        return self._row.address

    @property
    def size(self) -> int:  # type: ignore[override]
        """Size in bytes; for a bit field, the size of its storage unit."""
        return self._row.size

    @property
    def bit_offset(self) -> Optional[int]:  # type: ignore[override]
        """Position of a bit field in its storage unit, from the least significant bit; None for anything
        else."""
        return self._row.bit_offset if self._row.is_bit_field else None

    @property
    def bit_size(self) -> Optional[int]:  # type: ignore[override]
        """Width of a bit field in bits; None for anything else."""
        return self._row.bit_size if self._row.is_bit_field else None

    @property
    def variable(self) -> Variable:
        """The variable that the path begins with."""
        return Variable(self._model, self._row.variable)

    def _decoder(self) -> Decoder:
        indexed = self._row.indexed_dimensions
        if indexed and not self._row.is_bit_field:
            return rest_decoder_of(self._model, self._type, indexed)
        return super()._decoder()


class Variable(_Located):
    """A variable with a static address."""

    __slots__ = ("_model", "_object")

    def __init__(self, model: Model, identifier: int) -> None:
        self._model = model
        self._object = model.object(identifier)

    @property
    def name(self) -> str:
        """The name without its scopes."""
        return self._object.name

    @property
    def qualified_name(self) -> str:
        """The name after its namespaces, classes and functions, joined by "::"."""
        return self._model.qualified_name(self._object.id)

    path = qualified_name  # type: ignore[assignment]

    @property
    def _type(self) -> int:  # type: ignore[override]
        return self._object.type

    @property
    def address(self) -> int:  # type: ignore[override]
        """Address of the first byte."""
        return self._object.address

    @property
    def size(self) -> int:  # type: ignore[override]
        """Size in bytes, 0 if unknown."""
        return self._model.size_of(self._object.type)

    bit_offset = None
    bit_size = None

    @property
    def unit(self) -> Optional[str]:
        """The name of its compile unit; None for a variable that is global to the whole image."""
        unit = self._model.compile_unit_of(self._object.id)
        return self._model.object(unit).name if unit else None

    def leaves(self, *, array_elements: int = 1000, limit: int = 1_000_000) -> Leaves:
        """Its leaves; see Image.leaves."""
        return Leaves(self._model, None, [self._object.id], array_elements, limit)

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, Variable) and other._model is self._model
                and other._object.id == self._object.id)

    def __hash__(self) -> int:
        return hash((id(self._model), self._object.id))


class _Block:
    """Rows of variables or leaves. A column becomes a Python object on access."""

    __slots__ = ("model", "count", "addresses", "sizes", "types", "globals", "bit_offsets",
                 "bit_sizes", "_text", "_paths")

    def __init__(self, model: Model, block: Any) -> None:
        self.model = model
        self.count: int = block.count

        def column(pointer: int, code: str) -> Any:
            values = array(code)
            values.frombytes(ctypes.string_at(pointer, self.count * values.itemsize))
            return values

        self.addresses = column(block.addresses, "Q")
        self.sizes = column(block.sizes, "Q")
        self.types = column(block.types, "Q")
        self.globals = column(block.globals, "Q")
        self.bit_offsets = column(block.bit_offsets, "I")
        self.bit_sizes = column(block.bit_sizes, "Q")
        self._text: Optional[bytes] = ctypes.string_at(block.paths, block.path_bytes)
        self._paths: Optional[List[str]] = None

    @property
    def paths(self) -> List[str]:
        if self._paths is None:
            assert self._text is not None
            self._paths = self._text.decode("utf-8", "replace").split("\0")
            self._text = None
        return self._paths


class Leaf(_Located):
    """A piece of a variable that has no parts itself: a number, a pointer, an enum, a bit field."""

    __slots__ = ("_block", "_index")

    def __init__(self, block: _Block, index: int) -> None:
        self._block = block
        self._index = index

    @property
    def _model(self) -> Model:  # type: ignore[override]
        return self._block.model

    @property
    def _type(self) -> int:  # type: ignore[override]
        return self._block.types[self._index]  # type: ignore[no-any-return]

    @property
    def path(self) -> str:  # type: ignore[override]
        """The name of the variable with the steps to the leaf, such as "motors[1].loops[0].gain"."""
        return self._block.paths[self._index]

    @property
    def address(self) -> int:  # type: ignore[override]
        """Address of the first byte."""
        return self._block.addresses[self._index]  # type: ignore[no-any-return]

    @property
    def size(self) -> int:  # type: ignore[override]
        """Size in bytes; for a bit field, the size of its storage unit."""
        return self._block.sizes[self._index]  # type: ignore[no-any-return]

    @property
    def bit_offset(self) -> Optional[int]:  # type: ignore[override]
        """Position of a bit field in its storage unit, from the least significant bit; None for anything
        else."""
        block, index = self._block, self._index
        return block.bit_offsets[index] if block.bit_sizes[index] else None

    @property
    def bit_size(self) -> Optional[int]:  # type: ignore[override]
        """Width of a bit field in bits; None for anything else."""
        return self._block.bit_sizes[self._index] or None

    @property
    def variable(self) -> Variable:
        """The variable that it is a part of."""
        return Variable(self._block.model, self._block.globals[self._index])


class _Rows:
    """One walk of the library over variables or leaves."""

    def __init__(self, model: Model, **choice: Any) -> None:
        handle = c_void_p()
        wanted = _native.RowChoice(**choice)
        model._check(_native.library.brindle_rows_create(model.handle, byref(wanted), byref(handle)))
        self._model = model
        self._handle = handle.value
        weakref.finalize(self, _native.library.brindle_rows_destroy, self._handle)

    def blocks(self) -> Iterator[_Block]:
        block = _native.RowBlock()
        while True:
            status = _native.library.brindle_rows_next(self._handle, 0, byref(block))
            self._model._check(status)
            if status == _native.NOT_FOUND:
                return
            yield _Block(self._model, block)

    def cuts(self) -> Any:
        cuts = _native.LeafCuts()
        _native.library.brindle_rows_cuts(self._handle, byref(cuts))
        return cuts


class Leaves:
    """The leaves that were requested. Each loop over them walks anew."""

    def __init__(self, model: Model, pattern: Optional[str], variables: Optional[List[int]],
                 array_elements: int, limit: int) -> None:
        if array_elements < 1 or limit < 1:
            raise ValueError("limits are at least 1")
        self._model = model
        self._filter = _Filter(pattern) if pattern is not None else None
        self._variables = variables
        self._limits = {"array_elements": array_elements, "leaves": limit}
        self._cuts: Any = None

    @property
    def is_complete(self) -> bool:
        """False if the last loop left something out: array elements beyond `array_elements`, the parts of
        places that are nested too deep, or leaves beyond `limit`."""
        return self._cuts is None or not (
            self._cuts.arrays or self._cuts.wholes or self._cuts.is_exhausted)

    def __iter__(self) -> Iterator[Leaf]:
        for block, rows in self._blocks():
            for index in rows:
                yield Leaf(block, index)

    def _blocks(self) -> Iterator[Tuple[_Block, Iterable[int]]]:
        """Blocks with the indices of the wanted rows."""
        choice: Dict[str, Any] = dict(self._limits)
        wholes = None
        wanted = self._variables
        if self._filter is not None:
            wanted, wholes = self._filter.variables(self._model)
        if wanted is not None:
            if not wanted:
                return
            choice["globals"] = (c_uint64 * len(wanted))(*wanted)
            choice["global_count"] = len(wanted)
        rows = _Rows(self._model, **choice)
        for block in rows.blocks():
            if self._filter is None or wholes is None:
                yield block, range(block.count)
            else:
                yield block, self._filter.rows(block, wholes)
            self._cuts = rows.cuts()
        self._cuts = rows.cuts()

    def to_dataframe(self) -> pandas.DataFrame:
        """All leaves as a table with the columns path, address, size, type, bit_offset and bit_size.
        Needs pandas."""
        return _dataframe(self._model, self._blocks(), "path", has_bits=True)

    def __repr__(self) -> str:
        return f"<Leaves of {self._model.image_path!r}>"


def _without_number(own_name: str, name: str) -> str:
    """The name that a variable shares with others, if it is `name` with a number; otherwise its own."""
    point = len(name)
    return name if own_name[:point] == name and re.fullmatch(r"\.[0-9]+", own_name[point:]) else own_name


class Variables:
    """The variables of an image, in the order of delivery, and by name. Static variables may share a name:
    it stands for the first of them, `all` gives each."""

    def __init__(self, model: Model) -> None:
        self._model = model

    def __iter__(self) -> Iterator[Variable]:
        for identifier in self._model.identifiers_of_kind(_model.KIND_GLOBAL):
            yield Variable(self._model, identifier)

    def __len__(self) -> int:
        return sum(block.count for block, _ in self._blocks())

    def __getitem__(self, name: str) -> Variable:
        """The first variable with a qualified name, or else with the name only. Others may share the name:
        `all` gives each."""
        found = self.all(name)
        if not found:
            raise PathError(f"there is no variable {name!r}")
        return found[0]

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and bool(self.all(name))

    def all(self, name: str) -> List[Variable]:
        """All variables with a qualified name, or else with the name only. "count" also gives "count.2",
        "count.3" and so on, which share name and scope with it."""
        found = list(self._model.find(name, _model.KIND_GLOBAL))
        if not found:
            # A path of only the name begins with its first variable.
            try:
                candidates = self._model.resolve(name).candidates
                places = [self._model.resolve(name, index) for index in range(candidates)]
            except PathError:
                return []
            found = [place.variable for place in places
                     if _without_number(self._model.object(place.variable).name, name) == name]
        return [Variable(self._model, identifier) for identifier in found]

    def matching(self, pattern: str) -> Iterator[Variable]:
        """Variables whose qualified name, or what follows a "::" in it, matches a pattern: `*` stands for
        any characters, `?` for one."""
        _, wholes = _Filter(pattern).variables(self._model)
        for identifier in sorted(wholes):
            yield Variable(self._model, identifier)

    def _blocks(self) -> Iterator[Tuple[_Block, Iterable[int]]]:
        for block in _Rows(self._model, variables=1).blocks():
            yield block, range(block.count)

    def to_dataframe(self) -> pandas.DataFrame:
        """All variables as a table with the columns name, address, size and type. Needs pandas."""
        return _dataframe(self._model, self._blocks(), "name", has_bits=False)

    def __repr__(self) -> str:
        return f"<Variables of {self._model.image_path!r}>"


class _Filter:
    """A pattern of paths, in which `*` stands for any characters and `?` for one. It matches a path, or
    what follows a "::" in it; a pattern that matches the name of a variable selects all of its leaves."""

    def __init__(self, pattern: str) -> None:
        translated = re.escape(pattern).replace(r"\*", ".*").replace(r"\?", ".")
        self._matches = re.compile(f"(?:.*::)?{translated}", re.DOTALL).fullmatch
        self._head = re.split(r"[*?]", pattern, maxsplit=1)[0]
        self._has_wildcard = len(self._head) < len(pattern)

    def variables(self, model: Model) -> Tuple[List[int], frozenset[int]]:
        """The variables with leaves that may match, and those among them that match themselves."""
        wanted: List[int] = []
        wholes = []
        for block in _Rows(model, variables=1).blocks():
            for identifier, name in zip(block.globals, block.paths):
                if self._matches(name):
                    wholes.append(identifier)
                elif not self._may_begin(name):
                    continue
                wanted.append(identifier)
        return wanted, frozenset(wholes)

    def _may_begin(self, name: str) -> bool:
        start = 0
        while True:
            own = name[start:]
            if self._head.startswith(own) or (self._has_wildcard and own.startswith(self._head)):
                return True
            separator = name.find("::", start)
            if separator < 0:
                return False
            start = separator + 2

    def rows(self, block: _Block, wholes: frozenset[int]) -> Iterator[int]:
        matches = self._matches
        for index, (identifier, path) in enumerate(zip(block.globals, block.paths)):
            if identifier in wholes or matches(path):
                yield index


def _dataframe(model: Model, blocks: Iterator[Tuple[_Block, Iterable[int]]], head: str, *,
               has_bits: bool) -> pandas.DataFrame:
    try:
        import pandas
    except ImportError as error:
        raise ImportError("to_dataframe needs pandas: pip install pandas") from error
    names = [head, "address", "size", "type", *(["bit_offset", "bit_size"] if has_bits else [])]
    columns: Dict[str, List[Any]] = {name: [] for name in names}
    for block, rows in blocks:
        for index in rows:
            columns[head].append(block.paths[index])
            columns["address"].append(block.addresses[index])
            columns["size"].append(block.sizes[index])
            columns["type"].append(model.type_text(block.types[index]))
            if has_bits:
                width = block.bit_sizes[index]
                columns["bit_offset"].append(block.bit_offsets[index] if width else None)
                columns["bit_size"].append(width or None)
    frame = pandas.DataFrame(columns)
    # The columns of an empty table have the same types.
    for name, kind in ((head, "object"), ("type", "object"), ("address", "uint64"), ("size", "uint64")):
        frame[name] = frame[name].astype(kind)
    for name in ("bit_offset", "bit_size") if has_bits else ():
        frame[name] = frame[name].astype("UInt64")
    return frame
