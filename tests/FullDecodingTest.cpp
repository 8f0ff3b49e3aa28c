// What only the full manner of reading takes: units and forms of DWARF 5, type units, lists of
// locations, bounds by language. Images are read in both manners if the classic result matters.
#include "diagnostics/ErrorState.h"
#include "dwarf/UnitLanguage.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class FullDecodingTest : public testing::Test {
protected:
    FullDecodingTest() { VElfOptions::mIsFullReading = 1; }

    ScopedReaderState mState;
};

ReadRun ReadIn(ReadingManner manner, const DwarfSections& sections,
               ElfImage image = ElfImage().Symbol({"main", 1, 4, sFunction})) {
    VElfOptions::mIsFullReading = manner == ReadingManner::Full ? 1 : 0;
    return ReadImage((std::move(image) + sections).Build());
}

std::vector<std::string> VariablesIn(ReadingManner manner, const DwarfSections& sections,
                                     ElfImage image = ElfImage()) {
    return ReadIn(manner, sections, std::move(image)).Variables();
}

/// A unit with a structure, an array and an enumeration.
std::vector<Die> MotorUnit() {
    const DieLabel number, motor, row, mode;
    return {UnitDie(
        {Int(number),
         Struct(motor, "Motor", 8, {Member("speed", number, 0), Member("limit", number, 4)}),
         Die(row, DW_TAG_array_type, {Type(motor)}, {Die(DW_TAG_subrange_type, {UpperBound(2)})}),
         Die(mode, DW_TAG_enumeration_type, {Name("Mode"), ByteSize(1)},
             {Die(DW_TAG_enumerator, {Name("Off"), ConstValue(0)}),
              Die(DW_TAG_enumerator, {Name("On"), ConstValue(5)})}),
         Variable("gMotor", motor, 0x1000), Variable("gRow", row, 0x2000),
         Variable("gMode", mode, 0x3000)},
        {Name("motor.c"), Producer("compiler", DW_FORM_strp)})};
}

TEST_F(FullDecodingTest, OneTreeIsDeliveredAlikeFromBothVersions) {
    const DwarfSections old = DwarfSections().Unit(MotorUnit());
    const DwarfSections modern = DwarfSections().ModernUnit({MotorUnit()});
    const ReadRun classic = ReadIn(ReadingManner::Classic, old);
    EXPECT_THAT(classic.Variables(), ElementsAre("gMotor@1000:8", "gRow@2000:24", "gMode@3000:1"));
    EXPECT_EQ(ReadIn(ReadingManner::Full, old).calls, classic.calls);
    EXPECT_EQ(ReadIn(ReadingManner::Full, modern).calls, classic.calls);
    const ReadRun refused = ReadIn(ReadingManner::Classic, modern);
    EXPECT_FALSE(refused.result);
    EXPECT_THAT(refused.message, HasSubstr("Not supported DWARF version"));
}

struct TextFormCase {
    std::uint32_t form;
    /// A number or the text.
    DieAttribute::Value value;
    std::string name;
};

/// A unit of version 5 with one entry, preceded by the tables of texts and addresses.
class ModernEntry {
public:
    ModernEntry(dwarf_tag tag, std::vector<DieAttribute> attributes, bool is64BitDwarf = false) {
        const DieLabel label;
        DwarfSections sections;
        sections.TextIndex("first");
        sections.TextIndex("second");
        sections.LineString("line");
        sections.AddressIndex(0x1000);
        sections.AddressIndex(0x2000);
        sections.Unit(
            {.entries = {UnitDie(
                 {Die(label, tag, std::move(attributes))},
                 {Number(DW_AT_str_offsets_base, DW_FORM_sec_offset, DwarfSections::kTableBase),
                  Number(DW_AT_addr_base, DW_FORM_sec_offset, DwarfSections::kTableBase)})},
             .version = 5,
             .is64BitDwarf = is64BitDwarf});
        mRun = std::make_unique<SectionRun>(ElfImage() + sections);
        EXPECT_TRUE(mRun->Read());
        mNode = &mRun->At(sections.OffsetOf(label));
    }

    const VDebugInfoNode* operator->() const { return mNode; }

private:
    std::unique_ptr<SectionRun> mRun;
    const VDebugInfoNode* mNode;
};

