#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "support/ElfImage.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// An image's file, opened up to its string table.
class FileWithSymbols {
public:
    explicit FileWithSymbols(const ElfImage& image)
        : mFile(mFolder.Write("image.elf", image.Build()), nullptr) {
        EXPECT_TRUE(mFile.ReadElfHeader() && mFile.LoadSectionInfos());
        EXPECT_TRUE(mFile.LoadStrTabSection());
    }

    VElfFile* operator->() { return &mFile; }

    /// Name of the symbol found at an address, "" if there is none.
    std::string NameAt(std::uint64_t address, std::string_view wantedName) {
        const Elf32_Sym* symbol = mFile.FindSymbolByAddress(address, wantedName);
        return symbol != nullptr ? symbol->name : "";
    }

    /// Address of the symbol of a name, 0 if there is none.
    std::uint64_t AddressOf(const std::string& name) {
        const VElfSymbolAddress* address = mFile.FindSymbolByName(name);
        return address != nullptr ? address->mAddress : 0;
    }

private:
    TemporaryFolder mFolder;
    VElfFile mFile;
};

class SymbolMapsTest : public testing::Test {
protected:
    ScopedReaderState mState;
};

TEST_F(SymbolMapsTest, AddressMapTakesDataWithAnAddress) {
    const ElfImage image = ElfImage()
                               .Symbol({"data", 0x20, 4})
                               .Symbol({"empty", 0x10, 0, sLocalObject})
                               .Symbol({"null", 0, 4})
                               .Symbol({"function", 0x30, 4, sFunction})
                               .Symbol({"label", 0x40, 0, sNoType});
    FileWithSymbols file(image);
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    EXPECT_EQ(file.NameAt(0x20, ""), "data");
    EXPECT_EQ(file.NameAt(0x10, "other"), "empty");
    EXPECT_EQ(file.NameAt(0, ""), "");
    EXPECT_EQ(file.NameAt(0x30, ""), "");
    EXPECT_EQ(file.NameAt(0x40, ""), "");

    for (const std::int32_t isOn : {1, 2, -1}) {
        VElfOptions::mSymTabSearchMode = isOn;
        ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
        EXPECT_EQ(file.NameAt(0x40, ""), "label");
        EXPECT_EQ(file.NameAt(0x30, ""), "");
    }
}

// Records are adjacent whatever their stated size is; the size only decides their number.
TEST_F(SymbolMapsTest, EntrySizeTellsHowManyRecordsAreTaken) {
    FileWithSymbols file(ElfImage()
                             .Symbol({"first", 0x10, 4})
                             .Symbol({"second", 0x20, 4})
                             .Symbol({"third", 0x30, 4})
                             .SymbolTable({.entrySize = 24}));
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    EXPECT_EQ(file.NameAt(0x10, ""), "first");
    EXPECT_EQ(file.NameAt(0x20, ""), "");
    EXPECT_EQ(file.NameAt(0x30, ""), "");
}

TEST_F(SymbolMapsTest, SearchModePrefersAnAgreeingName) {
    const ElfImage image = ElfImage()
                               .Symbol({"foo", 0x30, 4})
                               .Symbol({"foobar", 0x30, 4})
                               .Symbol({"barfoo", 0x20, 4})
                               .Symbol({"bar", 0x20, 4})
                               .Symbol({"alone", 0x10, 4});
    FileWithSymbols file(image);
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    EXPECT_EQ(file.NameAt(0x30, "foobar"), "foo");
    VElfOptions::mSymTabSearchMode = -1;
    EXPECT_EQ(file.NameAt(0x30, "foobar"), "foobar");
    VElfOptions::mSymTabSearchMode = 2;
    EXPECT_EQ(file.NameAt(0x30, "foobar"), "foobar");
    EXPECT_EQ(file.NameAt(0x20, "bar"), "barfoo");
    EXPECT_EQ(file.NameAt(0x20, "bar "), "barfoo");
    EXPECT_EQ(file.NameAt(0x10, "other"), "alone");
}

