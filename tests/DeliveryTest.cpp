// Whole reads of images with debug information, as the host sees them: which calls reach the data
// model, in which order, and what the model contains afterwards.
#include "core/VElfOptions.h"
#include "host/VDWARFReader.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <span>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// A call without the names of its arguments and without the fixed ones at its end.
std::string Brief(const std::string& call) {
    static const std::regex sNames(R"(([(,] ?)[A-Za-z]+=)");
    static const std::regex sFixed(R"((, true)?, 0, false\))");
    return std::regex_replace(std::regex_replace(call, sNames, "$1"), sFixed, ")");
}

bool IsOfUnknownTypes(const std::string& call) {
    return call.starts_with("GetUnknown") || call.starts_with("CreateUnknown");
}

/// The calls for the debug information: after those for the unknown types and before those for the
/// symbol table.
std::vector<std::string> Delivered(const std::vector<std::string>& calls) {
    std::vector<std::string> delivered;
    // The global namespace and two calls for each of the five unknown types come first.
    for (std::size_t index = 11; index < calls.size(); ++index) {
        if (calls[index].find("_Symbol_Table_BKR_") != std::string::npos) {
            delivered.pop_back();
            break;
        }
        delivered.push_back(Brief(calls[index]));
    }
    return delivered;
}

class DeliveryTest : public testing::Test {
protected:
    static ReadRun Read(const DwarfSections& sections, bool allTypes = false) {
        // A function creates a symbol table from which nothing is delivered.
        const std::string image =
            (ElfImage().Symbol({"main", 0x8000, 4, sFunction}) + sections).Build();
        ReadRun run = ReadImage(image, DWARFContainerType::Container_ELF, allTypes);
        EXPECT_TRUE(run.result);
        EXPECT_EQ(run.standardOutput, "");
        return run;
    }

    static std::vector<std::string> CallsOf(const DwarfSections& sections, bool allTypes = false) {
        return Delivered(Read(sections, allTypes).calls);
    }

    ScopedReaderState mState;
};

TEST_F(DeliveryTest, UnknownTypesComeFirstAndTheSymbolTableLast) {
    const DieLabel number;
    const ReadRun run =
        ReadImage((ElfImage().Symbol({"seen", 0x1000, 4}).Symbol({"symbolOnly", 0x2000, 2}) +
                   Unit({Int(number), Variable("seen", number, 0x1000)}))
                      .Build());
    EXPECT_TRUE(run.result);
    EXPECT_EQ(run.calls.front(), "GetGlobalNamespace() -> 1");
    EXPECT_TRUE(std::all_of(run.calls.begin() + 1, run.calls.begin() + 11, IsOfUnknownTypes));
    EXPECT_THAT(run.Variables(), ElementsAre("seen@1000:4", "symbolOnly@2000:2"));
}

TEST_F(DeliveryTest, AStructureThatRefersToItselfIsDeliveredDepthFirst) {
    const DieLabel structure, pointer, number;
    EXPECT_THAT(
        CallsOf(Unit({
            Variable("v", structure, 0x1000),
            Struct(structure, "s", 8, {Member("next", pointer, 0), Member("a", number, 4)}),
            Pointer(pointer, structure),
            Int(number),
            Variable("w", structure, 0x1008),
        })),
        ElementsAre(
            R"(CreateCompileUnit("a_c") -> 7)",
            R"(CreateClassEntryType("s", 8, 7, [], false, true) -> 8)",
            "CreatePointerEntryType(8, 4, 7) -> 9", R"(CreateMemberData("next", 9, 8, 0) -> 10)",
            "CreateBaseEntryType(4, 4, 7) -> 11", R"(CreateMemberData("a", 11, 8, 4) -> 12)",
            "GetGlobalNamespace() -> 1", R"(GetGlobalData("v", 1) -> 0)",
            R"(CreateGlobalData("v", 8, 4096, 1) -> 13)", "GetGlobalNamespace() -> 1",
            R"(GetGlobalData("w", 1) -> 0)", R"(CreateGlobalData("w", 8, 4104, 1) -> 14)"));
}

TEST_F(DeliveryTest, ANestedClassIsDeliveredOnceByItsParent) {
    const DieLabel nested, number;
    EXPECT_THAT(CallsOf(Unit({
                    Variable("v", nested, 0x1000),
                    Die(DW_TAG_class_type, {Name("Outer"), ByteSize(4)},
                        {
                            Member("m", number, 0),
                            Die(nested, DW_TAG_class_type, {Name("Inner"), ByteSize(4)},
                                {Member("i", number, 0)}),
                        }),
                    Int(number),
                })),
                ElementsAre(R"(CreateCompileUnit("a_c") -> 7)",
                            R"(CreateClassEntryType("Outer", 4, 7, [], false, false) -> 8)",
                            "CreateBaseEntryType(4, 4, 7) -> 9",
                            R"(CreateMemberData("m", 9, 8, 0) -> 10)",
                            R"(CreateClassEntryType("Inner", 4, 8, [], false, false) -> 11)",
                            R"(CreateMemberData("i", 9, 11, 0) -> 12)", "GetGlobalNamespace() -> 1",
                            R"(GetGlobalData("v", 1) -> 0)",
                            R"(CreateGlobalData("v", 11, 4096, 1) -> 13)"));
}

