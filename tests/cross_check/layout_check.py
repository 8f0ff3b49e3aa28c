#!/usr/bin/env python3
"""Compares the variables and types that brindle reads from debug information with what gdb says of the
same images: addresses, sizes, members, bit positions, dimensions, enumerators. The images that the classic
manner is meant for are read in both manners, those of compilers' defaults in the full one.

BRINDLE_PROGRAM names the program, BRINDLE_SAMPLE_IMAGES the folder of the sample images. Where the
reader tells something else than gdb on purpose, a function marked with @rule says so; there is no other
tolerance. Rules in which the manners differ stand in their classes.
"""

import collections
import concurrent.futures
import functools
import json
import os
import pathlib
import re
import shutil
import subprocess
import unittest

import debug_entries
import gdb_answers
import symbols_check
import windows_images
from debug_entries import components, is_big_endian, is_discarded, rule

PROGRAM = os.environ["BRINDLE_PROGRAM"]
SAMPLE_IMAGES = pathlib.Path(os.environ["BRINDLE_SAMPLE_IMAGES"])
ORACLE_SCRIPT = pathlib.Path(__file__).with_name("gdb_oracle.py")

MEMBER_KINDS = {"member", "unionMember", "bitField"}
TYPE_SCOPES = {"namespace", "class", "struct", "union"}
FUNCTION_SCOPES = {"function", "block"}

VOID = 1
SIGNED_INTEGERS = {1: 11, 2: 13, 4: 4, 8: 15}
UNSIGNED_INTEGERS = {1: 12, 2: 14, 4: 5, 8: 16}
OTHER_INTEGER = 10
FLOATS = {2: 18, 4: 6}
OTHER_FLOAT = 10
COMPLEX = 10
BOOLEAN = 7


# What the reader tells otherwise than gdb ---------------------------------------------------------


@rule
def without_template_arguments(name):
    """gdb respells template arguments in its own canonical way, the reader keeps those of the file. The
    layouts of the types are still compared."""
    return name if name.startswith("<") else name.split("<", 1)[0]


@rule
def reader_scope_name(name):
    """Each tool has its own placeholder for a namespace without a name."""
    return "<unnamed-namespace>" if name == "(anonymous namespace)" else without_template_arguments(name)


@rule
def is_folded_typedef(typedef, target):
    """A typedef that gives a type the type's own name isn't delivered."""
    return bool(target.get("name")) and last_component(typedef["name"]) == last_component(target["name"])


@rule
def is_unknown_instead_of_void(owner):
    """No type means void only for a plain pointer; for a function without result, and for a void with
    qualifiers, it is the unknown type of size 0."""
    return owner["code"] == "function" or owner["targetIsQualifiedVoid"]


@rule
def delivered_dimensions(counts):
    """A dimension without elements is dropped; an array without any other has the one dimension 0."""
    return [count for count in counts if count > 0] or [0]


@rule
def base_offset(member):
    """The place of a virtual base is known only at run time; it is delivered at 0."""
    return 0 if member["bits"] is None else member["bits"] // 8


@rule
def is_static_member(member):
    """A static member is no part of the layout; it is delivered as the variable that defines it."""
    return member["isStatic"]


@rule
def is_declared_only(variable, types):
    """For an array that one unit declares without bounds (_ctype_ of newlib), gdb is asked for that
    declaration if the unit that defines it has no code."""
    return variable["isDeclaration"] and types[variable["type"]].get("size") == 0


@rule
def owning_functions(variable, variables, facts):
    """The static variables of an inlined function belong to that function, wherever it was inlined."""
    inlined = facts.function_without_code(variable["name"], variable["address"])
    return {inlined} if inlined else {function_name(known["function"]) for known in variables}


@rule
def owning_units(variable, owners, facts):
    """After link-time optimisation variables are in a unit that the compiler invents; they belong to the
    unit in which they were written."""
    return owners | facts.units_of_origin(variable["name"], variable["address"])


@rule
def known_part(kind, item, facts):
    """DWARF 2 without namespaces completes a class of a namespace by an entry without a name. The reader
    joins types by name alone, so that what refers to the declaration finds no size and no members, and
    what refers to the completing entry finds all."""
    is_split = kind["name"] and facts.is_completed_without_name(components(kind["name"])[-1])
    if is_split and item["size"] == 0:
        return {**kind, "size": 0, "members": []}
    return kind


