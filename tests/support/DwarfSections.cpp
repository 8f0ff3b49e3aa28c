#include "support/DwarfSections.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Tests {

using namespace Reader::DWARF;

namespace {

enum class OperandKind { Address, Fixed, Unsigned, Signed };

struct OperandEncoding {
    std::uint8_t firstCode = 0;
    std::uint8_t lastCode = 0;
    OperandKind kind = OperandKind::Fixed;
    int size = 0;
};

constexpr OperandEncoding sOperandEncodings[] = {
    {DW_OP_addr, DW_OP_addr, OperandKind::Address},
    {DW_OP_const1u, DW_OP_const1s, OperandKind::Fixed, 1},
    {DW_OP_const2u, DW_OP_const2s, OperandKind::Fixed, 2},
    {DW_OP_const4u, DW_OP_const4s, OperandKind::Fixed, 4},
    {DW_OP_const8u, DW_OP_const8s, OperandKind::Fixed, 8},
    {DW_OP_constu, DW_OP_constu, OperandKind::Unsigned},
    {DW_OP_consts, DW_OP_consts, OperandKind::Signed},
    {DW_OP_plus_uconst, DW_OP_plus_uconst, OperandKind::Unsigned},
    {DW_OP_breg0, DW_OP_breg0 + 31, OperandKind::Signed},
    {DW_OP_regx, DW_OP_regx, OperandKind::Unsigned},
    {DW_OP_fbreg, DW_OP_fbreg, OperandKind::Signed},
    {DW_OP_piece, DW_OP_piece, OperandKind::Unsigned},
    {DW_OP_bit_piece, DW_OP_bit_piece, OperandKind::Unsigned},
    {DW_OP_addrx, DW_OP_constx, OperandKind::Unsigned},
    {DW_OP_GNU_addr_index, DW_OP_GNU_const_index, OperandKind::Unsigned},
};

/// How the value of a form that is a number is written; `Twice` is 16 bytes of the number repeated.
enum class NumberWidth { Fixed, Twice, Address, Offset, Reference, Unsigned, Signed };

struct NumberForm {
    std::uint32_t form = 0;
    NumberWidth width = NumberWidth::Fixed;
    std::size_t size = 0;
};

constexpr NumberForm sNumberForms[] = {
    {DW_FORM_data1, NumberWidth::Fixed, 1},
    {DW_FORM_flag, NumberWidth::Fixed, 1},
    {DW_FORM_ref1, NumberWidth::Fixed, 1},
    {DW_FORM_strx1, NumberWidth::Fixed, 1},
    {DW_FORM_addrx1, NumberWidth::Fixed, 1},
    {DW_FORM_data2, NumberWidth::Fixed, 2},
    {DW_FORM_ref2, NumberWidth::Fixed, 2},
    {DW_FORM_strx2, NumberWidth::Fixed, 2},
    {DW_FORM_addrx2, NumberWidth::Fixed, 2},
    {DW_FORM_strx3, NumberWidth::Fixed, 3},
    {DW_FORM_addrx3, NumberWidth::Fixed, 3},
    {DW_FORM_data4, NumberWidth::Fixed, 4},
    {DW_FORM_ref4, NumberWidth::Fixed, 4},
    {DW_FORM_ref_sup4, NumberWidth::Fixed, 4},
    {DW_FORM_strx4, NumberWidth::Fixed, 4},
    {DW_FORM_addrx4, NumberWidth::Fixed, 4},
    {DW_FORM_data8, NumberWidth::Fixed, 8},
    {DW_FORM_ref8, NumberWidth::Fixed, 8},
    {DW_FORM_ref_sig8, NumberWidth::Fixed, 8},
    {DW_FORM_ref_sup8, NumberWidth::Fixed, 8},
    {DW_FORM_flag_present, NumberWidth::Fixed, 0},
    {DW_FORM_implicit_const, NumberWidth::Fixed, 0},
    {DW_FORM_data16, NumberWidth::Twice},
    {DW_FORM_addr, NumberWidth::Address},
    {DW_FORM_sec_offset, NumberWidth::Offset},
    {DW_FORM_strp, NumberWidth::Offset},
    {DW_FORM_line_strp, NumberWidth::Offset},
    {DW_FORM_strp_sup, NumberWidth::Offset},
    {DW_FORM_GNU_ref_alt, NumberWidth::Offset},
    {DW_FORM_GNU_strp_alt, NumberWidth::Offset},
    {DW_FORM_ref_addr, NumberWidth::Reference},
    {DW_FORM_udata, NumberWidth::Unsigned},
    {DW_FORM_ref_udata, NumberWidth::Unsigned},
    {DW_FORM_strx, NumberWidth::Unsigned},
    {DW_FORM_addrx, NumberWidth::Unsigned},
    {DW_FORM_loclistx, NumberWidth::Unsigned},
    {DW_FORM_rnglistx, NumberWidth::Unsigned},
    {DW_FORM_GNU_str_index, NumberWidth::Unsigned},
    {DW_FORM_GNU_addr_index, NumberWidth::Unsigned},
    {DW_FORM_sdata, NumberWidth::Signed},
};

/// Writes the forms whose bytes carry their own extent; false for any other form.
bool WriteBlock(ByteWriter& writer, std::uint32_t form, const std::string& bytes) {
    switch (form) {
    case DW_FORM_block1:
        writer.U8(bytes.size()).Bytes(bytes);
        return true;
    case DW_FORM_block2:
        writer.U16(bytes.size()).Bytes(bytes);
        return true;
    case DW_FORM_block4:
        writer.U32(bytes.size()).Bytes(bytes);
        return true;
    case DW_FORM_block:
    case DW_FORM_exprloc:
        writer.Bytes(Uleb128(bytes.size())).Bytes(bytes);
        return true;
    case DW_FORM_string:
        writer.Text(bytes);
        return true;
    default:
        return false;
    }
}

/// Bytes of a reference in LEB128, wide enough for every unit of a test.
constexpr std::size_t sLebReferenceSize = 4;

void WriteOperand(ByteWriter& writer, std::uint8_t code, std::int64_t operand, int addressSize) {
    const auto value = static_cast<std::uint64_t>(operand);
    for (const OperandEncoding& encoding : sOperandEncodings) {
        if (code < encoding.firstCode || code > encoding.lastCode) {
            continue;
        }
        switch (encoding.kind) {
        case OperandKind::Address:
            writer.Integer(value, static_cast<std::size_t>(addressSize));
            return;
        case OperandKind::Fixed:
            writer.Integer(value, static_cast<std::size_t>(encoding.size));
            return;
        case OperandKind::Unsigned:
            writer.Bytes(Uleb128(value));
            return;
        case OperandKind::Signed:
            writer.Bytes(Sleb128(operand));
            return;
        }
    }
    ADD_FAILURE() << "operation " << int{code} << " has no operands";
}

/// An attribute as an abbreviation has it: its code, its form, and the value of a constant.
using AbbreviatedAttribute = std::tuple<std::uint32_t, std::uint32_t, std::optional<std::uint64_t>>;

/// What an abbreviation consists of, code aside.
using Abbreviation =
    std::pair<std::pair<dwarf_tag, std::uint8_t>, std::vector<AbbreviatedAttribute>>;

Abbreviation AbbreviationOf(dwarf_tag tag, std::uint8_t childrenByte,
                            const std::vector<DieAttribute>& attributes) {
    Abbreviation abbreviation = {{tag, childrenByte}, {}};
    for (const DieAttribute& attribute : attributes) {
        const std::uint32_t form = attribute.indirections > 0 ? DW_FORM_indirect : attribute.form;
        const std::uint64_t* number = std::get_if<std::uint64_t>(&attribute.value);
        abbreviation.second.emplace_back(attribute.attribute, form, std::nullopt);
        if (form == DW_FORM_implicit_const && number != nullptr) {
            std::get<2>(abbreviation.second.back()) = *number;
        }
    }
    return abbreviation;
}

} // namespace

