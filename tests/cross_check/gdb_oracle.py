"""Runs inside gdb: writes all that gdb knows of the variables with an address of the image, as JSON.

    gdb -nx -batch -iex 'set auto-load off' IMAGE -x gdb_oracle.py

ORACLE_QUESTIONS names the file that leads to the units, ORACLE_ANSWERS the one to write.
The document has `variables` and `types`; a type is told once, under a key that variables, members and
other types refer to it by. gdb alone speaks here: nothing is adapted to the reader that is compared.
"""

import json
import os
import sys

import gdb

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gdb_variables

NAMED_CODES = {
    gdb.TYPE_CODE_INT: "integer",
    gdb.TYPE_CODE_CHAR: "character",
    gdb.TYPE_CODE_BOOL: "boolean",
    gdb.TYPE_CODE_FLT: "float",
    gdb.TYPE_CODE_COMPLEX: "complex",
    gdb.TYPE_CODE_VOID: "void",
    gdb.TYPE_CODE_STRING: "string",
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
    """Types by key. Structures that were met but not yet described wait in a list, so that chains of
    pointers need no recursion."""

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
            # Without an upper bound the range is useless, and the size is 0.
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


def main():
    with open(os.environ["ORACLE_QUESTIONS"], encoding="utf-8") as questions:
        questions = json.load(questions)
    types, variables = TypeTable(), []
    for symbol, address, unit, is_global, function in gdb_variables.static_variables(questions):
        variable = {
            "name": symbol.name, "address": address, "unit": unit,
            "isGlobal": is_global, "isDeclaration": symbol.addr_class == gdb.SYMBOL_LOC_UNRESOLVED,
            "function": function, "type": types.key_of(symbol.type)}
        if variable not in variables:
            variables.append(variable)
    types.finish()
    with open(os.environ["ORACLE_ANSWERS"], "w", encoding="utf-8", errors="surrogateescape") as answers:
        json.dump({"variables": variables, "types": types.types}, answers, indent=1)


main()
