// What the reader knows of attribute forms and attributes: how the value of a form is read, and
// where the value of an attribute goes. Abbreviation tables are prepared with it; it reads nothing
// itself.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// How the value of a form is read (DWARF 4, 7.5.4). Forms that are read alike share one.
enum class FormReading : std::uint8_t {
    /// No form that the reader knows; consumes nothing.
    Unknown,
    /// A value that takes no bytes.
    Present,
    OneByte,
    TwoBytes,
    FourBytes,
    EightBytes,
    Address,
    /// An offset in the width of the unit's DWARF format.
    Offset,
    ReferenceAddress,
    UnsignedLeb128,
    SignedLeb128,
    Text,
    /// An offset into `.debug_str`.
    TextOffset,
    /// Blocks, by the width of their length.
    Block1,
    Block2,
    Block4,
    BlockLeb128,
    /// The real form stands in front of the value.
    Indirect,
};

constexpr bool IsBlock(FormReading reading) {
    return reading >= FormReading::Block1 && reading <= FormReading::BlockLeb128;
}

/// The bytes that a reading always takes; 0 where that depends on unit or value.
constexpr std::uint32_t FixedWidth(FormReading reading) {
    switch (reading) {
    case FormReading::OneByte:
        return 1;
    case FormReading::TwoBytes:
        return 2;
    case FormReading::FourBytes:
        return 4;
    case FormReading::EightBytes:
        return 8;
    default:
        return 0;
    }
}

FormReading ReadingOfForm(std::uint32_t form);

/// True if values of the form refer to debug entries.
bool IsReferenceForm(std::uint32_t form);

/// Where the value of an attribute goes. Attributes that the reader has no use for are only passed.
enum class AttributeTarget : std::uint8_t {
    None,
    Location,
    MemberLocation,
    Name,
    ByteSize,
    BitOffset,
    BitSize,
    CompDir,
    ConstValue,
    LowerBound,
    Producer,
    UpperBound,
    Accessibility,
    Count,
    Declaration,
    Encoding,
    External,
    Specification,
    Type,
    LinkageName,
};

AttributeTarget TargetOfAttribute(std::uint32_t attribute);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
