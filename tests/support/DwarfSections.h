// Builds the debug sections from declarations of debug entries (DIEs), so that a test reads like
// the tree that it is about. Damaged contents are added as raw bytes.
#pragma once

#include "dwarf/codes/DwarfConstants.h"
#include "support/ByteWriter.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

using Reader::DWARF::dwarf_tag;

/// @name Codes that tests use beyond those that the reader knows by name
/// @{

enum : std::uint32_t {
    DW_AT_sibling = 0x01,
    DW_AT_stmt_list = 0x10,
    DW_AT_low_pc = 0x11,
    DW_AT_high_pc = 0x12,
    DW_AT_decl_file = 0x3a,
    DW_AT_decl_line = 0x3b,
    DW_AT_frame_base = 0x40,
};

enum : std::uint8_t {
    DW_OP_deref = 0x06,
    DW_OP_lit0 = 0x30,
    DW_OP_reg0 = 0x50,
    DW_OP_breg0 = 0x70,
    DW_OP_regx = 0x90,
    DW_OP_fbreg = 0x91,
    DW_OP_piece = 0x93,
    DW_OP_stack_value = 0x9f,
    DW_OP_entry_value = 0xa3,
};

enum : std::uint8_t {
    DW_LLE_end_of_list = 0x00,
    DW_LLE_offset_pair = 0x04,
};

enum : std::uint8_t {
    DW_ATE_boolean = 2,
    DW_ATE_float = 4,
    DW_ATE_signed_char = 6,
    DW_ATE_unsigned_char = 8,
};

/// @}

/// Identifies a debug entry. Copies identify the same entry; each new label another.
class DieLabel {
public:
    DieLabel();
    bool operator<(const DieLabel& other) const { return mNumber < other.mNumber; }

private:
    int mNumber;
};

/// One operation of a location expression. The operands' encoding follows from the code.
struct Operation {
    std::uint8_t code;
    std::vector<std::int64_t> operands = {};
};

/// One entry of a location list: where a variable is while the program counter is in a range.
struct LocationRange {
    std::uint64_t begin;
    std::uint64_t end;
    std::vector<Operation> operations;
};

/// One attribute of a debug entry: name, form and value. The functions below make the usual ones.
struct DieAttribute {
    using Value = std::variant<std::uint64_t, std::string, DieLabel, std::vector<Operation>,
                               std::vector<LocationRange>>;

    std::uint32_t attribute;
    std::uint32_t form;
    /// A number; a text or the bytes of a block; the entry referred to; an expression; a list.
    Value value;
    /// How many forms precede the value; the abbreviation then has `DW_FORM_indirect`.
    int indirections = 0;
    /// The value is given as its bytes, whatever the form.
    bool isBytes = false;
};

/// @name Any attribute in any form
/// @{

/// A number in a form for numbers or references; in a form for blocks, an empty block.
DieAttribute Number(std::uint32_t attribute, std::uint32_t form, std::uint64_t value);
/// A text in a form for texts; `DW_FORM_strp` puts it into `.debug_str`.
DieAttribute Text(std::uint32_t attribute, std::uint32_t form, std::string text);
/// Bytes in a form for blocks; in any other form they are the encoded value itself.
DieAttribute Block(std::uint32_t attribute, std::uint32_t form, std::string bytes);
DieAttribute Reference(std::uint32_t attribute, std::uint32_t form, DieLabel target);
DieAttribute Expression(std::uint32_t attribute, std::uint32_t form,
                        std::vector<Operation> operations);
/// The same attribute through `DW_FORM_indirect`.
DieAttribute Indirect(DieAttribute attribute, int times = 1);

/// @}
/// @name The usual attributes
/// @{

/// Makes the attributes of one code, in the usual form unless another one is given.
template <typename Value, std::uint32_t usualForm>
struct AttributeMaker {
    std::uint32_t attribute;

    DieAttribute operator()(Value value, std::uint32_t form = usualForm) const {
        if constexpr (std::is_integral_v<Value>) {
            return {attribute, form, static_cast<std::uint64_t>(value)};
        } else {
            return {attribute, form, std::move(value)};
        }
    }
};

using TextMaker = AttributeMaker<std::string, Reader::DWARF::DW_FORM_string>;
using ReferenceMaker = AttributeMaker<DieLabel, Reader::DWARF::DW_FORM_ref4>;
using ByteMaker = AttributeMaker<std::uint64_t, Reader::DWARF::DW_FORM_data1>;
using NumberMaker = AttributeMaker<std::uint64_t, Reader::DWARF::DW_FORM_udata>;
using SignedMaker = AttributeMaker<std::int64_t, Reader::DWARF::DW_FORM_sdata>;
using ExpressionMaker = AttributeMaker<std::vector<Operation>, Reader::DWARF::DW_FORM_block1>;

