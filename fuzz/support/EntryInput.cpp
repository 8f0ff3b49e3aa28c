#include "support/EntryInput.h"

#include "support/DwarfSections.h"
#include "support/ElfImage.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Fuzzing {

using namespace Reader::DWARF;
using namespace Tests;

namespace {

constexpr dwarf_tag sTags[] = {
    DW_TAG_variable,
    DW_TAG_structure_type,
    DW_TAG_member,
    DW_TAG_base_type,
    DW_TAG_class_type,
    DW_TAG_union_type,
    DW_TAG_typedef,
    DW_TAG_pointer_type,
    DW_TAG_array_type,
    DW_TAG_subrange_type,
    DW_TAG_const_type,
    DW_TAG_volatile_type,
    DW_TAG_enumeration_type,
    DW_TAG_enumerator,
    DW_TAG_namespace,
    DW_TAG_subprogram,
    DW_TAG_formal_parameter,
    DW_TAG_lexical_block,
    DW_TAG_inheritance,
    DW_TAG_subroutine_type,
    DW_TAG_template_type_param,
    DW_TAG_template_value_param,
    DW_TAG_compile_unit,
    DW_TAG_reference_type,
    DW_TAG_ptr_to_member_type,
    DW_TAG_class_template,
    DW_TAG_unspecified_type,
    DW_TAG_unspecified_parameters,
    DW_TAG_restrict_type,
    DW_TAG_packed_type,
    DW_TAG_set_type,
    DW_TAG_file_type,
    DW_TAG_label,
    DW_TAG_imported_declaration,
    DW_TAG_imported_module,
    DW_TAG_inlined_subroutine,
    DW_TAG_common_block,
    DW_TAG_common_inclusion,
    DW_TAG_partial_unit,
    DW_TAG_rvalue_reference_type,
    DW_TAG_interface_type,
    DW_TAG_access_declaration,
    DW_TAG_friend,
    DW_TAG_namelist,
    DW_TAG_with_stmt,
    DW_TAG_format_label,
    DW_TAG_MIPS_loop,
    0x5555,
    DW_TAG_variant_part,
    DW_TAG_variant,
};

const std::string sNames[] = {
    "a",
    "b",
    "c",
    "T",
    "U",
    "T<int>",
    "T<U>",
    "T<T<T<a> > >",
    "outer",
    "",
    "_ZN5outer1aE",
    "a__5outer",
    "__0",
    "x.y",
    "_a",
    "int",
    "unsigned char",
    "<anonymous>",
    "\xFF\xFE",
    "operator<",
    std::string(300, 'n'),
    std::string(3000, '<'),
};

constexpr std::uint64_t sNumbers[] = {
    0, 1, 4, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF};

template <typename Values>
const auto& Choose(const Values& values, std::size_t choice) {
    return values[choice % std::size(values)];
}

constexpr std::uint64_t sPlace = 0x1000;
constexpr std::uint64_t sBytesOfPlace = 0x100;

enum class Structure : std::uint8_t { Sibling, Parent, LastChild, LastUnit };

struct Record {
    Structure structure = Structure::Sibling;
    dwarf_tag tag = 0;
    std::uint32_t attributes = 0;
    std::uint8_t name = 0;
    std::uint32_t type = 0;
    std::uint32_t specification = 0;
    std::uint64_t number = 0;
    std::uint8_t location = 0;
    /// Where the addresses begin that `location` chooses from.
    std::uint64_t place = sPlace;
    /// A location list is sound: its ranges give the places that `number` chooses.
    bool hasSoundList = false;
    std::uint8_t forms = 0;
    std::uint8_t encoding = 0;
    DieLabel label;
};

Record TakeRecord(InputBytes& input) {
    Record record;
    record.structure = static_cast<Structure>(input.Byte() % 4);
    record.tag = Choose(sTags, input.Byte());
    record.attributes = input.Number(2);
    record.name = input.Byte();
    record.type = input.Number(2);
    record.specification = input.Number(2);
    record.number = input.Number(2);
    record.location = input.Byte();
    record.forms = input.Byte();
    // Most numbers are small; the others are at the limits of their types.
    if (input.Byte() >= 0xF0) {
        record.number = Choose(sNumbers, record.number);
    }
    record.encoding = static_cast<std::uint8_t>(record.number % 32);
    return record;
}

/// @name Bits of `Record::attributes`
/// @{

constexpr std::uint32_t sHasName = 1U << 0U;
constexpr std::uint32_t sHasLinkageName = 1U << 1U;
constexpr std::uint32_t sHasType = 1U << 2U;
constexpr std::uint32_t sHasSpecification = 1U << 3U;
constexpr std::uint32_t sHasByteSize = 1U << 4U;
constexpr std::uint32_t sHasBitField = 3U << 5U;
constexpr std::uint32_t sHasLocation = 1U << 7U;
constexpr std::uint32_t sIsDeclaration = 1U << 9U;
constexpr std::uint32_t sIsExternal = 1U << 10U;
constexpr std::uint32_t sHasBounds = 7U << 11U;
/// An encoding or a constant, see `sEncodingForm`.
constexpr std::uint32_t sHasEncoding = 1U << 14U;
constexpr std::uint32_t sHasConstant = sHasEncoding;

/// @}

constexpr std::uint8_t sLocationListChoice = 2;
constexpr std::uint8_t sBitPieceChoice = 3;
constexpr std::uint8_t sLocationChoices = 8;
/// `Record::forms`: bit 14 is an encoding.
constexpr std::uint8_t sEncodingForm = 0x04;
/// `Record::forms`: bit 3 is an abstract origin.
constexpr std::uint8_t sOriginForm = 0x10;
/// `Record::forms`: bit 6 counts from the start of the structure.
constexpr std::uint8_t sDataBitForm = 0x20;

/// Tags of which the manners make different things.
constexpr dwarf_tag sTagsOfOneManner[] = {
    DW_TAG_partial_unit,
    DW_TAG_rvalue_reference_type,
    DW_TAG_ptr_to_member_type,
    DW_TAG_set_type,
    DW_TAG_file_type,
    DW_TAG_variant_part,
    DW_TAG_variant,
};

/// Encodings and sizes of base types that the manners read alike.
constexpr std::pair<std::uint8_t, std::uint8_t> sPlainBaseTypes[] = {
    {DW_ATE_signed, 4},
    {Tests::DW_ATE_boolean, 1},
    {Tests::DW_ATE_float, 4},
    {Tests::DW_ATE_float, 8},
    {DW_ATE_signed, 8},
    {DW_ATE_signed, 2},
    {DW_ATE_unsigned, 1},
    {DW_ATE_unsigned, 4},
    {Tests::DW_ATE_unsigned_char, 1},
    {Tests::DW_ATE_signed_char, 1},
};

const std::string& NameOf(const Record& record) {
    return Choose(sNames, record.name);
}

const std::string& LinkageNameOf(const Record& record) {
    return Choose(sNames, record.name / 8U + 9U);
}

/// The record of an entry that both manners read alike, but for what it completes.
Record Plain(Record record) {
    if (std::ranges::find(sTagsOfOneManner, record.tag) != std::end(sTagsOfOneManner)) {
        record.tag = DW_TAG_pointer_type;
    }
    record.forms &= static_cast<std::uint8_t>(~sOriginForm & ~sDataBitForm);
    if (record.location % sLocationChoices == sLocationListChoice ||
        record.location % sLocationChoices == sBitPieceChoice) {
        record.attributes &= ~sHasLocation;
    }
    if ((record.attributes & sHasLocation) != 0) {
        record.attributes &= ~sIsDeclaration;
    }
    if (LinkageNameOf(record).empty()) {
        record.attributes &= ~sHasLinkageName;
    }
    switch (record.tag) {
    case DW_TAG_base_type:
        std::tie(record.encoding, record.number) = Choose(sPlainBaseTypes, record.number);
        record.attributes |= sHasEncoding | sHasByteSize;
        record.attributes &= ~sHasBounds;
        record.forms |= sEncodingForm;
        break;
    case DW_TAG_member:
        record.attributes |= sHasName;
        record.name = NameOf(record).empty() ? 0 : record.name;
        break;
    case DW_TAG_subrange_type:
        record.attributes &= ~sHasByteSize;
        break;
    case DW_TAG_enumerator:
        // A constant that 32 bits express.
        record.attributes |= sHasConstant;
        record.forms &= static_cast<std::uint8_t>(~sEncodingForm);
        record.number &= 0x7FFFFFFFU;
        break;
    default:
        break;
    }
    return record;
}

/// For each record the number of its unit.
std::vector<std::size_t> UnitsOf(const std::vector<Record>& records) {
    std::vector<std::size_t> units;
    std::size_t unit = 0;
    for (const Record& record : records) {
        units.push_back(unit);
        unit += record.structure == Structure::LastUnit ? 1 : 0;
    }
    return units;
}

/// For each record the tag of the entry around it; 0 for an entry around which there is none.
std::vector<dwarf_tag> TagsAround(const std::vector<Record>& records) {
    std::vector<dwarf_tag> tags;
    std::vector<dwarf_tag> around = {0};
    for (const Record& record : records) {
        tags.push_back(around.back());
        if (record.structure == Structure::Parent) {
            around.push_back(record.tag);
        } else if (record.structure == Structure::LastUnit) {
            around.resize(1);
        } else if (record.structure == Structure::LastChild && around.size() > 1) {
            around.pop_back();
        }
    }
    return tags;
}

/// Takes the types of indices away from arrays: only one manner counts enumerators.
void NumberIndices(std::vector<Record>& records) {
    const std::vector<dwarf_tag> around = TagsAround(records);
    for (std::size_t index = 0; index < records.size(); ++index) {
        Record& record = records[index];
        if (around[index] == DW_TAG_array_type && record.tag == DW_TAG_enumeration_type) {
            record.tag = DW_TAG_typedef;
        } else if (around[index] == DW_TAG_array_type && record.tag == DW_TAG_subrange_type) {
            record.attributes &= ~sHasType;
        }
    }
}

/// Makes bit fields of a base type that lie within its bytes, directly in a structure; of other
/// bit fields whole members.
void PlaceBitFields(std::vector<Record>& records) {
    const std::vector<dwarf_tag> around = TagsAround(records);
    for (std::size_t index = 0; index < records.size(); ++index) {
        Record& record = records[index];
        const Record& type = records[record.type % records.size()];
        const bool isInStructure =
            around[index] == DW_TAG_structure_type || around[index] == DW_TAG_class_type;
        if (record.tag != DW_TAG_member || !isInStructure || type.tag != DW_TAG_base_type ||
            (record.attributes & sHasType) == 0 ||
            (record.attributes & sHasBitField) != sHasBitField) {
            record.attributes &= ~sHasBitField;
            continue;
        }
        record.attributes &= ~(sHasByteSize | sHasSpecification);
        const std::uint64_t bits = type.number * 8;
        const std::uint64_t width = 1 + record.number % bits;
        record.number = record.number / 256 % (bits - width + 1) * 256 + width;
    }
}

/// The first record from an index on that an entry could complete: one of its tag with a name.
std::optional<std::uint32_t> Completable(const std::vector<Record>& records, const Record& record) {
    for (std::size_t step = 0; step < records.size(); ++step) {
        const std::size_t index = (record.specification + step) % records.size();
        const Record& other = records[index];
        if (other.tag == record.tag && (other.attributes & sHasName) != 0 &&
            !NameOf(other).empty()) {
            return static_cast<std::uint32_t>(index);
        }
    }
    return std::nullopt;
}

bool CompletesVariable(const Record& record) {
    return record.tag == DW_TAG_variable && (record.attributes & sHasSpecification) != 0;
}

/// The records as both manners read them alike. A variable that completes another is external and
/// has a place of its own: of several at one address, the manners keep different ones. It is no
/// type, as only damaged files have it: the full reading knows its size. That other variable
/// completes none.
/// @param isWithinUnits no entry refers to one in another unit
std::vector<Record> Plain(std::vector<Record> records, bool isWithinUnits) {
    for (Record& record : records) {
        record = Plain(record);
    }
    NumberIndices(records);
    PlaceBitFields(records);
    const std::vector<std::size_t> units = UnitsOf(records);
    std::uint64_t place = sPlace;
    for (std::size_t index = 0; index < records.size(); ++index) {
        Record& record = records[index];
        place += sBytesOfPlace;
        const auto completed = Completable(records, record);
        if (completed && (!isWithinUnits || units[*completed] == units[index])) {
            record.specification = *completed;
        } else {
            record.attributes &= ~sHasSpecification;
        }
        if (CompletesVariable(record)) {
            record.attributes |= sIsExternal;
            record.place = place;
        }
    }
    for (const Record& record : records) {
        if (CompletesVariable(record)) {
            records[record.specification].attributes &= ~sHasSpecification;
        }
    }
    for (std::size_t index = 0; index < records.size(); ++index) {
        Record& record = records[index];
        const std::size_t type = record.type % records.size();
        if (CompletesVariable(records[type]) || (isWithinUnits && units[type] != units[index])) {
            record.attributes &= ~sHasType;
        }
    }
    return records;
}

constexpr dwarf_tag sTagsOfTypeUnits[] = {DW_TAG_structure_type, DW_TAG_class_type,
                                          DW_TAG_union_type, DW_TAG_enumeration_type};

class TreeBuilder {
public:
    /// @param hasTypeUnits units that begin with a type are type units
    /// @param isWithinUnits no entry refers to one in another unit
    TreeBuilder(std::vector<Record> records, bool hasTypeUnits, bool isWithinUnits)
        : mRecords(std::move(records))
        , mIsWithinUnits(isWithinUnits) {
        std::size_t units = 0;
        bool isFirst = true;
        bool isTypeUnit = false;
        for (const Record& record : mRecords) {
            if (isFirst) {
                ++units;
                isTypeUnit = hasTypeUnits && std::ranges::find(sTagsOfTypeUnits, record.tag) !=
                                                 std::end(sTagsOfTypeUnits);
            }
            mTypeUnits.push_back(isTypeUnit ? units : 0);
            isFirst = record.structure == Structure::LastUnit;
        }
    }

