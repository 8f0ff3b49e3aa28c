// Whole reads of images that have symbols and no debug information.
#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "diagnostics/ErrorState.h"
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "support/ElfImage.h"
#include "support/MatchesPattern.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class SymbolOnlyReadTest : public testing::Test {
protected:
    ScopedReaderState mState;
};

ReadRun ReadElf(const ElfImage& image) {
    return ReadImage(image.Build());
}

TEST_F(SymbolOnlyReadTest, EveryCallReachesTheHostInOrder) {
    const ReadRun run = ReadElf(ElfImage(ElfClass::Class64, ByteOrder::Big)
                                    .Symbol({"gSpeed", 0x1'0000'1000, 4})
                                    .Symbol({"gTable", 0x2000, 4})
                                    .Symbol({"gMarker", 0x3000, 0, sLocalObject}));
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.signals, testing::IsEmpty());
    EXPECT_EQ(run.standardOutput, "");
    const std::string placed = ", objIdOfScopeParent=2, addressIsValid=true, addressExtension=0, "
                               "addressExtensionIsValid=false) -> ";
    EXPECT_THAT(
        run.calls,
        ElementsAre(
            "GetGlobalNamespace() -> 1",
            R"(GetNamespace(namespaceName="_Symbol_Table_BKR_", objIdParentScope=1) -> 0)",
            R"(CreateNamespace(namespaceName="_Symbol_Table_BKR_", objIdParentScope=1) -> 2)",
            R"(GetGlobalData(symName="gSpeed") -> 0)",
            "GetGlobalDataByAddress(address=4294971392) -> 0",
            "GetUnknownEntryType(sizeOfUnknownType=4, objIdParentScope=2) -> 0",
            "CreateUnknownEntryType(sizeOfUnknownType=4, objIdParentScope=2) -> 3",
            R"(CreateGlobalData(symName="gSpeed", objIdOfSymType=3, address=4294971392)" + placed +
                "4",
            R"(GetGlobalData(symName="gTable") -> 0)", "GetGlobalDataByAddress(address=8192) -> 0",
            "GetUnknownEntryType(sizeOfUnknownType=4, objIdParentScope=2) -> 3",
            R"(CreateGlobalData(symName="gTable", objIdOfSymType=3, address=8192)" + placed + "5",
            R"(GetGlobalData(symName="gMarker") -> 0)",
            "GetGlobalDataByAddress(address=12288) -> 0",
            "GetUnknownEntryType(sizeOfUnknownType=0, objIdParentScope=2) -> 0",
            "CreateUnknownEntryType(sizeOfUnknownType=0, objIdParentScope=2) -> 6",
            R"(CreateGlobalData(symName="gMarker", objIdOfSymType=6, address=12288)" + placed +
                "7"));
}

TEST_F(SymbolOnlyReadTest, OnlyNamedDataWithAnAddressOfItsOwnIsDelivered) {
    const ReadRun run = ReadElf(ElfImage()
                                    .Symbol({"kept", 0x10, 1})
                                    .Symbol({"atNull", 0, 4})
                                    .Symbol({"label", 0x20, 4, sNoType})
                                    .Symbol({"function", 0x24, 4, sFunction})
                                    .Symbol({"", 0x28, 4})
                                    .Symbol({"_ZTV3Foo", 0x2C, 4})
                                    .Symbol({"__vtbl__3Foo", 0x30, 4})
                                    .Symbol({"_ZTI3Foo", 0x34, 4})
                                    .Symbol({"vtbl_ZTV", 0x38, 4})
                                    .Symbol({"kept", 0x3C, 4})
                                    .Symbol({"alias", 0x10, 4})
                                    .Symbol({"_last", 0x40, 8}));
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(),
                ElementsAre("kept@10:1", "_ZTI3Foo@34:4", "vtbl_ZTV@38:4", "_last@40:8"));
}