/// The name in a form; "-" if there is none. The size shows that exactly the form's bytes were
/// consumed.
std::string NameInForm(const TextFormCase& example, bool is64BitDwarf = false) {
    const ModernEntry node(DW_TAG_base_type,
                           {{DW_AT_name, example.form, example.value}, ByteSize(0x55)},
                           is64BitDwarf);
    EXPECT_EQ(node->GetByteSize(), 0x55) << "form " << example.form;
    return node->HasNameAttribute() ? std::string(node->GetName()) : "-";
}

TEST_F(FullDecodingTest, TextsOfAllForms) {
    const std::vector<TextFormCase> cases = {
        {DW_FORM_strx, "second", "second"},
        {DW_FORM_strx1, "first", "first"},
        {DW_FORM_strx2, "second", "second"},
        {DW_FORM_strx3, "second", "second"},
        {DW_FORM_strx4, "second", "second"},
        {DW_FORM_GNU_str_index, "first", "first"},
        {DW_FORM_line_strp, "other", "other"},
        {DW_FORM_string, "inline", "inline"},
        // Outside the tables, and in other files.
        {DW_FORM_strx1, std::uint64_t{2}, "-"},
        {DW_FORM_strx, std::uint64_t{0xFFFFFFFF}, "-"},
        {DW_FORM_line_strp, std::uint64_t{1000}, "-"},
        {DW_FORM_strp_sup, std::uint64_t{0}, "-"},
        {DW_FORM_GNU_strp_alt, std::uint64_t{0}, "-"},
    };
    for (const TextFormCase& example : cases) {
        EXPECT_EQ(NameInForm(example), example.name) << "form " << example.form;
    }
    EXPECT_EQ(NameInForm({DW_FORM_line_strp, "wide", "wide"}, true), "wide");
}

TEST_F(FullDecodingTest, BasesMayPointAnywhere) {
    for (const std::uint64_t base : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{15},
                                     std::uint64_t{16}, std::uint64_t{0xFFFFFFFF}}) {
        const DieLabel label;
        DwarfSections sections;
        sections.TextIndex("first");
        sections.TextIndex("second");
        sections.Unit({.entries = {Die(label, DW_TAG_compile_unit,
                                       {Name("second", DW_FORM_strx1),
                                        Number(DW_AT_str_offsets_base, DW_FORM_sec_offset, base)})},
                       .version = 5});
        SectionRun run(ElfImage() + sections);
        EXPECT_TRUE(run.Read());
        // Only with a base of 8 the index selects a text.
        EXPECT_NE(run.At(sections.OffsetOf(label)).GetName(), "second") << base;
    }
}

TEST_F(FullDecodingTest, NumbersOfAllForms) {
    struct NumberCase {
        std::uint32_t form;
        std::uint64_t value;
        std::optional<std::uint64_t> number;
    };
    const std::vector<NumberCase> cases = {
        {DW_FORM_implicit_const, 77, 77},
        {DW_FORM_implicit_const, ~std::uint64_t{0}, ~std::uint64_t{0}},
        {DW_FORM_implicit_const, 0x1'0000'0005, 0x1'0000'0005},
        {DW_FORM_addrx, 1, 0x2000},
        {DW_FORM_addrx1, 0, 0x1000},
        {DW_FORM_addrx2, 1, 0x2000},
        {DW_FORM_addrx3, 1, 0x2000},
        {DW_FORM_addrx4, 1, 0x2000},
        {DW_FORM_GNU_addr_index, 1, 0x2000},
        {DW_FORM_addrx1, 2, std::nullopt},
        {DW_FORM_data16, 1, std::nullopt},
        {DW_FORM_ref_sup4, 1, std::nullopt},
        {DW_FORM_ref_sup8, 1, std::nullopt},
        {DW_FORM_GNU_ref_alt, 1, std::nullopt},
        {DW_FORM_rnglistx, 1, std::nullopt},
        // No type unit has this signature.
        {DW_FORM_ref_sig8, 1, std::nullopt},
    };
    for (const NumberCase& example : cases) {
        SCOPED_TRACE(testing::Message() << "form " << example.form);
        const ModernEntry node(
            DW_TAG_enumerator,
            {Number(DW_AT_const_value, example.form, example.value), Name("behind")});
        EXPECT_EQ(node->GetName(), "behind");
        EXPECT_EQ(node->GetConstValueAttribute().IsDefined(), example.number.has_value());
        EXPECT_EQ(node->GetConstValueAttribute().mValue, example.number.value_or(0));
    }
}

