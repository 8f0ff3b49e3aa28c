// Windows images, from the file to the section records and the symbols by address.
#include "support/PeImage.h"

#include "container/VElfFile.h"
#include "diagnostics/ErrorState.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace std::string_literals;
using enum ELFReadErrorEnum;

/// Symbols as "name@value", the value hexadecimal.
class SymbolList final : public IElfSymbolMap {
public:
    void AddSymbol(const Elf32_Sym& symbol) override {
        std::ostringstream text;
        text << symbol.name << '@' << std::hex << symbol.st_value;
        texts.push_back(text.str());
        EXPECT_EQ(symbol.st_info, 0);
        EXPECT_EQ(symbol.st_size, 0U);
    }
    void Clear() override { texts.clear(); }

    std::vector<std::string> texts;
};

class OpenedImage {
public:
    explicit OpenedImage(const std::string& image)
        : mFile(mFolder.Write("image.exe", image), nullptr)
        , mResult(mFile.ReadPEFileDwarfSections()) {}
    explicit OpenedImage(const PeImage& image)
        : OpenedImage(image.Build()) {}

    [[nodiscard]] bool IsGood() const { return mResult; }
    std::vector<std::string> Symbols() {
        SymbolList symbols;
        EXPECT_TRUE(mFile.mPEImage.ReadImageSymbols(symbols));
        return symbols.texts;
    }
    VElfFile* operator->() { return &mFile; }

private:
    TemporaryFolder mFolder;
    VElfFile mFile;
    bool mResult;
};

/// The error of an image that can't be mapped, before it becomes the error of the whole phase.
ELFReadErrorEnum MappingErrorOf(const std::string& content) {
    const TemporaryFolder folder;
    gElfReaderErrorFlag = ELFERR_UNKNOWN;
    VPEImage image;
    EXPECT_FALSE(image.MapPEImage(folder.Write("image.exe", content)));
    return gElfReaderErrorFlag;
}

std::string WithField(const PeImage& image, std::size_t position, const std::string& bytes) {
    return image.Build().replace(PeImage::sSignature + position, bytes.size(), bytes);
}

class PeImageTest : public testing::Test {
    ScopedReaderState mState;
};

TEST_F(PeImageTest, SectionsAreFoundByShortAndLongNames) {
    const PeImage image = PeImage()
                              .Section(".text", "code")
                              .Section(".debug", "old")
                              .Section(".debug_info", "abcdef", {.virtualSize = 4})
                              .Section(".debug_abbrev", "ab")
                              .Section(".debug_i", "x")
                              .Section(".vdebug", "x")
                              .Section(".debug_str", "first")
                              .Section(".debug_str", "2nd");
    OpenedImage file(image);
    ASSERT_TRUE(file.IsGood());
    EXPECT_EQ(file->mSecDebug.sh_size, 3U);
    EXPECT_EQ(file->mSecDebugInfo.sh_name, 0xFFFFFFFF);
    EXPECT_EQ(file->mSecDebugInfo.sh_offset, image.HeadersSize() + 7);
    EXPECT_EQ(file->mSecDebugInfo.sh_size, 4U) << "the virtual size, not that of the raw data";
    EXPECT_EQ(file->mSecDebugInfo.sh_addr, 0x3000U);
    EXPECT_EQ(file->mSecDebugInfo.sh_entsize, 0U);
    EXPECT_EQ(file->mSecDebugStr.sh_size, 3U) << "the last one wins";
    EXPECT_FALSE(file->mSecVdebug.IsPresent());
    EXPECT_EQ(file->mFileSize, static_cast<std::int64_t>(image.Build().size()));
}

TEST_F(PeImageTest, NamesByOffsetAreDecimalAndLieInTheFile) {
    const auto named = [](const std::string& field) {
        return PeImage().Section(".debug_info", "x", {.nameField = field});
    };
    EXPECT_TRUE(OpenedImage(named("/4"))->mSecDebugInfo.IsPresent());
    EXPECT_TRUE(OpenedImage(named("/0000004"))->mSecDebugInfo.IsPresent());
    for (const char* other : {"/5", "/", "/x4", "/4x", "//AAAAAE", " /4"}) {
        OpenedImage file(named(other));
        EXPECT_TRUE(file.IsGood()) << other;
        EXPECT_FALSE(file->mSecDebugInfo.IsPresent()) << other;
    }
    EXPECT_FALSE(OpenedImage(named("/16")).IsGood()) << "behind the last byte of the file";
    EXPECT_FALSE(OpenedImage(named("/9999999")).IsGood());
    const std::string image = named("/4").Build();
    EXPECT_FALSE(OpenedImage(image.substr(0, image.size() - 1)).IsGood()) << "no terminator";

    // Without a symbol table there is no string table, and such a name is a name like any other.
    OpenedImage stripped(named("/4").SymbolTable(0, 0));
    EXPECT_TRUE(stripped.IsGood());
    EXPECT_FALSE(stripped->mSecDebugInfo.IsPresent());
}

