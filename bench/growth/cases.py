"""The worst cases: each function makes an image of about n entries, symbols or bytes of one kind."""
import inspect
import random
import struct
import sys

from image import TAGS, CoffImage, Description, Image, Measurements, PeImage, uleb


def unit_of(fill):
    """An image of one unit, which `fill` writes after the base type int."""
    image = Image()
    image.begin_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    fill(image, integer)
    image.end_unit()
    return image


def letters(n):
    """A text without repeated parts."""
    return "".join(random.Random(1).choices("abcdefghijklmnopqrstuvwxyz", k=n))


def qualifiers(n):
    """The same, but made of parts as in a mangled name."""
    return "".join("1" + letter for letter in letters(n // 2))


def add_symbols(image, n, text, *, ends=False, step=4):
    """n symbols whose names are one text or, each one character further, its suffixes."""
    name = image.symbol_name(text)
    for index in range(n):
        image.symbol(name + (index if ends else 0), 0x1000 + step * index)
    return image


def add_local_symbols(image, n):
    name = image.symbol_name("v")
    for _ in range(n):
        image.local_symbol(name, 0)
    return image


def entries_in_scopes(n, depth, tag, entry, attributes, **scope):
    """n entries in the innermost of scopes within each other."""
    image = Image()
    image.begin_unit()
    for _ in range(depth):
        image.entry(tag, children=True, **scope)
    for _ in range(n):
        image.entry(entry, **attributes)
    image.end(depth)
    image.end_unit()
    return add_local_symbols(image, 1)


def variables_in_scopes(n, depth, tag, **scope):
    """n variables without location."""
    return entries_in_scopes(n, depth, tag, "variable", dict(name="v", external=True), **scope)


def structures_of_suffixes(n, text, step=1, **unit):
    """n structures whose names are suffixes of one text, each some characters further."""
    image = Image()
    name = image.string(text)
    image.begin_unit(**unit)
    for index in range(n):
        image.entry("struct", long_name=name + step * index, size_nothing=0)
    image.end_unit()
    return image


def long_array(image, integer, n, upper):
    """The type of an array of n dimensions."""
    array = image.entry("array", children=True, type=integer)
    for _ in range(n):
        image.entry("subrange", upper=upper)
    image.end()
    return array


def nested(tag, n, **attributes):
    def fill(image, integer):
        for _ in range(n):
            image.entry(tag, children=True, **attributes)
        image.entry("variable", name="v", type=integer, address=0x1000)
        image.end(n)
    return unit_of(fill)


def deep_blocks(n):
    def fill(image, integer):
        image.entry("subprogram", children=True, name="f")
        for _ in range(n):
            image.entry("block", children=True)
        image.entry("variable", name="v", type=integer, address=0x1000)
        image.end(n + 1)
    return unit_of(fill)


def deep_namespaces(n):
    return nested("namespace", n, name="ns")


def deep_namespaces_with_variables(n):
    def fill(image, integer):
        for index in range(n):
            image.entry("namespace", children=True, name="ns")
            image.entry("variable", name="v", type=integer, address=0x1000 + 4 * index)
        image.end(n)
    return unit_of(fill)


def deep_structures(n):
    return nested("struct", n, name="S", size=4)


def deep_anonymous_structures(n):
    """Each structure has an int and an anonymous member of the next inner structure."""
    def fill(image, integer):
        for index in range(n):
            inner = Image.Later()
            attributes = {"name": "S"} if index == 0 else {}
            image.entry("struct", children=True, at=None if index == 0 else previous, size=4, **attributes)
            image.entry("member", type=integer, offset=0, name=f"m{index}")
            if index < n - 1:
                image.entry("member", type=inner, offset=0)
            previous = inner
        image.end(n)
    return unit_of(fill)


def chain(tag, n, *, attributes=lambda index: {}, closed=False):
    """A type chain of one tag; if closed, its end leads back to its start."""
    def fill(image, integer):
        last = Image.Later()
        target = last if closed else integer
        for index in range(n):
            target = image.entry(tag, type=target, **attributes(index))
        last.offset = target
        image.entry("variable", name="v", type=target, address=0x1000)
    return unit_of(fill)


def typedef_chain(n):
    return chain("typedef", n, attributes=lambda index: {"name": f"T{index}"})


def pointer_chain(n):
    return chain("pointer", n, attributes=lambda index: {"size": 4})


def const_chain(n):
    return chain("const", n)


def typedef_circle(n):
    return chain("typedef", n, attributes=lambda index: {"name": f"T{index}"}, closed=True)


def const_circle(n):
    return chain("const", n, closed=True)


def pointer_circle(n):
    return chain("pointer", n, attributes=lambda index: {"size": 4}, closed=True)


def structure_circle(n):
    """Each structure holds the next by value, the last holds the first."""
    def fill(image, integer):
        laters = [Image.Later() for _ in range(n)]
        for index in range(n):
            image.entry("struct", children=True, at=laters[index], name=f"S{index}", size=8)
            image.entry("member", name="m", type=laters[(index + 1) % n], offset=0)
            image.end()
        image.entry("variable", name="v", type=laters[0], address=0x1000)
    return unit_of(fill)


def specification_chain(n):
    def fill(image, integer):
        target = image.entry("variable", name="v", type=integer, declaration=True)
        for index in range(n):
            target = image.entry("variable", specification=target, address=0x1000 + 4 * index)
    return unit_of(fill)


def specification_fan(n):
    def fill(image, integer):
        target = image.entry("variable", name="v", type=integer, declaration=True)
        for index in range(n):
            image.entry("variable", specification=target, address=0x1000 + 4 * index)
    return unit_of(fill)


def inheritance_chain(n):
    def fill(image, integer):
        target = integer
        for index in range(n):
            base, target = target, image.entry("class_", children=True, name=f"C{index}", size=4)
            image.entry("inheritance", type=base, offset=0)
            image.end()
        image.entry("variable", name="v", type=target, address=0x1000)
    return unit_of(fill)


def fan(tag, n, child, child_attributes):
    def fill(image, integer):
        parent = image.entry(tag, children=True, name="F", size=4)
        for index in range(n):
            image.entry(child, **child_attributes(index, integer))
        image.end()
        image.entry("variable", name="v", type=parent, address=0x1000)
    return unit_of(fill)


def members_fan(n):
    return fan("struct", n, "member", lambda index, t: {"name": f"m{index}", "type": t, "offset": index})


def members_of_one_name(n):
    return fan("struct", n, "member", lambda index, t: {"name": "m", "type": t, "offset": index})


def enumerators_fan(n):
    return fan("enumeration", n, "enumerator", lambda index, t: {"name": f"e{index}", "value": index})


def bases_fan(n):
    def fill(image, integer):
        base = image.entry("class_", name="B", size=1)
        derived = image.entry("class_", children=True, name="D", size=4)
        for index in range(n):
            image.entry("inheritance", type=base, offset=index)
        image.end()
        image.entry("variable", name="v", type=derived, address=0x1000)
    return unit_of(fill)


def parameters_fan(n):
    def fill(image, integer):
        image.entry("subprogram", children=True, name="f", type=integer, external=True)
        for index in range(n):
            image.entry("parameter", name=f"p{index}", type=integer)
        image.end()
    return unit_of(fill)


def function_types_of_many_parameters(n):
    """sqrt(n) function types of sqrt(n) parameters each, all equal."""
    side = int(n ** 0.5)

    def fill(image, integer):
        for index in range(side):
            function = image.entry("subroutine", children=True, type=integer)
            for _ in range(side):
                image.entry("parameter", type=integer)
            image.end()
            image.entry("variable", name=f"v{index}", type=function, address=0x1000 + index)
    return unit_of(fill)


def dimensions_fan(n):
    def fill(image, integer):
        array = long_array(image, integer, n, 0xFFFFFFFE)
        image.entry("variable", name="v", type=array, address=0x1000)
    return unit_of(fill)


def huge_arrays(n):
    """Arrays of arrays of arrays, each dimension as large as possible."""
    def fill(image, integer):
        element = integer
        for index in range(n):
            element = image.entry("array", children=True, type=element)
            image.entry("subrange", upper=0xFFFFFFFE)
            image.end()
        image.entry("variable", name="v", type=element, address=0x1000)
    return unit_of(fill)


def many(n, make, units=1, image=None):
    """n times the output of `make`, spread over units."""
    image = image or Image()
    for unit in range(units):
        image.begin_unit()
        integer = image.entry("base", name="int", size=4, encoding=5)
        for index in range(unit * n // units, (unit + 1) * n // units):
            make(image, index, integer)
        image.end_unit()
    return image


def structures_of_one_name(n):
    def make(image, index, integer):
        structure = image.entry("struct", children=True, name="S", size=4)
        image.entry("member", name="m", type=integer, offset=0)
        image.end()
        image.entry("variable", name=f"v{index}", type=structure, address=0x1000 + 4 * index)
    return many(n, make, units=100)


def different_structures_of_one_name(n):
    def make(image, index, integer):
        structure = image.entry("struct", children=True, name="S", size=index)
        image.entry("member", name=f"m{index}", type=integer, offset=index)
        image.end()
        image.entry("variable", name=f"v{index}", type=structure, address=0x1000 + 4 * index)
    return many(n, make, units=100)


def declarations_of_one_name(n):
    def make(image, index, integer):
        declared = image.entry("struct", name="S", declaration=True)
        pointer = image.entry("pointer", type=declared, size=4)
        image.entry("variable", name=f"v{index}", type=pointer, address=0x1000 + 4 * index)
        if index == n - 1:
            image.entry("struct", name="S", size=4)
    return many(n, make, units=100)


def typedefs_of_one_name(n):
    def make(image, index, integer):
        alias = image.entry("typedef", name="T", type=integer)
        image.entry("variable", name=f"v{index}", type=alias, address=0x1000 + 4 * index)
    return many(n, make, units=100)


def variables_of_one_name(n):
    def make(image, index, integer):
        image.entry("variable", name="v", type=integer, address=0x1000 + 4 * index)
    return many(n, make)


def variables_of_one_name_and_address(n):
    def make(image, index, integer):
        image.entry("variable", name="v", type=integer, address=0x1000, external=True)
    return many(n, make, units=100)


def variables_of_one_address(n):
    def make(image, index, integer):
        image.entry("variable", name=f"v{index}", type=integer, address=0x1000, external=True)
    return many(n, make, units=100)


def extern_variables_of_one_name(n):
    def make(image, index, integer):
        image.entry("variable", name="v", type=integer, declaration=True, external=True)
    image = many(n, make, units=100)
    image.symbol(image.symbol_name("v"), 0x1000)
    return image


def extern_variables(n):
    def make(image, index, integer):
        image.entry("variable", name=f"v{index}", type=integer, declaration=True, external=True)
        image.symbol(image.symbol_name(f"v{index}"), 0x1000 + 4 * index)
    return many(n, make)


def namespaces_of_one_name(n):
    def make(image, index, integer):
        image.entry("namespace", children=True, name="ns")
        image.entry("variable", name=f"v{index}", type=integer, address=0x1000 + 4 * index)
        image.end()
    return many(n, make)


def functions_of_one_name(n):
    def make(image, index, integer):
        image.entry("subprogram", children=True, name="f", type=integer)
        image.entry("variable", name="sState", type=integer, address=0x1000 + 4 * index)
        image.end()
    return many(n, make)


def functions_of_one_name_external(n):
    def make(image, index, integer):
        image.entry("subprogram", children=True, name="f", type=integer, external=True)
        image.entry("variable", name="sState", type=integer, address=0x1000 + 4 * index)
        image.end()
    return many(n, make, units=100)


def anonymous_structures(n):
    def make(image, index, integer):
        structure = image.entry("struct", children=True, size=4)
        image.entry("member", name="m", type=integer, offset=0)
        image.end()
        image.entry("variable", name=f"v{index}", type=structure, address=0x1000 + 4 * index)
    return many(n, make)


def members_of_anonymous_structures(n):
    """One structure whose members are all anonymous structures."""
    def fill(image, integer):
        inner = image.entry("struct", children=True, size=4)
        image.entry("member", name="m", type=integer, offset=0)
        image.end()
        outer = image.entry("struct", children=True, name="S", size=4)
        for index in range(n):
            image.entry("member", type=inner, offset=4 * index)
        image.end()
        image.entry("variable", name="v", type=outer, address=0x1000)
    return unit_of(fill)


def anonymous_members_of_a_wide_structure(n):
    """sqrt(n) anonymous members, each of one structure with sqrt(n) members, sqrt(n) times."""
    side = int(n ** 0.5)

    def fill(image, integer):
        inner = image.entry("struct", children=True, size=4)
        for index in range(side):
            image.entry("member", name=f"m{index}", type=integer, offset=0)
        image.end()
        for index in range(side):
            image.entry("struct", children=True, name=f"S{index}", size=4)
            for place in range(side):
                image.entry("member", type=inner, offset=4 * place)
            image.end()
    return unit_of(fill)


def doubling_anonymous_structures(n):
    """Each structure holds the next twice, anonymously: 2^n members if all were flattened."""
    def fill(image, integer):
        laters = [Image.Later() for _ in range(n + 1)]
        for index in range(n):
            image.entry("struct", children=True, at=laters[index], size=8)
            image.entry("member", type=laters[index + 1], offset=0)
            image.entry("member", type=laters[index + 1], offset=4)
            image.entry("member", type=integer, name="m", offset=4)
            image.end()
        image.entry("struct", at=laters[n], size=4)
        image.entry("variable", name="v", type=laters[0], address=0x1000)
    return unit_of(fill)


def template_chain(n):
    """Each class has the next as its template argument."""
    def fill(image, integer):
        laters = [Image.Later() for _ in range(n + 1)]
        for index in range(n):
            image.entry("class_", children=True, at=laters[index], name="T", size=4)
            image.entry("template_parameter", type=laters[index + 1])
            image.end()
        laters[n].offset = integer
        image.entry("variable", name="v", type=laters[0], address=0x1000)
    return unit_of(fill)


def doubling_templates(n):
    """Each class has the next as both of its template arguments: names of 2^n parts."""
    def fill(image, integer):
        laters = [Image.Later() for _ in range(n + 1)]
        for index in range(n):
            image.entry("class_", children=True, at=laters[index], name="T", size=4)
            image.entry("template_parameter", type=laters[index + 1])
            image.entry("template_parameter", type=laters[index + 1])
            image.end()
        laters[n].offset = integer
        image.entry("variable", name="v", type=laters[0], address=0x1000)
    return unit_of(fill)


def templates_of_themselves(n):
    def make(image, index, integer):
        later = Image.Later()
        image.entry("class_", children=True, at=later, name=f"T{index}", size=4)
        image.entry("template_parameter", type=later)
        image.end()
        image.entry("variable", name=f"v{index}", type=later, address=0x1000 + 4 * index)
    return many(n, make)


def templates_of_many_arguments(n):
    """sqrt(n) classes of sqrt(n) arguments, each argument such a class."""
    side = int(n ** 0.5)

    def fill(image, integer):
        laters = [Image.Later() for _ in range(side)]
        for index in range(side):
            image.entry("class_", children=True, at=laters[index], name="T", size=4)
            for other in range(side):
                image.entry("template_parameter", type=laters[other])
            image.end()
            image.entry("variable", name=f"v{index}", type=laters[index], address=0x1000 + 4 * index)
    return unit_of(fill)


def least_entries(n, tag, parent=None, **attributes):
    """Entries of one byte each. Their attributes take no bytes, or they have none."""
    def fill(image, integer):
        around = None
        if parent is not None:
            around = image.entry(parent, children=True, name="P", size=4)
        for _ in range(n):
            image.entry(tag, **attributes)
        if parent is not None:
            image.end()
            image.entry("variable", name="v", type=around, address=0x1000)
    return unit_of(fill)


def least_structures(n):
    return least_entries(n, "struct")


def least_members(n):
    return least_entries(n, "member", "struct", name_nothing=0, type_nothing=0, offset_nothing=0)


def least_bit_fields(n):
    return least_entries(n, "member", "struct", name_nothing=0, type_nothing=0, offset_nothing=0,
                         bit_size_nothing=0, size_nothing=0)


def least_inner_classes(n):
    return least_entries(n, "class_", "class_", name_nothing=0, size_nothing=0)


def least_variables(n):
    return least_entries(n, "variable", name_nothing=0, type_nothing=0)


def empty_units(n):
    """Units of a header and just enough bytes to be plausible."""
    image = Image()
    for _ in range(n):
        image.begin_unit(open_root=False)
        image.entry("unit", name="")
        image.end(3)
        image.end_unit(open_root=False)
    return image


def units_of_one_name(n):
    image = Image()
    for index in range(n):
        image.begin_unit()
        integer = image.entry("base", name="int", size=4, encoding=5)
        image.entry("variable", name=f"v{index}", type=integer, address=0x1000 + 4 * index)
        image.end_unit()
    return image


def one_long_text(n):
    """n / 8 variables that share one name of n characters."""
    image = Image()
    text = image.string("x" * n)
    image.begin_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for index in range(n // 8):
        image.entry("variable", long_name=text, type=integer, address=0x1000 + 4 * index)
    image.end_unit()
    return image


def one_location_list(n):
    """n variables that share one list with an expression of the maximum length."""
    image = Image()
    expression = b"\x08\x01\x22" * 30
    image.locations += bytes(4) + b"\1\0\0\0" + len(expression).to_bytes(2, "little") + expression
    image.begin_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for index in range(n):
        image.entry("variable", name=f"v{index}", type=integer, location_list=0)
    image.end_unit()
    return image


def symbols_of_one_name(n):
    return add_symbols(Image(), n, "gSame")


def symbols_of_one_address(n):
    image = Image()
    for index in range(n):
        image.symbol(image.symbol_name(f"g{index}"), 0x1000)
    return image


def symbols_of_one_long_name(n):
    """n symbols that share one name of n characters."""
    return add_symbols(Image(), n, "x" * n)


def symbols_of_one_long_source(n):
    """n local symbols at the place of a variable at 0, all of a source whose name has n characters."""
    image = many(1, lambda image, index, integer: image.entry("variable", name="v", type=integer, address=0))
    image.source_file(image.symbol_name("x" * n))
    return add_local_symbols(image, n)


def symbols_of_sources_of_suffixes(n):
    """Each local symbol has its own source; the names of the sources are the suffixes of one text."""
    image = many(1, lambda image, index, integer: image.entry("variable", name="v", type=integer, address=0))
    path, name = image.symbol_name("x" * n), image.symbol_name("v")
    for index in range(n):
        image.source_file(path + index)
        image.local_symbol(name, 0x1000 + 4 * index)
    return image


def variables_of_one_long_source(n):
    """n variables without location, among a symbol of a source whose name has n characters."""
    image = many(n, lambda image, index, integer: image.entry("variable", name="v", type=integer))
    image.source_file(image.symbol_name("x" * n))
    return add_local_symbols(image, 1)


def variables_of_one_long_producer(n):
    """n variables without location: whether they have a place is a question to their compiler."""
    image = Image()
    image.begin_unit(producer="G" * 1000)
    for _ in range(n):
        image.entry("variable", name="v")
    image.end_unit()
    return add_local_symbols(image, 1)


def variables_in_deep_blocks(n):
    return variables_in_scopes(n, 900, "block")


def variables_in_deep_namespaces(n):
    return variables_in_scopes(n, 900, "namespace", name="n")


def variables_in_long_namespaces(n):
    """The qualified name has almost the maximum length."""
    return variables_in_scopes(n, 100, "namespace", name="n" * 18)


def discarded_variables_in_deep_blocks(n):
    """n variables at 0, where the linker puts those that it discards."""
    return entries_in_scopes(n, 900, "block", "variable", dict(name="v", address=0))


def members_in_deep_arrays(n):
    """n members of one byte each. Their scope is far out, as arrays are none."""
    return entries_in_scopes(n, 900, "array", "member", dict(name_nothing=0, type_nothing=0))


def variables_of_arrays_in_deep_arrays(n):
    """Each of n variables without location has its own array, in arrays within each other."""
    def fill(image, integer):
        for _ in range(900):
            image.entry("array", children=True)
        for _ in range(n):
            image.entry("array", children=True)
            image.entry("variable", name="v")
            image.end()
        image.end(900)
    return add_local_symbols(unit_of(fill), 1)


def symbols_of_suffixes(n):
    """n symbols whose names are the suffixes of one text of n characters."""
    return add_symbols(Image(), n, letters(n), ends=True)


# Table sizes of a standard library that hashes a number to itself.
BUCKET_COUNTS = (10273, 20753, 42043, 85229)


def numbers_of_one_bucket(n):
    """Different 32-bit numbers, at most about n, that a table of this many keeps in one bucket."""
    buckets = next(count for count in BUCKET_COUNTS if count >= n)
    return range(buckets, min((n + 1) * buckets, 1 << 32), buckets)


def codes_of_one_bucket(n):
    """An entry for each of n abbreviations, the first one last."""
    image = Image()
    codes = [uleb(code) for code in numbers_of_one_bucket(n)]
    image.abbreviations += b"".join(code + uleb(TAGS["const"]) + bytes(3) for code in codes)
    image.begin_unit(open_root=False)
    image.info += b"".join(reversed(codes))
    image.end_unit(open_root=False)
    return image


def abbreviation_offsets_of_one_bucket(n):
    """n units, each with abbreviations of its own beyond the end of their section."""
    image = Image()
    for offset in numbers_of_one_bucket(n):
        image.begin_unit(open_root=False)
        image.info += b"\1" * 5
        image.end_unit(open_root=False)
        struct.pack_into("<I", image.info, image.unit_start + 6, offset)
    return image


def addresses_of_one_bucket(n):
    """n variables of one name."""
    def fill(image, integer):
        for address in numbers_of_one_bucket(n):
            image.entry("variable", name="v", type=integer, address=address, external=True)
    return unit_of(fill)


def mangled_symbols_of_suffixes(n):
    """n symbols whose names are the suffixes of one mangled name."""
    return add_symbols(Image(), n, "__Q2" + qualifiers(n), ends=True)


def names_of_suffixes(n):
    """n structures whose names are the suffixes of one text of n characters."""
    return structures_of_suffixes(n, letters(n))


def linkage_names_of_suffixes(n):
    """n variables without a name of their own, with linkage names that are the suffixes of one text."""
    image = Image()
    text = image.string(letters(n))
    image.begin_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for index in range(n):
        image.entry("variable", long_linkage_name=text + index, type=integer, address=0x1000 + 4 * index)
    image.end_unit()
    return image


def mangled_names_of_suffixes(n):
    """Names that are the suffixes of one list of many short qualifiers."""
    return structures_of_suffixes(n, "__Q9" + qualifiers(n))


def deeply_mangled_names(n):
    """Names of as many qualifiers as the demangler takes, each in an inner decoration, and one too many."""
    def fill(image, integer):
        for index in range(n):
            name = f"f{index}__Q9" + "1a" * 8 + "4__1b" + "__1c" * (index % 9)
            image.entry("variable", name=name, type=integer, address=0x1000 + 4 * index)
    return unit_of(fill)


def itanium_names_of_suffixes(n):
    """The second family of names, for units of the compiler that uses it: each of the n / 7 names is a
    suffix of one text, and takes 1001 characters of it."""
    return structures_of_suffixes(n // 7, "_ZN1001" * (n // 7 + 200), step=7, producer="TASKING")


def itanium_names_of_many_parts(n):
    image = Image()
    image.begin_unit(producer="TASKING")
    for index in range(n):
        image.entry("struct", name="_ZN" + "1a" * 15 + f"{len(str(index))}{index}E", size_nothing=0)
    image.end_unit()
    return image


def variables_of_a_long_type(n):
    """n variables of one array of n dimensions."""
    def fill(image, integer):
        array = long_array(image, integer, n, 0x3F)
        for index in range(n):
            image.entry("variable", name=f"v{index}", type=array, address=0x1000 + 4 * index)
    return unit_of(fill)


def members_of_a_long_type(n):
    """The same as members of one structure."""
    def fill(image, integer):
        array = long_array(image, integer, n, 0x3F)
        structure = image.entry("struct", children=True, name="S", size=4)
        for index in range(n):
            image.entry("member", name=f"m{index}", type=array, offset=index)
        image.end()
        image.entry("variable", name="v", type=structure, address=0x1000)
    return unit_of(fill)


def structures_that_hold_the_next_twice(n):
    """2^n leaves."""
    def fill(image, integer):
        target = integer
        for index in range(n):
            structure = image.entry("struct", children=True, name=f"S{index}", size=8)
            image.entry("member", name="m", type=target, offset=0)
            image.entry("member", name="k", type=target, offset=4)
            image.end()
            target = structure
        image.entry("variable", name="v", type=target, address=0x1000)
    return unit_of(fill)


def extern_variable_among_symbols_of_suffixes(n):
    """One variable that is searched for among n symbols, whose names are the suffixes of one mangled name."""
    image = many(1, lambda image, index, integer: image.entry("variable", name="v", type=integer, declaration=True,
                                                              external=True))
    return add_symbols(image, n, "__Q2" + qualifiers(n), ends=True)


def extern_variables_among_symbols_of_one_name(n):
    def make(image, index, integer):
        image.entry("variable", name=f"v{index}", type=integer, declaration=True, external=True)
    return add_symbols(many(n, make), n, "gSame")


def variables_among_symbols_of_one_address(n):
    """Each variable is compared with the symbols of its address."""
    def make(image, index, integer):
        image.entry("variable", name="v", type=integer, address=0x1000)
        image.symbol(image.symbol_name(f"g{index}"), 0x1000)
    return many(n, make)


def coff_symbols_of_one_name(n):
    image = many(1, lambda image, index, integer: image.entry("variable", name="v", type=integer, address=0x1000),
                 image=CoffImage())
    return add_symbols(image, n, "gSame", step=0)


def coff_sections_of_one_long_name(n):
    """As many sections as possible, all with one name of n characters."""
    return sections_of_one_long_name(CoffImage(), n)


def pe_symbols_of_one_name(n):
    image = many(n // 10, lambda image, index, integer: image.entry("variable", name="v", type=integer,
                                                                    address=0x1000 + index), image=PeImage())
    return add_symbols(image, n, "gSame", step=0)


def pe_symbols_of_suffixes(n):
    """Symbols of a Windows image are searched by name for an extern variable."""
    def make(image, index, integer):
        image.entry("variable", name=f"v{index}", type=integer, declaration=True, external=True)
    return add_symbols(many(n // 10, make, image=PeImage()), n, "__Q2" + qualifiers(n), ends=True, step=0)


def pe_sections_of_one_long_name(n):
    return sections_of_one_long_name(PeImage(), n)


def sections_of_one_long_name(image, n):
    image = many(1, lambda image, index, integer: image.entry("variable", name="v", type=integer, address=0x1000),
                 image=image)
    name = image.symbol_name("x" * n)
    for _ in range(min(n, 65_000)):
        image.section(name)
    return image


def damaged_units(n):
    """Short sound units with damage between them, which the search must step over."""
    image = Image()
    for _ in range(n):
        image.begin_unit()
        image.end_unit()
        image.info += b"\xff" * 30
    return image


def type_units(n):
    """As many type units as variables, each of the type of the next unit."""
    image = Image()
    image.begin_modern_unit()
    for index in range(n):
        image.entry("variable", name="v", type_signature=index, address=0x1000 + 8 * index)
    image.end_unit()
    for index in range(n):
        image.begin_type_unit(index)
        image.entry("struct", size=8, name="S%d" % index)
        image.end_unit()
    return image


def circle_of_signatures(n):
    """Each type is a declaration that stands for the next one."""
    image = Image()
    image.begin_modern_unit()
    image.entry("variable", name="v", type_signature=0, address=0x1000)
    image.end_unit()
    for index in range(n):
        image.begin_type_unit(index)
        image.entry("struct", declaration=1, signature=(index + 1) % n)
        image.end_unit()
    return image


def indices_of_one_long_text(n):
    """Names by index that are the suffixes of one text."""
    image = Image()
    name = image.string(letters(n))
    image.begin_modern_unit(text_offsets_base=8)
    for index in range(n):
        image.text_offsets += struct.pack("<I", name + index)
        image.entry("struct", indexed_name=index, size_nothing=0)
    image.end_unit()
    return image


def variables_of_one_long_list(n):
    """Each variable has the same location list of n entries."""
    image = Image()
    for _ in range(n):
        image.location_lists += b"\4\0\4\5\3" + struct.pack("<I", 0x1000)
    image.location_lists += b"\0"
    image.begin_modern_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for _ in range(n):
        image.entry("variable", name="v", type=integer, location_list=0)
    image.end_unit()
    return image


def signatures_of_one_bucket(n):
    """Type units whose signatures a table of as many would keep in one bucket."""
    image = Image()
    signatures = numbers_of_one_bucket(n)
    image.begin_modern_unit()
    for index, signature in enumerate(signatures):
        image.entry("variable", name="v", type_signature=signature, address=0x1000 + 8 * index)
    image.end_unit()
    for signature in signatures:
        image.begin_type_unit(signature)
        image.entry("struct", size=8, name="S")
        image.end_unit()
    return image


def origins(n, is_closed):
    """n variables, each an instance of the one before it; the first is an instance of the last or of none."""
    def fill(image, integer):
        last = Image.Later()
        target = last if is_closed else image.entry("variable", name="v", type=integer)
        for index in range(n):
            target = image.entry("variable", origin=target, address=0x1000 + 4 * index)
        last.offset = target
    return unit_of(fill)


def origin_chain(n):
    return origins(n, False)


def origin_circle(n):
    return origins(n, True)


def anonymous_structures_of_one_type(n):
    """n structures, each with an anonymous member of the same structure of n members."""
    def fill(image, integer):
        shared = image.entry("struct", children=True, size=4 * n)
        for index in range(n):
            image.entry("member", name="m", type=integer, offset=4 * index)
        image.end()
        for index in range(n):
            around = image.entry("struct", children=True, name="S%d" % index, size=4 * n)
            image.entry("member", type=shared, offset=0)
            image.end()
            image.entry("variable", name="v", type=around, address=0x1000 + 4 * index)
    return unit_of(fill)


def units_of_one_signature(n):
    """Type units that all claim one signature, and as many variables of it."""
    image = Image()
    image.begin_modern_unit()
    for index in range(n):
        image.entry("variable", name="v", type_signature=7, address=0x1000 + 8 * index)
    image.end_unit()
    for index in range(n):
        image.begin_type_unit(7)
        image.entry("struct", size=8, name=f"S{index}")
        image.end_unit()
    return image


def overlapping_text_tables(n):
    """n units whose tables of texts each begin one text further and reach to the end of the section."""
    image = Image()
    name = image.string("name")
    image.text_offsets += struct.pack("<I", name) * n
    for index in range(n):
        image.begin_modern_unit(text_offsets_base=8 + 4 * index)
        image.entry("struct", indexed_name=n - 1 - index, size_nothing=0)
        image.end_unit()
    return image


def overlapping_address_tables(n):
    """The same for tables of addresses."""
    image = Image()
    for index in range(n):
        image.addresses += struct.pack("<I", 0x1000 + 4 * index)
        image.begin_modern_unit(addresses_base=8 + 4 * index)
        integer = image.entry("base", name="int", size=4, encoding=5)
        image.entry("variable", name="v", type=integer, indexed_address=(n - 1 - index) // 2)
        image.end_unit()
    return image


def overlapping_list_tables(n):
    """The same for tables of location lists. What a table holds counts from its start, so that the last
    number of all tables leads each unit to a list of its own."""
    image = Image()
    image.location_lists += struct.pack("<I", 8 * n) * (2 * n)
    for index in range(n):
        image.location_lists += b"\5\5\3" + struct.pack("<I", 0x1000 + 4 * index) + b"\0"
        image.begin_modern_unit(lists_base=8 * index)
        integer = image.entry("base", name="int", size=4, encoding=5)
        image.entry("variable", name="v", type=integer, indexed_list=2 * (n - index) - 1)
        image.end_unit()
    return image


def location_lists_without_end(n):
    """One list that only the section ends; each of n variables begins one entry further."""
    image = Image()
    entry = b"\4\0\4\5\3" + struct.pack("<I", 0x1000)
    image.location_lists += entry * n
    image.begin_modern_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for index in range(n):
        image.entry("variable", name="v", type=integer, location_list=len(entry) * index)
    image.end_unit()
    return image


def old_location_lists_without_end(n):
    """The same in .debug_loc."""
    image = Image()
    entry = bytes(4) + b"\1\0\0\0\5\0\3" + struct.pack("<I", 0x1000)
    image.locations += entry * n
    image.begin_unit()
    integer = image.entry("base", name="int", size=4, encoding=5)
    for index in range(n):
        image.entry("variable", name="v", type=integer, location_list=len(entry) * index)
    image.end_unit()
    return image


def circle_of_imported_units(n):
    """Partial units, each of which imports the next one, and the last the first."""
    image = Image()
    laters = [Image.Later() for _ in range(n)]
    for index in range(n):
        image.begin_unit(open_root=False)
        image.entry("partial_unit", children=True, at=laters[index], name="p")
        image.entry("imported_unit", imported=laters[(index + 1) % n])
        integer = image.entry("base", name="int", size=4, encoding=5)
        image.entry("variable", name=f"v{index}", type=integer, address=0x1000 + 4 * index)
        image.end()
        image.end_unit(open_root=False)
    return image


def members_of_anonymous_structures_in_full(n):
    return members_of_anonymous_structures(n)


def deep_anonymous_structures_in_full(n):
    return deep_anonymous_structures(n)


def doubling_anonymous_structures_in_full(n):
    return doubling_anonymous_structures(n)


def damaged_units_in_full(n):
    return damaged_units(n)


def variants_of_one_structure(n):
    def fill(image, integer):
        record = image.entry("struct", children=True, name="R", size=8)
        image.entry("variant_part", children=True)
        for index in range(n):
            image.entry("variant", children=True)
            image.entry("member", name=f"m{index}", type=integer, offset=4)
            image.end()
        image.end()
        image.end()
        image.entry("variable", name="v", type=record, address=0x1000)
    return unit_of(fill)


def deep_variants(n):
    def fill(image, integer):
        record = image.entry("struct", children=True, name="R", size=8)
        for _ in range(n):
            image.entry("variant_part", children=True)
        for index in range(n):
            image.entry("member", name=f"m{index}", type=integer, offset=4)
            image.end()
        image.end()
        image.entry("variable", name="v", type=record, address=0x1000)
    return unit_of(fill)


def arrays_of_one_index(n):
    """The index is an enumeration with gaps."""
    def fill(image, integer):
        index_type = image.entry("enumeration", children=True, name="E", size=4)
        for index in range(n):
            image.entry("enumerator", name=f"e{index}", value=2 * index)
        image.end()
        for index in range(n):
            array = image.entry("array", children=True, type=integer)
            image.entry("subrange", type=index_type, upper=2 * (n - 1))
            image.end()
            image.entry("variable", name=f"v{index}", type=array, address=0x1000)
    return unit_of(fill)


# Smaller or larger numbers where an entry costs more or less than usual, and options.
MILLION = 250_000  # four times as many in the largest input
SIZES = {"empty_units": MILLION, "doubling_templates": 20_000, "doubling_anonymous_structures": 20_000,
         "symbols_of_one_name": MILLION, "symbols_of_one_address": MILLION, "variables_of_one_name": MILLION,
         "symbols_of_one_long_source": MILLION, "symbols_of_sources_of_suffixes": MILLION,
         "variables_of_one_long_source": MILLION, "variables_of_one_long_producer": MILLION,
         "variables_in_deep_blocks": MILLION, "variables_in_deep_namespaces": MILLION,
         "variables_in_long_namespaces": MILLION, "discarded_variables_in_deep_blocks": MILLION,
         "members_in_deep_arrays": MILLION, "variables_of_arrays_in_deep_arrays": MILLION,
         "coff_symbols_of_one_name": MILLION, "pe_symbols_of_one_name": MILLION,
         "least_structures": MILLION, "least_members": MILLION, "least_bit_fields": MILLION,
         "least_inner_classes": MILLION, "least_variables": MILLION, "deep_blocks": MILLION,
         "itanium_names_of_suffixes": 200_000, "one_long_text": 400_000, "damaged_units": 20_000,
         "codes_of_one_bucket": 12_500, "abbreviation_offsets_of_one_bucket": 12_500,
         "addresses_of_one_bucket": 6_250, "signatures_of_one_bucket": 12_500,
         "doubling_anonymous_structures_in_full": 20_000, "damaged_units_in_full": 20_000, "type_units": MILLION,
         "circle_of_signatures": MILLION, "units_of_one_signature": MILLION,
         "members_of_anonymous_structures_in_full": MILLION}
FULL = ["mIsFullReading=1"]
OPTIONS = {"damaged_units": ["mTryReadCorruptedCompileUnits=1"],
           "type_units": FULL, "circle_of_signatures": FULL, "indices_of_one_long_text": FULL,
           "variables_of_one_long_list": FULL, "signatures_of_one_bucket": FULL, "origin_chain": FULL,
           "origin_circle": FULL, "anonymous_structures_of_one_type": FULL,
           "deep_anonymous_structures_in_full": FULL, "doubling_anonymous_structures_in_full": FULL,
           "units_of_one_signature": FULL, "overlapping_text_tables": FULL,
           "overlapping_address_tables": FULL, "overlapping_list_tables": FULL, "location_lists_without_end": FULL,
           "old_location_lists_without_end": FULL, "circle_of_imported_units": FULL,
           "members_of_anonymous_structures_in_full": FULL, "variants_of_one_structure": FULL,
           "deep_variants": FULL, "arrays_of_one_index": FULL, "symbols_of_one_long_source": FULL,
           "symbols_of_sources_of_suffixes": FULL, "variables_of_one_long_source": FULL,
           "variables_of_one_long_producer": FULL, "variables_in_deep_blocks": FULL,
           "variables_in_deep_namespaces": FULL, "variables_in_long_namespaces": FULL,
           "discarded_variables_in_deep_blocks": FULL, "members_in_deep_arrays": FULL,
           "variables_of_arrays_in_deep_arrays": FULL,
           "damaged_units_in_full": FULL + ["mTryReadCorruptedCompileUnits=1"],
           "mangled_symbols_of_suffixes": ["mDemangleSymTabNames=2"],
           "symbols_of_one_long_name": ["mDemangleSymTabNames=2"],
           "extern_variable_among_symbols_of_suffixes": ["mDemangleSymTabNames=1"],
           "variables_among_symbols_of_one_address": ["mSymTabSearchMode=1"]}
USUAL_SIZE = 50_000
HELPERS = {"unit_of", "letters", "qualifiers", "add_symbols", "add_local_symbols", "entries_in_scopes",
           "variables_in_scopes", "structures_of_suffixes", "long_array", "nested", "chain", "fan", "many",
           "least_entries", "sections_of_one_long_name", "numbers_of_one_bucket", "origins", "all_cases"}


# The part of the reader that a case strains. The measurements have a table for each.
SUBSYSTEMS = {
    "Containers and symbols": """
        coff_sections_of_one_long_name coff_symbols_of_one_name extern_variable_among_symbols_of_suffixes
        extern_variables extern_variables_among_symbols_of_one_name extern_variables_of_one_name
        mangled_symbols_of_suffixes pe_sections_of_one_long_name pe_symbols_of_one_name pe_symbols_of_suffixes
        symbols_of_one_address symbols_of_one_long_name symbols_of_one_long_source symbols_of_one_name
        symbols_of_sources_of_suffixes symbols_of_suffixes variables_among_symbols_of_one_address
        variables_in_deep_blocks variables_in_deep_namespaces variables_in_long_namespaces
        variables_of_one_long_producer variables_of_one_long_source
    """.split(),
    "Units and their tables": """
        abbreviation_offsets_of_one_bucket circle_of_imported_units circle_of_signatures codes_of_one_bucket
        damaged_units damaged_units_in_full empty_units indices_of_one_long_text overlapping_address_tables
        overlapping_list_tables overlapping_text_tables signatures_of_one_bucket type_units units_of_one_name
        units_of_one_signature
    """.split(),
    "Entries": """
        arrays_of_one_index bases_fan deep_blocks deep_namespaces deep_namespaces_with_variables deep_structures
        deep_variants dimensions_fan discarded_variables_in_deep_blocks enumerators_fan least_bit_fields
        least_inner_classes least_members least_structures least_variables members_fan members_in_deep_arrays
        parameters_fan variables_of_arrays_in_deep_arrays variants_of_one_structure
    """.split(),
    "Locations": """
        addresses_of_one_bucket location_lists_without_end old_location_lists_without_end one_location_list
        variables_of_one_address variables_of_one_long_list variables_of_one_name_and_address
    """.split(),
    "Chains and circles": """
        const_chain const_circle inheritance_chain origin_chain origin_circle pointer_chain pointer_circle
        specification_chain specification_fan structure_circle typedef_chain typedef_circle
    """.split(),
    "Anonymous types": """
        anonymous_members_of_a_wide_structure anonymous_structures anonymous_structures_of_one_type
        deep_anonymous_structures deep_anonymous_structures_in_full doubling_anonymous_structures
        doubling_anonymous_structures_in_full members_of_anonymous_structures
        members_of_anonymous_structures_in_full
    """.split(),
    "Names and texts": """
        deeply_mangled_names itanium_names_of_many_parts itanium_names_of_suffixes linkage_names_of_suffixes
        mangled_names_of_suffixes names_of_suffixes one_long_text
    """.split(),
    "Types and objects of one name": """
        declarations_of_one_name different_structures_of_one_name functions_of_one_name
        functions_of_one_name_external members_of_one_name namespaces_of_one_name structures_of_one_name
        typedefs_of_one_name variables_of_one_name
    """.split(),
    "Texts and sizes of types": """
        doubling_templates function_types_of_many_parameters huge_arrays members_of_a_long_type
        structures_that_hold_the_next_twice template_chain templates_of_many_arguments templates_of_themselves
        variables_of_a_long_type
    """.split(),
}


def all_cases():
    """For each subsystem its name, and name, function, n and options of each of its cases."""
    functions = {name: function for name, function in inspect.getmembers(sys.modules[__name__], inspect.isfunction)
                 if function.__module__ == __name__ and name not in HELPERS}
    listed = [name for names in SUBSYSTEMS.values() for name in names]
    if sorted(listed) != sorted(functions):
        raise RuntimeError(f"not in one subsystem: {sorted(set(listed) ^ set(functions)) or listed}")
    for subsystem, names in SUBSYSTEMS.items():
        yield subsystem, [(name, functions[name], SIZES.get(name, USUAL_SIZE), OPTIONS.get(name, []))
                          for name in names]


# Commands of the program, each with the case that it reads and its n.
COMMANDS = [(command, case, n) for case, n, commands in [
    (dimensions_fan, USUAL_SIZE, "leaves find"),
    (huge_arrays, USUAL_SIZE, "leaves find types"),
    (variables_of_a_long_type, 20_000, "vars leaves find"),
    (members_of_a_long_type, 10_000, "leaves types"),
    (structures_that_hold_the_next_twice, 5_000, "leaves find types"),
    (pointer_chain, USUAL_SIZE, "vars leaves find"),
    (typedef_chain, USUAL_SIZE, "leaves find types"),
    (deep_structures, 20_000, "types"),
    (inheritance_chain, USUAL_SIZE, "leaves find types"),
    (structure_circle, USUAL_SIZE, "leaves find types"),
    (deep_namespaces_with_variables, 10_000, "vars leaves find"),
    (anonymous_structures, USUAL_SIZE, "leaves types"),
    (doubling_anonymous_structures, 20_000, "leaves types"),
    (one_long_text, 100_000, "vars find"),
    (variables_of_one_name, 50_000, "vars find dump"),
    (members_fan, USUAL_SIZE, "leaves types dump"),
] for command in commands.split()]


# Descriptions for `brindle a2l update`, in which a file of one comment can be included as "part". With a number of
# includes, they are a part themselves: that of a file that includes them so often.

def a2l_of_many_includes(n):
    return Description('/include "part" ' * n)


def a2l_included_as_often_as_allowed(n):
    return Measurements(n)


def a2l_of_nested_blocks(n):
    return Description("/begin IF_DATA X " + "/begin B " * n + "/end B " * n + "/end IF_DATA")


def a2l_of_one_name(n):
    return Description(Measurements(n).content().decode())


def a2l_of_long_paths(n):
    """Objects whose names ask for sqrt(n) steps each."""
    side = int(n ** 0.5)
    path = "v" + "[0].m" * side
    return Description(f'/begin MEASUREMENT {path} "" UWORD C 0 0 0 1 /end MEASUREMENT ' * side)


# Each with its size, and how often the file is included by the one that is updated; 0 for the file itself.
DESCRIPTIONS = [(a2l_of_many_includes, MILLION, 0), (a2l_included_as_often_as_allowed, 10_000, 9),
                (a2l_of_nested_blocks, MILLION, 0), (a2l_of_one_name, USUAL_SIZE, 0), (a2l_of_long_paths, MILLION, 0)]
HELPERS |= {case[0].__name__ for case in DESCRIPTIONS}
