"""From bytes of memory to values. A decoder is made once for each type of an image and called once for
each value."""

from __future__ import annotations

import struct
from typing import Any, Callable, Dict, List, Optional, Tuple, Union

from . import _model
from ._model import Model, ObjectRow

# What bytes become: numbers and truth values for scalars and pointers, EnumValue for enums, a list for an
# array (of lists, if it has several dimensions), a dict for a structure or union, and the bytes themselves
# if their meaning is unknown.
Value = Union[int, float, bool, bytes, List[Any], Dict[str, Any]]
Decoder = Callable[[bytes], Value]

_DEEPEST_NESTING = 100

_SIGNED = frozenset((2, 4, 8, 11, 13, 15))
_UNSIGNED = frozenset((3, 5, 9, 12, 14, 16))
_FLOATS = {(18, 2): "e", (6, 4): "f", (10, 8): "d"}
_BOOL = 7


class EnumValue(int):
    """A number in a variable of an enum type, with its name there."""

    name: Optional[str]

    def __new__(cls, value: int, name: Optional[str]) -> EnumValue:
        made = super().__new__(cls, value)
        made.name = name
        return made

    def __str__(self) -> str:
        return self.name if self.name is not None else int.__repr__(self)

    def __repr__(self) -> str:
        return f"<{self.name or '?'}: {int.__repr__(self)}>"

    def __getnewargs__(self) -> Tuple[int, Optional[str]]:  # type: ignore[override]
        return int(self), self.name


def decoder_of(model: Model, identifier: int, depth: int = 0) -> Decoder:
    """Returns the function that turns the bytes of a type into its value."""
    known = model.decoders.get(identifier)
    if known is None:
        row = model.object(model.without_typedefs(identifier))
        makers: Dict[int, Callable[[Model, ObjectRow, int], Decoder]] = {
            _model.KIND_BASE: _scalar,
            _model.KIND_POINTER: _scalar,
            _model.KIND_ENUM: _enum,
            _model.KIND_ARRAY: _array,
            _model.KIND_CLASS: _structure,
            _model.KIND_STRUCT: _structure,
            _model.KIND_UNION: _structure,
        }
        maker = makers.get(row.kind) if depth < _DEEPEST_NESTING else None
        known = maker(model, row, depth) if maker is not None else bytes
        model.decoders[identifier] = known
    return known