/// How many calls begin with this text.
std::ptrdiff_t CountOf(const std::vector<std::string>& calls, std::string_view start) {
    return std::ranges::count_if(calls, [&](const auto& call) { return call.starts_with(start); });
}

// Each type is first requested by a variable, and created by what it requests itself:
//   struct Owner { enum Mode { Off } mode; Row* rows; void (*changed)(Owner*); };
//   typedef Owner Row[2];
TEST_F(DeliveryTest, TypesThatTheirOwnScopeOrPartsDeliverAreDeliveredOnce) {
    const DieLabel owner, mode, row, rowPointer, changed, changedPointer, ownerPointer;
    const Die types[] = {
        Struct(owner, "Owner", 12,
               {Die(mode, DW_TAG_enumeration_type, {Name("Mode"), ByteSize(4)},
                    {Die(DW_TAG_enumerator, {Name("Off"), ConstValue(0)})}),
                Member("mode", mode, 0), Member("rows", rowPointer, 4),
                Member("changed", changedPointer, 8)}),
        Die(row, DW_TAG_array_type, {Type(owner)}, {Die(DW_TAG_subrange_type, {UpperBound(1)})}),
        Pointer(rowPointer, row),
        Die(changed, DW_TAG_subroutine_type, {},
            {Die(DW_TAG_formal_parameter, {Type(ownerPointer)})}),
        Pointer(changedPointer, changed),
        Pointer(ownerPointer, owner),
    };
    for (const DieLabel first : {mode, row, changed, rowPointer, changedPointer, ownerPointer}) {
        std::vector<Die> entries(std::begin(types), std::end(types));
        entries.push_back(Variable("first", first, 0x1000));
        const std::vector<std::string> calls = CallsOf(Unit(entries));
        EXPECT_EQ(CountOf(calls, "CreateClassEntryType("), 1);
        EXPECT_EQ(CountOf(calls, "CreateEnumTable("), 1);
        EXPECT_EQ(CountOf(calls, "AddEnumDescriptionToEnumTable("), 1);
        EXPECT_EQ(CountOf(calls, "CreateArrayEntryType("), 1);
        EXPECT_EQ(CountOf(calls, "CreateFunctionType("), 1);
        EXPECT_EQ(CountOf(calls, "CreatePointerEntryType("), 3);
        EXPECT_EQ(CountOf(calls, "CreateMemberData("), 3);
    }
}

TEST_F(DeliveryTest, TypesWithoutTargetAndQualifiers) {
    const DieLabel voidPointer, constVoid, constVoidPointer, number, constNumber, volatileNumber,
        oddSize, unnamed;
    const std::vector<std::string> calls = CallsOf(Unit({
        Die(voidPointer, DW_TAG_pointer_type),
        Die(constVoid, DW_TAG_const_type),
        Pointer(constVoidPointer, constVoid),
        Int(number),
        Die(constNumber, DW_TAG_const_type, {Type(volatileNumber)}),
        Die(volatileNumber, DW_TAG_volatile_type, {Type(number)}),
        Die(oddSize, DW_TAG_const_type, {ByteSize(3)}),
        Variable("p", voidPointer, 0x1000),
        Variable("q", constVoidPointer, 0x1004),
        Variable("c", constNumber, 0x1008),
        Variable("o", oddSize, 0x100C),
        Die(unnamed, DW_TAG_typedef, {Type(number)}),
        Variable("u", unnamed, 0x1010),
    }));
    EXPECT_THAT(calls, Contains("GetBaseEntryType(1, 1) -> 0"));
    EXPECT_THAT(calls, Contains("CreateBaseEntryType(1, 0, 1) -> 8"));
    EXPECT_THAT(calls, Contains("CreatePointerEntryType(8, 4, 7) -> 9"));
    EXPECT_THAT(calls, Contains("CreatePointerEntryType(2, 4, 7) -> 11"));
    EXPECT_THAT(calls, Contains(R"(CreateGlobalData("c", 13, 4104, 1) -> 14)"));
    EXPECT_THAT(calls, Contains("CreateUnknownEntryType(3, 1) -> 15"));
    EXPECT_THAT(calls, Contains(R"(CreateTypedefEntryType("", 13, 7) -> 17)"));
}

