"""Runs inside gdb: writes all that gdb knows of the variables with an address of the image, as JSON.

    gdb -nx -batch -iex 'set auto-load off' IMAGE -x gdb_oracle.py

ORACLE_OUTPUT names the file to write, ORACLE_UNITS holds the names of the compile units, one a line.
The document has `variables` and `types`; a type is told once, under a key that variables, members and
other types refer to it by. gdb alone speaks here: nothing is adapted to the reader that is compared.
"""

import json
import os
import re

import gdb

NAMED_CODES = {
    gdb.TYPE_CODE_INT: "integer",
    gdb.TYPE_CODE_CHAR: "character",
    gdb.TYPE_CODE_BOOL: "boolean",
    gdb.TYPE_CODE_FLT: "float",
    gdb.TYPE_CODE_COMPLEX: "complex",
    gdb.TYPE_CODE_VOID: "void",
}
REFERRING_CODES = {
    gdb.TYPE_CODE_PTR: "pointer",
    gdb.TYPE_CODE_REF: "reference",
    gdb.TYPE_CODE_RVALUE_REF: "rvalueReference",
    gdb.TYPE_CODE_MEMBERPTR: "memberPointer",
    gdb.TYPE_CODE_METHODPTR: "methodPointer",
    gdb.TYPE_CODE_TYPEDEF: "typedef",
}


class TypeTable:
    """Types by key. Structures that were met and not yet told wait in a list, so that no chain of
    pointers is followed in depth."""

    def __init__(self):
        self.types = {}
        self._waiting = []

    def key_of(self, kind):
        plain = kind.unqualified()
        if plain.code in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION):
            # Completes a type that this unit only declares.
            plain = plain.strip_typedefs().unqualified()
        key = self._signature(plain)
        if key not in self.types:
            self.types[key] = None
            self._waiting.append((key, plain))
        return key

    def finish(self):
        while self._waiting:
            key, kind = self._waiting.pop()
            self.types[key] = self._describe(kind)

    def _signature(self, kind):
        parts = [kind.code, str(kind), kind.sizeof]
        if kind.code in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION, gdb.TYPE_CODE_ENUM):
            for field in kind.fields():
                parts.append((field.name, self._position(field), field.bitsize, str(field.type)))
        elif kind.code in REFERRING_CODES or kind.code == gdb.TYPE_CODE_ARRAY:
            target = kind.target()
            if target.code in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION):
                target = target.strip_typedefs()
            parts.append(self._signature(target))
        elif kind.code == gdb.TYPE_CODE_FUNC:
            parts.append(self._signature(kind.target()))
        return json.dumps(parts)

    @staticmethod
    def _position(field):
        """Bits from the start of the structure; None for what has no fixed place. For an enumerator, its
        value."""
        if hasattr(field, "enumval"):
            return field.enumval
        return getattr(field, "bitpos", None)

    def _describe(self, kind):
        if kind.code in NAMED_CODES:
            is_signed = kind.code in (gdb.TYPE_CODE_INT, gdb.TYPE_CODE_CHAR) and kind.is_signed
            return {"code": NAMED_CODES[kind.code], "name": kind.name, "size": kind.sizeof,
                    "signed": is_signed}
        if kind.code in REFERRING_CODES:
            target = kind.target()
            is_const_void = (target.code == gdb.TYPE_CODE_VOID
                             and str(target) != str(target.unqualified()))
            return {"code": REFERRING_CODES[kind.code], "name": kind.name, "size": kind.sizeof,
                    "target": self.key_of(target), "targetIsQualifiedVoid": is_const_void}
        if kind.code == gdb.TYPE_CODE_ARRAY:
            # Without an upper bound the range is of no use, and the size is 0.
            low, high = kind.range()
            count = int(high) - int(low) + 1 if kind.sizeof else 0
            return {"code": "array", "size": kind.sizeof, "count": count,
                    "target": self.key_of(kind.target())}
        if kind.code == gdb.TYPE_CODE_ENUM:
            return {"code": "enum", "name": kind.name, "size": kind.sizeof,
                    "enumerators": [[field.name, int(field.enumval)] for field in kind.fields()]}
        if kind.code in (gdb.TYPE_CODE_FUNC, gdb.TYPE_CODE_METHOD):
            return {"code": "function", "target": self.key_of(kind.target()),
                    "parameters": [self.key_of(field.type) for field in kind.fields()]}
        if kind.code in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION):
            return {"code": "union" if kind.code == gdb.TYPE_CODE_UNION else "structure",
                    "name": kind.name, "size": kind.sizeof,
                    "members": [self._member(field) for field in kind.fields()]}
        return {"code": f"other {kind.code}", "name": str(kind), "size": kind.sizeof}

    def _member(self, field):
        return {"name": field.name or "", "type": self.key_of(field.type), "bits": self._position(field),
                "bitSize": field.bitsize, "isBase": field.is_base_class,
                "isStatic": not field.is_base_class and not hasattr(field, "bitpos"),
                "isArtificial": field.artificial}