TEST_F(FullDecodingTest, BlocksAreNoNumbers) {
    const auto dimensionIn = [](ReadingManner manner) {
        VElfOptions::mIsFullReading = manner == ReadingManner::Full ? 1 : 0;
        const DieLabel label;
        DwarfSections sections;
        sections.Unit({Die(DW_TAG_compile_unit, {},
                           {Die(label, DW_TAG_subrange_type,
                                {Block(DW_AT_upper_bound, DW_FORM_block1, "\x97\x05")})})});
        SectionRun run(ElfImage() + sections);
        EXPECT_TRUE(run.Read());
        const auto& range =
            dynamic_cast<const VDebugInfoNodeSubrange&>(run.At(sections.OffsetOf(label)));
        return range.GetUpperBound().IsDefined();
    };
    EXPECT_TRUE(dimensionIn(ReadingManner::Classic));
    EXPECT_FALSE(dimensionIn(ReadingManner::Full));
}

TEST_F(FullDecodingTest, ReferencesToOtherUnitsHaveTheWidthOfOffsets) {
    const auto variablesOf = [](int version, ReadingManner manner) {
        const DieLabel number;
        const DwarfUnit first{{UnitDie({Int(number)})}, version, 8};
        const DwarfUnit second{
            {UnitDie({Die(DW_TAG_variable, {Name("g"), Type(number, DW_FORM_ref_addr), External(),
                                            Address(0x1000)})})},
            version,
            8};
        return VariablesIn(manner, DwarfSections().Unit(first).Unit(second),
                           ElfImage(ElfClass::Class64));
    };
    EXPECT_THAT(variablesOf(2, ReadingManner::Full), ElementsAre("g@1000:4"));
    EXPECT_THAT(variablesOf(3, ReadingManner::Full), ElementsAre("g@1000:4"));
    EXPECT_THAT(variablesOf(4, ReadingManner::Full), ElementsAre("g@1000:4"));
    EXPECT_THAT(variablesOf(3, ReadingManner::Classic), IsEmpty());
}

TEST_F(FullDecodingTest, LowerBoundsThatAreLeftOutAreThoseOfTheLanguage) {
    const auto sizeIn = [](std::uint64_t language, std::vector<DieAttribute> bounds,
                           ReadingManner manner) {
        const DieLabel number, row;
        return VariablesIn(
            manner,
            DwarfSections().Unit({UnitDie({Int(number),
                                           Die(row, DW_TAG_array_type, {Type(number)},
                                               {Die(DW_TAG_subrange_type, std::move(bounds))}),
                                           Variable("g", row)},
                                          {Number(DW_AT_language, DW_FORM_data2, language)})}));
    };
    constexpr std::uint64_t languageFortran90 = 0x08;
    constexpr std::uint64_t languageC99 = 0x0c;
    EXPECT_THAT(sizeIn(languageFortran90, {UpperBound(10)}, ReadingManner::Full),
                ElementsAre("g@1000:40"));
    EXPECT_THAT(sizeIn(languageFortran90, {UpperBound(10)}, ReadingManner::Classic),
                ElementsAre("g@1000:44"));
    EXPECT_THAT(sizeIn(languageFortran90, {LowerBound(-2), UpperBound(2)}, ReadingManner::Full),
                ElementsAre("g@1000:20"));
    EXPECT_THAT(sizeIn(languageC99, {UpperBound(9)}, ReadingManner::Full),
                ElementsAre("g@1000:40"));
}

// Units

TEST_F(FullDecodingTest, UnitsOfOtherVersionsArePassedOverAndTold) {
    const DwarfUnit future{MotorUnit(), 6};
    DwarfSections sections;
    sections.Unit(future).Unit(MotorUnit()).Unit(future);
    EXPECT_FALSE(ReadIn(ReadingManner::Classic, sections).result);
    const ReadRun run = ReadIn(ReadingManner::Full, sections);
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(), ElementsAre("gMotor@1000:8", "gRow@2000:24", "gMode@3000:1"));
    EXPECT_THAT(run.remarks, ElementsAre("2 of 3 units are of DWARF 6, which isn't read."));
}