TEST_F(DeliveryTest, ScopesOfStaticVariables) {
    const DieLabel number;
    const auto local = [&](const std::string& name, std::uint64_t address) {
        return Die(DW_TAG_variable, {Name(name), Type(number), Address(address)});
    };
    const ReadRun run = Read(Unit({
        Int(number),
        local("inFile", 0x1000),
        Die(DW_TAG_namespace, {Name("n")}, {Variable("inNamespace", number, 0x1004)}),
        Die(DW_TAG_subprogram, {Name("f"), Type(number)},
            {
                local("inFunction", 0x1008),
                Die(DW_TAG_lexical_block, {},
                    {
                        local("inOuterBlock", 0x100C),
                        Die(DW_TAG_lexical_block, {}, {local("inBlock", 0x1010)}),
                        Die(DW_TAG_lexical_block, {}, {local("inSecondBlock", 0x1014)}),
                    }),
                Die(DW_TAG_variable,
                    {Name("onStack"), Type(number), Location({{DW_OP_fbreg, {-4}}})}),
            }),
    }));
    std::vector<std::string> names;
    run.model->ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        names.push_back(run.model->QualifiedName(variable.id));
    });
    EXPECT_THAT(names, ElementsAre("inFile", "n::inNamespace", "f::inFunction", "f::inOuterBlock",
                                   "f::1::inBlock", "f::2::inSecondBlock"));
    EXPECT_THAT(Delivered(run.calls), Contains("CreateFunctionType(8, [], 7) -> 12"));
    EXPECT_THAT(Delivered(run.calls), Contains(R"(CreateFunction("f", 12, 7, 7, false) -> 13)"));
}

TEST_F(DeliveryTest, VariablesOfOneNameGetNumbersAndOneAddressStandsOnce) {
    const DieLabel number;
    std::vector<Die> entries{Int(number)};
    for (const std::uint64_t address : {0x1000U, 0x1004U, 0x1008U, 0x1004U}) {
        entries.push_back(Variable("x", number, address));
    }
    const ReadRun run = Read(Unit(entries));
    EXPECT_THAT(run.Variables(), ElementsAre("x@1000:4", "x.2@1004:4", "x.3@1008:4"));

    // The two at 0x2000 aren't seen as redundant, since one has its name from its declaration's
    // linkage name; the host is asked whether it has the address under this name.
    const DieLabel declaration;
    const ReadRun byLinkageName = Read(Unit({
        Int(number),
        Variable("y", number, 0x2000),
        Die(declaration, DW_TAG_variable, {Name("y"), Type(number), External(), Declaration()}),
        Die(DW_TAG_variable, {Name(""), Specification(declaration), External(), Address(0x2000)}),
    }));
    EXPECT_THAT(byLinkageName.Variables(), ElementsAre("y@2000:4"));
}

TEST_F(DeliveryTest, TheAddressesOfManyVariablesOfOneNameAreKnown) {
    // The last two repeat the one before them, under the name of their declaration.
    const DieLabel number, declaration;
    std::vector<Die> entries{
        Int(number),
        Die(declaration, DW_TAG_variable, {Name("x"), Type(number), External(), Declaration()})};
    for (std::uint64_t index = 0; index < 101; ++index) {
        entries.push_back(Variable("x", number, 0x1000 + 4 * index));
    }
    entries.insert(
        entries.end(), 2,
        Die(DW_TAG_variable, {Name(""), Specification(declaration), External(), Address(0x1190)}));
    const std::vector<std::string> variables = Read(Unit(entries)).Variables();
    EXPECT_EQ(variables.size(), 101U);
    EXPECT_EQ(variables.back(), "x.101@1190:4");
}

TEST_F(DeliveryTest, ProgressIsToldAboutAHundredTimes) {
    for (const auto& [nodeCount, step] :
         {std::pair{199, 2}, std::pair{200, 3}, std::pair{350, 4}}) {
        const std::vector<Die> entries(static_cast<std::size_t>(nodeCount) - 1,
                                       Die(DW_TAG_namespace));
        const ReadRun run = Read(Unit(entries));
        std::vector<std::string> expected{"0-" + std::to_string(nodeCount), "0",
                                          "Post-Processing..."};
        for (int value = step; value < nodeCount; value += step) {
            expected.push_back(std::to_string(value));
        }
        const auto start = std::ranges::find(run.progress, expected.front());
        EXPECT_EQ(std::vector(start, run.progress.end()), expected);
    }
}