    [[nodiscard]] bool IsAtEnd() const { return mNext == mRecords.size(); }

    /// Fills in the entries of the next unit, and for a type unit what its header needs.
    void FillUnit(DwarfUnit& unit) {
        const std::size_t typeUnit = mTypeUnits[mNext];
        std::vector<Die> roots;
        mIsUnitOpen = true;
        if (typeUnit != 0) {
            unit.type = mRecords[mNext].label;
            unit.unitType = DW_UT_type;
            unit.signature = SignatureOf(typeUnit);
        }
        while (!IsAtEnd() && mIsUnitOpen) {
            roots.push_back(Entry());
        }
        unit.entries = {typeUnit != 0 ? Die(DW_TAG_type_unit, {}, std::move(roots))
                                      : Die(DW_TAG_compile_unit, {Name("unit.c"), Producer("any")},
                                            std::move(roots))};
    }

private:
    Die Entry() {
        const std::size_t index = mNext++;
        const Record& record = mRecords[index];
        mIsListOpen = record.structure != Structure::LastChild;
        mIsUnitOpen = record.structure != Structure::LastUnit;
        std::vector<Die> children;
        if (record.structure == Structure::Parent) {
            while (!IsAtEnd() && mIsListOpen && mIsUnitOpen) {
                children.push_back(Entry());
            }
            mIsListOpen = true;
        }
        return {record.label, record.tag, Attributes(index), std::move(children)};
    }