DieLabel::DieLabel() {
    static int sCount = 0;
    mNumber = sCount++;
}

DieAttribute Number(std::uint32_t attribute, std::uint32_t form, std::uint64_t value) {
    return {attribute, form, value};
}

DieAttribute Text(std::uint32_t attribute, std::uint32_t form, std::string text) {
    return {attribute, form, std::move(text)};
}

DieAttribute Block(std::uint32_t attribute, std::uint32_t form, std::string bytes) {
    return {attribute, form, std::move(bytes), 0, true};
}

DieAttribute Reference(std::uint32_t attribute, std::uint32_t form, DieLabel target) {
    return {attribute, form, target};
}

DieAttribute Expression(std::uint32_t attribute, std::uint32_t form,
                        std::vector<Operation> operations) {
    return {attribute, form, std::move(operations)};
}

DieAttribute Indirect(DieAttribute attribute, int times) {
    attribute.indirections = times;
    return attribute;
}

DieAttribute Name(std::string text, std::uint32_t form) {
    return Text(DW_AT_name, form, std::move(text));
}

DieAttribute Producer(std::string text, std::uint32_t form) {
    return Text(DW_AT_producer, form, std::move(text));
}

DieAttribute CompDir(std::string text, std::uint32_t form) {
    return Text(DW_AT_comp_dir, form, std::move(text));
}