TEST_F(DeliveryTest, UnitsWhoseEntryLiesRightBehindTheHeaderAreToldWhileReading) {
    // A unit that begins with this many null entries.
    const auto unit = [](std::size_t nulls, bool is64BitDwarf = false) {
        return DwarfUnit{.entries = {Die::Raw(std::string(nulls, '\0')),
                                     UnitDie({Die(DW_TAG_compile_unit, {Name("inner.c")})})},
                         .is64BitDwarf = is64BitDwarf};
    };
    constexpr std::size_t sHeaderSize = 11;
    DwarfSections sections;
    std::vector<std::string> expected;
    for (const std::size_t nulls : {0U, 4U, 5U}) {
        if (sHeaderSize + nulls < 16) {
            expected.push_back(std::to_string(sections.Info().size() + sHeaderSize + nulls));
        }
        sections.Unit(unit(nulls));
    }
    sections.Unit(unit(0, true));
    const ReadRun run = ReadImage((ElfImage(ElfClass::Class64) + sections).Build());
    expected.insert(expected.begin(), "0-" + std::to_string(sections.Info().size()));
    ASSERT_GT(run.progress.size(), expected.size());
    EXPECT_TRUE(std::ranges::equal(expected, std::span(run.progress).first(expected.size())));
    EXPECT_THAT(run.progress[expected.size()], testing::StartsWith("0-"));
}

TEST_F(DeliveryTest, WhichVariablesAreDelivered) {
    const DieLabel number, declaration;
    const ReadRun run = Read(Unit({
        Int(number),
        Variable("externAtNull", number, 0),
        Die(DW_TAG_variable, {Name("staticAtNull"), Type(number), Address(0)}),
        Die(DW_TAG_variable, {Name("inRegister"), Type(number), Location({{DW_OP_reg0}})}),
        Die(DW_TAG_variable, {Name("optimisedAway"), Type(number), Location({})}),
        Die(DW_TAG_variable, {Name("noLocation"), Type(number)}),
        Die(declaration, DW_TAG_variable,
            {Name("declared"), Type(number), External(), Declaration()}),
        Die(DW_TAG_variable, {Specification(declaration), Address(0x1000)}),
        Die(DW_TAG_variable, {Type(number), Address(0x1004)}),
    }));
    EXPECT_THAT(run.Variables(), ElementsAre("staticAtNull@0:4", "declared@1000:4"));
}

TEST_F(DeliveryTest, MembersBitFieldsAndWhatIsHoisted) {
    const DieLabel structure, anonymousUnion, number, flags;
    const std::vector<std::string> calls = CallsOf(Unit({
        Int(number),
        Die(flags, DW_TAG_union_type, {Name("u"), ByteSize(4)},
            {Die(DW_TAG_member, {Name("low"), Type(number), BitSize(3), BitOffset(29)})}),
        Struct(
            structure, "s", 16,
            {
                Die(DW_TAG_member,
                    {Name("bits"), Type(number), BitSize(3), BitOffset(2), MemberOffset(0)}),
                Die(anonymousUnion, DW_TAG_union_type, {ByteSize(4)},
                    {Member("first", number, 0), Member("second", number, 0)}),
                Die(DW_TAG_member, {Type(anonymousUnion), MemberOffset(4)}),
                Die(DW_TAG_member, {Name("shared"), Type(number), External(), Declaration()}),
                Die(DW_TAG_member, {Name("placed"), Type(number), Declaration(), MemberOffset(12)}),
                Member("f", flags, 8),
            }),
        Variable("v", structure, 0x1000),
    }));
    EXPECT_THAT(calls, ElementsAre(R"(CreateCompileUnit("a_c") -> 7)",
                                   R"(CreateClassEntryType("s", 16, 7, [], false, true) -> 8)",
                                   "CreateBaseEntryType(4, 4, 7) -> 9",
                                   R"(CreateBitfieldInUdt("bits", 9, 8, 0, 27, 3) -> 10)",
                                   R"(CreateMemberData("placed", 9, 8, 12) -> 11)",
                                   R"(CreateUnionEntryType("u", 4, 7, false) -> 12)",
                                   R"(CreateUnionMemberData("low", 9, 12, 0) -> 13)",
                                   R"(CreateMemberData("f", 12, 8, 8) -> 14)",
                                   R"(CreateMemberData("first", 9, 8, 4) -> 15)",
                                   R"(CreateMemberData("second", 9, 8, 4) -> 16)",
                                   "GetGlobalNamespace() -> 1", R"(GetGlobalData("v", 1) -> 0)",
                                   R"(CreateGlobalData("v", 8, 4096, 1) -> 17)"));
}

