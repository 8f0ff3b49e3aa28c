#include "support/DwarfSections.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

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

/// How the value of a form is encoded.
enum class Layout { Unknown, Fixed, Address, Offset, Reference, Unsigned, Signed, Text, Block };

struct FormEncoding {
    std::uint32_t form = 0;
    Layout layout = Layout::Unknown;
    /// Bytes of a number of fixed size, or of a block's length; 0 is a length in LEB128.
    std::size_t size = 0;
};

constexpr FormEncoding sFormEncodings[] = {
    {DW_FORM_data1, Layout::Fixed, 1},     {DW_FORM_data2, Layout::Fixed, 2},
    {DW_FORM_data4, Layout::Fixed, 4},     {DW_FORM_data8, Layout::Fixed, 8},
    {DW_FORM_data16, Layout::Fixed, 16},   {DW_FORM_flag, Layout::Fixed, 1},
    {DW_FORM_ref1, Layout::Fixed, 1},      {DW_FORM_ref2, Layout::Fixed, 2},
    {DW_FORM_ref4, Layout::Fixed, 4},      {DW_FORM_ref8, Layout::Fixed, 8},
    {DW_FORM_ref_sig8, Layout::Fixed, 8},  {DW_FORM_ref_sup4, Layout::Fixed, 4},
    {DW_FORM_ref_sup8, Layout::Fixed, 8},  {DW_FORM_strx1, Layout::Fixed, 1},
    {DW_FORM_strx2, Layout::Fixed, 2},     {DW_FORM_strx3, Layout::Fixed, 3},
    {DW_FORM_strx4, Layout::Fixed, 4},     {DW_FORM_addrx1, Layout::Fixed, 1},
    {DW_FORM_addrx2, Layout::Fixed, 2},    {DW_FORM_addrx3, Layout::Fixed, 3},
    {DW_FORM_addrx4, Layout::Fixed, 4},    {DW_FORM_flag_present, Layout::Fixed, 0},
    {DW_FORM_sdata, Layout::Signed},       {DW_FORM_implicit_const, Layout::Fixed, 0},
    {DW_FORM_udata, Layout::Unsigned},     {DW_FORM_ref_udata, Layout::Unsigned},
    {DW_FORM_strx, Layout::Unsigned},      {DW_FORM_addrx, Layout::Unsigned},
    {DW_FORM_loclistx, Layout::Unsigned},  {DW_FORM_GNU_str_index, Layout::Unsigned},
    {DW_FORM_rnglistx, Layout::Unsigned},  {DW_FORM_GNU_addr_index, Layout::Unsigned},
    {DW_FORM_strp, Layout::Offset},        {DW_FORM_line_strp, Layout::Offset},
    {DW_FORM_strp_sup, Layout::Offset},    {DW_FORM_sec_offset, Layout::Offset},
    {DW_FORM_GNU_ref_alt, Layout::Offset}, {DW_FORM_GNU_strp_alt, Layout::Offset},
    {DW_FORM_addr, Layout::Address},       {DW_FORM_ref_addr, Layout::Reference},
    {DW_FORM_string, Layout::Text},        {DW_FORM_block1, Layout::Block, 1},
    {DW_FORM_block2, Layout::Block, 2},    {DW_FORM_block4, Layout::Block, 4},
    {DW_FORM_block, Layout::Block, 0},     {DW_FORM_exprloc, Layout::Block, 0},
};

FormEncoding EncodingOfForm(std::uint32_t form) {
    const auto* found = std::ranges::find(sFormEncodings, form, &FormEncoding::form);
    return found != std::end(sFormEncodings) ? *found : FormEncoding{form};
}

/// Larger numbers consist of several equal words.
constexpr std::size_t sWord = 8;
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

/// An attribute in an abbreviation: its code, its form, and the value of a constant.
using AbbreviatedAttribute = std::tuple<std::uint32_t, std::uint32_t, std::optional<std::uint64_t>>;

/// The contents of an abbreviation, without its code.
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

DieAttribute External() {
    return Number(DW_AT_external, DW_FORM_flag, 1);
}

DieAttribute Declaration() {
    return Number(DW_AT_declaration, DW_FORM_flag, 1);
}

DieAttribute Address(std::uint64_t address, std::uint32_t form) {
    return Location({{DW_OP_addr, {static_cast<std::int64_t>(address)}}}, form);
}

DieAttribute ListLocation(std::vector<LocationRange> ranges) {
    return {DW_AT_location, DW_FORM_sec_offset, std::move(ranges)};
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

    /// Size of a number of this encoding in bytes.
    [[nodiscard]] std::size_t SizeOf(const FormEncoding& encoding) const {
        switch (encoding.layout) {
        case Layout::Address:
            return static_cast<std::size_t>(unit.addressSize);
        case Layout::Offset:
            return OffsetSize();
        case Layout::Reference:
            return ReferenceSize();
        default:
            return encoding.size;
        }
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
    // The bytes after the length come first, since the length counts them.
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
        Modernize(*operations, addressSize);
        return;
    }
    if (auto* ranges = std::get_if<std::vector<LocationRange>>(&attribute.value)) {
        for (LocationRange& range : *ranges) {
            Modernize(range.operations, addressSize);
        }
        return;
    }
    switch (attribute.form) {
    case DW_FORM_string:
        attribute.form = DW_FORM_strx1;
        return;
    case DW_FORM_strp:
        attribute.form = DW_FORM_line_strp;
        return;
    case DW_FORM_flag:
        attribute.form = DW_FORM_flag_present;
        return;
    case DW_FORM_data1:
        // Version 4 writes the lowest byte alone.
        if (auto* number = std::get_if<std::uint64_t>(&attribute.value)) {
            *number &= 0xFFU;
        }
        attribute.form = DW_FORM_implicit_const;
        return;
    case DW_FORM_udata:
    case DW_FORM_sdata:
        attribute.form = DW_FORM_implicit_const;
        return;
    default:
        return;
    }
}

