// The headers of COFF files in the TI layout, from the file to the section records.
#include "container/VElfFile.h"
#include "diagnostics/ErrorState.h"
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace std::string_literals;
using enum ELFReadErrorEnum;

/// A file whose headers have been read from an image, as far as that went.
class OpenedCoffFile {
public:
    explicit OpenedCoffFile(const std::string& image)
        : mFile(mFolder.Write("image.out", image), nullptr)
        , mResult(mFile.ReadCoffHeader(mHeader) && mFile.ReadCoffSectionHeader(mHeader)) {}
    explicit OpenedCoffFile(const CoffImage& image)
        : OpenedCoffFile(image.Build()) {}

    [[nodiscard]] bool IsGood() const { return mResult; }
    [[nodiscard]] const VCoffFileHeader& Header() const { return mHeader; }
    VElfFile* operator->() { return &mFile; }

private:
    TemporaryFolder mFolder;
    VElfFile mFile;
    VCoffFileHeader mHeader;
    bool mResult;
};

/// The error of a read that must fail; output of the loading is discarded.
ELFReadErrorEnum ErrorOfCoff(const std::string& image) {
    gElfReaderErrorFlag = ELFERR_UNKNOWN;
    testing::internal::CaptureStdout();
    const bool isGood = OpenedCoffFile(image).IsGood();
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(isGood);
    return gElfReaderErrorFlag;
}

ELFReadErrorEnum ErrorOfCoff(const CoffImage& image) {
    return ErrorOfCoff(image.Build());
}

CoffImage SmallCoff(ByteOrder byteOrder = ByteOrder::Little) {
    return CoffImage(byteOrder).Section(".debug_info", "abcdef");
}

class CoffFileTest : public testing::Test {
    ScopedReaderState mState;
};

TEST_F(CoffFileTest, HeadersAreLittleEndianWhateverTheTarget) {
    for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
        for (const std::uint16_t optionalHeaderSize : {std::uint16_t{0}, std::uint16_t{28}}) {
            OpenedCoffFile file(CoffImage(byteOrder)
                                    .OptionalHeaderSize(optionalHeaderSize)
                                    .Section(".text", "code")
                                    .Section(".debug", "old")
                                    .Section(".debug_info", "abcdef")
                                    .Section(".debug_abbrev", "xy")
                                    .SymbolCount(3));
            ASSERT_TRUE(file.IsGood());
            EXPECT_EQ(file->mIsMSBData, byteOrder == ByteOrder::Big);
            EXPECT_EQ(file.Header().mVersionId, 0xC2);
            EXPECT_EQ(file.Header().mSectionCount, 4);
            EXPECT_EQ(file.Header().mTimeStamp, 99999999U);
            EXPECT_EQ(file.Header().mSymbolCount, 3U);
            EXPECT_EQ(file.Header().mTargetId, sCoffTargetC6000);
            const std::uint64_t contents = 22 + optionalHeaderSize + 4 * 48;
            EXPECT_EQ(file->mSecDebug.sh_offset, contents + 4);
            EXPECT_EQ(file->mSecDebug.sh_name, 0x6775U) << "characters 5 to 8 of the short name";
            EXPECT_EQ(file->mSecDebugInfo.sh_offset, contents + 7);
            EXPECT_EQ(file->mSecDebugInfo.sh_size, 6U);
            EXPECT_EQ(file->mSecDebugInfo.sh_name, 4U) << "offset of the long name";
            EXPECT_EQ(file->mSecDebugAbbrev.sh_offset, contents + 13);
            EXPECT_EQ(file->mSecDebugAbbrev.sh_entsize, 0U);
            EXPECT_FALSE(file->mSecDebugStr.IsPresent());
        }
    }
}

TEST_F(CoffFileTest, OneFlagAloneTellsTheByteOrder) {
    constexpr std::size_t sFlagsField = 18;
    const auto isBigEndian = [](const std::string& flags) {
        return OpenedCoffFile(SmallCoff().Build().replace(sFlagsField, 2, flags))->mIsMSBData;
    };
    EXPECT_TRUE(isBigEndian("\0\x02"s));
    EXPECT_TRUE(isBigEndian("\xFF\xFF"));
    EXPECT_FALSE(isBigEndian("\xFF\xFD"));
}

TEST_F(CoffFileTest, TargetIdAndOptionDecideOnWordAddressing) {
    struct Case {
        std::int32_t mode;
        std::uint16_t targetId;
        bool isWordAddressed;
    };
    for (const Case& each : {Case{0, 0x92, true}, Case{0, 0x98, true}, Case{0, 0x9D, true},
                             Case{0, 0x97, false}, Case{0, 0x99, false}, Case{16, 0x97, true},
                             Case{1, 0x9D, false}, Case{-16, 0x9D, false}}) {
        VElfOptions::mCoffDwarfAddressMode = each.mode;
        VElfOptions::mIncrementBitFieldAddress = 1;
        OpenedCoffFile file(SmallCoff().Target(each.targetId));
        EXPECT_EQ(file->mIsWordAddressedTarget, each.isWordAddressed) << each.targetId;
        EXPECT_EQ(VElfOptions::mIncrementBitFieldAddress, each.isWordAddressed ? 0 : 1);
    }
}