@rule
def told_scopes(scopes, delivered, facts):
    """DWARF 2 has no namespaces; gdb guesses them from linkage names."""
    return scopes if facts.has_namespaces else scopes[len(scopes) - len(delivered):]


@rule
def has_no_data_symbol(variable, symbol_names, facts):
    """A variable that is only declared takes its address from a data symbol; one that the linker makes up
    has none. The names of the symbols are loaded for the first such variable with a linkage name, so that
    without one, as in C, the symbol table itself tells of the variable."""
    name = last_component(variable["name"])
    return variable["isDeclaration"] and (name not in symbol_names or not facts.finds_symbol_of(name))


@rule
def is_numbered_name(name, scope, dump):
    """Of variables with one name in one scope, the second and later ones get numbers from 2 on."""
    plain, point, number = name.rpartition(".")
    if not (point and number.isdigit() and int(number) >= 2):
        return False
    return any(item["name"] == plain and item["scope"] == scope for item in dump.of_kind("global"))


class ClassicManner:
    """The rules of only the classic reading."""

    option = "mIsFullReading=0"

    @staticmethod
    def delivered_address(image, address):
        return windows_images.delivered_address(image, address)

    @staticmethod
    @rule
    def is_transparent(kind):
        """Pointers to members and rvalue references aren't delivered; their target replaces them."""
        return kind["code"] in ("memberPointer", "methodPointer", "rvalueReference")

    @staticmethod
    @rule
    def hoists_members(kind, facts):
        """The members of an anonymous structure or union become members of the enclosing one if its type is
        declared inside; of a type declared elsewhere, as many C compilers write it, nothing is delivered. The
        types of anonymous members in anonymous members count as elsewhere when they stand behind the member
        that they are the type of."""
        return facts.is_hoisted(kind)

    @staticmethod
    @rule
    def unconverted_bit_position(found, unit):
        """A bit field that exceeds its storage unit keeps the compiler's count, which starts at the
        highest bit of the unit."""
        start = found["offset"] * 8
        return start + found["bitOffset"] if unit - found["bitOffset"] - found["bitSize"] < 0 else None

    @staticmethod
    @rule
    def is_bit_field_without_bits(is_in_union):
        """A bit field of a union is delivered as a plain member: its storage unit, without bits."""
        return is_in_union

    @staticmethod
    def is_unknown_type(kind):
        return False

    @staticmethod
    def is_number(kind):
        return False

    @staticmethod
    @rule
    def is_signed_character(kind):
        """Unicode characters count as signed integers."""
        return kind["code"] == "character" or kind["signed"]

    @staticmethod
    def storage_size(size, offset, width):
        return size

    @staticmethod
    def enumerator_mask(size):
        return 0xFFFFFFFF