void DwarfSections::Modernize(std::vector<Operation>& operations, int addressSize) {
    for (Operation& operation : operations) {
        if (operation.code == DW_OP_addr) {
            const auto address = static_cast<std::uint64_t>(operation.operands.front());
            operation = {DW_OP_addrx,
                         {static_cast<std::int64_t>(AddressIndex(address, addressSize))}};
        }
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
    const auto [place, isNew] = mLineStringOffsets.try_emplace(text, mLineStrings.size());
    if (isNew) {
        mLineStrings += text + '\0';
    }
    return place->second;
}

std::uint64_t DwarfSections::AddList(const DwarfUnit& unit,
                                     const std::vector<LocationRange>& ranges) {
    const auto addressSize = static_cast<std::size_t>(unit.addressSize);
    ByteWriter list(mByteOrder);
    for (const LocationRange& range : ranges) {
        const std::string expression =
            EncodeExpression(range.operations, mByteOrder, unit.addressSize);
        if (unit.version < 5) {
            list.Integer(range.begin, addressSize).Integer(range.end, addressSize);
            list.U16(expression.size()).Bytes(expression);
        } else {
            list.U8(DW_LLE_offset_pair).Bytes(Uleb128(range.begin) + Uleb128(range.end));
            list.Bytes(Uleb128(expression.size())).Bytes(expression);
        }
    }
    if (unit.version < 5) {
        return RawLocations(list.Bytes(std::string(2 * addressSize, '\0')).Content());
    }
    list.U8(DW_LLE_end_of_list);
    constexpr std::size_t sSizeAfterLength = 8;
    RawLocationLists(
        Writer().U32(sSizeAfterLength + list.Size()).U16(5).U8(addressSize).U8(0).U32(0).Content());
    return RawLocationLists(list.Content());
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
    ByteWriter& writer = state.writer;
    if (const auto* ranges = std::get_if<std::vector<LocationRange>>(&attribute.value)) {
        writer.Integer(AddList(state.unit, *ranges), state.OffsetSize());
        return;
    }
    const FormEncoding encoding = EncodingOfForm(attribute.form);
    const std::uint64_t* number = std::get_if<std::uint64_t>(&attribute.value);
    const std::string bytes = BytesOf(state, attribute);
    const bool isRaw = attribute.isBytes && attribute.form > DW_FORM_flag_present;
    const std::optional<std::uint64_t> place = number != nullptr ? *number
                                               : isRaw           ? std::nullopt
                                                       : PlaceOfText(attribute.form, bytes);
    if (isRaw || (!place && encoding.layout < Layout::Text)) {
        writer.Bytes(bytes);
        return;
    }
    switch (encoding.layout) {
    case Layout::Unknown:
        ADD_FAILURE() << "form " << attribute.form << " takes bytes only";
        return;
    case Layout::Text:
        writer.Text(bytes);
        return;
    case Layout::Block:
        writer.Bytes(encoding.size == 0 ? Uleb128(bytes.size())
                                        : Writer().Integer(bytes.size(), encoding.size).Content());
        writer.Bytes(bytes);
        return;
    case Layout::Unsigned:
        writer.Bytes(Uleb128(*place));
        return;
    case Layout::Signed:
        writer.Bytes(Sleb128(static_cast<std::int64_t>(*place)));
        return;
    default:
        for (std::size_t left = state.SizeOf(encoding); left > 0; left -= std::min(left, sWord)) {
            writer.Integer(*place, std::min(left, sWord));
        }
    }
}

std::string DwarfSections::BytesOf(const UnitState& state, const DieAttribute& attribute) const {
    if (const auto* operations = std::get_if<std::vector<Operation>>(&attribute.value)) {
        return EncodeExpression(*operations, mByteOrder, state.unit.addressSize);
    }
    const std::string* text = std::get_if<std::string>(&attribute.value);
    return text != nullptr ? *text : std::string();
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

void DwarfSections::WriteReference(UnitState& state, std::uint32_t form, DieLabel target) {
    const FormEncoding encoding = EncodingOfForm(form);
    const bool isLeb128 = encoding.layout == Layout::Unsigned;
    const std::size_t size = isLeb128 ? sLebReferenceSize : state.SizeOf(encoding);
    EXPECT_GT(size, 0U) << "form " << form << " is none of references";
    mOpenReferences.push_back({static_cast<std::size_t>(state.infoOffset) + state.writer.Size(),
                               size, form == DW_FORM_ref_addr ? 0 : state.infoOffset, isLeb128,
                               state.isInTypes, target});
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
