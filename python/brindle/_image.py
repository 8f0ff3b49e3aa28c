"""The result of reading one file."""

from __future__ import annotations

from types import TracebackType
from typing import Iterator, List, NamedTuple, Optional, Tuple, Type as ClassOf

from . import _model
from ._errors import MemoryGapError
from ._model import Model
from ._places import Leaves, Place, Variable, Variables
from ._types import Types

_CONTAINERS = ("elf", "coff", "pe")
_SECTION_KINDS = ("code", "read-only data", "data", "zero")


class Section(NamedTuple):
    """A section in the target's memory."""

    name: str
    address: int
    size: int
    # "code", "read-only data", "data", or "zero" for a section without bytes in the file.
    kind: str
    # File position of its first byte, and how many bytes the file has; those missing at the end are zero.
    file_position: int
    file_size: int


class Hit(NamedTuple):
    """A place that holds a byte, and the distance of the byte from the first byte of the place."""

    place: Place
    offset: int


class CompileUnit(NamedTuple):
    """A source file that was compiled, and the variables that are local to it."""

    name: str
    variables: Tuple[Variable, ...]


class Image:
    """An image: its target, sections, variables and types. Everything is looked up on access.

    `with` closes it, and so does the end of its last use. Objects made from it keep the library's model
    alive until `close`.
    """

    def __init__(self, model: Model, remarks: Tuple[str, ...]) -> None:
        self._model = model
        self._remarks = remarks

    @property
    def path(self) -> str:
        """The path that was given to `read`; empty if the file could not be opened."""
        return self._model.image_path

    @property
    def remarks(self) -> Tuple[str, ...]:
        """What the read skipped and what to do about it, one line each; only the full manner of reading
        makes remarks."""
        return self._remarks

    @property
    def container(self) -> str:
        """"elf", "coff" or "pe"."""
        return _CONTAINERS[self._model.image.container]

    @property
    def byte_order(self) -> str:
        """"little" or "big", as int.from_bytes takes it."""
        return self._model.byte_order

    @property
    def address_size(self) -> int:
        """Width of an address in bytes by the class of the file: 4 or 8."""
        return int(self._model.image.address_size)

    @property
    def pointer_size(self) -> int:
        """Size of a pointer in bytes: of the first pointer type in the file, or else `address_size`."""
        return int(self._model.image.pointer_size)

    @property
    def machine(self) -> int:
        """The number of the target: e_machine of ELF, the target id of TI COFF, the machine of PE."""
        return int(self._model.image.machine)

    @property
    def is_linked(self) -> bool:
        """False for an object file, which has no addresses yet."""
        return bool(self._model.image.is_linked)

    @property
    def is_word_addressed(self) -> bool:
        """The target counts memory in words of 16 bits. Addresses and sizes are still in bytes."""
        return bool(self._model.image.is_word_addressed)

    @property
    def has_contents(self) -> bool:
        """False for a file of debug information that was split off its image, by objcopy --only-keep-debug,
        say: it has no initial values."""
        return bool(self._model.image.has_contents)

    @property
    def sections(self) -> Tuple[Section, ...]:
        """The sections in the target's memory, by ascending address."""
        return tuple(
            Section(str(section.name), section.address, section.size, _SECTION_KINDS[section.kind],
                    section.file_position, section.file_size)
            for section in self._model.sections())

    @property
    def units(self) -> Iterator[CompileUnit]:
        """The compile units."""
        for identifier in self._model.identifiers_of_kind(_model.KIND_COMPILE_UNIT):
            variables = tuple(Variable(self._model, row.id)
                              for row in self._model.objects_in(identifier)
                              if row.kind == _model.KIND_GLOBAL)
            yield CompileUnit(self._model.object(identifier).name, variables)

    @property
    def variables(self) -> Variables:
        """All variables with a static address."""
        return Variables(self._model)

    @property
    def types(self) -> Types:
        """All types."""
        return Types(self._model)

    def __getitem__(self, path: str) -> Place:
        """The place that a path such as "motor.pid[2].gain" names: a variable by its qualified name, or
        else by its name only, then members and elements. Pointers are not followed. Several variables may
        share the name: this is the first of them, and `places` gives each. Raises PathError, which says
        how far the path resolved."""
        return Place(self._model, path, self._model.resolve(path))

    def __contains__(self, path: object) -> bool:
        return isinstance(path, str) and bool(self.places(path))

    def places(self, path: str) -> List[Place]:
        """The places of a path for each variable of its name, since static variables may share a name;
        empty if it doesn't resolve. "count" also leads to "count.2", "count.3" and so on, which share name
        and scope with it and whose numbers may change from build to build."""
        try:
            first = self._model.resolve(path)
        except LookupError:
            return []
        rest = [self._model.resolve(path, index) for index in range(1, first.candidates)]
        return [Place(self._model, path, row) for row in (first, *rest)]

    def at(self, address: int) -> List[Hit]:
        """Everything that holds the byte at an address: a leaf, or the innermost structure or array if the
        byte lies in a gap; several places if variables or members of a union overlap. Empty if no
        variable holds the byte."""
        return [Hit(Place(self._model, path, row), offset)
                for path, row, offset in self._model.find_address(address)]

    def leaves(self, pattern: Optional[str] = None, *, array_elements: int = 1000,
               limit: int = 1_000_000) -> Leaves:
        """The variables taken apart into what has no parts.

        pattern: which paths are wanted, with `*` for any characters and `?` for one; it may also match
            what follows a "::". A pattern that matches the name of a variable selects all of its leaves.
        array_elements: how many elements of each array are visited.
        limit: how many leaves are visited in all. `Leaves.is_complete` says whether any were left out.
        """
        return Leaves(self._model, pattern, None, array_elements, limit)

    def initial_bytes(self, address: int, size: int) -> Optional[bytes]:
        """The bytes of a range of the target's memory when the program starts; None if the image doesn't
        have them. A file that was read by its path is opened again for this."""
        return self._model.initial_bytes(address, size)

    def read_memory(self, address: int, size: int) -> bytes:
        """As initial_bytes, but raises MemoryGapError, so that an image is a MemorySource."""
        content = self._model.initial_bytes(address, size)
        if content is None:
            raise MemoryGapError(f"the image has no {size} bytes at {address:#x}")
        return content

    def close(self) -> None:
        """Frees the memory of the image. Objects made from it raise ClosedError from then on."""
        self._model.close()

    def __enter__(self) -> Image:
        return self

    def __exit__(self, kind: Optional[ClassOf[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<Image {self.path!r}>"