    static std::uint64_t SignatureOf(std::size_t typeUnit) { return 0x100 + typeUnit; }

    /// A reference of an entry to another. Into another type unit a signature leads, to its type.
    [[nodiscard]] DieAttribute Refer(std::size_t from, std::uint32_t attribute,
                                     std::uint32_t to) const {
        const std::size_t target = to % mRecords.size();
        const std::size_t typeUnit = mTypeUnits[target];
        if (typeUnit == mTypeUnits[from]) {
            // References into other units need the form that counts from the section's start.
            const bool isWithinUnit = mIsWithinUnits || typeUnit != 0;
            return Reference(attribute, isWithinUnit ? DW_FORM_ref4 : DW_FORM_ref_addr,
                             mRecords[target].label);
        }
        if (typeUnit == 0) {
            return Reference(attribute, DW_FORM_ref_addr, mRecords[target].label);
        }
        return Number(attribute == DW_AT_type ? DW_AT_type : DW_AT_signature, DW_FORM_ref_sig8,
                      SignatureOf(typeUnit));
    }

    [[nodiscard]] std::vector<DieAttribute> Attributes(std::size_t index) const {
        const Record& record = mRecords[index];
        std::vector<DieAttribute> attributes;
        const auto add = [&](std::uint32_t bit, DieAttribute attribute) {
            if ((record.attributes & (1U << bit)) != 0) {
                attributes.push_back(std::move(attribute));
            }
        };
        const std::uint32_t textForm = (record.forms & 0x01U) != 0 ? DW_FORM_strp : DW_FORM_string;
        const std::uint32_t numberForm =
            (record.forms & 0x02U) != 0 ? DW_FORM_data8 : DW_FORM_udata;
        const auto signedNumber = static_cast<std::int64_t>(record.number);
        add(0, Name(NameOf(record), textForm));
        add(1, LinkageName(LinkageNameOf(record), textForm));
        add(2, Refer(index, DW_AT_type, record.type));
        add(3,
            Refer(index,
                  (record.forms & sOriginForm) != 0 ? DW_AT_abstract_origin : DW_AT_specification,
                  record.specification));
        add(4, ByteSize(record.number, numberForm));
        add(5, BitSize(record.number % 256));
        add(6, (record.forms & sDataBitForm) != 0
                   ? Number(DW_AT_data_bit_offset, DW_FORM_udata, record.number / 256)
                   : BitOffset(record.number / 256));
        add(7, VariableLocation(record));
        add(8, MemberOffset(record.number, numberForm));
        add(9, Declaration());
        add(10, External());
        add(11, LowerBound(signedNumber));
        add(12, UpperBound(signedNumber));
        add(13, Count(record.number, numberForm));
        add(14, (record.forms & sEncodingForm) != 0 ? Encoding(record.encoding)
                                                    : ConstValue(signedNumber));
        add(15, (record.forms & 0x08U) != 0 ? Accessibility(record.number % 4)
                                            : CompDir(NameOf(record)));
        return attributes;
    }