TEST_F(CoffFileTest, NamesAreTakenExactly) {
    OpenedCoffFile file(CoffImage()
                            // The address after a name of eight characters would continue it.
                            .Section(".debug_i", "x", {.physicalAddress = 0x6F666E})
                            .Section(".vdebug", "x")
                            .Section(".vdbstrtab", "x")
                            .Section(".debug_locx", "x")
                            .Section(".pubtypes", "abc", {.nameOffset = 4})
                            .Section(".debug_str", "first")
                            .Section(".debug_str", "2nd"));
    ASSERT_TRUE(file.IsGood());
    EXPECT_FALSE(file->mSecDebugInfo.IsPresent());
    EXPECT_FALSE(file->mSecVdebug.IsPresent());
    EXPECT_FALSE(file->mSecVdbstrtab.IsPresent());
    EXPECT_FALSE(file->mSecDebugLoc.IsPresent());
    EXPECT_FALSE(file->mSecPubtypes.IsPresent()) << "its name is that of another section";
    EXPECT_EQ(file->mSecDebugStr.sh_size, 3U) << "the last one wins";
}

TEST_F(CoffFileTest, FaultsAreFoundInOrder) {
    const std::string image = SmallCoff().Build();
    EXPECT_EQ(ErrorOfCoff(""), ELFERR_SEEK_FAILED);
    EXPECT_EQ(ErrorOfCoff(image.substr(0, 23)), ELFERR_READ_FAILED);
    EXPECT_EQ(ErrorOfCoff(ElfImage().Section(".debug_info", "x").Build()), ELFERR_FILE_IS_ELF);
    EXPECT_EQ(ErrorOfCoff(std::string(24, '\x7F')), ELFERR_CORRUPTED);

    const CoffImage badName = CoffImage().Section(".text", "x", {.nameOffset = 0});
    EXPECT_EQ(ErrorOfCoff(badName), ELFERR_WRONG_READER);
    EXPECT_EQ(ErrorOfCoff(CoffImage(badName).StringTableLength(1000)), ELFERR_READ_FAILED);
    EXPECT_EQ(ErrorOfCoff(CoffImage(badName).StringTableLength(1000).SymbolCount(1000000)),
              ELFERR_CORRUPTED);
}

TEST_F(CoffFileTest, CountsAreHeldAgainstTheFileSizeIn32Bits) {
    // The file has 22 + 48 + 4 bytes without its symbols.
    EXPECT_TRUE(OpenedCoffFile(CoffImage().Section(".text", "").SymbolCount(0)).IsGood());
    std::string image = CoffImage().Section(".text", "").SymbolCount(0).Build();
    image.resize(18 * 5, '\0');
    image.replace(12, 1, "\x04");
    EXPECT_NE(ErrorOfCoff(image), ELFERR_CORRUPTED);
    image.replace(12, 1, "\x05");
    EXPECT_EQ(ErrorOfCoff(image), ELFERR_CORRUPTED);
    image.replace(12, 1, "\x00"s);
    image.resize(96, '\0');
    image.replace(2, 1, "\x02");
    EXPECT_EQ(ErrorOfCoff(image), ELFERR_CORRUPTED);
    image.push_back('\0');
    EXPECT_EQ(ErrorOfCoff(image), ELFERR_READ_FAILED);
    // Times 18 it is 14 in 32 bits; the table that it promises begins beyond the file.
    EXPECT_EQ(ErrorOfCoff(CoffImage().Section(".text", "").SymbolCount(0x0E38E38F)),
              ELFERR_SEEK_FAILED);
}

TEST_F(CoffFileTest, LongNamesLieInTheStringTableOrFail) {
    const auto named = [](std::uint32_t offset) {
        return CoffImage().Section(".debug_info", "x").Section("", "y", {.nameOffset = offset});
    };
    // The table has 4 bytes of length and 12 of the name.
    EXPECT_EQ(ErrorOfCoff(named(0)), ELFERR_WRONG_READER);
    EXPECT_TRUE(OpenedCoffFile(named(1)).IsGood());
    EXPECT_TRUE(OpenedCoffFile(named(16)).IsGood());
    EXPECT_EQ(ErrorOfCoff(named(17)), ELFERR_WRONG_READER);
    EXPECT_EQ(ErrorOfCoff(named(0x80000000)), ELFERR_WRONG_READER);
    OpenedCoffFile again(named(4));
    EXPECT_EQ(again->mSecDebugInfo.sh_offset, 22U + 2 * 48 + 1);
    // A truncated table cuts the name at its end.
    OpenedCoffFile cut(SmallCoff().StringTableLength(10));
    EXPECT_TRUE(cut.IsGood());
    EXPECT_TRUE(cut->mSecDebug.IsPresent());
    EXPECT_FALSE(cut->mSecDebugInfo.IsPresent());
}

TEST_F(CoffFileTest, AFileThatCannotBeOpenedSaysNothingOnStandardOutput) {
    const TemporaryFolder folder;
    VElfFile file(folder.Path("missing.out"), nullptr);
    VCoffFileHeader header;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(file.ReadCoffHeader(header));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(gElfReaderErrorFlag, ELFERR_OPEN_FAILED);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