TEST_F(SymbolMapsTest, SearchModeLooksAtSoManyNamesOnly) {
    ElfImage image;
    for (int number = 0; number < 20'000; ++number) {
        image.Symbol({"s" + std::to_string(number), 0x30, 4});
    }
    FileWithSymbols file(image);
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    VElfOptions::mSymTabSearchMode = 1;
    EXPECT_EQ(file.NameAt(0x30, "s500"), "s500");
    EXPECT_EQ(file.NameAt(0x30, "s19999"), "s0");
    // Comparing long names takes longer.
    EXPECT_EQ(file.NameAt(0x30, "s40" + std::string(1500, 'x')), "s0");
}

TEST_F(SymbolMapsTest, SearchModeFindsLongNamesAmongAFew) {
    const std::string name(2047, 'n');
    ElfImage image;
    for (const char* end : {"a", "b", "c"}) {
        image.Symbol({name.substr(1) + end, 0x30, 4});
    }
    FileWithSymbols file(image);
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    VElfOptions::mSymTabSearchMode = 1;
    EXPECT_EQ(file.NameAt(0x30, name.substr(1) + "c"), name.substr(1) + "c");
}

TEST_F(SymbolMapsTest, NamesAreFoundDemangledAndWithALeadingUnderscore) {
    const ElfImage image = ElfImage()
                               .Symbol({"value__3Foo", 0x10, 4})
                               .Symbol({"_plain", 0x20, 4})
                               .Symbol({"other", 0x30, 4})
                               .Symbol({"twice", 0x40, 4})
                               .Symbol({"twice", 0x50, 4})
                               .Symbol({"__double", 0x60, 4});
    FileWithSymbols file(image);
    EXPECT_EQ(file.AddressOf("Foo::value"), 0x10U);
    EXPECT_EQ(file.AddressOf("value__3Foo"), 0U);
    EXPECT_EQ(file.AddressOf("plain"), 0x20U);
    EXPECT_EQ(file.AddressOf("_other"), 0U);
    EXPECT_EQ(file.AddressOf("twice"), 0x50U);
    EXPECT_EQ(file.AddressOf("_double"), 0U) << "one underscore is added to names without one";

    // Once cleared, the names are not loaded again.
    file->mSymbolNamesMap.Clear();
    EXPECT_EQ(file.AddressOf("other"), 0U);
}

TEST_F(SymbolMapsTest, NamesAreNotLoadedTwiceAfterAFailure) {
    FileWithSymbols file(ElfImage().Symbol({"a", 0x10, 4}).SymbolTable({.entrySize = 0}));
    EXPECT_EQ(file.AddressOf("a"), 0U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_SECTION_ITEM_SIZE);
    file->mSecSymtab.sh_entsize = 16;
    EXPECT_EQ(file.AddressOf("a"), 0U);
}

TEST_F(SymbolMapsTest, AddressesAreKeptIn32Bits) {
    VElfOptions::mIsLogFile = 1;
    const TemporaryFolder folder;
    ASSERT_TRUE(CreateLogFile(folder.Path("x.elf")));
    FileWithSymbols file(ElfImage(ElfClass::Class64)
                             .Symbol({"highest", 0xFFFFFFFF, 4})
                             .Symbol({"far", 0x1'0000'2000, 4}));
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    CloseLogFile();
    EXPECT_EQ(folder.Read("x.log"),
              "Warning: Symbol 'far' has 64-bit address 0x0000000100002000 overriding 32-bit "
              "address limitation of current ELF-Reader version. The address is trimmed to 32 bit "
              "size!!\n\n");
    const Elf32_Sym* symbol = file->FindSymbolByAddress(0x2000, "");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->st_value, 0x1'0000'2000U);
    EXPECT_EQ(file.AddressOf("far"), 0x2000U);
}

TEST_F(SymbolMapsTest, FullMannerKeepsWholeAddressesAndSizes) {
    VElfOptions::mIsFullReading = 1;
    FileWithSymbols file(ElfImage(ElfClass::Class64)
                             .Symbol({"near", 0x2000, 4})
                             .Symbol({"huge", 0x1'0000'2000, 0x1'0000'0000}));
    ASSERT_TRUE(file->LoadSymbolMap(file->mSymbolMap));
    EXPECT_EQ(file.NameAt(0x2000, ""), "near");
    EXPECT_EQ(file.NameAt(0x1'0000'2000, ""), "huge");
    EXPECT_EQ(file->FindSymbolByAddress(0x1'0000'2000, "")->st_size, 0x1'0000'0000U);
    EXPECT_EQ(file.AddressOf("huge"), 0x1'0000'2000U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_UNKNOWN);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
