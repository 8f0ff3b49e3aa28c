"""Reads the symbols of firmware images: where each variable of a running controller lies, how large it
is and what it is made of.

    import brindle

    with brindle.read("firmware.elf", full=True) as image:
        gain = image["motors[1].loops[0].gain"]
        print(hex(gain.address), gain.type.name, gain.value_of(image))
"""

from ._errors import (
    BusyError,
    ClosedError,
    Error,
    MemoryGapError,
    OptionError,
    PathError,
    ReadError,
)
from ._image import CompileUnit, Hit, Image, Section
from ._memory import Memory, MemorySource
from ._places import Leaf, Leaves, Place, Variable, Variables
from ._reading import library_version, read
from ._types import (
    ArrayType,
    BaseClass,
    BaseType,
    Enumerator,
    EnumType,
    FunctionType,
    Member,
    PointerType,
    StructType,
    Type,
    TypedefType,
    Types,
    UnknownType,
)
from ._values import EnumValue, Value
from ._version import __version__

__all__ = [
    "ArrayType",
    "BaseClass",
    "BaseType",
    "BusyError",
    "ClosedError",
    "CompileUnit",
    "EnumType",
    "EnumValue",
    "Enumerator",
    "Error",
    "FunctionType",
    "Hit",
    "Image",
    "Leaf",
    "Leaves",
    "Member",
    "Memory",
    "MemoryGapError",
    "MemorySource",
    "OptionError",
    "PathError",
    "Place",
    "PointerType",
    "ReadError",
    "Section",
    "StructType",
    "Type",
    "TypedefType",
    "Types",
    "UnknownType",
    "Value",
    "Variable",
    "Variables",
    "__version__",
    "library_version",
    "read",
]

# Messages and representations show the classes under the names that a user imports.
for _name in __all__:
    _object = globals()[_name]
    if isinstance(_object, type):
        _object.__module__ = __name__
