#include "emit/BaseTypes.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"

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
    {0, BasicType::Void},         // none
    {1, BasicType::NoType},       // DW_ATE_address
    {2, BasicType::Bool},         // DW_ATE_boolean
    {3, BasicType::ComplexFloat}, // DW_ATE_complex_float
    {4, BasicType::Float},        // DW_ATE_float
    {5, BasicType::Int},          // DW_ATE_signed
    {6, BasicType::Int},          // DW_ATE_signed_char
    {7, BasicType::UInt},         // DW_ATE_unsigned
    {8, BasicType::UInt},         // DW_ATE_unsigned_char
    {10, BasicType::Int},         // DW_ATE_packed_decimal
    {16, BasicType::Int},         // DW_ATE_UTF
    {128, BasicType::NoType},     // DW_ATE_lo_user
    {144, BasicType::NoType},     // vendor
    {145, BasicType::NoType},     // vendor
    {255, BasicType::NoType},     // DW_ATE_hi_user
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

/// Codes whose value doesn't depend on the size. Those of the sized types stand for all other
/// sizes.
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