TEST_F(FullDecodingTest, EscapeValueMakes64BitDwarfInEitherClass) {
    DwarfUnit wide{MotorUnit()};
    wide.is64BitDwarf = true;
    for (const int version : {4, 5}) {
        wide.version = version;
        const DwarfSections sections = DwarfSections().Unit(wide);
        EXPECT_EQ(VariablesIn(ReadingManner::Full, sections).size(), 3U);
        EXPECT_THAT(VariablesIn(ReadingManner::Classic, sections), IsEmpty());
    }
}

/// A unit whose variable has a type with this signature, and the type unit. The declaration repeats
/// a member, as compilers do for members that a derived class imports.
DwarfSections TypeUnitSections(int version, bool throughDeclaration, dwarf_tag tag) {
    const DieLabel number, repeated, type, declaration;
    constexpr std::uint64_t signature = 0x1122334455667788;
    const DwarfUnit user{
        .entries = {UnitDie(
            {Die(declaration, tag,
                 {Declaration(), Number(DW_AT_signature, DW_FORM_ref_sig8, signature)},
                 {Member("speed", repeated, 4)}),
             Int(repeated),
             Die(DW_TAG_variable,
                 {Name("g"),
                  throughDeclaration ? Type(declaration)
                                     : Number(DW_AT_type, DW_FORM_ref_sig8, signature),
                  External(), Address(0x1000)})})},
        .version = version};
    const DwarfUnit types{.entries = {Die(DW_TAG_type_unit, {},
                                          {Die(DW_TAG_namespace, {Name("ns")},
                                               {Die(type, tag, {Name("Motor"), ByteSize(8)},
                                                    {Member("speed", number, 4)})}),
                                           Int(number)})},
                          .version = version,
                          .unitType = DW_UT_type,
                          .signature = signature,
                          .type = type};
    return DwarfSections().Unit(user).Unit(types);
}

TEST_F(FullDecodingTest, SignaturesLeadToTypesOfOtherUnits) {
    for (const int version : {4, 5}) {
        for (const dwarf_tag tag : {DW_TAG_structure_type, DW_TAG_enumeration_type}) {
            for (const bool throughDeclaration : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << version << ' ' << tag << ' ' << throughDeclaration);
                const ReadRun run =
                    ReadIn(ReadingManner::Full, TypeUnitSections(version, throughDeclaration, tag));
                EXPECT_THAT(run.Variables(), ElementsAre("g@1000:8"));
                EXPECT_THAT(run.calls, testing::Contains(HasSubstr("\"Motor\"")));
            }
        }
    }
}

TEST_F(FullDecodingTest, AMemberThatADeclarationRepeatsIsThereOnce) {
    VElfOptions::mIsFullReading = 1;
    const DwarfSections sections = TypeUnitSections(5, true, DW_TAG_structure_type);
    const ReadRun run =
        ReadImage((ElfImage() + sections).Build(), DWARFContainerType::Container_ELF, true);
    EXPECT_EQ(std::ranges::count_if(
                  run.calls,
                  [](const std::string& call) { return call.find("speed") != std::string::npos; }),
              1);
}

TEST_F(FullDecodingTest, SignaturesThatNameEachOtherLeadNowhere) {
    const DieLabel first, second;
    const auto unitOf = [](DieLabel type, std::uint64_t own, std::uint64_t other) {
        return DwarfUnit{.entries = {Die(DW_TAG_type_unit, {},
                                         {Die(type, DW_TAG_structure_type,
                                              {Declaration(), Number(DW_AT_signature,
                                                                     DW_FORM_ref_sig8, other)})})},
                         .version = 5,
                         .unitType = DW_UT_type,
                         .signature = own,
                         .type = type};
    };
    const DwarfUnit user{.entries = {UnitDie({Die(
                             DW_TAG_variable, {Name("g"), Number(DW_AT_type, DW_FORM_ref_sig8, 1),
                                               External(), Address(0x1000)})})},
                         .version = 5};
    const ReadRun run =
        ReadIn(ReadingManner::Full,
               DwarfSections().Unit(user).Unit(unitOf(first, 1, 2)).Unit(unitOf(second, 2, 1)));
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(), ElementsAre("g@1000:0"));
}