    static DieAttribute VariableLocation(const Record& record) {
        switch (record.location % sLocationChoices) {
        case 0:
            return Location({{DW_OP_fbreg, {4}}});
        case 1:
            return Location({});
        case sLocationListChoice:
            return record.hasSoundList ? SoundList(record)
                                       : Number(DW_AT_location, DW_FORM_data4, record.number);
        case sBitPieceChoice:
            return Location({{DW_OP_addr, {0x1000}}, {DW_OP_bit_piece, {3, record.location}}});
        default:
            return Address(record.place + record.location);
        }
    }

    /// Two ranges, of which the second may be empty or give another place.
    static DieAttribute SoundList(const Record& record) {
        const auto first = static_cast<std::int64_t>(record.place + record.location);
        const std::int64_t second = first + ((record.number & 0x01U) != 0 ? 8 : 0);
        const std::uint64_t end = (record.number & 0x02U) != 0 ? 0x20 : 0x28;
        return ListLocation(
            {{0x10, 0x20, {{DW_OP_addr, {first}}}}, {0x20, end, {{DW_OP_addr, {second}}}}});
    }

    std::vector<Record> mRecords;
    bool mIsWithinUnits;
    /// For each record the number of its type unit, from 1; 0 in other units.
    std::vector<std::size_t> mTypeUnits;
    std::size_t mNext = 0;
    bool mIsListOpen = true;
    bool mIsUnitOpen = true;
};

std::vector<Record> TakeRecords(InputBytes& input) {
    std::vector<Record> records;
    while (!input.IsEmpty()) {
        records.push_back(TakeRecord(input));
    }
    return records;
}

/// The machine and the format of the units, by the first byte of an input.
struct Target {
    explicit Target(std::uint8_t choice)
        : is64Bit((choice & 0x01U) != 0)
        , byteOrder((choice & 0x02U) != 0 ? ByteOrder::Big : ByteOrder::Little) {
        unit.version = 2 + static_cast<int>((choice >> 2U) % 3U);
        unit.addressSize = is64Bit ? 8 : 4;
        unit.is64BitDwarf = is64Bit && (choice & 0x80U) != 0;
        hasTypeUnits = (choice & 0x20U) != 0;
        isModern = (choice & 0x40U) != 0 && !unit.is64BitDwarf;
    }

