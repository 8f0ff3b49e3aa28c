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
    DW_AT_location = 0x02,
    DW_AT_name = 0x03,
    DW_AT_ordering = 0x09,
    DW_AT_byte_size = 0x0b,
    DW_AT_bit_offset = 0x0c,
    DW_AT_bit_size = 0x0d,
    DW_AT_language = 0x13,
    DW_AT_import = 0x18,
    DW_AT_comp_dir = 0x1b,
    DW_AT_const_value = 0x1c,
    DW_AT_lower_bound = 0x22,
    DW_AT_producer = 0x25,
    DW_AT_bit_stride = 0x2e,
    DW_AT_upper_bound = 0x2f,
    DW_AT_abstract_origin = 0x31,
    DW_AT_accessibility = 0x32,
    DW_AT_count = 0x37,
    DW_AT_data_member_location = 0x38,
    DW_AT_declaration = 0x3c,
    DW_AT_encoding = 0x3e,
    DW_AT_external = 0x3f,
    DW_AT_specification = 0x47,
    DW_AT_type = 0x49,
    DW_AT_data_location = 0x50,
    DW_AT_byte_stride = 0x51,
    DW_AT_endianity = 0x65,
    DW_AT_signature = 0x69,
    DW_AT_data_bit_offset = 0x6b,
    DW_AT_linkage_name = 0x6e,
    DW_AT_str_offsets_base = 0x72,
    DW_AT_addr_base = 0x73,
    DW_AT_dwo_name = 0x76,
    DW_AT_loclists_base = 0x8c,
    DW_AT_MIPS_linkage_name = 0x2007,
    DW_AT_GNU_dwo_name = 0x2130,
    DW_AT_GNU_addr_base = 0x2133,
};

/// Forms of attribute values.
enum : std::uint32_t {
    DW_FORM_addr = 0x01,
    DW_FORM_block2 = 0x03,
    DW_FORM_block4 = 0x04,
    DW_FORM_data2 = 0x05,
    DW_FORM_data4 = 0x06,
    DW_FORM_data8 = 0x07,
    DW_FORM_string = 0x08,
    DW_FORM_block = 0x09,
    DW_FORM_block1 = 0x0a,
    DW_FORM_data1 = 0x0b,
    DW_FORM_flag = 0x0c,
    DW_FORM_sdata = 0x0d,
    DW_FORM_strp = 0x0e,
    DW_FORM_udata = 0x0f,
    DW_FORM_ref_addr = 0x10,
    DW_FORM_ref1 = 0x11,
    DW_FORM_ref2 = 0x12,
    DW_FORM_ref4 = 0x13,
    DW_FORM_ref8 = 0x14,
    DW_FORM_ref_udata = 0x15,
    DW_FORM_indirect = 0x16,
    DW_FORM_sec_offset = 0x17,
    DW_FORM_exprloc = 0x18,
    DW_FORM_flag_present = 0x19,
    DW_FORM_strx = 0x1a,
    DW_FORM_addrx = 0x1b,
    DW_FORM_ref_sup4 = 0x1c,
    DW_FORM_strp_sup = 0x1d,
    DW_FORM_data16 = 0x1e,
    DW_FORM_line_strp = 0x1f,
    DW_FORM_ref_sig8 = 0x20,
    DW_FORM_implicit_const = 0x21,
    DW_FORM_loclistx = 0x22,
    DW_FORM_rnglistx = 0x23,
    DW_FORM_ref_sup8 = 0x24,
    DW_FORM_strx1 = 0x25,
    DW_FORM_strx2 = 0x26,
    DW_FORM_strx3 = 0x27,
    DW_FORM_strx4 = 0x28,
    DW_FORM_addrx1 = 0x29,
    DW_FORM_addrx2 = 0x2a,
    DW_FORM_addrx3 = 0x2b,
    DW_FORM_addrx4 = 0x2c,
    DW_FORM_GNU_addr_index = 0x1f01,
    DW_FORM_GNU_str_index = 0x1f02,
    DW_FORM_GNU_ref_alt = 0x1f20,
    DW_FORM_GNU_strp_alt = 0x1f21,
};

/// Operators of location expressions that the reader evaluates.
enum : std::uint8_t {
    DW_OP_addr = 0x03,
    DW_OP_const1u = 0x08,
    DW_OP_const1s = 0x09,
    DW_OP_const2u = 0x0a,
    DW_OP_const2s = 0x0b,
    DW_OP_const4u = 0x0c,
    DW_OP_const4s = 0x0d,
    DW_OP_const8u = 0x0e,
    DW_OP_const8s = 0x0f,
    DW_OP_constu = 0x10,
    DW_OP_consts = 0x11,
    DW_OP_minus = 0x1c,
    DW_OP_plus = 0x22,
    DW_OP_plus_uconst = 0x23,
    DW_OP_bit_piece = 0x9d,
    DW_OP_addrx = 0xa1,
    DW_OP_constx = 0xa2,
    DW_OP_GNU_addr_index = 0xfb,
    DW_OP_GNU_const_index = 0xfc,
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