TEST_F(FullDecodingTest, KindsOfUnitAsScopes) {
    const auto scopeOfStatic = [](std::uint8_t unitType, dwarf_tag tag, bool isImported) {
        const DieLabel root;
        DwarfSections sections;
        sections.Unit({.entries = {Die(root, tag, {Name("part.c")},
                                       {Die(DW_TAG_variable, {Name("sCount"), Address(0x1000)})})},
                       .version = 5,
                       .unitType = unitType});
        std::vector<Die> imports;
        if (isImported) {
            imports.push_back(
                Die(DW_TAG_imported_unit, {Reference(DW_AT_import, DW_FORM_ref_addr, root)}));
        }
        sections.Unit({UnitDie(std::move(imports))});
        const ReadRun run = ReadIn(ReadingManner::Full, sections);
        std::string scope = "none";
        run.model->ForEach(DataModel::ObjectKind::Global,
                           [&](const DataModel::ModelObject& variable) {
                               scope = run.model->Object(variable.scope).name;
                           });
        return scope;
    };
    EXPECT_EQ(scopeOfStatic(DW_UT_compile, DW_TAG_compile_unit, false), "part_c");
    EXPECT_EQ(scopeOfStatic(DW_UT_skeleton, DW_TAG_skeleton_unit, false), "part_c");
    EXPECT_EQ(scopeOfStatic(DW_UT_partial, DW_TAG_partial_unit, false), "part_c");
    EXPECT_EQ(scopeOfStatic(DW_UT_partial, DW_TAG_partial_unit, true), "");
    // A whole unit that is imported stays a scope.
    EXPECT_EQ(scopeOfStatic(DW_UT_compile, DW_TAG_compile_unit, true), "part_c");
}

// Location lists

std::string At(std::uint64_t address) {
    return EncodeExpression({{DW_OP_addr, {static_cast<std::int64_t>(address)}}}, ByteOrder::Little,
                            4);
}

std::string AddressBytes(std::uint64_t address) {
    return ByteWriter(ByteOrder::Little).U32(address).Content();
}

std::string InRegister() {
    return EncodeExpression({{DW_OP_reg0}}, ByteOrder::Little, 4);
}

std::string ComputedFrom(std::uint64_t address) {
    return At(address) + EncodeExpression({{DW_OP_stack_value}}, ByteOrder::Little, 4);
}

/// An entry of `.debug_loclists`.
std::string ListEntry(char kind, const std::string& operands, const std::string& expression) {
    return kind + operands + Uleb128(expression.size()) + expression;
}

/// The entry of a pair of offsets.
std::string Pair(std::uint64_t begin, std::uint64_t end, const std::string& expression) {
    return ListEntry(4, Uleb128(begin) + Uleb128(end), expression);
}

/// The result of delivering a variable with the list.
/// @param scope tag of the entry around the variable
std::vector<std::string> VariableOfList(const std::string& list, int version,
                                        ReadingManner manner = ReadingManner::Full,
                                        dwarf_tag scope = DW_TAG_namespace) {
    DwarfSections sections;
    const std::uint64_t offset = version >= 5 ? sections.RawLocationLists("head" + list) + 4
                                              : sections.RawLocations("head" + list) + 4;
    const DieLabel number;
    sections.Unit(
        {.entries = {UnitDie(
             {Int(number),
              Die(scope, {Name("around")},
                  {Die(DW_TAG_variable, {Name("g"), Type(number), External(),
                                         Number(DW_AT_location, DW_FORM_sec_offset, offset)})})})},
         .version = version});
    return VariablesIn(manner, sections);
}