DieAttribute LinkageName(std::string text, std::uint32_t form) {
    return Text(DW_AT_linkage_name, form, std::move(text));
}

DieAttribute Type(DieLabel target, std::uint32_t form) {
    return Reference(DW_AT_type, form, target);
}

DieAttribute Specification(DieLabel target, std::uint32_t form) {
    return Reference(DW_AT_specification, form, target);
}

DieAttribute ByteSize(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_byte_size, form, value);
}

DieAttribute Encoding(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_encoding, form, value);
}

DieAttribute BitSize(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_bit_size, form, value);
}

DieAttribute BitOffset(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_bit_offset, form, value);
}

DieAttribute ConstValue(std::int64_t value, std::uint32_t form) {
    return Number(DW_AT_const_value, form, static_cast<std::uint64_t>(value));
}

DieAttribute LowerBound(std::int64_t value, std::uint32_t form) {
    return Number(DW_AT_lower_bound, form, static_cast<std::uint64_t>(value));
}

DieAttribute UpperBound(std::int64_t value, std::uint32_t form) {
    return Number(DW_AT_upper_bound, form, static_cast<std::uint64_t>(value));
}

DieAttribute Count(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_count, form, value);
}

DieAttribute Accessibility(std::uint64_t value, std::uint32_t form) {
    return Number(DW_AT_accessibility, form, value);
}

DieAttribute External() {
    return Number(DW_AT_external, DW_FORM_flag, 1);
}

DieAttribute Declaration() {
    return Number(DW_AT_declaration, DW_FORM_flag, 1);
}

DieAttribute Location(std::vector<Operation> operations, std::uint32_t form) {
    return Expression(DW_AT_location, form, std::move(operations));
}

DieAttribute Address(std::uint64_t address, std::uint32_t form) {
    return Location({{DW_OP_addr, {static_cast<std::int64_t>(address)}}}, form);
}

DieAttribute MemberOffset(std::uint64_t offset, std::uint32_t form) {
    return Number(DW_AT_data_member_location, form, offset);
}

DieAttribute MemberLocation(std::vector<Operation> operations, std::uint32_t form) {
    return Expression(DW_AT_data_member_location, form, std::move(operations));
}

Die::Die(dwarf_tag tag, std::vector<DieAttribute> attributes, std::vector<Die> children)
    : mTag(tag)
    , mAttributes(std::move(attributes))
    , mChildren(std::move(children))
    , mChildrenByte(mChildren.empty() ? 0 : 1) {}

Die::Die(DieLabel label, dwarf_tag tag, std::vector<DieAttribute> attributes,
         std::vector<Die> children)
    : Die(tag, std::move(attributes), std::move(children)) {
    mLabel = label;
}

Die Die::Raw(std::string bytes) {
    Die die(0);
    die.mRawBytes = std::move(bytes);
    return die;
}

Die& Die::ChildrenByte(std::uint8_t value) {
    mChildrenByte = value;
    return *this;
}

Die& Die::WithoutTerminator() {
    mHasTerminator = false;
    return *this;
}