TEST_F(SymbolOnlyReadTest, OptionsChangeTheDeliveredNames) {
    const ElfImage image = ElfImage()
                               .Symbol({"value__3Foo", 0x10, 4})
                               .Symbol({"_name", 0x20, 4})
                               .Symbol({"_", 0x30, 4})
                               .Symbol({"a-b", 0x40, 4})
                               // Virtual tables are recognized by the delivered name.
                               .Symbol({"__ZTVx", 0x50, 4})
                               .Symbol({"_ZTVx", 0x60, 4});
    const auto names = [&] { return ReadElf(image).Variables(); };
    for (const std::int32_t isOn : {1, 2, -1}) {
        VElfOptions::mRemoveLeadingUnderscore = isOn;
        EXPECT_THAT(names(),
                    ElementsAre("value__3Foo@10:4", "name@20:4", "@30:4", "a-b@40:4", "ZTVx@60:4"));
    }
    VElfOptions::mRemoveLeadingUnderscore = 0;
    for (std::int32_t* option :
         {&VElfOptions::mDemangleSymTabNames, &VElfOptions::mFixClassNameScopeSepar}) {
        for (const std::int32_t isOn : {2, 3}) {
            *option = isOn;
            EXPECT_THAT(names(), ElementsAre("Foo::value@10:4", "_name@20:4", "_@30:4", "a_b@40:4",
                                             "__ZTVx@50:4"));
        }
        *option = 1;
    }
    EXPECT_THAT(names(),
                ElementsAre("value__3Foo@10:4", "_name@20:4", "_@30:4", "a-b@40:4", "__ZTVx@50:4"));
}

TEST_F(SymbolOnlyReadTest, ReadsIntoOneModelShareTheScopeOfTheSymbols) {
    const TemporaryFolder folder;
    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);
    for (const ElfSymbol& symbol : {ElfSymbol{"one", 0x10, 4}, ElfSymbol{"two", 0x20, 4}}) {
        EXPECT_TRUE(
            VDWARFReader().Read(folder.Write("image.elf", ElfImage().Symbol(symbol).Build()),
                                DWARFContainerType::Container_ELF));
    }
    EXPECT_EQ(model.Object(model.GetGlobalData("one")).scope,
              model.Object(model.GetGlobalData("two")).scope);
}

TEST_F(SymbolOnlyReadTest, LongNamesAreCut) {
    const ReadRun run = ReadElf(ElfImage()
                                    .Symbol({std::string(3000, 'n'), 0x10, 4})
                                    .Symbol({std::string(2047, 'n'), 0x20, 4}));
    EXPECT_THAT(run.Variables(), ElementsAre(std::string(2047, 'n') + "@10:4"));
}

