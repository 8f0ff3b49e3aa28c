"""Runs inside gdb, for the oracles of this folder: finds the static variables of all blocks of all units.

gdb has no list of its units. The questions lead to them: units with their code addresses, and names of
variables, each with its unit if that is certain.
"""

import re

import gdb

STATIC_CLASSES = (gdb.SYMBOL_LOC_STATIC, gdb.SYMBOL_LOC_UNRESOLVED, gdb.SYMBOL_LOC_COMPUTED)
REFERENCES = (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF)


def static_variables(questions):
    """All variables with an address, as (symbol, address, name of its unit or None, whether it is global, name
    of its function)."""
    seen_units, seen_functions = set(), set()
    for unit, symtab in _symtabs(questions):
        if symtab is None or not symtab.is_valid():
            continue
        block = symtab.static_block()
        key = symtab.objfile.filename, block.start, block.end, tuple(symbol.name for symbol in block), tuple(
            symbol.name for symbol in symtab.global_block())
        if key not in seen_units:
            seen_units.add(key)
            for symbol, address, *rest in _variables_of_unit(symtab, seen_functions):
                yield symbol, address, unit, *rest


def _symtabs(questions):
    for unit, addresses in questions["units"]:
        for address in addresses:
            yield unit, gdb.find_pc_line(address).symtab
        try:
            for place in gdb.decode_line(f"'{unit}':1")[1] or ():
                yield unit, place.symtab
        except gdb.error:
            # It has no code.
            pass
    for name, unit in questions["names"]:
        for symbol in [*gdb.lookup_static_symbols(name), gdb.lookup_global_symbol(name)]:
            yield unit, symbol.symtab if symbol else None


def _variables_of_unit(symtab, seen_functions):
    functions = []
    for block in (symtab.global_block(), symtab.static_block()):
        for symbol in block:
            if symbol.is_function:
                functions.append(symbol)
            else:
                yield from _placed(symbol, block.is_global, "")
    for function in functions:
        block = gdb.block_for_pc(int(function.value().address))
        if block is not None and (block.start, block.end) not in seen_functions:
            seen_functions.add((block.start, block.end))
            yield from _variables_of_function(block)


def _variables_of_function(outermost):
    # gdb returns a block only for an address, so every address of the function is tried.
    blocks = {}
    for address in range(outermost.start, outermost.end):
        block = gdb.block_for_pc(address)
        while block is not None and not block.is_static and not block.is_global:
            names = tuple(symbol.name for symbol in block)
            blocks[block.start, block.end, names] = block
            block = block.superblock
    for block in blocks.values():
        owner = block
        while owner.function is None:
            owner = owner.superblock
        for symbol in block:
            yield from _placed(symbol, False, owner.function.name)


def _placed(symbol, is_global, function):
    is_static = symbol.addr_class in STATIC_CLASSES and not symbol.is_argument and not symbol.needs_frame
    if is_static and symbol.type.code != gdb.TYPE_CODE_FUNC:
        try:
            address = _address_of(symbol)
        except gdb.error:
            # No symbol says where it lies.
            return
        if address is not None:
            yield symbol, address, is_global, function


def _address_of(symbol):
    is_reference = symbol.type.strip_typedefs().code in REFERENCES or symbol.type.dynamic
    try:
        address = None if is_reference else symbol.value().address
        if address is not None:
            return int(address)
    except gdb.error:
        # It needs a frame or a thread, or its type has no values.
        pass
    # The value of a reference is its target; only this command shows the variable itself.
    found = re.search(r"at address (0x[0-9a-f]+)", gdb.execute(f"info address {symbol.name}", to_string=True))
    return int(found[1], 16) if found else None