/// A unit while its entries are written.
struct DwarfSections::UnitState {
    UnitState(const DwarfUnit& declaration, ByteOrder byteOrder, bool isTypes, std::uint64_t start)
        : unit(declaration)
        , isInTypes(isTypes)
        , writer(byteOrder)
        , infoOffset(start) {}

    [[nodiscard]] std::size_t OffsetSize() const { return unit.is64BitDwarf ? 8 : 4; }
    [[nodiscard]] std::size_t ReferenceSize() const {
        const std::size_t usual =
            unit.version < 3 ? static_cast<std::size_t>(unit.addressSize) : OffsetSize();
        return unit.referenceSize ? static_cast<std::size_t>(*unit.referenceSize) : usual;
    }

    const DwarfUnit& unit;
    /// The unit goes into `.debug_types`.
    bool isInTypes;
    /// The whole unit, its length field included.
    ByteWriter writer;
    std::uint64_t infoOffset;
    std::map<Abbreviation, std::uint64_t> codes;
};

DwarfSections::DwarfSections(ByteOrder byteOrder)
    : mByteOrder(byteOrder) {}

DwarfSections& DwarfSections::Unit(const DwarfUnit& unit) {
    // The bytes behind the length come first, since the length counts them.
    const bool isInTypes = unit.type && unit.version < 5;
    std::string& section = isInTypes ? mTypes : mInfo;
    UnitState state(unit, mByteOrder, isInTypes, section.size());
    const std::size_t lengthSize = unit.is64BitDwarf ? 12 : 4;
    state.writer.PadTo(lengthSize);
    WriteHeader(state);
    for (const Die& die : unit.entries) {
        WriteEntry(state, die);
    }
    ByteWriter length(mByteOrder);
    if (unit.is64BitDwarf) {
        length.U32(0xFFFFFFFF);
    }
    length.Integer(unit.length.value_or(state.writer.Size() - lengthSize), state.OffsetSize());
    section += length.Content() + state.writer.Content().substr(lengthSize);
    if (!unit.abbreviationOffset) {
        WriteAbbreviations(state);
    }
    ResolveReferences();
    return *this;
}

void DwarfSections::WriteHeader(UnitState& state) {
    const DwarfUnit& unit = state.unit;
    const bool hasType = unit.version >= 5;
    state.writer.U16(static_cast<std::uint64_t>(unit.version));
    if (hasType) {
        state.writer.U8(unit.unitType).U8(static_cast<std::uint64_t>(unit.addressSize));
    }
    state.writer.Integer(unit.abbreviationOffset.value_or(mAbbreviations.size()),
                         state.OffsetSize());
    if (!hasType) {
        state.writer.U8(static_cast<std::uint64_t>(unit.addressSize));
    }
    if (unit.type || (hasType && unit.unitType > DW_UT_partial)) {
        state.writer.U64(unit.signature);
    }
    if (unit.type) {
        mOpenReferences.push_back({state.infoOffset + state.writer.Size(), state.OffsetSize(),
                                   state.infoOffset, false, state.isInTypes, *unit.type});
        state.writer.Integer(0, state.OffsetSize());
    }
}

DwarfSections& DwarfSections::ModernUnit(DwarfUnit unit) {
    unit.version = 5;
    for (Die& die : unit.entries) {
        Modernize(die, unit.addressSize);
    }
    if (!unit.entries.empty()) {
        for (const std::uint32_t base : {DW_AT_str_offsets_base, DW_AT_addr_base}) {
            unit.entries.front().mAttributes.push_back(
                Number(base, DW_FORM_sec_offset, kTableBase));
        }
    }
    return Unit(unit);
}

void DwarfSections::Modernize(Die& die, int addressSize) {
    for (DieAttribute& attribute : die.mAttributes) {
        Modernize(attribute, addressSize);
    }
    for (Die& child : die.mChildren) {
        Modernize(child, addressSize);
    }
}

