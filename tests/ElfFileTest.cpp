#include "container/VElfFile.h"
#include "core/VElfOptions.h"
#include "diagnostics/ErrorState.h"
#include "support/ElfImage.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace std::string_literals;
using enum ELFReadErrorEnum;

constexpr std::size_t sSectionOffsetField32 = 32;

/// A file whose headers have been read from an image, as far as that went.
class OpenedFile {
public:
    explicit OpenedFile(const std::string& image)
        : mFile(mFolder.Write("image.elf", image), nullptr)
        , mResult(mFile.ReadElfHeader() && mFile.LoadSectionInfos()) {}
    explicit OpenedFile(const ElfImage& image)
        : OpenedFile(image.Build()) {}

    [[nodiscard]] bool IsGood() const { return mResult; }
    VElfFile* operator->() { return &mFile; }

private:
    TemporaryFolder mFolder;
    VElfFile mFile;
    bool mResult;
};

ElfImage SmallElf(ElfClass elfClass = ElfClass::Class32, ByteOrder byteOrder = ByteOrder::Little) {
    return ElfImage(elfClass, byteOrder).Symbol({"gSpeed", 0x1000, 4});
}

/// The error of a read that must fail; standard output is thrown away.
ELFReadErrorEnum ErrorOfElf(const std::string& image) {
    gElfReaderErrorFlag = ELFERR_UNKNOWN;
    testing::internal::CaptureStdout();
    const bool isGood = OpenedFile(image).IsGood();
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(isGood);
    return gElfReaderErrorFlag;
}

ELFReadErrorEnum ErrorOfElf(const ElfImage& image) {
    return ErrorOfElf(image.Build());
}

class ElfFileTest : public testing::Test {
    ScopedReaderState mState;
};

TEST_F(ElfFileTest, ReadsHeadersOfEachClassAndByteOrder) {
    for (const ElfClass elfClass : {ElfClass::Class32, ElfClass::Class64}) {
        for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
            OpenedFile file(SmallElf(elfClass, byteOrder)
                                .Machine(8)
                                .Section(".debug_info", "abcdef", {.entrySize = 7}));
            ASSERT_TRUE(file.IsGood());
            EXPECT_EQ(file->mIs64Bit, elfClass == ElfClass::Class64);
            EXPECT_EQ(file->mIsMSBData, byteOrder == ByteOrder::Big);
            EXPECT_EQ(file->mElfHeader.e_machine, 8);
            EXPECT_EQ(file->mElfHeader.e_type, 2);
            EXPECT_EQ(file->mSecDebugInfo.sh_size, 6U);
            EXPECT_EQ(file->mSecDebugInfo.sh_entsize, 7U);
            EXPECT_EQ(file->mSecDebugInfo.sh_addralign, 1U);
            EXPECT_EQ(file->mSecSymtab.sh_offset, file->mSecDebugInfo.sh_offset + 6);
            EXPECT_TRUE(file->mSecSymtab.IsPresent());
            EXPECT_FALSE(file->mSecDebugLoc.IsPresent());
        }
    }
}

TEST_F(ElfFileTest, MachineDecidesTargetProperties) {
    struct Case {
        std::uint16_t machine;
        bool isWordAddressed;
        bool isDsPic;
    };
    for (const Case& each :
         {Case{141, true, false}, Case{118, false, true}, Case{40, false, false}}) {
        OpenedFile file(SmallElf().Machine(each.machine));
        EXPECT_EQ(file->mIsWordAddressedTarget, each.isWordAddressed) << each.machine;
        EXPECT_EQ(file->mIsDsPicTarget, each.isDsPic) << each.machine;
    }
}

TEST_F(ElfFileTest, FirstWrongByteOfTheIdentificationDecidesTheError) {
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_EQ(ErrorOfElf(SmallElf().Patch(index, "x")), ELFERR_NOT_ELF) << index;
    }
    // Class, encoding and version.
    const auto identification = [](const std::string& bytes) { return SmallElf().Patch(4, bytes); };
    EXPECT_EQ(ErrorOfElf(identification("\0\0\5"s)), ELFERR_ELF_CLASS);
    EXPECT_EQ(ErrorOfElf(identification("\3")), ELFERR_ELF_CLASS);
    EXPECT_EQ(ErrorOfElf(identification("\1\0\5"s)), ELFERR_BYTE_ENCODING);
    EXPECT_EQ(ErrorOfElf(identification("\1\1\2")), ELFERR_ELF_VERSION);
    EXPECT_EQ(ErrorOfElf(identification("\1\1\xFF")), ELFERR_ELF_VERSION);
    // Version 0 passes, and every encoding but 2 is little-endian.
    EXPECT_TRUE(OpenedFile(identification("\1\7\0"s)).IsGood());
}