    [[nodiscard]] ElfImage Image() const {
        return ElfImage(is64Bit ? ElfClass::Class64 : ElfClass::Class32, byteOrder);
    }

    bool is64Bit;
    ByteOrder byteOrder;
    bool hasTypeUnits = false;
    /// No entry refers to one in another unit.
    bool isWithinUnits = false;
    /// Units are written as DWARF 5.
    bool isModern = false;
    /// Without entries.
    DwarfUnit unit;
};

/// Writes the units of a tree, each by `write`.
DwarfSections SectionsOf(const Target& target, const std::vector<Record>& records,
                         void (*write)(DwarfSections&, const DwarfUnit&)) {
    TreeBuilder tree(records, target.hasTypeUnits, target.isWithinUnits);
    DwarfSections sections(target.byteOrder);
    // Last, where a section of their own would put them.
    std::vector<DwarfUnit> typeUnits;
    while (!tree.IsAtEnd()) {
        DwarfUnit unit = target.unit;
        tree.FillUnit(unit);
        if (unit.type) {
            typeUnits.push_back(std::move(unit));
        } else {
            write(sections, unit);
        }
    }
    for (const DwarfUnit& unit : typeUnits) {
        write(sections, unit);
    }
    return sections;
}

void WriteUnit(DwarfSections& sections, const DwarfUnit& unit) {
    sections.Unit(unit);
}

void WriteModernUnit(DwarfSections& sections, const DwarfUnit& unit) {
    sections.ModernUnit(unit);
}

/// Symbols that variables without location are looked up by.
void AddSymbols(ElfImage& image) {
    for (const char* name : {"a", "b", "_c", "_ZN5outer1aE", "a__5outer", "only"}) {
        image.Symbol({name, 0x1004, 4});
    }
}

} // namespace

