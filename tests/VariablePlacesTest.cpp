// Which variables have a place, and where: tombstones of discarded variables, declarations that the
// symbol table places, symbols beside them. Each image is read in both manners.
#include "container/DeliveredSymbols.h"
#include "core/ModuleInfo.h"
#include "core/VElfOptions.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <type_traits>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// The size shows where an object comes from: variables of the tests have 4 bytes, symbols 8.
constexpr std::uint64_t sSymbolSize = 8;

class VariablePlacesTest : public testing::Test {
protected:
    template <typename Image>
    static std::vector<std::string> Classic(const Image& image) {
        return Read(image, 0);
    }
    template <typename Image>
    static std::vector<std::string> Full(const Image& image) {
        return Read(image, 1);
    }

    /// A unit with the type `mInteger` and the entries.
    [[nodiscard]] DwarfSections Sections(std::vector<Die> entries, int addressSize = 4) const {
        entries.insert(entries.begin(), Int(mInteger));
        return DwarfSections().Unit({.entries = {UnitDie(std::move(entries), {Name("unit.c")})},
                                     .addressSize = addressSize});
    }

    [[nodiscard]] Die Variable(const std::string& name, std::vector<DieAttribute> more) const {
        more.push_back(Name(name));
        more.push_back(Type(mInteger));
        return Die(DW_TAG_variable, more);
    }

    [[nodiscard]] Die Declared(const std::string& name) const {
        return Variable(name, {External(), Declaration()});
    }

    DieLabel mInteger;

private:
    template <typename Image>
    static std::vector<std::string> Read(const Image& image, std::int32_t isFull) {
        VElfOptions::mIsFullReading = isFull;
        const ReadRun run = ReadImage(image.Build(), std::is_same_v<Image, PeImage>
                                                         ? DWARFContainerType::Container_PE
                                                         : DWARFContainerType::Container_ELF);
        EXPECT_TRUE(run.result) << run.message;
        return run.Variables();
    }

    ScopedReaderState mState;
};

TEST_F(VariablePlacesTest, AddressesAreTakenRelativeToTheModule) {
    const ElfImage image = ElfImage().Symbol({"alone", 0x2000, sSymbolSize}) +
                           Sections({Variable("described", {Address(0x1000)})});
    ModuleInfo::mModuleOffset = 0x800;
    EXPECT_THAT(Classic(image), ElementsAre("described@800:4", "alone@2000:8"));
    EXPECT_THAT(Full(image), ElementsAre("described@800:4", "alone@1800:8"));
}

TEST_F(VariablePlacesTest, DiscardedVariablesAreLeftOutInTheFullManner) {
    const DwarfSections sections = Sections({
        Variable("gVector", {External(), Address(0)}),
        Variable("dropped", {Address(0)}),
        Variable("allOnes", {Address(0xFFFFFFFF)}),
        Variable("oneLess", {External(), Address(0xFFFFFFFE)}),
        Variable("register", {Address(0xFFFFFFFD)}),
        Variable("kept", {Address(0x1000)}),
    });
    const auto withSymbols = [] { return ElfImage().Symbol({"main", 1, 4, sFunction}); };
    const ElfImage bare = withSymbols() + sections;
    EXPECT_THAT(Classic(bare),
                ElementsAre("dropped@0:4", "allOnes@ffffffff:4", "oneLess@fffffffe:4",
                            "register@fffffffd:4", "kept@1000:4"));
    EXPECT_THAT(Full(bare), ElementsAre("register@fffffffd:4", "kept@1000:4"));

    const ElfImage withVectors =
        withSymbols().Section(".vectors", "text", {.address = 0}) + sections;
    EXPECT_THAT(Full(withVectors),
                ElementsAre("gVector@0:4", "dropped@0:4", "register@fffffffd:4", "kept@1000:4"));
    const ElfImage withPort =
        withSymbols().Section(".port", "text", {.address = 0xFFFFFFFC}) + sections;
    EXPECT_THAT(Full(withPort), ElementsAre("allOnes@ffffffff:4", "oneLess@fffffffe:4",
                                            "register@fffffffd:4", "kept@1000:4"));
    // A section that isn't allocated has no address.
    EXPECT_THAT(Full(withSymbols().Section(".comment", "text") + sections),
                ElementsAre("register@fffffffd:4", "kept@1000:4"));
}