def bytes_of_bits(size: int, bit_offset: int, bit_size: int) -> int:
    """Returns how many bytes a bit field needs from the start of its storage unit of `size` bytes: a packed
    field may need one more than the unit has. 0 for position and width of a damaged file."""
    is_plausible = 0 < bit_size <= 64 and 0 < size <= 64 and bit_offset + bit_size <= 8 * (size + 1)
    return max(size, (bit_offset + bit_size + 7) // 8) if is_plausible else 0


def held_bytes(model: Model, count: int, bit_offset: int, bit_size: int) -> int:
    """Returns how many of the bytes that `bytes_of_bits` counts, from the first, hold the bit field. A packed
    structure may end there, before its storage unit does."""
    if model.byte_order == "big":
        return count - bit_offset // 8
    return (bit_offset + bit_size + 7) // 8


def bits_decoder_of(model: Model, identifier: int, bit_offset: int, bit_size: int) -> Decoder:
    """Returns the function that turns the bytes that `bytes_of_bits` counts, or those that `held_bytes`
    counts, into the value of a bit field."""
    count = bytes_of_bits(model.size_of(identifier), bit_offset, bit_size)
    if not count:
        return bytes
    byte_order: Any = model.byte_order
    mask = (1 << bit_size) - 1
    row = model.object(model.without_typedefs(identifier))
    finish: Callable[[int], Value]
    if row.kind == _model.KIND_ENUM:
        finish = _named(model, row)
        is_signed = _is_signed(model, row)
    else:
        finish = bool if row.basic_type == _BOOL else int
        is_signed = row.basic_type in _SIGNED
    sign = 1 << (bit_size - 1) if bit_size and is_signed else 0

    def decode(content: bytes) -> Value:
        number = int.from_bytes(content.ljust(count, b"\0"), byte_order) >> bit_offset & mask
        return finish((number ^ sign) - sign)

    return decode


def _scalar(model: Model, row: ObjectRow, _depth: int) -> Decoder:
    byte_order: Any = model.byte_order
    basic_type = row.basic_type
    code = _FLOATS.get((basic_type, row.size))
    if code is not None:
        layout = struct.Struct((">" if byte_order == "big" else "<") + code)
        return lambda content: layout.unpack(content)[0]  # type: ignore[no-any-return]
    if basic_type == _BOOL:
        return lambda content: any(content)
    if basic_type in _SIGNED:
        return lambda content: int.from_bytes(content, byte_order, signed=True)
    if basic_type in _UNSIGNED or row.kind == _model.KIND_POINTER:
        return lambda content: int.from_bytes(content, byte_order)
    return bytes


def _named(model: Model, row: ObjectRow) -> Callable[[int], Value]:
    size = model.size_of(row.id)
    width = 8 * size if 0 < size < 8 else 64
    mask = (1 << width) - 1

    def bits(number: int) -> Optional[int]:
        return number & mask if -(1 << width - 1) <= number <= mask else None

    names: Dict[Optional[int], str] = {}
    for name, value in model.enumerators(row):
        # Large values of an unsigned enum may be negative here.
        names.setdefault(bits(value), name)
    names.pop(None, None)  # An enum that can't hold a value doesn't have it.
    return lambda number: EnumValue(number, names.get(bits(number)))


def _is_signed(model: Model, row: ObjectRow) -> bool:
    underlying = model.object(model.without_typedefs(row.type))
    if underlying.kind == _model.KIND_BASE:
        return underlying.basic_type in _SIGNED
    # Without an integer type, only the values tell it.
    return any(value < 0 for _, value in model.enumerators(row))


def _enum(model: Model, row: ObjectRow, depth: int) -> Decoder:
    finish = _named(model, row)
    size = model.size_of(row.id)
    underlying = model.object(model.without_typedefs(row.type))
    if underlying.kind != _model.KIND_BASE or size not in (1, 2, 4, 8):
        byte_order: Any = model.byte_order
        is_signed = _is_signed(model, row)
        return lambda content: finish(int.from_bytes(content, byte_order, signed=is_signed))
    number = decoder_of(model, underlying.id, depth + 1)
    return lambda content: finish(number(content))  # type: ignore[arg-type]


def rest_decoder_of(model: Model, identifier: int, indexed_dimensions: int) -> Decoder:
    """Returns the function that turns the bytes of a part of an array, after some of its indices, into its
    value."""
    return _array(model, model.object(model.without_typedefs(identifier)), 0, indexed_dimensions)


def _array(model: Model, row: ObjectRow, depth: int, indexed_dimensions: int = 0) -> Decoder:
    element = decoder_of(model, row.type, depth + 1)
    stride = model.element_stride(row.id)
    size = model.size_of(row.type) or stride
    inner = [count for count in model.dimensions(row)[indexed_dimensions + 1 :] if count]

    def decode(content: bytes) -> Value:
        values: List[Any] = []
        if stride:
            values = [element(content[start : start + size])
                      for start in range(0, len(content) - size + 1, stride)]
        for count in reversed(inner):
            values = [values[start : start + count] for start in range(0, len(values), count)]
        return values

    return decode


def _structure(model: Model, row: ObjectRow, depth: int) -> Decoder:
    # Name, offset, size, how many of these bytes must be there, and the decoder.
    parts: List[Tuple[str, int, int, int, Decoder]] = []
    if row.kind != _model.KIND_UNION:
        for base, offset in model.base_classes(row):
            size = model.size_of(base)
            parts.append(("", offset, size, size, decoder_of(model, base, depth + 1)))
    for member in model.objects_in(row.id):
        if member.kind not in _model.MEMBER_KINDS:
            continue
        size = needed = model.size_of(member.type)
        if member.kind == _model.KIND_BIT_FIELD:
            count = bytes_of_bits(size, member.bit_offset, member.bit_size)
            if count:
                size, needed = count, held_bytes(model, count, member.bit_offset, member.bit_size)
            decode_member = bits_decoder_of(
                model, member.type, member.bit_offset, member.bit_size)
        else:
            decode_member = decoder_of(model, member.type, depth + 1)
        parts.append((member.name, member.offset, size, needed, decode_member))

    def decode(content: bytes) -> Value:
        values: Dict[str, Any] = {}
        for name, offset, size, needed, decode_part in parts:
            if offset + needed > len(content):
                continue
            value = decode_part(content[offset : offset + size])
            if name:
                values[name] = value
            elif isinstance(value, dict):
                values.update(value)
        return values

    return decode