TEST_F(DeliveryTest, ArraysEnumerationsAndFunctionTypes) {
    const DieLabel number, array, enumeration, function, functionPointer;
    const std::vector<std::string> calls = CallsOf(Unit({
        Int(number),
        Die(array, DW_TAG_array_type, {Type(number)},
            {Die(DW_TAG_subrange_type, {UpperBound(2)}),
             Die(DW_TAG_subrange_type, {LowerBound(1), UpperBound(3)})}),
        Die(enumeration, DW_TAG_enumeration_type, {Name("e"), ByteSize(1)},
            {Die(DW_TAG_enumerator, {Name("minus"), ConstValue(-1)}),
             Die(DW_TAG_enumerator, {ConstValue(1)})}),
        Die(function, DW_TAG_subroutine_type, {},
            {Die(DW_TAG_formal_parameter, {Type(number)}),
             Die(DW_TAG_formal_parameter, {Type(functionPointer)}),
             Die(DW_TAG_unspecified_parameters)}),
        Pointer(functionPointer, function),
        Variable("a", array, 0x1000),
        Variable("e", enumeration, 0x1010),
        Variable("f", function, 0x1014),
    }));
    EXPECT_THAT(calls, Contains("CreateArrayEntryType([3, 3], 8, 36, 7) -> 9"));
    EXPECT_THAT(calls, Contains(R"(CreateEnumTable("e", 3, 7, false) -> 11)"));
    EXPECT_THAT(calls, Contains(R"(AddEnumDescriptionToEnumTable(11, -1, "minus") -> true)"));
    EXPECT_THAT(calls, Not(Contains(testing::HasSubstr("(11, 1, "))));
    // The pointer among the parameters leads back to the function type, which doesn't exist yet.
    EXPECT_THAT(calls, Contains(testing::StartsWith("CreateFunctionType(2, [8, ")));
}