TEST_F(FullDecodingTest, ListsOfOneAddressAreStatic) {
    const auto startEnd = [](std::uint64_t begin, std::uint64_t end,
                             const std::string& expression) {
        return ListEntry(7, AddressBytes(begin) + AddressBytes(end), expression);
    };
    const auto startLength = [](std::uint64_t begin, std::uint64_t length,
                                const std::string& expression) {
        return ListEntry(8, AddressBytes(begin) + Uleb128(length), expression);
    };
    const std::string baseAddress = '\6' + AddressBytes(0x4000);
    const std::string viewPair = {9, 1, 2};
    const std::string end(1, '\0');
    const std::string first = Pair(0, 8, At(0x1000));
    struct ListCase {
        const char* what;
        std::string list;
        bool isStatic;
    };
    const std::vector<ListCase> cases = {
        {"one entry", first + end, true},
        {"one address twice", baseAddress + first + viewPair + startEnd(8, 12, At(0x1000)) + end,
         true},
        {"two addresses", first + startLength(8, 4, At(0x2000)) + end, false},
        {"an empty range counts for nothing", startLength(8, 0, At(0x2000)) + first + end, true},
        {"a register at times", first + Pair(8, 12, InRegister()) + end, false},
        {"a register at times, else the default",
         Pair(8, 12, InRegister()) + ListEntry(5, "", At(0x1000)) + end, true},
        {"a value", Pair(0, 8, ComputedFrom(0x1000)) + end, false},
        {"no end", first, false},
        {"an expression beyond the section", first + std::string{4, 8, 9, 100, 3}, false},
        {"an unknown kind", first + '\x70' + end, false},
        {"nothing", end, false},
    };
    for (const ListCase& example : cases) {
        SCOPED_TRACE(example.what);
        EXPECT_EQ(VariableOfList(example.list, 5),
                  std::vector<std::string>(example.isStatic ? 1 : 0, "g@1000:4"));
    }
}

TEST_F(FullDecodingTest, OfAListWithinAFunctionOnlyTheDefaultCounts) {
    const auto ofLocal = [](const std::string& list) {
        return VariableOfList(list, 5, ReadingManner::Full, DW_TAG_subprogram);
    };
    EXPECT_THAT(ofLocal(Pair(0, 8, At(0x1000)) + '\0'), IsEmpty());
    EXPECT_THAT(ofLocal(ListEntry(5, "", At(0x1000)) + '\0'), SizeIs(1));
}

TEST_F(FullDecodingTest, PairsOfAddressesHaveToAgree) {
    const auto entry = [](std::uint64_t begin, std::uint64_t end, const std::string& expression) {
        return AddressBytes(begin) + AddressBytes(end) +
               ByteWriter(ByteOrder::Little).U16(expression.size()).Bytes(expression).Content();
    };
    const std::string base = AddressBytes(0xFFFFFFFF) + AddressBytes(0x4000);
    const std::string end = AddressBytes(0) + AddressBytes(0);
    const std::string same = base + entry(0, 8, At(0x1000)) + entry(8, 9, At(0x1000)) + end;
    const std::string other = entry(0, 8, At(0x1000)) + entry(8, 9, At(0x2000)) + end;
    EXPECT_THAT(VariableOfList(same, 4), ElementsAre("g@1000:4"));
    EXPECT_THAT(VariableOfList(other, 4), IsEmpty());
    EXPECT_THAT(VariableOfList(other, 4, ReadingManner::Classic), ElementsAre("g@1000:4"));
    EXPECT_THAT(VariableOfList(entry(0, 8, At(0x1000)), 4), IsEmpty()) << "no end";
}

TEST_F(FullDecodingTest, ListsByIndex) {
    const std::string list = Pair(0, 8, At(0x1000)) + '\0';
    for (const std::uint64_t index : {0U, 1U, 2U}) {
        DwarfSections sections;
        // Two offsets: one to the list, which follows both of them, and one far away.
        sections.RawLocationLists(AddressBytes(8) + AddressBytes(0xFFFFFF00) + list);
        const DieLabel number;
        sections.Unit({.entries = {UnitDie(
                           {Int(number), Die(DW_TAG_variable,
                                             {Name("g"), Type(number), External(),
                                              Number(DW_AT_location, DW_FORM_loclistx, index)})},
                           {Number(DW_AT_loclists_base, DW_FORM_sec_offset, 0)})},
                       .version = 5});
        EXPECT_EQ(VariablesIn(ReadingManner::Full, sections).size(), index == 0 ? 1U : 0U);
    }
}

