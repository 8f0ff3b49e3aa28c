"""The types of an image. Each is an object of the class of its kind, made on access; a type is the same
object as long as someone holds it."""

from __future__ import annotations

from typing import Iterator, NamedTuple, Optional, Tuple

from . import _model
from ._errors import PathError
from ._model import Model, ObjectRow


class Type:
    """Any type."""

    def __init__(self, model: Model, row: ObjectRow) -> None:
        self._model = model
        self._row = row

    @property
    def name(self) -> str:
        """Its own name, without scopes; for a type without a name its C declaration, such as "uint32" or
        "limits[2]"."""
        return self._row.name or self.text

    @property
    def qualified_name(self) -> str:
        """The name after its enclosing scopes; empty for a type without a name."""
        return self._model.qualified_name(self._row.id)

    @property
    def text(self) -> str:
        """The type as a C declaration without a name, such as "uint16[4][2]"."""
        return self._model.type_text(self._row.id)

    @property
    def kind(self) -> str:
        """The kind as a word: "base", "struct", "class", "union", "array", "pointer", "enum", "typedef",
        "function" or "unknown"."""
        return _KINDS[self._row.kind][0]

    @property
    def size(self) -> int:
        """Size in bytes, 0 if unknown."""
        return self._model.size_of(self._row.id)

    @property
    def resolved(self) -> Type:
        """The type that a chain of typedefs leads to; the type itself if it is no typedef."""
        return type_of(self._model, self._model.without_typedefs(self._row.id)) or self

    def _related(self) -> Optional[Type]:
        return type_of(self._model, self._row.type)

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, Type) and other._model is self._model
                and other._row.id == self._row.id)

    def __hash__(self) -> int:
        return hash((id(self._model), self._row.id))

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self.text!r}, {self.size} bytes>"


class BaseType(Type):
    """A scalar."""

    @property
    def encoding(self) -> str:
        """"signed", "unsigned", "float", "bool" or "other"."""
        return _ENCODINGS.get(self._row.basic_type, "other")


class UnknownType(Type):
    """A type of which only the size is known."""


class BaseClass(NamedTuple):
    """A base class and its offset in bytes from the start of the derived class."""

    type: Type
    offset: int


class Member:
    """A member of a structure, class or union."""

    def __init__(self, model: Model, row: ObjectRow) -> None:
        self._model = model
        self._row = row

    @property
    def name(self) -> str:
        """Empty for an anonymous member, whose own members count as members of the enclosing type."""
        return self._row.name

    @property
    def type(self) -> Type:
        """For a bit field, the type of its storage unit."""
        return type_or_nothing(self._model, self._row.type)

    @property
    def offset(self) -> int:
        """Offset in bytes from the start of the enclosing type; for a bit field, the offset of its storage
        unit."""
        return self._row.offset

    @property
    def size(self) -> int:
        """Size in bytes; for a bit field, the size of its storage unit."""
        return self._model.size_of(self._row.type)

    @property
    def is_bit_field(self) -> bool:
        return self._row.kind == _model.KIND_BIT_FIELD

    @property
    def bit_offset(self) -> Optional[int]:
        """Position of a bit field in its storage unit, from the least significant bit; None for
        anything else."""
        return self._row.bit_offset if self.is_bit_field else None

    @property
    def bit_size(self) -> Optional[int]:
        """Width of a bit field in bits; None for anything else."""
        return self._row.bit_size if self.is_bit_field else None

    def __repr__(self) -> str:
        bits = f", {self.bit_size} bits at {self.bit_offset}" if self.is_bit_field else ""
        return f"<Member {self.name!r} at {self.offset}, {self.type.text}{bits}>"


class StructType(Type):
    """A structure, class or union."""

    @property
    def is_anonymous(self) -> bool:
        """The reader made its name."""
        return self._row.anonymous

    @property
    def members(self) -> Tuple[Member, ...]:
        """Its own members, in the order of the file."""
        return tuple(Member(self._model, row) for row in self._model.objects_in(self._row.id)
                     if row.kind in _model.MEMBER_KINDS)

    @property
    def bases(self) -> Tuple[BaseClass, ...]:
        """Its base classes."""
        if self._row.kind == _model.KIND_UNION:
            return ()
        return tuple(BaseClass(type_or_nothing(self._model, identifier), offset)
                     for identifier, offset in self._model.base_classes(self._row))

    def __getitem__(self, name: str) -> Member:
        for member in self.members:
            if member.name == name:
                return member
        raise PathError(f"{self.text} has no member {name!r}")