TEST_F(DeliveryTest, EnumeratorsKeepAllBitsInTheFullReading) {
    const DieLabel number, longEnum, intEnum, openEnum;
    const auto enumerator = [](const char* name, std::uint32_t form, std::uint64_t value) {
        return Die(DW_TAG_enumerator, {Name(name), Number(DW_AT_const_value, form, value)});
    };
    const DwarfSections sections = Unit({
        Int(number),
        Die(longEnum, DW_TAG_enumeration_type, {Name("long_enum"), ByteSize(8)},
            {enumerator("low", DW_FORM_data1, 5), enumerator("minus", DW_FORM_sdata, ~0ULL),
             enumerator("word", DW_FORM_data4, 0xFFFFFFFF),
             enumerator("eight", DW_FORM_data8, 0x7FFF'FFFF'FFFF'FFFF),
             enumerator("leb", DW_FORM_udata, 0x1'0000'0005),
             enumerator("negative", DW_FORM_sdata, 0xFFFF'FFFE'0000'0000)}),
        Die(intEnum, DW_TAG_enumeration_type, {Name("int_enum"), ByteSize(4), Type(number)},
            {enumerator("all", DW_FORM_udata, 0xFFFFFFFF),
             enumerator("beyond", DW_FORM_udata, 0x1'0000'0005)}),
        Die(openEnum, DW_TAG_enumeration_type, {Name("open_enum"), ByteSize(4)},
            {enumerator("top", DW_FORM_data4, 0x80000000),
             enumerator("below", DW_FORM_sdata, ~0ULL)}),
        Variable("e", longEnum, 0x1000),
        Variable("f", intEnum, 0x1008),
        Variable("g", openEnum, 0x100C),
    });
    const auto added = [&sections] {
        std::vector<std::string> calls;
        for (const std::string& call : CallsOf(sections)) {
            std::smatch parts;
            if (std::regex_match(call, parts,
                                 std::regex(R"re(Add(Wide)?Enum\w+\(\d+, (.*)\) -> true)re"))) {
                calls.push_back(parts.str(1) + (parts[1].matched ? " " : "") + parts.str(2));
            }
        }
        return calls;
    };
    EXPECT_THAT(added(),
                ElementsAre(R"(5, "low")", R"(-1, "minus")", R"(-1, "word")", R"(-1, "eight")",
                            R"(5, "leb")", R"(0, "negative")", R"(-1, "all")", R"(5, "beyond")",
                            R"(-2147483648, "top")", R"(-1, "below")"));
    VElfOptions::mIsFullReading = 1;
    EXPECT_THAT(added(), ElementsAre(R"(5, "low")", R"(-1, "minus")", R"(Wide 4294967295, "word")",
                                     R"(Wide 9223372036854775807, "eight")",
                                     R"(Wide 4294967301, "leb")", R"(Wide -8589934592, "negative")",
                                     R"(-1, "all")", R"(Wide 4294967301, "beyond")",
                                     // Without an integer type, only the values tell the sign.
                                     R"(Wide 2147483648, "top")", R"(-1, "below")"));
}

TEST_F(DeliveryTest, BaseClassesAreLinkedAtTheirOffsets) {
    const DieLabel base, alias, derived;
    const std::vector<std::string> calls = CallsOf(Unit({
        Die(base, DW_TAG_class_type, {Name("Base"), ByteSize(4)}),
        Typedef(alias, "Alias", base),
        Die(derived, DW_TAG_class_type, {Name("Derived"), ByteSize(8)},
            {Die(DW_TAG_inheritance, {Type(alias), MemberOffset(4)}), Die(DW_TAG_inheritance)}),
        Variable("v", derived, 0x1000),
    }));
    EXPECT_THAT(calls, Contains("AddBaseClass(8, 9, 4) -> true"));
}

TEST_F(DeliveryTest, ABaseClassThatIsNotThereIsALineOfTheLog) {
    const DieLabel derived, inheritance;
    const DwarfSections sections = Unit({
        Die(derived, DW_TAG_class_type, {Name("Derived"), ByteSize(8)},
            {Die(inheritance, DW_TAG_inheritance, {Number(DW_AT_type, DW_FORM_ref4, 0x7777)})}),
        Variable("v", derived, 0x1000),
    });
    VElfOptions::mIsLogFile = 1;
    const TemporaryFolder folder;
    ReadFile(folder.Write("image.elf", (ElfImage() + sections).Build()));
    char line[100];
    std::snprintf(line, sizeof line,
                  "\n[Class Reference 00007777  defined in Inheritance tag %08x not found!]\n",
                  sections.OffsetOf(inheritance));
    EXPECT_THAT(folder.Read("image.log"), testing::HasSubstr(line));
}

TEST_F(DeliveryTest, AFunctionWhoseReturnTypeLiesInItselfIsDeliveredOnce) {
    const DieLabel number, local;
    const std::vector<std::string> calls = CallsOf(Unit({
        Int(number),
        Die(DW_TAG_subprogram, {Name("make"), Type(local)},
            {
                Struct(local, "Local", 4, {Member("m", number, 0)}),
                Die(DW_TAG_variable, {Name("kept"), Type(local), Address(0x1000)}),
            }),
    }));
    EXPECT_EQ(CountOf(calls, "CreateFunction("), 1);
    EXPECT_EQ(CountOf(calls, "CreateClassEntryType("), 1);
}

TEST_F(DeliveryTest, UnitsOfOneKindShareAnObjectAndDeclarationsFindTheirDefinition) {
    const DieLabel number, declaration, definition;
    const ReadRun run =
        Read(DwarfSections()
                 .Unit({Die(DW_TAG_compile_unit, {Name("x/a.c"), CompDir("/d")},
                            {Die(declaration, DW_TAG_structure_type, {Name("s"), Declaration()}),
                             Variable("v", declaration, 0x1000)})})
                 .Unit({Die(DW_TAG_compile_unit, {Name("y/a.c"), CompDir("/d")},
                            {Int(number), Struct(definition, "s", 4, {Member("m", number, 0)})})})
                 .Unit({Die(DW_TAG_compile_unit, {Name("a.c"), CompDir("/other")},
                            {Die(DW_TAG_variable, {Name("w"), Type(definition, DW_FORM_ref_addr),
                                                   Address(0x1004)})})}));
    const std::vector<std::string> calls = Delivered(run.calls);
    EXPECT_THAT(calls, Contains(R"(CreateCompileUnit("a_c") -> 7)"));
    EXPECT_EQ(CountOf(calls, "CreateCompileUnit"), 2);
    EXPECT_EQ(run.model->ResolvePath("v.m").place.address, 0x1000U);
    EXPECT_EQ(run.model->ResolvePath("w.m").place.address, 0x1004U);
}

TEST_F(DeliveryTest, AllTypesAreDeliveredOnRequestAndOnceForEachGroup) {
    const DieLabel number;
    const auto structure = [&](std::uint64_t size) {
        return Die(DW_TAG_structure_type, {Name("s"), ByteSize(size)});
    };
    const DwarfSections sections =
        Unit({Int(number), structure(8), Die(DW_TAG_structure_type, {ByteSize(1)}),
              Die(DW_TAG_union_type, {Name("declared"), Declaration()})})
            .Unit({Die(DW_TAG_compile_unit, {Name("b.c")},
                       {structure(12), Die(DW_TAG_enumeration_type, {Name("e"), ByteSize(4)})})});
    EXPECT_THAT(CallsOf(sections), IsEmpty());
    EXPECT_THAT(CallsOf(sections, true),
                ElementsAre(R"(CreateCompileUnit("b_c") -> 7)",
                            R"(CreateClassEntryType("s", 12, 7, [], false, true) -> 8)",
                            R"(CreateEnumTable("e", 5, 7, false) -> 9)"));
}

TEST_F(DeliveryTest, WithoutADataModelTheReadEnds) {
    const DieLabel structure, pointer;
    const TemporaryFolder folder;
    const std::string path = folder.Write(
        "image.elf",
        (ElfImage().Symbol({"main", 0x8000, 4, sFunction}) +
         Unit({
             Variable("v", structure, 0x1000),
             Struct(structure, "s", 8, {Member("next", pointer, 0), Member("other", structure, 0)}),
             Pointer(pointer, structure),
         }))
            .Build());
    VDWARFReader reader;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(reader.Read(path, DWARFContainerType::Container_ELF));
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("Object ID = 0 ("));
}

/// Trees that no compiler writes. The reads must end, quickly and with a stack of normal size.
class HostileTreeTest : public DeliveryTest {
protected:
    static constexpr std::size_t kMany = 30'000;
};

TEST_F(HostileTreeTest, LongChainsOfTypes) {
    for (const dwarf_tag tag : {DW_TAG_pointer_type, DW_TAG_const_type, DW_TAG_typedef}) {
        std::vector<DieLabel> labels(kMany);
        std::vector<Die> entries;
        for (std::size_t index = 0; index < kMany; ++index) {
            std::vector<DieAttribute> attributes{Name(std::to_string(index))};
            if (index + 1 < kMany) {
                attributes.push_back(Type(labels[index + 1]));
            }
            entries.emplace_back(labels[index], tag, attributes);
        }
        for (std::size_t index = 0; index < kMany; index += 100) {
            entries.push_back(Variable("v" + std::to_string(index), labels[index], 0x1000 + index));
        }
        EXPECT_EQ(Read(Unit(entries)).Variables().size(), kMany / 100);
    }
}

TEST_F(HostileTreeTest, LongChainsOfMembersAndScopes) {
    std::vector<DieLabel> labels(kMany);
    std::vector<Die> entries;
    for (std::size_t index = 0; index < kMany; ++index) {
        std::vector<Die> members;
        if (index + 1 < kMany) {
            members.push_back(Member("next", labels[index + 1], 0));
        }
        entries.emplace_back(labels[index], DW_TAG_structure_type,
                             std::vector{Name("s" + std::to_string(index)), ByteSize(4)}, members);
    }
    entries.push_back(Variable("v", labels[0], 0x1000));
    EXPECT_EQ(Read(Unit(entries)).Variables().size(), 1U);

    // Scopes nested very deeply, with a variable at the bottom.
    for (const dwarf_tag tag :
         {DW_TAG_namespace, DW_TAG_structure_type, DW_TAG_subprogram, DW_TAG_lexical_block}) {
        DwarfSections sections;
        const std::uint64_t table = sections.RawAbbreviations(
            Uleb128(1) + Uleb128(tag) + '\1' + std::string(2, '\0') + Uleb128(2) +
            Uleb128(DW_TAG_variable) + '\0' + Uleb128(DW_AT_name) + Uleb128(DW_FORM_string) +
            Uleb128(DW_AT_location) + Uleb128(DW_FORM_block1) + std::string(3, '\0'));
        const std::string variable = std::string("\2v\0\5\3\0\x10\0\0", 9);
        DwarfUnit unit;
        unit.entries = {Die::Raw(std::string(kMany, '\1') + variable)};
        unit.abbreviationOffset = table;
        sections.Unit(unit);
        EXPECT_EQ(Read(sections).Variables().size(), 1U) << tag;
    }
}

TEST_F(HostileTreeTest, AnonymousTypesNestedWithoutEnd) {
    // Each level is a structure with a member, followed by a nameless member of the structure's
    // type.
    DwarfSections sections;
    const std::uint64_t table = sections.RawAbbreviations(
        Uleb128(1) + Uleb128(DW_TAG_structure_type) + '\1' + std::string(2, '\0') + Uleb128(2) +
        Uleb128(DW_TAG_member) + '\0' + Uleb128(DW_AT_name) + Uleb128(DW_FORM_string) +
        std::string(2, '\0') + Uleb128(3) + Uleb128(DW_TAG_member) + '\0' + Uleb128(DW_AT_type) +
        Uleb128(DW_FORM_ref4) + std::string(3, '\0'));
    constexpr std::size_t sHeaderSize = 11;
    const std::string opening("\1\2m\0", 4);
    ByteWriter entries;
    for (std::size_t level = 0; level < kMany; ++level) {
        entries.Bytes(opening);
    }
    for (std::size_t level = kMany; level-- > 1;) {
        entries.U8(0).U8(3).U32(sHeaderSize + level * opening.size());
    }
    DwarfUnit unit;
    unit.entries = {Die::Raw(entries.Content() + '\0')};
    unit.abbreviationOffset = table;
    sections.Unit(unit);
    EXPECT_THAT(Read(sections).Variables(), IsEmpty());
}

TEST_F(HostileTreeTest, CyclesOfAllKinds) {
    const DieLabel first, second, third, ownScope, inner, base, derived, function, functionPointer;
    const ReadRun run = Read(Unit({
        // A chain into a cycle that doesn't contain its beginning.
        Die(first, DW_TAG_const_type, {Type(second)}),
        Typedef(second, "t", third),
        Die(third, DW_TAG_volatile_type, {Type(second)}),
        Variable("a", first, 0x1000),
        // A class whose specification lies in itself.
        Die(ownScope, DW_TAG_class_type, {Name("c"), ByteSize(4), Specification(inner)},
            {Die(inner, DW_TAG_class_type, {Name("i"), ByteSize(4), Specification(ownScope)})}),
        Variable("b", ownScope, 0x1004),
        // Two classes that inherit from each other.
        Die(base, DW_TAG_class_type, {Name("base"), ByteSize(4)},
            {Die(DW_TAG_inheritance, {Type(derived)})}),
        Die(derived, DW_TAG_class_type, {Name("derived"), ByteSize(4)},
            {Die(DW_TAG_inheritance, {Type(base)}), Member("self", derived, 0)}),
        Variable("c", base, 0x1008),
        // A function type that has itself as a parameter.
        Die(function, DW_TAG_subroutine_type, {Type(functionPointer)},
            {Die(DW_TAG_formal_parameter, {Type(functionPointer)}),
             Die(DW_TAG_formal_parameter, {Type(function)})}),
        Pointer(functionPointer, function),
        Variable("d", function, 0x100C),
    }));
    EXPECT_EQ(run.Variables().size(), 4U);
}

TEST_F(HostileTreeTest, TemplateArgumentsThatNameTheirOwnTemplate) {
    const DieLabel self, other;
    std::vector<Die> arguments;
    arguments.reserve(50);
    for (int index = 0; index < 50; ++index) {
        arguments.emplace_back(DW_TAG_template_type_param,
                               std::vector{Name("T"), Type(index % 2 == 0 ? self : other)});
    }
    const ReadRun run = Read(Unit({
        Die(self, DW_TAG_class_type, {Name("t"), ByteSize(4)}, arguments),
        Die(other, DW_TAG_class_type, {Name("u"), ByteSize(4)}, arguments),
        Variable("v", self, 0x1000),
    }));
    const DataModel::ModelObject type = run.model->Object(run.model->ResolvePath("v").place.type);
    EXPECT_LT(type.name.size(), 100'000U);
    EXPECT_TRUE(type.name.starts_with("t<t<t<"));
}

TEST_F(HostileTreeTest, TemplateArgumentsBehindManyMembersAndOfManyEqualNames) {
    const DieLabel number, big;
    constexpr std::size_t sCount = kMany / 3;
    std::vector<Die> children(sCount, Die(DW_TAG_member, {Name("m"), Type(number)}));
    children.emplace_back(DW_TAG_template_type_param, std::vector{Name("T"), Type(number)});
    std::vector<Die> entries{
        Int(number), Die(big, DW_TAG_class_type, {Name("big"), ByteSize(4)}, std::move(children))};
    for (std::size_t index = 0; index < sCount; ++index) {
        const DieLabel self;
        entries.emplace_back(self, DW_TAG_class_type, std::vector{Name("user"), ByteSize(4)},
                             std::vector{Die(DW_TAG_template_type_param, {Type(big)}),
                                         Die(DW_TAG_template_type_param, {Type(self)}),
                                         Die(DW_TAG_template_type_param, {Type(self)})});
    }
    entries.push_back(Variable("v", big, 0x1000));
    const ReadRun run = Read(Unit(entries));
    EXPECT_EQ(run.model->TypeText(run.model->ResolvePath("v").place.type), "big<int>");
}

TEST_F(HostileTreeTest, ManyVariablesOfOneName) {
    const DieLabel number;
    std::vector<Die> entries{Int(number)};
    for (std::size_t index = 0; index < kMany; ++index) {
        entries.push_back(Variable("x", number, 0x1000 + index));
    }
    const std::vector<std::string> variables = Read(Unit(entries)).Variables();
    EXPECT_EQ(variables.size(), kMany);
    EXPECT_EQ(variables[499], "x.500@11f3:4");
    EXPECT_EQ(variables.back(), "x.30000@852f:4");
}

TEST_F(HostileTreeTest, ArraysOfHugeDimensions) {
    const DieLabel number, array;
    const ReadRun run = Read(Unit({
        Int(number),
        Die(array, DW_TAG_array_type, {Type(number)},
            {Die(DW_TAG_subrange_type, {UpperBound(0x7FFFFFFE)}),
             Die(DW_TAG_subrange_type, {UpperBound(0x7FFFFFFF)}),
             Die(DW_TAG_subrange_type, {Count(0x7FFFFFFF)})}),
        Variable("v", array, 0x1000),
    }));
    EXPECT_THAT(Delivered(run.calls),
                Contains(testing::StartsWith("CreateArrayEntryType([2147483647, 2147483647], ")));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