TEST_F(VariablePlacesTest, SymbolsKeepVariablesAtTombstones) {
    const DwarfSections sections = Sections(
        {
            Variable("gVector", {External(), Address(0)}),
            Variable("other", {External(), Address(0)}),
            Variable("top", {Address(0xFFFF'FFFF'FFFF'FFFF)}),
        },
        8);
    for (const std::uint8_t info : {sGlobalObject, sLocalObject, sGlobalNoType}) {
        SCOPED_TRACE(int{info});
        const ElfImage image = ElfImage(ElfClass::Class64)
                                   .Symbol({"gVector", 0, 4, info})
                                   .Symbol({"top", 0xFFFF'FFFF'FFFF'FFFF, 4, info}) +
                               sections;
        EXPECT_THAT(Classic(image), testing::Not(testing::Contains("gVector@0:4")));
        EXPECT_THAT(Full(image), ElementsAre("gVector@0:4", "top@ffffffffffffffff:4"));
    }
    const ElfImage undefined =
        ElfImage(ElfClass::Class64).Symbol({"gVector", 0, 0, sGlobalObject, 0, 0}) + sections;
    EXPECT_THAT(Full(undefined), IsEmpty());
}

// Flash begins at 0, and the symbol table knows what is there.
TEST_F(VariablePlacesTest, ASectionAtZeroKeepsNoDiscardedVariables) {
    const Die merged =
        Variable("merged", {Location({{DW_OP_addr, {0}}, {DW_OP_plus_uconst, {4}}})});
    const DwarfSections sections = Sections({
        Variable("vectors", {External(), Address(0)}),
        Variable("dropped", {Address(0)}),
        merged,
    });
    const auto flash = [] { return ElfImage().Section(".text", "vectors", {.address = 0}); };
    const ElfImage image = flash().Symbol({"vectors", 0, 4}) + sections;
    EXPECT_THAT(Classic(image), testing::IsSupersetOf({"dropped@0:4", "merged@4:4"}));
    EXPECT_THAT(Full(image), ElementsAre("vectors@0:4"));
    EXPECT_THAT(Full(flash().Symbol({"merged", 4, 4, sLocalObject}) + sections),
                ElementsAre("merged@4:4"));
    EXPECT_THAT(Full(flash().Symbol({"main", 1, 4, sFunction}) + Sections({merged})), IsEmpty());
}

TEST_F(VariablePlacesTest, SymbolsWithUniqueNamesKeepStaticVariables) {
    const DwarfSections sections = Sections({Variable("count", {Address(0)})});
    const auto variables = [&](const char* symbol) {
        return Full(ElfImage().Symbol({symbol, 0, sSymbolSize, sLocalObject}) + sections);
    };
    for (const char* const own :
         {"count.5", "count$1", "count.lto_priv.0", "step.count", "step.count.2", "step::count",
          "_ZZ4stepiE5count_0", "_ZN4step5countE.llvm.17", "_count.5", "__ZL5count"}) {
        EXPECT_THAT(variables(own), ElementsAre("count@0:4")) << own;
    }
    for (const char* const other :
         {"counter.5", "account", "count.step", "_ZN5count4stepE", "_Z99count", "5"}) {
        EXPECT_THAT(variables(other), ElementsAre(std::string(other) + "@0:8")) << other;
    }
}

// One "count" was discarded, another one lies at 0.
TEST_F(VariablePlacesTest, SymbolsOfOthersKeepNoDiscardedVariables) {
    const auto variables = [&](const char* sourceFile, const char* otherUnit = "b.c") {
        return Full(ElfImage()
                        .Symbol({sourceFile, 0, 0, sSourceFile, 0, 0xFFF1})
                        .Symbol({"count", 0, sSymbolSize, sLocalObject}) +
                    Sections({Variable("count", {Address(0)})})
                        .Unit(DwarfUnit{.entries = {UnitDie({}, {Name(otherUnit)})}}));
    };
    EXPECT_THAT(variables("/src/unit.c"), ElementsAre("count@0:4"));
    EXPECT_THAT(variables("other.c"), ElementsAre("count@0:8"));
    // Link-time optimisation joins all sources.
    EXPECT_THAT(variables("ld-temp.o"), ElementsAre("count@0:4"));
    EXPECT_THAT(variables("<artificial>"), ElementsAre("count@0:4"));
    // A path longer than compilers write counts as unknown.
    EXPECT_THAT(variables((std::string(900, 'x') + "/other.c").c_str()), ElementsAre("count@0:8"));
    EXPECT_THAT(variables((std::string(9000, 'x') + "/other.c").c_str()), ElementsAre("count@0:4"));
    // A unit from a pipe doesn't tell its source.
    EXPECT_THAT(variables("other.c", "-"), ElementsAre("count@0:4"));

    // Tools make external symbols local, behind those of any file.
    const auto madeLocal = [&](std::vector<Die> entries) {
        return Full(ElfImage()
                        .Symbol({"other.c", 0, 0, sSourceFile, 0, 0xFFF1})
                        .Symbol({"count", 0, sSymbolSize, sLocalObject}) +
                    Sections(std::move(entries)));
    };
    const Die external = Variable("count", {External(), Address(0)});
    EXPECT_THAT(madeLocal({external}), ElementsAre("count@0:4"));
    EXPECT_THAT(madeLocal({external, Variable("count", {Address(0)})}), ElementsAre("count@0:8"));

    const DieLabel half;
    const Die halfType =
        Die(half, DW_TAG_base_type, {Name("half"), ByteSize(2), Encoding(DW_ATE_signed)});
    const Die discarded = Die(DW_TAG_variable, {Name("count"), Type(half), Address(0)});
    const auto global = ElfImage().Symbol({"count", 0, sSymbolSize});
    EXPECT_THAT(Full(global + Sections({halfType, discarded})), ElementsAre("count@0:2"));
    EXPECT_THAT(
        Full(global + Sections({halfType, discarded, Variable("count", {External(), Address(0)})})),
        ElementsAre("count@0:4"));
}

// A compiler stores the values 5 and 9 as 0 and 1: the symbol's byte isn't the variable.
TEST_F(VariablePlacesTest, SymbolsDontStandForVariablesOfComputedValues) {
    const auto modeAt = [](const char* operators) {
        return Block(DW_AT_location, DW_FORM_block1, std::string("\x03\0\x10\0\0", 5) + operators);
    };
    const auto image = [&](const char* operators, std::uint8_t info) {
        return ElfImage().Symbol({"mode", 0x1000, sSymbolSize, info}) +
               Sections({Variable("mode", {modeAt(operators)})});
    };
    EXPECT_THAT(Full(image("\x94\x01\x34\x1E\x9F", sLocalObject)), IsEmpty());
    EXPECT_THAT(Full(image("\x94\x01\x34\x1E\x9F", sGlobalObject)), ElementsAre("mode@1000:8"));
    EXPECT_THAT(Full(image("\x94\x01", sLocalObject)), ElementsAre("mode@1000:8"));
    EXPECT_THAT(Classic(image("\x94\x01\x34\x1E\x9F", sLocalObject)), ElementsAre("mode@1000:8"));

    const auto inFile = [&](const char* sourceFile, const char* symbol) {
        const Die mode =
            Variable("mode", {modeAt("\x94\x01\x34\x1E\x9F"), LinkageName("_ZL4mode")});
        return Full(ElfImage()
                        .Symbol({sourceFile, 0, 0, sSourceFile, 0, 0xFFF1})
                        .Symbol({symbol, 0x1000, sSymbolSize, sLocalObject}) +
                    Sections({mode}));
    };
    EXPECT_THAT(inFile("other.c", "mode"), ElementsAre("mode@1000:8"));
    for (const char* const own : {"mode", "_mode", "_ZL4mode"}) {
        EXPECT_THAT(inFile("unit.c", own), IsEmpty()) << own;
        EXPECT_THAT(inFile("ld-temp.o", own), IsEmpty()) << own;
    }
}

TEST_F(VariablePlacesTest, DeclarationsFindSymbolsThatOtherFilesKnow) {
    const ElfImage image =
        ElfImage()
            .Symbol({"total", 0x100, sSymbolSize})
            .Symbol({"script", 0x200, 0, sGlobalNoType})
            .Symbol({"shared", 0x300, sSymbolSize, sLocalObject, sHidden})
            .Symbol({"private", 0x400, sSymbolSize, sLocalObject})
            .Symbol({"stream@VERSION_2", 0x500, sSymbolSize})
            .Symbol({"_ZN4unit5limitE", 0x600, sSymbolSize})
            .Symbol({"vectors", 0, sSymbolSize})
            .Symbol({"total", 0x700, sSymbolSize, sLocalObject}) +
        Sections({
            Die(DW_TAG_namespace, {Name("unit")},
                {Declared("total"),
                 Variable("limit", {External(), Declaration(), LinkageName("_ZN4unit5limitE")})}),
            Declared("total"),
            Declared("script"),
            Declared("shared"),
            Declared("private"),
            Declared("stream"),
            Declared("vectors"),
            Declared("missing"),
            Die(DW_TAG_subprogram, {Name("f")},
                {Variable("total", {}),
                 Die(DW_TAG_lexical_block, {}, {Variable("script", {}), Declared("shared")})}),
        });
    EXPECT_THAT(Full(image), UnorderedElementsAre("total@100:4", "script@200:4", "shared@300:4",
                                                  "stream@500:4", "vectors@0:4", "limit@600:4",
                                                  // Symbols that belong to no variable.
                                                  "private@400:8", "total@700:8"));
    // Once the linkage name has filled the map of names, the last symbol of a name counts.
    EXPECT_THAT(Classic(image), testing::Contains("total@700:4"));
    EXPECT_THAT(Classic(image), testing::Not(testing::Contains("total@100:4")));
}

// What the variables complete leads on to another thing, whose symbol is not theirs.
TEST_F(VariablePlacesTest, DamagedSpecificationsLeadToNoPlaceOfOthers) {
    const DieLabel other, space, renamed;
    const ElfImage image =
        ElfImage().Symbol({"_Z5other", 0x100, sSymbolSize}) +
        Sections({
            Die(other, DW_TAG_variable,
                {Name("other"), Type(mInteger), External(), Declaration(),
                 LinkageName("_Z5other")}),
            Die(space, DW_TAG_namespace, {Name("lost"), Specification(other)}),
            Die(renamed, DW_TAG_variable,
                {Name("gone"), Type(mInteger), Declaration(), Specification(other)}),
            Variable("lost", {External(), Declaration(), Specification(space)}),
            Variable("gone", {External(), Declaration(), Specification(renamed)}),
        });
    EXPECT_THAT(Full(image), ElementsAre("_Z5other@100:8"));
}

TEST_F(VariablePlacesTest, StaticVariablesWithoutLocationTakeNoPlaceOfOthers) {
    const ElfImage symbols = ElfImage()
                                 .Symbol({"count", 0x100, sSymbolSize, sLocalObject})
                                 .Symbol({"taken", 0x200, sSymbolSize, sLocalObject})
                                 .Symbol({"twice", 0x300, sSymbolSize, sLocalObject})
                                 .Symbol({"twice", 0x400, sSymbolSize, sLocalObject});
    const auto image = [&](const std::string& compiler, const std::string& locatingCompiler) {
        const auto unit = [](std::vector<Die> entries, const char* name, const std::string& of) {
            return DwarfUnit{.entries = {UnitDie(std::move(entries), {Name(name), Producer(of)})}};
        };
        return symbols +
               DwarfSections()
                   .Unit(unit({Int(mInteger), Variable("count", {}), Variable("taken", {}),
                               Variable("twice", {})},
                              "unit.c", compiler))
                   .Unit(unit({Variable("taken", {Address(0x200)})}, "b.c", locatingCompiler));
    };
    EXPECT_THAT(Full(image("CC 1", "CC 2")),
                UnorderedElementsAre("count@100:4", "taken@200:4", "twice@300:8", "twice@400:8"));
    // A compiler that writes locations has optimized such variables away.
    for (const char* const locating : {"CC 2 -O2", "GNU C17 12.2.0 -O2", "Company clang 3"}) {
        EXPECT_THAT(
            Full(image(locating, "CC 2 -O0")),
            UnorderedElementsAre("count@100:8", "taken@200:4", "twice@300:8", "twice@400:8"))
            << locating;
    }
}

// Each variable is in "unit.c", and was optimized away there or has no location.
TEST_F(VariablePlacesTest, StaticVariablesTakeSymbolsOfTheirOwnFileOnly) {
    const auto image = [this](const std::vector<ElfSymbol>& symbols) {
        ElfImage elf;
        for (const ElfSymbol& symbol : symbols) {
            elf.Symbol(symbol);
        }
        return Full(elf + Sections({Variable("count", {})}));
    };
    const ElfSymbol count{"count", 0x100, sSymbolSize, sLocalObject};
    const ElfSymbol ownFile{"/src/unit.c", 0, 0, sSourceFile, 0, 0xFFF1};
    const ElfSymbol otherFile{"other.c", 0, 0, sSourceFile, 0, 0xFFF1};
    EXPECT_THAT(image({count}), ElementsAre("count@100:4"));
    EXPECT_THAT(image({otherFile, ownFile, count}), ElementsAre("count@100:4"));
    EXPECT_THAT(image({ownFile, otherFile, count}), ElementsAre("count@100:8"));
    EXPECT_THAT(image({ownFile, {"count", 0x100, sSymbolSize}}), ElementsAre("count@100:8"));

    // GCC has folded it into a constant that is equal.
    const auto beside = [&](const ElfSymbol& file, std::uint64_t address) {
        return Full(ElfImage().Symbol(file).Symbol(count) +
                    Sections({Variable("count", {}), Variable("equal", {Address(address)})}));
    };
    EXPECT_THAT(beside(ownFile, 0x100), UnorderedElementsAre("count@100:4", "equal@100:4"));
    EXPECT_THAT(beside(ownFile, 0x104), UnorderedElementsAre("count@100:8", "equal@104:4"));
    EXPECT_THAT(beside(otherFile, 0x100), UnorderedElementsAre("count@100:8", "equal@100:4"));
}

TEST_F(VariablePlacesTest, DefinitionComesBeforeTheDeclarationInAFunction) {
    const ElfImage image = ElfImage().Symbol({"shared", 0x100, sSymbolSize}) +
                           Sections({Die(DW_TAG_subprogram, {Name("f")}, {Declared("shared")}),
                                     Variable("shared", {External(), Address(0x100)})});
    VElfOptions::mIsFullReading = 1;
    const ReadRun run = ReadImage(image.Build());
    EXPECT_THAT(run.Variables(), ElementsAre("shared@100:4"));
    EXPECT_THAT(run.calls, testing::Contains(testing::AllOf(
                               testing::HasSubstr(R"(CreateGlobalData(symName="shared")"),
                               testing::HasSubstr("objIdOfScopeParent=1,"))));
}

TEST_F(VariablePlacesTest, TheTypeOfADeclarationCountsWhereVariablesCoincide) {
    const DieLabel declared, half;
    const ElfImage image =
        ElfImage().Symbol({"shared", 0x100, sSymbolSize}) +
        Sections(
            {Die(half, DW_TAG_base_type, {Name("short"), ByteSize(2), Encoding(DW_ATE_signed)}),
             Die(declared, DW_TAG_variable,
                 {Name("shared"), Type(mInteger), External(), Declaration()}),
             Die(DW_TAG_variable, {Specification(declared), Address(0x100)}),
             Die(DW_TAG_variable, {Name("shared"), Type(half), External(), Address(0x100)})});
    EXPECT_THAT(Classic(image), ElementsAre("shared@100:2"));
    EXPECT_THAT(Full(image), ElementsAre("shared@100:4"));
}

TEST_F(VariablePlacesTest, SymbolsCountByAddressAndName) {
    const ElfImage image = ElfImage()
                               .Symbol({"counter", 0x100, sSymbolSize, sLocalObject})
                               .Symbol({"counter", 0x200, sSymbolSize, sLocalObject})
                               .Symbol({"counter", 0x200, sSymbolSize, sLocalObject})
                               .Symbol({"alias", 0x100, sSymbolSize})
                               .Symbol({"_ZN4unit5valueE", 0x300, sSymbolSize})
                               .Symbol({"calls.0", 0x400, sSymbolSize, sLocalObject})
                               .Symbol({"vectors", 0, sSymbolSize})
                               .Symbol({"imported", 0, sSymbolSize, sGlobalObject, 0, 0}) +
                           Sections({
                               Variable("counter", {Address(0x100)}),
                               Variable("value", {External(), Address(0x300)}),
                               Variable("calls", {Address(0x400)}),
                           });
    EXPECT_THAT(Classic(image), ElementsAre("counter@100:4", "value@300:4", "calls@400:4"));
    EXPECT_THAT(Full(image), ElementsAre("counter@100:4", "value@300:4", "calls@400:4",
                                         "counter@200:8", "alias@100:8", "vectors@0:8"));
}

TEST_F(VariablePlacesTest, SymbolsOfVariablesAreKnownByEveryFormOfTheirNames) {
    struct Case {
        std::string symbol;
        std::string name;
        bool isSame;
        std::string linkageName = {};
    };
    std::vector<Case> cases = {{"_ZN2ns5countE", "count", true},
                               {"_ZN2ns15countE", "count", false},
                               {"_ZN2ns5countE", "other", true, "_ZN2ns5countE"},
                               {"_ZN2ns5countE", "other", false, "_ZN2ns5otherE"},
                               {"count__3Foo", "Foo", false},
                               {"count", "counter", false},
                               {".12", "", false}};
    for (const char* symbol : {"count", "_count", "count.12", "count.lto_priv.0", "main.count",
                               "main.recount.count.3", "count@@LIB_1", "_RNvCs1_4unit5count",
                               "count__3Foo", "_count.12", "__ZZ4stepiE5count_0"}) {
        cases.push_back({symbol, "count", true});
    }
    for (const char* symbol : {"main.recount", "counter", "recount"}) {
        cases.push_back({symbol, "count", false});
    }
    for (const Case& each : cases) {
        SCOPED_TRACE(each.symbol + ' ' + each.name + ' ' + each.linkageName);
        DeliveredSymbols delivered;
        delivered.AddVariable(0x10, each.name);
        delivered.AddVariable(0x10, each.linkageName);
        EXPECT_EQ(delivered.AddSymbol(0x10, each.symbol), !each.isSame);
        EXPECT_TRUE(delivered.AddSymbol(0x20, each.symbol));
        EXPECT_FALSE(delivered.AddSymbol(0x20, each.symbol));
    }
}

TEST_F(VariablePlacesTest, DeclarationsFindTheSymbolsOfWindowsImages) {
    constexpr std::uint16_t functionType = 0x20;
    constexpr std::uint8_t staticClass = 3;
    const auto image = [&](PeImage start) {
        return start.ImageBase(0x1'4000'0000)
                   .Section(".data", "data")
                   .Symbol({".file", 0, -2, 1, 0, 103})
                   .Symbol({"gOther", 0x10})
                   .Symbol({"gCode", 0x20, 1, 1, functionType})
                   .Symbol({"hidden", 0x30, 1, 0, 0, staticClass}) +
               Sections({Declared("gOther"), Declared("gCode"), Declared("hidden")}, 8);
    };
    const PeImage program = image(PeImage(PeMachine::X86_64));
    EXPECT_THAT(Classic(program), IsEmpty());
    EXPECT_THAT(Full(program), ElementsAre("gOther@140001010:4"));
    EXPECT_THAT(Full(image(PeImage(PeMachine::X86_64).Dll())), ElementsAre("gOther@1010:4"));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