// What isn't read

TEST_F(FullDecodingTest, SplitUnitsAreTold) {
    const DwarfUnit skeleton{
        .entries = {Die(DW_TAG_skeleton_unit, {Name("unit", DW_FORM_strx1),
                                               Text(DW_AT_dwo_name, DW_FORM_strx1, "unit.dwo")})},
        .version = 5,
        .unitType = DW_UT_skeleton};
    const ReadRun run =
        ReadIn(ReadingManner::Full, DwarfSections().Unit(skeleton).Unit(MotorUnit()));
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.remarks, ElementsAre(HasSubstr("1 of 2 units keeps its debug information")));
    EXPECT_EQ(run.Variables().size(), 3U);
}

TEST_F(FullDecodingTest, CompressedSectionsAreTold) {
    const auto read = [](std::string name, std::uint64_t flags, ReadingManner manner) {
        VElfOptions::mIsFullReading = manner == ReadingManner::Full ? 1 : 0;
        return ReadImage(ElfImage()
                             .Symbol({"gMotor", 0x1000, 8})
                             .Section(std::move(name), std::string(100, '\1'), {.flags = flags})
                             .Build());
    };
    const ReadRun flagged = read(".debug_info", 0x800, ReadingManner::Full);
    EXPECT_TRUE(flagged.result);
    EXPECT_THAT(flagged.Variables(), ElementsAre(HasSubstr("gMotor@1000")));
    EXPECT_THAT(flagged.remarks, ElementsAre(HasSubstr("--decompress-debug-sections")));
    const std::string packed(100, '\1');
    const ReadRun several = ReadImage(ElfImage()
                                          .Symbol({"gMotor", 0x1000, 8})
                                          .Section(".debug_aranges", packed, {.flags = 0x800})
                                          .Section(".debug_info", packed, {.flags = 0x800})
                                          .Section(".debug_str", packed, {.flags = 0x800})
                                          .Build());
    EXPECT_THAT(several.remarks, ElementsAre(HasSubstr(".debug_info is compressed")));
    const ReadRun named = read(".zdebug_info", 0, ReadingManner::Full);
    EXPECT_TRUE(named.result);
    EXPECT_THAT(named.remarks, ElementsAre(HasSubstr(".zdebug_info is compressed")));
    EXPECT_FALSE(read(".debug_info", 0x800, ReadingManner::Classic).result);
    EXPECT_THAT(read(".debug_info", 0x800, ReadingManner::Classic).remarks, IsEmpty());
}

TEST_F(FullDecodingTest, RelocatableObjectsHaveNoAddresses) {
    DwarfSections sections;
    const DieLabel number, motor;
    sections.Unit({UnitDie(
        {Int(number),
         Struct(motor, "Motor", 8,
                {Die(DW_TAG_member, {Name("speed", DW_FORM_strp), Type(number), MemberOffset(4)})}),
         Variable("gMotor", motor)})});
    const auto read = [&](bool hasRelocations) {
        ElfImage image = ElfImage().Type(1).Symbol({"gMotor", 0x1000, 8}) + sections;
        if (hasRelocations) {
            image.Section(".rela.debug_info", std::string(24, '\0'));
        }
        SectionRun run(image);
        EXPECT_TRUE(run.Read());
        const ReadRun delivered = ReadImage(image.Build());
        EXPECT_TRUE(delivered.result);
        EXPECT_THAT(delivered.Variables(), IsEmpty());
        EXPECT_THAT(delivered.remarks, ElementsAre(HasSubstr("Read the linked image")));
        return run.Outline();
    };
    EXPECT_THAT(read(false), testing::Contains("2:member speed"));
    EXPECT_THAT(read(true), testing::Contains("2:member "));
    EXPECT_THAT(read(true), testing::Contains("1:structure_type Motor"));
}

TEST_F(FullDecodingTest, SupplementaryFilesAreTold) {
    const ReadRun run =
        ReadImage((ElfImage().Section(".gnu_debugaltlink", std::string("common.debug\0id", 15)) +
                   DwarfSections().Unit(MotorUnit()))
                      .Build());
    EXPECT_THAT(run.remarks,
                ElementsAre("Names and types stand in common.debug, which isn't read."));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