// Symbols whose names are the ends of one text, which is far shorter than all names together.
TEST_F(SymbolOnlyReadTest, LongNamesThatShareTheirTextAreCutSooner) {
    std::string text;
    for (int number = 0; text.size() < 120'000; ++number) {
        text += "n" + std::to_string(number);
    }
    ByteWriter symbols(ByteOrder::Little);
    for (std::uint32_t index = 0; index < 12'000; ++index) {
        symbols.U32(8 * index).U32(0x1000 + index).U32(4).U8(0x11).U8(0).U16(1);
    }
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("image.elf", ElfImage()
                                      .Section(".strtab", text + '\0')
                                      .Section(".symtab", symbols.Content(), {.entrySize = 16})
                                      .Build());
    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);
    EXPECT_TRUE(VDWARFReader().Read(path, DWARFContainerType::Container_ELF));
    EXPECT_EQ(model.Object(model.GetGlobalDataByAddress(0x1000)).name, text.substr(0, 2047));
    EXPECT_EQ(model.Object(model.GetGlobalDataByAddress(0x1000 + 11'999)).name,
              text.substr(std::size_t{8} * 11'999, 255));
}

TEST_F(SymbolOnlyReadTest, FailuresReachTheHostInItsLanguage) {
    struct Case {
        ElfImage image;
        std::string message;
    };
    const ElfImage image = ElfImage().Symbol({"a", 0x10, 4});
    const std::string noStringTable = "The ELF file is missing .strtab section.";
    const Case cases[] = {
        {ElfImage(image).WithoutStringTable(), noStringTable},
        {ElfImage(image).StringTable({.size = 0}), noStringTable},
        {ElfImage().Section(".text", "x"), "The ELF file is missing .symtab section."},
        {ElfImage(image).SymbolTable({.entrySize = 0}), "Section item size is unknown."},
        {ElfImage(image).StringTable({.offset = 0x100000}), "ELF file Seek has failed."},
        {ElfImage(image).StringTable({.size = 0xFFFFFFFF}), "ELF file Read has failed."},
        {ElfImage().Section(".debug", "x"),
         "The file contains debug section in deprecated DWARF1 format which is not supported by "
         "this reader. Please use base version of ELF/DWARF reader to read this file."},
    };
    for (const Case& each : cases) {
        const ReadRun run = ReadElf(each.image);
        EXPECT_FALSE(run.result);
        EXPECT_THAT(run.signals, ElementsAre("2 4112 '' '" + each.message + "'"));
    }
    VElfResourceManager::Instance().SetLanguage(49);
    EXPECT_EQ(ReadElf(ElfImage().Section(".text", "x")).message,
              "Die ELF-Datei enthält keine .symtab Section.");
}

TEST_F(SymbolOnlyReadTest, WhatWasDeliveredBeforeAFailureStays) {
    const ReadRun run = ReadElf(ElfImage(ElfClass::Class64)
                                    .Symbol({"good", 0x10, 4})
                                    .Symbol({"huge", 0x20, 0x100000000})
                                    .Symbol({"unread", 0x30, 4}));
    EXPECT_FALSE(run.result);
    EXPECT_EQ(run.message,
              "Input ELF-File contains 64 bit offset or size attribute overriding 32-bit "
              "limitation. This feature is not supported by current ELF reader version.");
    EXPECT_THAT(run.Variables(), ElementsAre("good@10:4"));
}

TEST_F(SymbolOnlyReadTest, NamesBeyondTheStringTableAreSkipped) {
    ElfImage image;
    image.Symbol({"first", 0x10, 4}).Symbol({"second", 0x20, 4}).StringTable({.size = 7});
    EXPECT_THAT(ReadElf(image).Variables(), ElementsAre("first@10:4"));
    image.StringTable({.size = 4});
    EXPECT_THAT(ReadElf(image).Variables(), ElementsAre("fir@10:4"));
}

TEST_F(SymbolOnlyReadTest, RecordThatIsCutOffEndsTheTableQuietly) {
    const ElfImage image = ElfImage()
                               .Symbol({"first", 0x10, 4})
                               .Symbol({"second", 0x20, 4})
                               .SymbolTable({.size = 47, .entrySize = 1});
    const ReadRun run = ReadElf(image);
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(), ElementsAre("first@10:4"));
}

TEST_F(SymbolOnlyReadTest, SymbolTableOutsideTheFileCountsAsEmptyInTheClassicManner) {
    for (const ElfSectionOverrides& outside :
         {ElfSectionOverrides{.offset = 0x100000}, ElfSectionOverrides{.size = 0x100000}}) {
        const ElfImage image = ElfImage().Symbol({"a", 0x10, 4}).SymbolTable(outside);
        VElfOptions::mIsFullReading = 0;
        const ReadRun run = ReadElf(image);
        EXPECT_TRUE(run.result);
        EXPECT_THAT(run.signals, testing::IsEmpty());
        EXPECT_THAT(run.Variables(), testing::IsEmpty());
        VElfOptions::mIsFullReading = 1;
        EXPECT_FALSE(ReadElf(image).result);
    }
}

TEST_F(SymbolOnlyReadTest, UnreadablePathsAreToldPlainly) {
    const TemporaryFolder folder;
    const ReadRun missing = ReadFile(folder.Path("missing.elf"));
    EXPECT_FALSE(missing.result);
    EXPECT_EQ(missing.message, "ELF file Open has failed.");
    EXPECT_THAT(missing.standardOutput,
                MatchesPattern("Failed to open .*missing\\.elf: Error Code [0-9]+"));
}

TEST_F(SymbolOnlyReadTest, LogTellsOfErrors) {
    const TemporaryFolder folder;
    const std::string path = folder.Write(
        "image.elf", ElfImage().Symbol({"a", 1, 4}).SymbolTable({.entrySize = 0}).Build());
    VElfOptions::mIsLogFile = 1;
    EXPECT_FALSE(ReadFile(path).result);
    EXPECT_EQ(folder.Read("image.log"), "Error occurred: 'Section item size is unknown.'\n"
                                        "There is not symbol table in this file!\n\n");
    EXPECT_FALSE(VElfOptions::mLogFile.is_open());
}

TEST_F(SymbolOnlyReadTest, ReadWithoutDataModelOrCallbacksJustFails) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("image.elf", ElfImage().Symbol({"a", 16, 4}).Build());
    VDWARFReader reader;
    EXPECT_FALSE(reader.Read(path, DWARFContainerType::Container_ELF));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
