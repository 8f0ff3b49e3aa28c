// Two tables make a host value of a base type. For `unsigned short`, which the file describes by
// the encoding DW_ATE_unsigned and a size of 2 bytes:
//
//     DW_ATE_unsigned      BasicType::UInt        sEncodings
//     UInt, 2 bytes        BasicTypes::UInt16     sSizedTypes
//
// An integer of 3 bytes has no value of its own. The classic reading delivers `Double`, and only
// the length of 3 shows that it is no floating point number; the full one delivers `UnsignedLong`.
#include "emit/BaseTypes.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/codes/DwarfConstants.h"

#include <algorithm>
#include <iterator>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using DataModel::BasicTypes;

struct EncodingEntry {
    std::uint32_t encoding;
    BasicType code;
};

constexpr EncodingEntry sEncodings[] = {
    {DW_ATE_void, BasicType::Void},
    {DW_ATE_address, BasicType::NoType},
    {DW_ATE_boolean, BasicType::Bool},
    {DW_ATE_complex_float, BasicType::ComplexFloat},
    {DW_ATE_float, BasicType::Float},
    {DW_ATE_signed, BasicType::Int},
    {DW_ATE_signed_char, BasicType::Int},
    {DW_ATE_unsigned, BasicType::UInt},
    {DW_ATE_unsigned_char, BasicType::UInt},
    {DW_ATE_packed_decimal, BasicType::Int},
    {DW_ATE_UTF, BasicType::Int},
    {DW_ATE_lo_user, BasicType::NoType},
    {144, BasicType::NoType}, // vendor
    {145, BasicType::NoType}, // vendor
    {DW_ATE_hi_user, BasicType::NoType},
};

struct SizedEntry {
    BasicType code;
    std::uint32_t byteSize;
    BasicTypes value;
};

constexpr SizedEntry sSizedTypes[] = {
    {BasicType::Int, 1, BasicTypes::Int8},      {BasicType::Int, 2, BasicTypes::Int16},
    {BasicType::Int, 4, BasicTypes::Int32},     {BasicType::Int, 8, BasicTypes::Int64},
    {BasicType::UInt, 1, BasicTypes::UInt8},    {BasicType::UInt, 2, BasicTypes::UInt16},
    {BasicType::UInt, 4, BasicTypes::UInt32},   {BasicType::UInt, 8, BasicTypes::UInt64},
    {BasicType::Float, 2, BasicTypes::Float16}, {BasicType::Float, 4, BasicTypes::Float},
};

struct UnsizedEntry {
    BasicType code;
    BasicTypes value;
};

/// Codes whose value doesn't depend on the size. The codes of the sized types also cover all sizes
/// that have no entry.
constexpr UnsizedEntry sUnsizedTypes[] = {
    {BasicType::NoType, BasicTypes::NoType},   {BasicType::Void, BasicTypes::Void},
    {BasicType::Char, BasicTypes::Char},       {BasicType::WideChar, BasicTypes::WideChar},
    {BasicType::Int, BasicTypes::Double},      {BasicType::UInt, BasicTypes::Double},
    {BasicType::Float, BasicTypes::Double},    {BasicType::Bool, BasicTypes::Bool},
    {BasicType::Long, BasicTypes::Long},       {BasicType::UnsignedLong, BasicTypes::UnsignedLong},
    {BasicType::Special, BasicTypes::Special}, {BasicType::ComplexFloat, BasicTypes::Double},
    {BasicType::Int16, BasicTypes::Int16},     {BasicType::UInt16, BasicTypes::UInt16},
    {BasicType::Int64, BasicTypes::Int64},     {BasicType::UInt64, BasicTypes::UInt64},
};

struct FullEncodingEntry {
    std::uint32_t encoding = 0;
    /// Nothing for kinds that the host lacks.
    std::optional<BasicType> code;
};

/// Encodings that the full reading interprets differently.
constexpr FullEncodingEntry sFullEncodings[] = {
    {DW_ATE_complex_float, {}},
    {DW_ATE_imaginary_float, {}},
    {DW_ATE_packed_decimal, {}},
    {DW_ATE_numeric_string, {}},
    {DW_ATE_edited, {}},
    {DW_ATE_signed_fixed, {}},
    {DW_ATE_unsigned_fixed, {}},
    {DW_ATE_decimal_float, {}},
    {DW_ATE_UTF, BasicType::UInt},
    {DW_ATE_UCS, BasicType::UInt},
    {DW_ATE_ASCII, BasicType::UInt},
    {DW_ATE_lo_user, {}}, // complex integers of GNU compilers
};

/// Floats of 2 bytes that are not binary16 of IEEE 754.
constexpr std::string_view sBrainFloats[] = {"__bf16", "bfloat16_t", "std::bfloat16_t"};

void ReportUnsupportedEncoding(std::uint32_t encoding, std::uint32_t byteSize) {
    if (byteSize != 1) {
        elflog("[VDebugInfoNode::ConvertBaseTypeForSymbolProvider: Unsupported encoding %d . "
               "Specified Byte size is %d.]",
               static_cast<int>(encoding), static_cast<int>(byteSize));
    }
}

} // namespace

BasicType BasicTypeOfEncoding(std::uint32_t encoding, std::uint32_t byteSize) {
    const auto* const found = std::ranges::find(sEncodings, encoding, &EncodingEntry::encoding);
    if (found == std::end(sEncodings)) {
        ReportUnsupportedEncoding(encoding, byteSize);
        return BasicType::NoType;
    }
    return found->code;
}

std::optional<BasicType> BasicTypeOfItsSize(std::uint32_t encoding, std::uint32_t byteSize,
                                            std::string_view name) {
    const auto* const entry =
        std::ranges::find(sFullEncodings, encoding, &FullEncodingEntry::encoding);
    const std::optional<BasicType> code =
        entry != std::end(sFullEncodings) ? entry->code : BasicTypeOfEncoding(encoding, byteSize);
    const bool hasIntegerWidth = std::ranges::any_of(sSizedTypes, [&](const SizedEntry& sized) {
        return sized.code == BasicType::UInt && sized.byteSize == byteSize;
    });
    if (code == BasicType::Void && byteSize != 0) {
        return {};
    }
    if (code == BasicType::Float &&
        std::ranges::find(sBrainFloats, name) != std::end(sBrainFloats)) {
        return {};
    }
    if (code == BasicType::Int && !hasIntegerWidth) {
        return BasicType::Long;
    }
    if (code == BasicType::UInt && !hasIntegerWidth) {
        return BasicType::UnsignedLong;
    }
    if (code == BasicType::Bool && byteSize != 1) {
        return hasIntegerWidth ? BasicType::UInt : BasicType::UnsignedLong;
    }
    return code;
}

BasicTypes GetManagedBasicType(BasicType code, std::uint64_t byteSize) {
    const auto* const sized =
        std::ranges::find_if(sSizedTypes, [code, byteSize](const SizedEntry& entry) {
            return entry.code == code && entry.byteSize == byteSize;
        });
    if (sized != std::end(sSizedTypes)) {
        return sized->value;
    }
    const auto* const unsized = std::ranges::find(sUnsizedTypes, code, &UnsizedEntry::code);
    return unsized != std::end(sUnsizedTypes) ? unsized->value : BasicTypes::NoType;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