class FullManner:
    """The rules of only the full reading."""

    option = "mIsFullReading=1"

    @staticmethod
    def delivered_address(image, address):
        return windows_images.whole_delivered_address(image, address)

    @staticmethod
    def is_transparent(kind):
        return False

    @staticmethod
    def hoists_members(kind, facts):
        return True

    @staticmethod
    def unconverted_bit_position(found, unit):
        return None

    @staticmethod
    def is_bit_field_without_bits(is_in_union):
        return False

    @staticmethod
    def is_signed_character(kind):
        return kind["signed"]

    @staticmethod
    @rule
    def storage_size(size, offset, width):
        """A packed field may need one byte more than its type has (mixed_fields.third of timers.c). No
        type is invented for it: it ends with the last byte that it needs."""
        return max(size, (offset + width + 7) // 8)

    @staticmethod
    def enumerator_mask(size):
        return 0xFFFFFFFF if size <= 4 else 0xFFFFFFFFFFFFFFFF

    @staticmethod
    @rule
    def is_number(kind):
        """Booleans of other sizes than one byte (is_ready of plant.f90) are numbers for hosts."""
        return kind["code"] == "boolean" and kind["size"] != 1

    @staticmethod
    @rule
    def is_unknown_type(kind):
        """For pointers to members, complex numbers and texts of Fortran, hosts only know the size."""
        return kind["code"] in ("memberPointer", "methodPointer", "complex", "string")


# Names and documents ------------------------------------------------------------------------------


def last_component(name):
    return without_template_arguments(re.sub(r"\[abi:\w+\]$", "", components(name)[-1]))


def unit_scope_name(path):
    """The name of a unit as a scope."""
    return path.rpartition("/")[2].replace(".", "_")


def function_name(name):
    """The plain name of a function for which gdb gives scope and parameters."""
    end = name.rfind(")")
    if end < 1:
        return last_component(name)
    start, depth = end, 1
    while depth:
        start -= 1
        depth += {")": 1, "(": -1}.get(name[start], 0)
    return last_component(name[:start])


class Dump:
    """The document that `brindle dump` writes."""

    def __init__(self, document):
        self.objects = {item["id"]: item for item in document["objects"]}
        self._members = collections.defaultdict(list)
        for item in document["objects"]:
            if item["kind"] in MEMBER_KINDS:
                self._members[item["scope"]].append(item)

    def of_kind(self, kind):
        return [item for item in self.objects.values() if item["kind"] == kind]

    def members(self, identifier):
        return self._members[identifier]

    def scopes(self, item):
        """The scopes of an object from the innermost outwards, without the global namespace."""
        found = []
        while (item := self.objects.get(item["scope"])) is not None:
            if item["kind"] != "namespace" or item["name"]:
                found.append(item)
        return found

    def variables(self):
        """The variables with debug information, and those that only the symbol table has."""
        described, symbols = [], []
        for item in self.of_kind("global"):
            names = [scope.get("name") for scope in self.scopes(item)]
            (symbols if names == ["_Symbol_Table_BKR_"] else described).append(item)
        return described, symbols

    def array_shape(self, item):
        """The dimensions of an array, including arrays of arrays, and the id of its element."""
        dimensions, arrays = [], set()
        while item["kind"] == "array":
            assert item["id"] not in arrays, f"array {item['id']} contains itself"
            arrays.add(item["id"])
            dimensions += item["dimensions"]
            element = item["type"]
            item = self.objects[element]
        return dimensions, element

    def without_typedefs(self, identifier):
        item = self.objects[identifier]
        return self.without_typedefs(item["type"]) if item["kind"] == "typedef" else item

    def size_of(self, identifier):
        item = self.objects[identifier]
        return item["size"] if "size" in item else self.size_of(item["type"])


class Oracle:
    """What gdb says about an image, for the addresses that the reader should report."""

    def __init__(self, image, tree, manner):
        document = gdb_answers.ask(image, tree, ORACLE_SCRIPT)
        self.variables, self.types = document["variables"], document["types"]
        for variable in self.variables:
            variable["address"] = manner.delivered_address(image, variable["address"])


class EntryFacts(debug_entries.VariableFacts):
    """What the rules need and gdb doesn't report: how the compiler wrote the entries."""

    def __init__(self, image, tree, manner):
        super().__init__(image, tree, manner.delivered_address)
        entries = tree.entries
        self.has_namespaces = any(entry.tag == "DW_TAG_namespace" for entry in entries)
        self._found_by_name = self._find_variables_looked_up(entries)
        self._completed_without_name = self._find_completions_without_name(entries)

    def is_hoisted(self, kind):
        """Whether the anonymous members of a gdb type are hoisted."""
        answers = self._hoisting()[shape_of_type(kind)]
        assert len(answers) == 1, f"{kind['name']}: no single answer for its anonymous members"
        return next(iter(answers))

    def units_of_origin(self, name, address):
        """The names of the units in which the entry of a variable comes first."""
        found = set()
        for entry in self.entries_of(name, address):
            owner = self.tree.origin(entry)
            while owner.parent is not None:
                owner = owner.parent
            found.add(owner.name() or "")
        return found

    def finds_symbol_of(self, name):
        """Whether a declared variable is searched for in the symbol table."""
        return name in self._found_by_name

    def _find_variables_looked_up(self, entries):
        completed = {entry.reference("DW_AT_specification") for entry in entries
                     if entry.tag == "DW_TAG_variable"}
        are_loaded, found = False, set()
        for entry in entries:
            if entry.tag != "DW_TAG_variable" or "DW_AT_location" in entry.attributes \
                    or entry.offset in completed:
                continue
            are_loaded = are_loaded or "DW_AT_linkage_name" in entry.attributes
            if are_loaded:
                found.add(entry.name())
        return found

    def is_completed_without_name(self, name):
        """Whether an entry without a name completes a class."""
        return name in self._completed_without_name

    def _find_completions_without_name(self, entries):
        return {self.tree.origin(entry).name() for entry in entries
                if "DW_AT_specification" in entry.attributes
                and entry.tag in ("DW_TAG_class_type", "DW_TAG_structure_type")}

    @functools.cache
    def _hoisting(self):
        """For each shape of a structure with members that have no name: whether these are hoisted.

        It goes as the reader does, in file order, and with every step that moves a member on."""
        parents = {}
        hoisting = collections.defaultdict(set)
        for entry in self.tree.entries:
            if entry.tag != "DW_TAG_member" or entry.name() is not None:
                continue
            kind = self.tree.target(entry, "DW_AT_type")
            parent = parents.get(entry.offset, entry.parent)
            is_hoisted = kind.parent is parent and kind.name() is None
            hoisting[shape_of_entry(entry.parent)].add(is_hoisted)
            if is_hoisted:
                parents.update((child.offset, parent) for child in kind.children
                               if child.tag == "DW_TAG_member")
        return hoisting


def shape_of_entry(entry):
    members = tuple(child.name() or "" for child in entry.children if child.tag == "DW_TAG_member"
                    and not {"DW_AT_declaration", "DW_AT_external"} & set(child.attributes))
    return entry.tag == "DW_TAG_union_type", entry.name(), entry.number("DW_AT_byte_size"), members


def shape_of_type(kind):
    members = tuple(member["name"] for member in kind["members"]
                    if not member["isBase"] and not is_static_member(member))
    name = components(kind["name"])[-1] if kind["name"] else None
    return kind["code"] == "union", name, kind["size"], members


# Comparison ---------------------------------------------------------------------------------------


class Comparison:
    """Collects the differences between an oracle and a dump in `differences`, one text each."""

    def __init__(self, oracle, facts, dump, is_big_endian, symbol_names, manner):
        self.differences = []
        self._manner = manner
        self._oracle = oracle
        self._facts = facts
        self._dump = dump
        self._is_big_endian = is_big_endian
        self._symbol_names = symbol_names
        self._compared = set()
        self._waiting = []

    def run(self):
        known = collections.defaultdict(list)
        for variable in self._oracle.variables:
            known[variable["address"], last_component(variable["name"])].append(variable)
        described, _ = self._dump.variables()
        delivered = collections.Counter()
        for item in described:
            key = (item["address"], self._plain_name(item))
            delivered[key] += 1
            if key in known:
                self._compare_variable(item, known[key])
            elif not self._facts.is_hidden_from_gdb(item["name"], item["address"]):
                self._differ(f"{item['name']} at {item['address']:#x}", "unknown to gdb")
        for key, variables in known.items():
            if delivered[key] != 1 and not is_discarded(key[0]) and not all(has_no_data_symbol(variable, self._symbol_names, self._facts)
                                               for variable in variables):
                self._differ(f"{variables[0]['name']} at {key[0]:#x}", f"delivered {delivered[key]} times")
        while self._waiting:
            self._compare_type(*self._waiting.pop())
        return self.differences

    def _differ(self, where, text):
        self.differences.append(f"{where}: {text}")

    def _expect(self, where, what, delivered, expected):
        if delivered != expected:
            self._differ(where, f"{what} is {delivered!r}, gdb says {expected!r}")

    def _plain_name(self, item):
        name = item["name"]
        if is_numbered_name(name, item["scope"], self._dump):
            name = name.rpartition(".")[0]
        return without_template_arguments(name)

    # Variables

    def _compare_variable(self, item, variables):
        # An incomplete declaration of an array says less than its definition.
        best = max(variables, key=lambda variable: self._oracle.types[variable["type"]].get("size", 0))
        self._compare_variable_scope(item, variables)
        if is_declared_only(best, self._oracle.types):
            return
        if self._facts.is_unspecified(item["name"], item["address"]):
            kind = self._dump.without_typedefs(item["type"])
            self._expect(item["name"], "type", (kind["kind"], kind.get("basicType")), ("base", VOID))
        else:
            self._compare_later(best["type"], item["type"], item["name"])

    def _compare_variable_scope(self, item, variables):
        scopes = self._dump.scopes(item)
        units = [scope["name"] for scope in scopes if scope["kind"] == "compileUnit"]
        functions = [scope["name"] for scope in scopes if scope["kind"] == "function"]
        owners = {variable["unit"] for variable in variables}
        if None not in owners and units and units[0] not in {
                unit_scope_name(owner) for owner in owning_units(item, owners, self._facts)}:
            self._differ(item["name"], f"lies in unit {units[0]}")
        if functions and functions[0] not in owning_functions(item, variables, self._facts):
            self._differ(item["name"], f"lies in function {functions[0]}")
        if not scopes and not any(variable["isGlobal"] or variable["isDeclaration"]
                                  or last_component(variable["name"]) in self._symbol_names
                                  for variable in variables):
            self._differ(item["name"], "is delivered as global")
        if not functions:
            self._compare_scope_names(item, variables[0]["name"])

    def _compare_scope_names(self, item, qualified_name):
        expected = [reader_scope_name(part) for part in components(qualified_name)[:-1]]
        delivered = [without_template_arguments(scope["name"])
                     for scope in reversed(self._dump.scopes(item)) if scope["kind"] in TYPE_SCOPES]
        if expected or any(scope["kind"] == "namespace" for scope in self._dump.scopes(item)):
            self._expect(item["name"], "scope", delivered, told_scopes(expected, delivered, self._facts))

    # Types

    def _compare_later(self, key, identifier, where):
        if (key, identifier) not in self._compared:
            self._compared.add((key, identifier))
            self._waiting.append((key, identifier, where))

    def _compare_type(self, key, identifier, where):
        kind = self._oracle.types[key]
        item = self._dump.objects[identifier]
        if self._manner.is_transparent(kind):
            self._compare_later(kind["target"], identifier, where)
        elif kind["code"] == "typedef":
            self._compare_typedef(kind, item, where)
        else:
            compare = self._COMPARE.get(kind["code"], Comparison._compare_scalar)
            compare(self, kind, item, where)

    def _compare_typedef(self, kind, item, where):
        if is_folded_typedef(kind, self._oracle.types[kind["target"]]):
            self._compare_later(kind["target"], item["id"], where)
        elif self._is_kind(item, {"typedef"}, where):
            self._expect(where, "typedef", without_template_arguments(item["name"]),
                         last_component(kind["name"]))
            self._compare_later(kind["target"], item["type"], where)

    def _is_kind(self, item, kinds, where):
        if item["kind"] in kinds:
            return True
        self._differ(where, f"is delivered as {item['kind']}, gdb says {' or '.join(sorted(kinds))}")
        return False

    def _compare_scalar(self, kind, item, where):
        if self._manner.is_unknown_type(kind):
            if self._is_kind(item, {"unknown"}, where):
                self._expect(where, "size", item["size"], kind["size"])
        elif self._is_kind(item, {"base"}, where):
            self._expect(where, "size", item["size"], kind["size"])
            self._expect(where, "basic type", item["basicType"], expected_basic_type(kind, self._manner))

    def _compare_void(self, owner, identifier, where):
        item = self._dump.objects[identifier]
        if is_unknown_instead_of_void(owner):
            self._expect(where, "void", (item["kind"], item["size"]), ("unknown", 0))
        else:
            self._expect(where, "void", (item["kind"], item.get("basicType")), ("base", VOID))

    def _compare_target(self, kind, identifier, where):
        if self._oracle.types[kind["target"]]["code"] == "void":
            self._compare_void(kind, identifier, where)
        else:
            self._compare_later(kind["target"], identifier, where)

    def _compare_pointer(self, kind, item, where):
        if self._is_kind(item, {"pointer"}, where):
            self._expect(where, "size", item["size"], kind["size"])
            self._compare_target(kind, item["type"], where + "*")

    def _compare_function(self, kind, item, where):
        if self._is_kind(item, {"functionType"}, where):
            self._compare_target(kind, item["type"], where + "()")
            self._expect(where, "number of parameters", len(item["parameters"]), len(kind["parameters"]))
            for number, (key, identifier) in enumerate(zip(kind["parameters"], item["parameters"])):
                self._compare_later(key, identifier, f"{where}({number})")

    def _compare_array(self, kind, item, where):
        if not self._is_kind(item, {"array"}, where):
            return
        self._expect(where, "size", item["size"], kind["size"])
        counts = [kind["count"]]
        while (target := self._oracle.types[kind["target"]])["code"] == "array":
            kind = target
            counts.append(kind["count"])
        dimensions, element = self._dump.array_shape(item)
        self._expect(where, "dimensions", delivered_dimensions(dimensions), delivered_dimensions(counts))
        self._compare_later(kind["target"], element, where + "[]")

    def _compare_enum(self, kind, item, where):
        if self._is_kind(item, {"enum"}, where):
            self._compare_type_name(kind, item, where)
            self._expect(where, "size", self._dump.size_of(item["type"]), kind["size"])
            mask = self._manner.enumerator_mask(kind["size"])
            self._expect(where, "enumerators",
                         [[entry["name"], entry["value"] & mask] for entry in item["enumerators"]],
                         [[components(name)[-1], value & mask] for name, value in kind["enumerators"]])

    def _compare_type_name(self, kind, item, where):
        self._expect(where, "anonymous", item["anonymous"], not kind["name"])
        if kind["name"]:
            self._expect(where, "type name", without_template_arguments(item["name"]),
                         last_component(kind["name"]))
            if not any(scope["kind"] in FUNCTION_SCOPES for scope in self._dump.scopes(item)):
                self._compare_scope_names(item, kind["name"])

    def _compare_structure(self, kind, item, where):
        kind = known_part(kind, item, self._facts)
        is_union = kind["code"] == "union"
        if not self._is_kind(item, {"union"} if is_union else {"class", "struct"}, where):
            return
        self._compare_type_name(kind, item, where)
        self._expect(where, "size", item["size"], kind["size"])
        if not is_union:
            self._compare_bases(kind, item, where)
        expected = list(self._delivered_members(kind))
        members = self._dump.members(item["id"])
        self._expect(where, "members", [member["name"] for member in members],
                     [member["name"] for member in expected])
        for found, member in zip(members, expected):
            if found["name"] == member["name"]:
                self._compare_member(member, found, is_union, f"{where}.{member['name']}")

    def _compare_bases(self, kind, item, where):
        expected = [member for member in kind["members"] if member["isBase"]]
        self._expect(where, "base offsets", [base["offset"] for base in item["bases"]],
                     [base_offset(member) for member in expected])
        for base, member in zip(item["bases"], expected):
            self._compare_later(member["type"], base["type"], f"{where}:{member['name']}")

    def _delivered_members(self, kind, bits=0):
        """The members in the order of delivery: members of anonymous members after all others."""
        hoisted = []
        for member in kind["members"]:
            if member["isBase"] or is_static_member(member):
                continue
            if member["name"]:
                yield {**member, "bits": member["bits"] + bits}
            elif self._manner.hoists_members(kind, self._facts):
                hoisted.append(member)
        for member in hoisted:
            yield from self._delivered_members(self._oracle.types[member["type"]], bits + member["bits"])

    def _compare_member(self, member, found, is_in_union, where):
        is_bit_field = member["bitSize"] != 0
        has_no_bits = is_bit_field and self._manner.is_bit_field_without_bits(is_in_union)
        kind = "bitField" if is_bit_field and not has_no_bits else "unionMember" if is_in_union else "member"
        if not self._is_kind(found, {kind}, where):
            return
        if has_no_bits:
            self._compare_union_bit_field(member, found, where)
        elif is_bit_field:
            self._expect(where, "bit size", found["bitSize"], member["bitSize"])
            self._expect(where, "bit position", self._bit_position(found), member["bits"])
        else:
            self._expect(where, "offset", found["offset"] * 8, member["bits"])
        self._compare_later(member["type"], found["type"], where)

    def _bit_position(self, found):
        """The place of a bit field in gdb's count: from the lowest bit of the structure's first byte on
        in little-endian targets, from the highest one in big-endian ones. The reader counts from the
        lowest bit of the storage unit in both."""
        start = found["offset"] * 8
        if not self._is_big_endian:
            return start + found["bitOffset"]
        size = self._dump.size_of(found["type"])
        unit = self._manner.storage_size(size, found["bitOffset"], found["bitSize"]) * 8
        unconverted = self._manner.unconverted_bit_position(found, unit)
        return start + unit - found["bitOffset"] - found["bitSize"] if unconverted is None else unconverted

    def _compare_union_bit_field(self, member, found, where):
        start = found["offset"] * 8
        end = start + self._dump.size_of(found["type"]) * 8
        if not start <= member["bits"] <= member["bits"] + member["bitSize"] <= end:
            self._differ(where, f"bits {start} to {end}, gdb says {member['bits']} and {member['bitSize']} more")

    _COMPARE = {"pointer": _compare_pointer, "reference": _compare_pointer,
                "rvalueReference": _compare_pointer, "array": _compare_array,
                "enum": _compare_enum, "structure": _compare_structure, "union": _compare_structure,
                "function": _compare_function}


def expected_basic_type(kind, manner):
    size = kind["size"]
    if manner.is_number(kind):
        return UNSIGNED_INTEGERS[size]
    if kind["code"] in ("integer", "character"):
        return (SIGNED_INTEGERS if manner.is_signed_character(kind) else UNSIGNED_INTEGERS).get(size, OTHER_INTEGER)
    if kind["code"] == "float":
        return FLOATS.get(size, OTHER_FLOAT)
    return {"boolean": BOOLEAN, "complex": COMPLEX, "void": VOID}.get(kind["code"])


# The check ----------------------------------------------------------------------------------------


def dump(image, manner):
    """The document of an image, and the faults of the read."""
    done = subprocess.run([PROGRAM, "dump", "--set", manner.option, str(image)], capture_output=True, text=True,
                          timeout=60)
    document = json.loads(done.stdout)
    told = done.returncode, document["ok"], document["error"]
    # The debug information is delivered before the read fails on a missing symbol table.
    is_cut = image.name == symbols_check.WITHOUT_SYMBOLS
    expected = (1, False, "The ELF file is missing .strtab section.") if is_cut else (0, True, None)
    return Dump(document), [] if told == expected else [f"read ended with {told}"]


def compare(image, manner):
    """The differences between gdb and the reader, and the number of variables that gdb knows."""
    tree = debug_entries.EntryTree(image)
    facts, oracle = EntryFacts(image, tree, manner), Oracle(image, tree, manner)
    symbol_names = {name for name, value, _, kind in symbols_check.raw_symbols(image)
                    if kind == "OBJECT" and value != 0}
    delivered, faults = dump(image, manner)
    comparison = Comparison(oracle, facts, delivered, is_big_endian(image), symbol_names, manner)
    return faults + comparison.run(), len(oracle.variables)


class LayoutCheck(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        if shutil.which("gdb-multiarch") is None:
            raise unittest.SkipTest("gdb-multiarch isn't there")

    def images(self):
        """The linked images with debug information. In a relocatable object the addresses aren't settled,
        so it proves nothing here."""
        found = sorted(image for image in SAMPLE_IMAGES.glob("*-dwarf*.*") if image.suffix != ".o")
        self.assertGreater(len(found), 20, f"images are missing in {SAMPLE_IMAGES}")
        return found

    def full_images(self):
        """All but those of split units, which have no variables, of Ada, whose names gdb respells (plant__weight is
        plant.weight), and of Rust, whose enumerations with data are structures with variants to gdb;
        leaf_check.py compares their leaves."""
        found = sorted(SAMPLE_IMAGES.glob("full/*.*"))
        self.assertGreater(len(found), 40, f"images are missing in {SAMPLE_IMAGES}")
        return [image for image in found if not re.search("split|ada|rust", image.name)]

    def assert_agreement(self, images, manner, fewest):
        with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
            results = pool.map(lambda image: compare(image, manner), images)
            for image, (differences, known) in zip(images, results):
                with self.subTest(image=image.name):
                    self.assertEqual(differences, [])
                    self.assertGreater(known, fewest)

    def test_variables_and_their_types_are_those_that_gdb_knows(self):
        self.assert_agreement(self.images(), ClassicManner, 20)

    def test_variables_and_their_types_in_the_full_manner(self):
        self.assert_agreement(self.images(), FullManner, 20)

    def test_what_compilers_write_by_default(self):
        self.assert_agreement(self.full_images(), FullManner, 5)

    def test_symbols_are_delivered_for_what_debug_information_does_not_describe(self):
        for image in self.images():
            with self.subTest(image=image.name):
                described, symbols = dump(image, ClassicManner)[0].variables()
                expected = symbols_check.expected_variables(
                    image, {item["name"] for item in described}, {item["address"] for item in described})
                self.assertEqual([(item["address"], symbols_check.SCOPE + item["name"]) for item in symbols],
                                 [(address, name) for address, _, name in expected])

    def test_every_command_writes_the_same_on_every_run(self):
        for image in self.images():
            for command in (["vars"], ["leaves"], ["types"], ["dump", "--all-types"], ["diff", str(image)]):
                with self.subTest(image=image.name, command=command[0]):
                    first, second = (subprocess.run([PROGRAM, *command, str(image)], capture_output=True,
                                                    timeout=60).stdout for _ in range(2))
                    self.assertEqual(first, second)


if __name__ == "__main__":
    unittest.main()