void DwarfSections::Modernize(DieAttribute& attribute, int addressSize) {
    if (auto* operations = std::get_if<std::vector<Operation>>(&attribute.value)) {
        attribute.form = DW_FORM_exprloc;
        for (Operation& operation : *operations) {
            if (operation.code == DW_OP_addr) {
                const auto address = static_cast<std::uint64_t>(operation.operands.front());
                operation = {DW_OP_addrx,
                             {static_cast<std::int64_t>(AddressIndex(address, addressSize))}};
            }
        }
        return;
    }
    switch (attribute.form) {
    case DW_FORM_string:
    case DW_FORM_strp:
        attribute.form = DW_FORM_strx1;
        return;
    case DW_FORM_flag:
        attribute.form = DW_FORM_flag_present;
        return;
    case DW_FORM_data1:
    case DW_FORM_udata:
    case DW_FORM_sdata:
        attribute.form = DW_FORM_implicit_const;
        return;
    default:
        return;
    }
}

DwarfSections& DwarfSections::RawInfo(std::string_view bytes) {
    mInfo += bytes;
    return *this;
}

std::uint64_t DwarfSections::RawAbbreviations(std::string_view bytes) {
    mAbbreviations += bytes;
    return mAbbreviations.size() - bytes.size();
}

std::uint64_t DwarfSections::String(const std::string& text) {
    const auto [place, isNew] = mStringOffsets.try_emplace(text, mStrings.size());
    if (isNew) {
        mStrings += text + '\0';
    }
    return place->second;
}

std::uint64_t DwarfSections::LocationListEntry(std::uint64_t begin, std::uint64_t end,
                                               const std::vector<Operation>& operations,
                                               std::optional<std::uint16_t> length) {
    const std::string expression = EncodeExpression(operations, mByteOrder, 4);
    ByteWriter writer(mByteOrder);
    writer.U32(begin).U32(end).U16(length.value_or(expression.size())).Bytes(expression);
    return RawLocations(writer.Content());
}

std::uint64_t DwarfSections::RawLocations(std::string_view bytes) {
    mLocations += bytes;
    return mLocations.size() - bytes.size();
}

std::uint64_t DwarfSections::RawLocationLists(std::string_view bytes) {
    mLocationLists += bytes;
    return mLocationLists.size() - bytes.size();
}

std::uint64_t DwarfSections::TextIndex(const std::string& text) {
    const auto [place, isNew] = mTextIndices.try_emplace(text, mTextIndices.size());
    if (isNew) {
        mTextOffsets += Writer().U32(String(text)).Content();
    }
    return place->second;
}

std::uint64_t DwarfSections::AddressIndex(std::uint64_t address, int addressSize) {
    const auto size = static_cast<std::size_t>(addressSize);
    mAddresses += Writer().Integer(address, size).Content();
    return mAddresses.size() / size - 1;
}

std::uint64_t DwarfSections::LineString(const std::string& text) {
    mLineStrings += text + '\0';
    return mLineStrings.size() - text.size() - 1;
}

std::vector<std::pair<std::string, std::string>> DwarfSections::Sections() const {
    EXPECT_TRUE(mOpenReferences.empty()) << "a label is referred to that names no entry";
    std::vector<std::pair<std::string, std::string>> sections = {{".debug_info", mInfo},
                                                                 {".debug_abbrev", mAbbreviations}};
    if (!mStrings.empty()) {
        sections.emplace_back(".debug_str", mStrings);
    }
    if (!mLocations.empty()) {
        sections.emplace_back(".debug_loc", mLocations);
    }
    const auto addTable = [&](const char* name, const std::string& content) {
        if (!content.empty()) {
            sections.emplace_back(
                name, Writer().U32(content.size() + 4).U16(5).U16(0).Bytes(content).Content());
        }
    };
    addTable(".debug_str_offsets", mTextOffsets);
    addTable(".debug_addr", mAddresses);
    for (const auto& [name, content] :
         {std::pair(".debug_types", mTypes), std::pair(".debug_loclists", mLocationLists),
          std::pair(".debug_line_str", mLineStrings)}) {
        if (!content.empty()) {
            sections.emplace_back(name, content);
        }
    }
    return sections;
}

std::uint32_t DwarfSections::OffsetOf(DieLabel label) const {
    const std::size_t start = mLabelsInTypes.contains(label) ? mInfo.size() : 0;
    return mOffsets.at(label) + static_cast<std::uint32_t>(start);
}