class ArrayType(Type):
    """An array of one or more dimensions."""

    @property
    def element(self) -> Type:
        """The type of one element, after all dimensions."""
        return type_or_nothing(self._model, self._row.type)

    @property
    def dimensions(self) -> Tuple[int, ...]:
        """Element counts, outermost first."""
        return self._model.dimensions(self._row)

    @property
    def stride(self) -> int:
        """Distance in bytes from one element to the next."""
        return self._model.element_stride(self._row.id)


class PointerType(Type):
    """A pointer or reference."""

    @property
    def target(self) -> Optional[Type]:
        """None if nothing is known about the target."""
        return self._related()


class Enumerator(NamedTuple):
    """One value of an enum."""

    name: str
    value: int


class EnumType(Type):
    """An enum."""

    @property
    def is_anonymous(self) -> bool:
        """The reader made its name."""
        return self._row.anonymous

    @property
    def underlying(self) -> Optional[Type]:
        return self._related()

    @property
    def enumerators(self) -> Tuple[Enumerator, ...]:
        return tuple(Enumerator(name, value)
                     for name, value in self._model.enumerators(self._row))


class TypedefType(Type):
    """Another name of a type."""

    @property
    def target(self) -> Optional[Type]:
        return self._related()


class FunctionType(Type):
    """The type of a function."""

    @property
    def result(self) -> Optional[Type]:
        """None for a function without a result."""
        return self._related()

    @property
    def parameters(self) -> Tuple[Type, ...]:
        return tuple(type_or_nothing(self._model, identifier)
                     for identifier in self._model.parameters(self._row))


class Types:
    """The types of an image: named ones by their qualified name, all in the order of delivery."""

    def __init__(self, model: Model) -> None:
        self._model = model

    def __getitem__(self, name: str) -> Type:
        for identifier in self._model.find(name, _model.KIND_ANY):
            found = type_of(self._model, identifier)
            if found is not None:
                return found
        raise PathError(f"there is no type {name!r}")

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and any(
            type_of(self._model, identifier) is not None
            for identifier in self._model.find(name, _model.KIND_ANY))

    def __iter__(self) -> Iterator[Type]:
        for identifier in self._model.identifiers_of_kind(_model.KIND_ANY):
            found = type_of(self._model, identifier)
            if found is not None:
                yield found

    def __repr__(self) -> str:
        return f"<Types of {self._model.image_path!r}>"


_KINDS = {
    _model.KIND_BASE: ("base", BaseType),
    _model.KIND_UNKNOWN: ("unknown", UnknownType),
    _model.KIND_CLASS: ("class", StructType),
    _model.KIND_STRUCT: ("struct", StructType),
    _model.KIND_UNION: ("union", StructType),
    _model.KIND_ARRAY: ("array", ArrayType),
    _model.KIND_POINTER: ("pointer", PointerType),
    _model.KIND_ENUM: ("enum", EnumType),
    _model.KIND_TYPEDEF: ("typedef", TypedefType),
    _model.KIND_FUNCTION_TYPE: ("function", FunctionType),
}

# Indexed by the number of the scalar type.
_ENCODINGS = {
    **dict.fromkeys((2, 4, 8, 11, 13, 15), "signed"),
    **dict.fromkeys((3, 5, 9, 12, 14, 16), "unsigned"),
    **dict.fromkeys((6, 10, 18), "float"),
    7: "bool",
}


def type_of(model: Model, identifier: int) -> Optional[Type]:
    """The type of an identifier; None if the identifier names no type."""
    if not identifier:
        return None
    known = model.types.get(identifier)
    if known is not None:
        return known
    row = model.object(identifier)
    if row.kind not in _KINDS:
        return None
    made = _KINDS[row.kind][1](model, row)
    return model.types.setdefault(identifier, made)


def type_or_nothing(model: Model, identifier: int) -> Type:
    """As type_of, but an unknown type of size 0 instead of None."""
    return type_of(model, identifier) or UnknownType(model, _NOTHING)


_NOTHING = ObjectRow(0, _model.KIND_UNKNOWN, 0, "", 0, 0, 0, 0, 0, 0, 0, 0, False)