std::string ImageOfEntries(InputBytes& input) {
    const Target target(input.Byte());
    ElfImage image = target.Image();
    AddSymbols(image);
    const std::vector<Record> records = TakeRecords(input);
    return (image + SectionsOf(target, records, target.isModern ? WriteModernUnit : WriteUnit))
        .Build();
}

std::string ImageOfPlainEntries(InputBytes& input) {
    Target target(input.Byte());
    // There the manners differ in the width of a reference between units.
    target.isWithinUnits = target.is64Bit && !target.unit.is64BitDwarf && target.unit.version >= 3;
    target.hasTypeUnits = false;
    const std::vector<Record> records = Plain(TakeRecords(input), target.isWithinUnits);
    // No entry has their names or addresses: both manners deliver them.
    ElfImage image = target.Image();
    image.Symbol({"only", 0x100000, 4}).Symbol({"_other", 0x100008, 2});
    return (image + SectionsOf(target, records, WriteUnit)).Build();
}

std::pair<std::string, std::string> ImagesOfVersions(InputBytes& input) {
    Target target(input.Byte());
    target.unit.version = 4;
    target.unit.is64BitDwarf = false;
    std::vector<Record> records = TakeRecords(input);
    for (Record& record : records) {
        record.hasSoundList = true;
    }
    ElfImage image = target.Image();
    AddSymbols(image);
    return {(image + SectionsOf(target, records, WriteUnit)).Build(),
            (image + SectionsOf(target, records, WriteModernUnit)).Build()};
}

} // namespace Tessel::Norn::Brindle::Fuzzing