void DwarfSections::WriteEntry(UnitState& state, const Die& die) {
    if (die.mLabel) {
        mOffsets[*die.mLabel] = static_cast<std::uint32_t>(state.infoOffset + state.writer.Size());
        if (state.isInTypes) {
            mLabelsInTypes.insert(*die.mLabel);
        }
    }
    if (die.mRawBytes) {
        state.writer.Bytes(*die.mRawBytes);
        return;
    }
    state.writer.Bytes(Uleb128(AbbreviationCode(state, die)));
    for (const DieAttribute& attribute : die.mAttributes) {
        WriteAttribute(state, attribute);
    }
    if (die.mChildrenByte != 1) {
        return;
    }
    for (const Die& child : die.mChildren) {
        WriteEntry(state, child);
    }
    if (die.mHasTerminator) {
        state.writer.U8(0);
    }
}

std::uint64_t DwarfSections::AbbreviationCode(UnitState& state, const Die& die) {
    const Abbreviation abbreviation = AbbreviationOf(die.mTag, die.mChildrenByte, die.mAttributes);
    return state.codes.try_emplace(abbreviation, state.codes.size() + 1).first->second;
}

void DwarfSections::WriteAttribute(UnitState& state, const DieAttribute& attribute) {
    for (int index = 1; index <= attribute.indirections; ++index) {
        const bool isLast = index == attribute.indirections;
        state.writer.Bytes(Uleb128(isLast ? attribute.form : DW_FORM_indirect));
    }
    if (const DieLabel* target = std::get_if<DieLabel>(&attribute.value)) {
        WriteReference(state, attribute.form, *target);
    } else {
        WriteValue(state, attribute);
    }
}

void DwarfSections::WriteValue(UnitState& state, const DieAttribute& attribute) {
    const std::uint64_t* number = std::get_if<std::uint64_t>(&attribute.value);
    const std::string* text = std::get_if<std::string>(&attribute.value);
    const std::vector<Operation>* operations =
        std::get_if<std::vector<Operation>>(&attribute.value);
    const std::string bytes =
        operations != nullptr ? EncodeExpression(*operations, mByteOrder, state.unit.addressSize)
                              : (text != nullptr ? *text : std::string());
    const bool isVerbatim = attribute.isBytes && attribute.form > DW_FORM_flag_present;
    if (!isVerbatim && WriteBlock(state.writer, attribute.form, bytes)) {
        return;
    }
    const std::optional<std::uint64_t> place =
        text != nullptr && !isVerbatim ? PlaceOfText(attribute.form, *text) : std::nullopt;
    if (place) {
        WriteNumber(state, attribute.form, *place);
    } else if (number != nullptr && !isVerbatim) {
        WriteNumber(state, attribute.form, *number);
    } else {
        state.writer.Bytes(bytes);
    }
}

std::optional<std::uint64_t> DwarfSections::PlaceOfText(std::uint32_t form,
                                                        const std::string& text) {
    switch (form) {
    case DW_FORM_strp:
        return String(text);
    case DW_FORM_line_strp:
        return LineString(text);
    case DW_FORM_strx:
    case DW_FORM_strx1:
    case DW_FORM_strx2:
    case DW_FORM_strx3:
    case DW_FORM_strx4:
    case DW_FORM_GNU_str_index:
        return TextIndex(text);
    default:
        return std::nullopt;
    }
}

void DwarfSections::WriteNumber(UnitState& state, std::uint32_t form, std::uint64_t value) {
    const auto* const found = std::ranges::find(sNumberForms, form, &NumberForm::form);
    if (found == std::end(sNumberForms)) {
        ADD_FAILURE() << "form " << form << " takes bytes only";
        return;
    }
    switch (found->width) {
    case NumberWidth::Fixed:
        state.writer.Integer(value, found->size);
        return;
    case NumberWidth::Twice:
        state.writer.U64(value).U64(value);
        return;
    case NumberWidth::Address:
        state.writer.Integer(value, static_cast<std::size_t>(state.unit.addressSize));
        return;
    case NumberWidth::Offset:
        state.writer.Integer(value, state.OffsetSize());
        return;
    case NumberWidth::Reference:
        state.writer.Integer(value, state.ReferenceSize());
        return;
    case NumberWidth::Unsigned:
        state.writer.Bytes(Uleb128(value));
        return;
    case NumberWidth::Signed:
        state.writer.Bytes(Sleb128(static_cast<std::int64_t>(value)));
        return;
    }
}