inline constexpr TextMaker Name{Reader::DWARF::DW_AT_name};
inline constexpr TextMaker Producer{Reader::DWARF::DW_AT_producer};
inline constexpr TextMaker CompDir{Reader::DWARF::DW_AT_comp_dir};
inline constexpr TextMaker LinkageName{Reader::DWARF::DW_AT_linkage_name};
inline constexpr ReferenceMaker Type{Reader::DWARF::DW_AT_type};
inline constexpr ReferenceMaker Specification{Reader::DWARF::DW_AT_specification};
inline constexpr ByteMaker Encoding{Reader::DWARF::DW_AT_encoding};
inline constexpr ByteMaker BitSize{Reader::DWARF::DW_AT_bit_size};
inline constexpr ByteMaker BitOffset{Reader::DWARF::DW_AT_bit_offset};
inline constexpr ByteMaker Accessibility{Reader::DWARF::DW_AT_accessibility};
inline constexpr NumberMaker ByteSize{Reader::DWARF::DW_AT_byte_size};
inline constexpr NumberMaker Count{Reader::DWARF::DW_AT_count};
inline constexpr NumberMaker MemberOffset{Reader::DWARF::DW_AT_data_member_location};
inline constexpr SignedMaker ConstValue{Reader::DWARF::DW_AT_const_value};
inline constexpr SignedMaker LowerBound{Reader::DWARF::DW_AT_lower_bound};
inline constexpr SignedMaker UpperBound{Reader::DWARF::DW_AT_upper_bound};
inline constexpr ExpressionMaker Location{Reader::DWARF::DW_AT_location};
inline constexpr ExpressionMaker MemberLocation{Reader::DWARF::DW_AT_data_member_location};
DieAttribute External();
DieAttribute Declaration();
/// The location of a variable with a static address.
DieAttribute Address(std::uint64_t address, std::uint32_t form = Reader::DWARF::DW_FORM_block1);
/// The location of a variable whose place changes. The list goes to the section of lists that the
/// unit's version has, from version 4 on.
DieAttribute ListLocation(std::vector<LocationRange> ranges);

/// @}

/// One debug entry with its descendants.
class Die {
public:
    /// An entry has children in the sense of its abbreviation if some are given.
    explicit Die(dwarf_tag tag, std::vector<DieAttribute> attributes = {},
                 std::vector<Die> children = {});
    /// An entry that others refer to.
    Die(DieLabel label, dwarf_tag tag, std::vector<DieAttribute> attributes = {},
        std::vector<Die> children = {});
    /// Bytes in place of an entry.
    static Die Raw(std::string bytes);

    /// Sets the children byte of the abbreviation. Only 1 makes a list of children.
    Die& ChildrenByte(std::uint8_t value);
    /// Omits the null entry after the children.
    Die& WithoutTerminator();

private:
    friend class DwarfSections;

    std::optional<DieLabel> mLabel;
    dwarf_tag mTag;
    std::vector<DieAttribute> mAttributes;
    std::vector<Die> mChildren;
    std::uint8_t mChildrenByte;
    bool mHasTerminator = true;
    std::optional<std::string> mRawBytes;
};

/// One unit. The last fields, if set, replace correct values.
struct DwarfUnit {
    std::vector<Die> entries = {};
    int version = 4;
    int addressSize = 4;
    bool is64BitDwarf = false;
    /// In headers from version 5 on.
    std::uint8_t unitType = Reader::DWARF::DW_UT_compile;
    /// Signature of a type unit, or identifier of a split one.
    std::uint64_t signature = 0;
    /// The type of a type unit. In versions before 5, the unit goes to `.debug_types`.
    std::optional<DieLabel> type = {};
    /// Width of `DW_FORM_ref_addr`: by default the address size in version 2, the size of an offset
    /// from version 3 on.
    std::optional<int> referenceSize = {};
    /// The unit length as written.
    std::optional<std::uint64_t> length = {};
    /// Offset of a table in `.debug_abbrev`; the unit then adds no table of its own, and its
    /// entries must be raw.
    std::optional<std::uint64_t> abbreviationOffset = {};
};

/// The debug sections of one file.
class DwarfSections {
public:
    explicit DwarfSections(ByteOrder byteOrder = ByteOrder::Little);