TEST_F(PeImageTest, OnlyALibraryHasAnImageBase) {
    const auto imageBase = [](const PeImage& image) { return OpenedImage(image)->mImageBase; };
    EXPECT_EQ(imageBase(PeImage(PeMachine::I386).ImageBase(0x10000000)), 0U);
    EXPECT_EQ(imageBase(PeImage(PeMachine::X86_64).ImageBase(0x140000000)), 0U);
    EXPECT_EQ(imageBase(PeImage(PeMachine::I386).ImageBase(0x10000000).Dll()), 0x10000000U);
    EXPECT_EQ(imageBase(PeImage(PeMachine::X86_64).ImageBase(0x180000000).Dll()), 0x180000000U);
}

TEST_F(PeImageTest, SymbolsOfSectionsAreKeptWithTheirAddresses) {
    OpenedImage file(PeImage()
                         .Section(".text", "code")
                         .Section(".data", "data", {.virtualAddress = 0xFFFFFFF0})
                         .Section(".zero", "zero", {.virtualAddress = 0})
                         .Symbol({"start", 0, 1})
                         .Symbol({"main", 0x10, 1})
                         .Symbol({"eight888", 0x20, 1})
                         .Symbol({"gLongNameOfAVariable", 0x30, 2})
                         .Symbol({"undefined", 0x40, 0})
                         .Symbol({"absolute", 0x50, -1})
                         .Symbol({"debug", 0x60, -2})
                         .Symbol({"beyond", 0x70, 4})
                         .Symbol({"", 0x80, 1})
                         .Symbol({"atNull", 0, 3})
                         .Symbol({"file", 0x90, 1, 2})
                         .Symbol({"last", 0xA0, 3}));
    ASSERT_TRUE(file.IsGood());
    EXPECT_THAT(file.Symbols(),
                ElementsAre("start@1000", "main@1010", "eight888@1020",
                            "gLongNameOfAVariable@100000020", "file@1090", "last@a0"));
    EXPECT_TRUE(file->ReadPEFileSymbolTable());
    const Elf32_Sym* symbol = file->FindSymbolByAddress(0x1020, "");
    ASSERT_NE(symbol, nullptr);
    EXPECT_STREQ(symbol->name, "eight888");
    EXPECT_FALSE(file->ReadPEFileSymbolTable()) << "the map isn't empty";
}

TEST_F(PeImageTest, SymbolTablesThatLieAboutTheirPlaceEndWithTheFile) {
    const PeImage image =
        PeImage().Section(".text", "code").Symbol({"first", 1, 1}).Symbol({"secondLongName", 2, 1});
    const auto table = static_cast<std::uint32_t>(image.HeadersSize()) + 4;
    EXPECT_THAT(OpenedImage(PeImage(image).SymbolTable(table, 0)).Symbols(), IsEmpty());
    EXPECT_THAT(OpenedImage(PeImage(image).SymbolTable(0, 2)).Symbols(), IsEmpty());
    EXPECT_THAT(OpenedImage(PeImage(image).SymbolTable(0xFFFFFFFF, 2)).Symbols(), IsEmpty());
    // The long name is searched for after the last symbol, where nothing is.
    EXPECT_THAT(OpenedImage(PeImage(image).SymbolTable(table, 0xFFFFFFFF)).Symbols(),
                ElementsAre("first@1001"));
    EXPECT_THAT(OpenedImage(image.Build().substr(0, table + 30)).Symbols(),
                ElementsAre("first@1001"));
    // The long name lacks its terminator.
    const std::string whole = image.Build();
    EXPECT_THAT(OpenedImage(whole.substr(0, whole.size() - 1)).Symbols(),
                ElementsAre("first@1001"));
}

TEST_F(PeImageTest, WhateverIsWrongTheFileCannotBeOpened) {
    const PeImage good = PeImage().Section(".debug_info", "x");
    const std::string image = good.Build();
    EXPECT_EQ(MappingErrorOf(""), ELFERR_OPEN_FAILED);
    EXPECT_EQ(MappingErrorOf("M"), ELFERR_FILE_TYPE);
    EXPECT_EQ(MappingErrorOf("A text that isn't an image at all."), ELFERR_FILE_TYPE);
    EXPECT_EQ(MappingErrorOf("MZ"), ELFERR_CORRUPTED);
    EXPECT_EQ(MappingErrorOf(image.substr(0, good.HeadersSize() - 1)), ELFERR_CORRUPTED);
    EXPECT_EQ(MappingErrorOf(WithField(good, 6, "\xFF\xFF")), ELFERR_CORRUPTED);
    EXPECT_EQ(MappingErrorOf(WithField(good, 20, "\xFF\xFF")), ELFERR_CORRUPTED);
    EXPECT_EQ(MappingErrorOf(std::string(image).replace(0x3C, 4, "\xFF\xFF\xFF\xFF")),
              ELFERR_CORRUPTED);
    EXPECT_EQ(MappingErrorOf(WithField(good, 12, "\xFF\xFF\xFF\xFF")), ELFERR_CORRUPTED);

    const TemporaryFolder folder;
    for (const std::string& path : {folder.Write("text.exe", "text"), folder.Path("missing.exe"),
                                    folder.Path(""), folder.Write("cut.exe", "MZ")}) {
        gElfReaderErrorFlag = ELFERR_UNKNOWN;
        testing::internal::CaptureStdout();
        EXPECT_FALSE(VElfFile(path, nullptr).ReadPEFileDwarfSections());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(gElfReaderErrorFlag, ELFERR_OPEN_FAILED) << path;
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