class VariableList:
    """The variables with an address, of every block of every unit."""

    def __init__(self, types):
        self.variables = []
        self._types = types

    def add_unit(self, unit, symtab):
        functions = []
        for block in (symtab.global_block(), symtab.static_block()):
            for symbol in block:
                if symbol.is_function:
                    functions.append(symbol)
                else:
                    self._add(unit, symbol, block.is_global, "")
        for function in functions:
            self._add_function(unit, function)

    def _add_function(self, unit, function):
        outermost = gdb.block_for_pc(int(function.value().address))
        if outermost is None:
            return
        # gdb hands out a block for an address only, so every address of the function is asked for.
        blocks = {}
        for address in range(outermost.start, outermost.end):
            block = gdb.block_for_pc(address)
            while block is not None and not block.is_static and not block.is_global:
                names = tuple(symbol.name for symbol in block)
                blocks[block.start, block.end, names] = block
                block = block.superblock
        for block in blocks.values():
            self._add_block(unit, block)

    def _add_block(self, unit, block):
        owner = block
        while owner.function is None:
            owner = owner.superblock
        for symbol in block:
            self._add(unit, symbol, False, owner.function.name)

    def _add(self, unit, symbol, is_global, function):
        if symbol.addr_class not in (gdb.SYMBOL_LOC_STATIC, gdb.SYMBOL_LOC_UNRESOLVED,
                                     gdb.SYMBOL_LOC_COMPUTED):
            return
        if symbol.is_argument or symbol.type.code == gdb.TYPE_CODE_FUNC:
            return
        address = self._address_of(symbol)
        if address is None:
            return
        variable = {
            "name": symbol.name, "address": address, "unit": unit, "isGlobal": is_global,
            "isDeclaration": symbol.addr_class == gdb.SYMBOL_LOC_UNRESOLVED, "function": function,
            "type": self._types.key_of(symbol.type)}
        if variable not in self.variables:
            self.variables.append(variable)

    @staticmethod
    def _address_of(symbol):
        try:
            if symbol.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
                # The value of a reference is what it refers to; only this command tells of itself.
                text = gdb.execute(f"info address {symbol.name}", to_string=True)
                return int(re.search(r"at address (0x[0-9a-f]+)", text)[1], 16)
            address = symbol.value().address
            return None if address is None else int(address)
        except (gdb.error, TypeError):
            # It needs a frame, or no symbol tells where it lies.
            return None


def main():
    types = TypeTable()
    variables = VariableList(types)
    for unit in os.environ["ORACLE_UNITS"].splitlines():
        places = gdb.decode_line(f"'{unit}':1")[1]
        variables.add_unit(unit, places[0].symtab)
    types.finish()
    with open(os.environ["ORACLE_OUTPUT"], "w", encoding="utf-8", errors="surrogateescape") as output:
        json.dump({"variables": variables.variables, "types": types.types}, output, indent=1)


main()