TEST_F(ElfFileTest, TooShortFilesFailInReading) {
    const std::string image = SmallElf().Build();
    EXPECT_EQ(ErrorOfElf(""), ELFERR_SEEK_FAILED);
    EXPECT_EQ(ErrorOfElf(image.substr(0, 40)), ELFERR_READ_FAILED);
    EXPECT_EQ(ErrorOfElf(image.substr(0, 51)), ELFERR_READ_FAILED);
    EXPECT_EQ(ErrorOfElf(SmallElf(ElfClass::Class64).Build().substr(0, 60)), ELFERR_READ_FAILED);
    // The section table is the last thing in the file.
    EXPECT_EQ(ErrorOfElf(image.substr(0, image.size() - 1)), ELFERR_READ_FAILED);
    EXPECT_EQ(ErrorOfElf(SmallElf().Patch(sSectionOffsetField32, "\xFF\xFF\xFF\x7F"s)),
              ELFERR_SEEK_FAILED);
}

TEST_F(ElfFileTest, MissingSectionsAreToldApart) {
    EXPECT_EQ(ErrorOfElf(ElfImage().Section(".text", "code")), ELFERR_NO_SYMTAB);
    EXPECT_EQ(ErrorOfElf(SmallElf().WithoutStringTable()), ELFERR_NO_STRTAB);
    EXPECT_EQ(ErrorOfElf(SmallElf().SectionNamesIndex(65535)), ELFERR_NO_SYMTAB);
    for (const char* debugSection : {".debug_info", ".debug", ".vdebug"}) {
        EXPECT_TRUE(OpenedFile(ElfImage().Section(debugSection, "x")).IsGood()) << debugSection;
    }
    EXPECT_EQ(ErrorOfElf(ElfImage().Section(".debug_infox", "x")), ELFERR_NO_SYMTAB);
}

TEST_F(ElfFileTest, LastSectionOfANameWins) {
    OpenedFile file(SmallElf().Section(".debug_info", "first").Section(".debug_info", "2nd"));
    EXPECT_EQ(file->mSecDebugInfo.sh_size, 3U);
}

TEST_F(ElfFileTest, OneTableMayHoldSectionNamesAndSymbolNames) {
    OpenedFile file(SmallElf().SharedStringTable());
    ASSERT_TRUE(file.IsGood());
    EXPECT_EQ(file->mSecStrtab.sh_offset, file->mSecShstrtab.sh_offset);
    ASSERT_TRUE(file->LoadStrTabSection());
    EXPECT_STREQ(file->mStrTabBuffer->GetTextAt(1), "gSpeed");
}

TEST_F(ElfFileTest, ExtendedNumberingReachesEverySection) {
    ElfImage image(ElfClass::Class64, ByteOrder::Big);
    for (int index = 0; index < 3000; ++index) {
        image.Section(".text." + std::to_string(index), "");
    }
    image.Section(".debug_info", "info").ExtendedNumbering();
    OpenedFile file(image);
    EXPECT_TRUE(file.IsGood());
    EXPECT_EQ(file->mSecDebugInfo.sh_size, 4U);

    // With more than 65279 sections, the index of their names doesn't fit either.
    image.SectionNamesIndex(0xFFFF);
    EXPECT_EQ(ErrorOfElf(image), ELFERR_NO_SYMTAB);
    VElfOptions::mIsFullReading = 1;
    OpenedFile full(image);
    EXPECT_TRUE(full.IsGood());
    EXPECT_EQ(full->mSecDebugInfo.sh_size, 4U);
}

TEST_F(ElfFileTest, WrongOffsetsOfSectionNamesAreSurvived) {
    EXPECT_EQ(ErrorOfElf(ElfImage().Section(".debug_info", "x", {.nameOffset = 0xFFFFFFFF})),
              ELFERR_NO_SYMTAB);
    OpenedFile file(SmallElf().Section(".debug_info", "x", {.nameOffset = 0x7FFFFFFF}));
    EXPECT_TRUE(file.IsGood());
    EXPECT_FALSE(file->mSecDebugInfo.IsPresent());
}

TEST_F(ElfFileTest, LongPathsAreCutInTheNameAlone) {
    const TemporaryFolder folder;
    folder.Write("image.elf", SmallElf().Build());
    std::string name;
    for (int repetition = 0; repetition < 150; ++repetition) {
        name += "./";
    }
    const std::string path = folder.Path(name + "image.elf");
    VElfFile file(path, nullptr);
    EXPECT_EQ(file.GetInputFileName(), path.substr(0, 260));
    EXPECT_TRUE(file.ReadElfHeader());
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