    DwarfSections& Unit(const DwarfUnit& unit);
    /// A unit of version 4 for 32-bit targets.
    DwarfSections& Unit(std::vector<Die> entries) { return Unit(DwarfUnit{std::move(entries)}); }
    /// The same unit as a compiler writes it for DWARF 5: texts and addresses by index, shared
    /// texts in `.debug_line_str`, numbers in abbreviations, bases after the attributes that need
    /// them.
    DwarfSections& ModernUnit(DwarfUnit unit);
    /// Bytes between units.
    DwarfSections& RawInfo(std::string_view bytes);
    /// Adds bytes to `.debug_abbrev`. Returns their offset.
    std::uint64_t RawAbbreviations(std::string_view bytes);
    /// Adds a text to `.debug_str`, unless it is there. Returns its offset.
    std::uint64_t String(const std::string& text);
    /// Adds an entry of a location list, with 4-byte addresses. Returns its offset.
    std::uint64_t LocationListEntry(std::uint64_t begin, std::uint64_t end,
                                    const std::vector<Operation>& operations,
                                    std::optional<std::uint16_t> length = {});
    std::uint64_t RawLocations(std::string_view bytes);
    /// Adds bytes to `.debug_loclists`. Returns their offset.
    std::uint64_t RawLocationLists(std::string_view bytes);
    /// Index of a text in `.debug_str_offsets`, whose only table has the base `kTableBase`.
    std::uint64_t TextIndex(const std::string& text);
    /// Index of an address in `.debug_addr`, whose only table has the base `kTableBase`.
    std::uint64_t AddressIndex(std::uint64_t address, int addressSize = 4);
    static constexpr std::uint64_t kTableBase = 8;
    /// Adds a text to `.debug_line_str`, unless it is there. Returns its offset.
    std::uint64_t LineString(const std::string& text);

    [[nodiscard]] const std::string& Info() const { return mInfo; }
    [[nodiscard]] const std::string& Abbreviations() const { return mAbbreviations; }
    /// Empty unless a text uses it.
    [[nodiscard]] const std::string& Strings() const { return mStrings; }
    [[nodiscard]] const std::string& Locations() const { return mLocations; }
    /// Names and contents of the sections; empty ones are omitted, except `.debug_info` and
    /// `.debug_abbrev`.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> Sections() const;

    /// Section offset of an entry that was added.
    [[nodiscard]] std::uint32_t OffsetOf(DieLabel label) const;
    [[nodiscard]] ByteWriter Writer() const { return ByteWriter(mByteOrder); }

private:
    struct UnitState;
    void Modernize(Die& die, int addressSize);
    void Modernize(DieAttribute& attribute, int addressSize);
    void Modernize(std::vector<Operation>& operations, int addressSize);
    void WriteHeader(UnitState& state);
    /// A reference to an entry whose offset isn't known yet.
    struct OpenReference {
        std::size_t position = 0;
        std::size_t size = 0;
        std::uint64_t base = 0;
        bool isLeb128 = false;
        /// It is in `.debug_types`.
        bool isInTypes = false;
        DieLabel target;
    };

    void WriteEntry(UnitState& state, const Die& die);
    void WriteAttribute(UnitState& state, const DieAttribute& attribute);
    void WriteValue(UnitState& state, const DieAttribute& attribute);
    [[nodiscard]] std::string BytesOf(const UnitState& state, const DieAttribute& attribute) const;
    /// Adds a location list for units of a version. Returns its offset.
    std::uint64_t AddList(const DwarfUnit& unit, const std::vector<LocationRange>& ranges);
    /// The value for a form that refers to a text; nothing for other forms.
    std::optional<std::uint64_t> PlaceOfText(std::uint32_t form, const std::string& text);
    void WriteReference(UnitState& state, std::uint32_t form, DieLabel target);
    void WriteAbbreviations(const UnitState& state);
    std::uint64_t AbbreviationCode(UnitState& state, const Die& die);
    void ResolveReferences();

    ByteOrder mByteOrder;
    std::string mInfo;
    std::string mAbbreviations;
    std::string mStrings;
    std::string mLocations;
    std::string mTypes;
    std::string mLocationLists;
    std::string mLineStrings;
    /// Without their headers.
    std::string mTextOffsets;
    std::string mAddresses;
    std::map<std::string, std::uint64_t> mStringOffsets;
    std::map<std::string, std::uint64_t> mLineStringOffsets;
    std::map<std::string, std::uint64_t> mTextIndices;
    /// Offsets in the section of the entry.
    std::map<DieLabel, std::uint32_t> mOffsets;
    std::set<DieLabel> mLabelsInTypes;
    std::vector<OpenReference> mOpenReferences;
};

/// The image with the sections, in any container.
template <typename Image>
Image operator+(Image image, const DwarfSections& sections) {
    for (const auto& [name, content] : sections.Sections()) {
        image.Section(name, content);
    }
    return image;
}

/// @name LEB128 texts
/// @{

std::string Uleb128(std::uint64_t value);
std::string Sleb128(std::int64_t value);
/// An unsigned value in exactly this many bytes.
std::string PaddedUleb128(std::uint64_t value, std::size_t size);

/// @}

/// The bytes of an expression.
std::string EncodeExpression(const std::vector<Operation>& operations, ByteOrder byteOrder,
                             int addressSize);

} // namespace Tessel::Norn::Brindle::Tests
