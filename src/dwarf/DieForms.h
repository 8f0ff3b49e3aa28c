// What the reader knows about attribute forms and attributes: how the value of a form is read, and
// where the value of an attribute goes. Abbreviation tables are prepared with it; it reads nothing
// itself.
#pragma once

#include "core/ReadingManner.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// How the value of a form is read (DWARF 5, 7.5.6). Forms that are read alike share one reading.
enum class FormReading : std::uint8_t {
    /// A form that the reader doesn't know; consumes nothing.
    Unknown,
    /// A value that takes no bytes.
    Present,
    OneByte,
    TwoBytes,
    ThreeBytes,
    FourBytes,
    EightBytes,
    SixteenBytes,
    Address,
    /// An offset in the width of the unit's DWARF format.
    Offset,
    /// A reference to an entry of any unit, as wide as an address.
    ReferenceAddress,
    /// A reference to an entry of any unit, as wide as an offset from DWARF 3 on.
    ReferenceAddressByVersion,
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
    /// The real form precedes the value.
    Indirect,
    /// The abbreviation holds the value.
    Constant,
    /// An offset into `.debug_line_str`.
    LineTextOffset,
    /// Indices in the unit's part of `.debug_str_offsets`, by the width of the index.
    TextIndex1,
    TextIndex2,
    TextIndex3,
    TextIndex4,
    TextIndexLeb128,
    /// Indices in the unit's part of `.debug_addr`, by the width of the index.
    AddressIndex1,
    AddressIndex2,
    AddressIndex3,
    AddressIndex4,
    AddressIndexLeb128,
    /// An index in the unit's part of `.debug_loclists`.
    LocationListIndex,
    /// The signature of a type, which leads to an entry of any unit.
    TypeSignature,
};

constexpr bool IsBlock(FormReading reading) {
    return reading >= FormReading::Block1 && reading <= FormReading::BlockLeb128;
}

constexpr bool GivesIndexedAddress(FormReading reading) {
    return reading >= FormReading::AddressIndex1 && reading <= FormReading::AddressIndexLeb128;
}

/// True if the value is a section offset of an entry; references of other readings are unit
/// offsets.
constexpr bool GivesSectionOffset(FormReading reading) {
    return reading == FormReading::ReferenceAddress ||
           reading == FormReading::ReferenceAddressByVersion ||
           reading == FormReading::TypeSignature;
}

constexpr bool TakesNoBytes(FormReading reading) {
    return reading == FormReading::Present || reading == FormReading::Constant;
}

/// The bytes that a reading always takes; 0 if that depends on unit or value.
constexpr std::uint32_t FixedWidth(FormReading reading) {
    switch (reading) {
    case FormReading::OneByte:
    case FormReading::TextIndex1:
    case FormReading::AddressIndex1:
        return 1;
    case FormReading::TwoBytes:
    case FormReading::TextIndex2:
    case FormReading::AddressIndex2:
        return 2;
    case FormReading::ThreeBytes:
    case FormReading::TextIndex3:
    case FormReading::AddressIndex3:
        return 3;
    case FormReading::FourBytes:
    case FormReading::TextIndex4:
    case FormReading::AddressIndex4:
        return 4;
    case FormReading::EightBytes:
    case FormReading::TypeSignature:
        return 8;
    case FormReading::SixteenBytes:
        return 16;
    default:
        return 0;
    }
}

/// Where the value of an attribute goes. Attributes without use are skipped.
enum class AttributeTarget : std::uint8_t {
    None,
    Location,
    MemberLocation,
    /// All 64 bits of a constant; values of the other targets are cut to 32.
    WholeConstValue,
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
    AbstractOrigin,
    DataBitOffset,
    Import,
    Signature,
    Endianity,
    // For arrays and their dimensions.
    Ordering,
    BitStride,
    ByteStride,
    /// Where the elements lie is computed at run time.
    ComputedPlace,
    /// There is a lower bound, but it's computed at run time.
    ComputedLowerBound,
    // For units, see `VUnitFacts`.
    Language,
    SplitFile,
    TextOffsetsBase,
    AddressesBase,
    LocationListsBase,
};

/// True if values of the form refer to debug entries.
bool IsReferenceForm(std::uint32_t form);

/// How complete the values of forms are. Linkers fill in offsets of sections and addresses; before
/// that, some formats have the offsets in place, and others keep all values elsewhere.
enum class Linkage : std::uint8_t { Linked, OffsetsInPlace, NothingInPlace };

struct FormProperties;
struct TagAlias;
struct VendorTarget;

/// The forms and attributes of one manner of reading.
class DieForms {
public:
    /// @param linkage ignored in the classic manner
    static const DieForms& Of(ReadingManner manner, Linkage linkage = Linkage::Linked);

    /// The tag under which entries of a tag are read.
    [[nodiscard]] dwarf_tag TagOf(dwarf_tag tag) const;
    [[nodiscard]] FormReading ReadingOf(std::uint32_t form) const;
    [[nodiscard]] AttributeTarget TargetOf(std::uint32_t attribute) const;
    /// The target of an attribute with this form; `None` if the value is of no use for it.
    [[nodiscard]] AttributeTarget TargetOf(AttributeTarget target, std::uint32_t form) const;

private:
    constexpr DieForms(std::span<const FormProperties> forms,
                       std::span<const FormProperties> vendorForms,
                       std::span<const AttributeTarget> targets,
                       std::span<const VendorTarget> vendorTargets,
                       std::span<const TagAlias> tagAliases, bool takesAllAsNumbers)
        : mForms(forms)
        , mVendorForms(vendorForms)
        , mTargets(targets)
        , mVendorTargets(vendorTargets)
        , mTagAliases(tagAliases)
        , mTakesAllAsNumbers(takesAllAsNumbers) {}

    [[nodiscard]] FormProperties PropertiesOf(std::uint32_t form) const;

    /// Indexed by code.
    std::span<const FormProperties> mForms;
    /// Indexed by code, from `sFirstVendorForm` on.
    std::span<const FormProperties> mVendorForms;
    /// Indexed by code.
    std::span<const AttributeTarget> mTargets;
    std::span<const VendorTarget> mVendorTargets;
    std::span<const TagAlias> mTagAliases;
    /// Where a number is needed, blocks and references are taken as numbers.
    bool mTakesAllAsNumbers;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