void DwarfSections::WriteReference(UnitState& state, std::uint32_t form, DieLabel target) {
    std::size_t size = 4;
    switch (form) {
    case DW_FORM_ref1:
        size = 1;
        break;
    case DW_FORM_ref2:
        size = 2;
        break;
    case DW_FORM_ref8:
        size = 8;
        break;
    case DW_FORM_ref_udata:
        size = sLebReferenceSize;
        break;
    case DW_FORM_ref_addr:
        size = state.ReferenceSize();
        break;
    default:
        EXPECT_EQ(form, DW_FORM_ref4);
    }
    mOpenReferences.push_back({static_cast<std::size_t>(state.infoOffset) + state.writer.Size(),
                               size, form == DW_FORM_ref_addr ? 0 : state.infoOffset,
                               form == DW_FORM_ref_udata, state.isInTypes, target});
    state.writer.Bytes(std::string(size, '\0'));
}

void DwarfSections::ResolveReferences() {
    std::erase_if(mOpenReferences, [this](const OpenReference& reference) {
        const auto target = mOffsets.find(reference.target);
        if (target == mOffsets.end()) {
            return false;
        }
        const std::uint64_t value = target->second - reference.base;
        const std::string bytes = reference.isLeb128
                                      ? PaddedUleb128(value, reference.size)
                                      : Writer().Integer(value, reference.size).Content();
        (reference.isInTypes ? mTypes : mInfo).replace(reference.position, reference.size, bytes);
        return true;
    });
}

void DwarfSections::WriteAbbreviations(const UnitState& state) {
    std::map<std::uint64_t, const Abbreviation*> byCode;
    for (const auto& [abbreviation, code] : state.codes) {
        byCode[code] = &abbreviation;
    }
    for (const auto& [code, abbreviation] : byCode) {
        const auto& [tag, childrenByte] = abbreviation->first;
        mAbbreviations += Uleb128(code) + Uleb128(tag) + static_cast<char>(childrenByte);
        for (const auto& [attribute, form, constant] : abbreviation->second) {
            mAbbreviations += Uleb128(attribute) + Uleb128(form);
            if (constant) {
                mAbbreviations += Sleb128(static_cast<std::int64_t>(*constant));
            }
        }
        mAbbreviations += std::string(2, '\0');
    }
    mAbbreviations += '\0';
}

std::string Uleb128(std::uint64_t value) {
    std::string bytes;
    do {
        const std::uint64_t group = value & 0x7FU;
        value >>= 7U;
        bytes.push_back(static_cast<char>(value != 0 ? group | 0x80U : group));
    } while (value != 0);
    return bytes;
}

std::string Sleb128(std::int64_t value) {
    std::string bytes;
    bool isLast = false;
    while (!isLast) {
        const auto group = static_cast<std::uint8_t>(value & 0x7F);
        value >>= 7;
        isLast = value == ((group & 0x40U) != 0 ? -1 : 0);
        bytes.push_back(static_cast<char>(isLast ? group : group | 0x80U));
    }
    return bytes;
}

std::string PaddedUleb128(std::uint64_t value, std::size_t size) {
    std::string bytes;
    for (std::size_t index = 1; index <= size; ++index) {
        const std::uint64_t group = value & 0x7FU;
        value >>= 7U;
        bytes.push_back(static_cast<char>(index < size ? group | 0x80U : group));
    }
    return bytes;
}

std::string EncodeExpression(const std::vector<Operation>& operations, ByteOrder byteOrder,
                             int addressSize) {
    ByteWriter writer(byteOrder);
    for (const Operation& operation : operations) {
        writer.U8(operation.code);
        for (const std::int64_t operand : operation.operands) {
            WriteOperand(writer, operation.code, operand, addressSize);
        }
    }
    return writer.Content();
}

} // namespace Tessel::Norn::Brindle::Tests
