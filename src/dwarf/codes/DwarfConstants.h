// The codes of the DWARF standard that the reader knows by name: tags, attributes, forms, encodings
// and operators (DWARF 5, section 7). Codes that it only passes on or skips have no name here. Tags
// and encodings are in lists (.def), from which both their constants and their names in dumps are
// made.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Tag of a debug entry. Every 32-bit value may occur, those of vendors included.
using dwarf_tag = std::uint32_t;

enum : dwarf_tag {
#define DWARF_TAG(code, name, mark) DW_TAG_##name = (code),
#define DWARF_TAG_WITHOUT_NAME(code, name) DW_TAG_##name = (code),
#include "dwarf/codes/DwarfTags.def"
#undef DWARF_TAG
#undef DWARF_TAG_WITHOUT_NAME
};

/// Types of unit.
enum : std::uint8_t {
    DW_UT_compile = 0x01,
    DW_UT_type = 0x02,
    DW_UT_partial = 0x03,
    DW_UT_skeleton = 0x04,
    DW_UT_split_compile = 0x05,
    DW_UT_split_type = 0x06,
};

/// Classes, structures and unions.
constexpr bool IsAggregate(dwarf_tag tag) {
    return tag == DW_TAG_class_type || tag == DW_TAG_structure_type || tag == DW_TAG_union_type;
}

/// Entries between a structure and those of its members that only some of its values have.
constexpr bool IsOfVariants(dwarf_tag tag) {
    return tag == DW_TAG_variant_part || tag == DW_TAG_variant;
}

/// Types that differ from another one only in name or qualifiers.
constexpr bool IsOtherNameOfType(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_typedef:
    case DW_TAG_const_type:
    case DW_TAG_volatile_type:
    case DW_TAG_restrict_type:
    case DW_TAG_packed_type:
    case DW_TAG_shared_type:
    case DW_TAG_atomic_type:
    case DW_TAG_immutable_type:
        return true;
    default:
        return false;
    }
}

/// Types that are grouped by name, and so may have links to a definition or a representative.
constexpr bool IsGroupedType(dwarf_tag tag) {
    return IsAggregate(tag) || tag == DW_TAG_typedef;
}

/// Attributes that are read from debug entries.
enum : std::uint32_t {
#define DWARF_ATTRIBUTE(code, name, classic, full) DW_AT_##name = (code),
#include "dwarf/codes/DwarfAttributes.def"
#undef DWARF_ATTRIBUTE
};

/// Forms of attribute values.
enum : std::uint32_t {
#define DWARF_FORM(code, name, classic, full, value, filled) DW_FORM_##name = (code),
#include "dwarf/codes/DwarfForms.def"
#undef DWARF_FORM
};

/// Operators of location expressions that the reader evaluates.
enum : std::uint8_t {
#define DWARF_OPERATOR(code, name, since, action, operand, leastTopInEntry, leastTopInList)        \
    DW_OP_##name = (code),
#include "dwarf/codes/DwarfOperators.def"
#undef DWARF_OPERATOR
};

/// Values of the ordering attribute.
enum : std::uint32_t {
    DW_ORD_row_major = 0,
    DW_ORD_col_major = 1,
};

/// Values of the endianity attribute.
enum : std::uint32_t {
    DW_END_default = 0,
    DW_END_big = 1,
    DW_END_little = 2,
};

/// Encodings of base types. Every 32-bit value may occur.
enum : std::uint32_t {
#define DWARF_ENCODING(code, name, mark) DW_ATE_##name = (code),
#define DWARF_ENCODING_WITHOUT_NAME(code, name) DW_ATE_##name = (code),
#include "dwarf/codes/DwarfEncodings.def"
#undef DWARF_ENCODING
#undef DWARF_ENCODING_WITHOUT_NAME
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
