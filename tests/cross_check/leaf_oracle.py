"""Runs inside gdb: writes the static variables of an image, each taken apart into its leaves, as JSON.

    gdb -nx -batch -iex 'set auto-load off' IMAGE -x leaf_oracle.py

ORACLE_QUESTIONS names the file that leads to the units, ORACLE_ANSWERS the one to write. gdb alone speaks here: nothing is
adapted to the reader that is compared.
"""

import json
import os
import sys

import gdb

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gdb_variables

AGGREGATES = (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION)
KINDS = {
    gdb.TYPE_CODE_INT: "integer", gdb.TYPE_CODE_CHAR: "integer", gdb.TYPE_CODE_BOOL: "boolean",
    gdb.TYPE_CODE_FLT: "float", gdb.TYPE_CODE_ENUM: "enum", gdb.TYPE_CODE_PTR: "pointer",
    gdb.TYPE_CODE_REF: "pointer", gdb.TYPE_CODE_RVALUE_REF: "pointer", gdb.TYPE_CODE_STRUCT: "structure",
    gdb.TYPE_CODE_UNION: "structure", gdb.TYPE_CODE_ARRAY: "array", gdb.TYPE_CODE_VOID: "void",
    gdb.TYPE_CODE_RANGE: "integer", gdb.TYPE_CODE_STRING: "string", gdb.TYPE_CODE_COMPLEX: "complex",
}


class LeafTable:
    """The leaves of types, as [path, bits from the start, size, bits of a bit field or 0, kind, signed]."""

    def __init__(self):
        self._known = {}

    def leaves_of(self, kind):
        kind = kind.strip_typedefs().unqualified()
        key = str(kind), kind.sizeof, kind.code
        if kind.code in AGGREGATES:
            # Types of one name differ between units.
            key += tuple((field.name, getattr(field, "bitpos", None), field.bitsize, str(field.type),
                          field.type.sizeof) for field in kind.fields())
        if kind.code == gdb.TYPE_CODE_ARRAY or key not in self._known:
            self._known[key] = list(self._expand(kind))
        return self._known[key]

    def _expand(self, kind):
        if kind.code in AGGREGATES:
            # Which variant a value has is known only at run time: all of them count.
            leaves = list(self._members(kind))
        elif kind.dynamic:
            # The number of its elements is known only at run time.
            leaves = [["", 0, 0, 0, "dynamic", False]]
        elif kind.code == gdb.TYPE_CODE_ARRAY:
            leaves = list(self._elements(kind))
        else:
            leaves = []
        return leaves or [["", 0, kind.sizeof, 0, KINDS.get(kind.code, f"other {kind.code}"),
                           kind.code in (gdb.TYPE_CODE_INT, gdb.TYPE_CODE_CHAR) and kind.is_signed]]

    def _members(self, kind):
        for field in kind.fields():
            if getattr(field, "bitpos", None) is None:
                if field.is_base_class:
                    # Its place is known only at run time.
                    yield [f".<{field.name}>", None, 0, 0, "virtual base", False]
                continue
            step = "" if field.is_base_class or not field.name else f".{field.name}"
            if field.bitsize:
                size = field.type.strip_typedefs().sizeof
                yield [step, field.bitpos, size, field.bitsize, "bits", False]
                continue
            for path, bits, *rest in self.leaves_of(field.type):
                # A base class without members is not a place.
                if step + path:
                    yield [step + path, None if bits is None else field.bitpos + bits, *rest]

    def _elements(self, kind):
        low, high = kind.range()
        element = kind.target()
        if kind.sizeof == 0 or element.sizeof == 0:
            return
        leaves = self.leaves_of(element)
        for index in range(int(high) - int(low) + 1):
            start = index * element.sizeof * 8
            for path, bits, *rest in leaves:
                yield [f"[{index}]{path}", None if bits is None else start + bits, *rest]


def main():
    with open(os.environ["ORACLE_QUESTIONS"], encoding="utf-8") as questions:
        questions = json.load(questions)
    leaves, variables, seen = LeafTable(), [], set()
    for symbol, address, unit, is_global, function in gdb_variables.static_variables(questions):
        key = symbol.name, address, function, str(symbol.type), unit
        if key in seen:
            continue
        seen.add(key)
        variables.append({
            "name": symbol.name, "address": address, "isGlobal": is_global, "function": function,
            "unit": unit, "isDeclaration": symbol.addr_class == gdb.SYMBOL_LOC_UNRESOLVED,
            "leaves": leaves.leaves_of(symbol.type)})
    with open(os.environ["ORACLE_ANSWERS"], "w", encoding="utf-8", errors="surrogateescape") as answers:
        json.dump(variables, answers)


main()
