// The mapping of compile units: what counts as a unit, the slide, the search, and what the log says
// about it; then the loading of units.
#include "diagnostics/ErrorState.h"
#include "nodes/VDebugInfoNode.h"
#include "support/DwarfSections.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// A unit whose length field holds `length`, with a version and an address size.
std::string UnitBytes(std::uint32_t length, std::uint32_t version = 4, std::uint32_t size = 4,
                      ByteOrder byteOrder = ByteOrder::Little) {
    ByteWriter writer(byteOrder);
    writer.U32(length).U16(version).U32(0).U8(size).PadTo(std::size_t{length} + 4);
    return writer.Content();
}

ElfImage ImageOf(const std::string& debugInfo, ElfSectionOverrides overrides = {},
                 ElfClass elfClass = ElfClass::Class32) {
    return ElfImage(elfClass)
        .Section(".debug_info", debugInfo, overrides)
        .Section(".debug_abbrev", "");
}

class CompileUnitMappingTest : public testing::Test {
protected:
    CompileUnitMappingTest() { VElfOptions::mIsLogFile = 1; }

    /// Maps the units of an image; returns them as "start+length".
    std::vector<std::string> Map(const ElfImage& image) {
        gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;
        SectionRun run(image);
        EXPECT_TRUE(run.Init());
        testing::internal::CaptureStdout();
        mResult = run.Section().MapCompileUnits();
        testing::internal::GetCapturedStdout();
        mLog = run.Log();
        return run.Units();
    }

    ScopedReaderState mState;
    bool mResult = false;
    std::string mLog;
};

constexpr auto sSizeError = ELFReadErrorEnum::ELFERR_COMPILE_UNIT_SIZE;

TEST_F(CompileUnitMappingTest, HeadersOfBothFormats) {
    for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
        DwarfSections sections(byteOrder);
        sections.Unit({Die(DW_TAG_compile_unit, {Name("unit")})});
        sections.Unit({.entries = {Die(DW_TAG_compile_unit, {Name("unit")})},
                       .version = 3,
                       .addressSize = 8,
                       .is64BitDwarf = true});
        SectionRun run(ElfImage(ElfClass::Class64, byteOrder) + sections);
        ASSERT_TRUE(run.Read());
        EXPECT_THAT(run.Units(), ElementsAre("0+17", "17+29"));
        const VCompileUnitHeader& narrow = *run.Section().mCompileUnits[0];
        EXPECT_EQ(narrow.mHeaderSize, 11U);
        EXPECT_EQ(narrow.mTargetAddressSize, 4);
        EXPECT_FALSE(narrow.mIs64BitDwarf);
        const VCompileUnitHeader& wide = *run.Section().mCompileUnits[1];
        EXPECT_EQ(wide.mHeaderSize, 23U);
        EXPECT_EQ(wide.mDwarfVersion, 3);
        EXPECT_EQ(wide.mTargetAddressSize, 8);
        EXPECT_TRUE(wide.mIs64BitDwarf);
        EXPECT_EQ(wide.mIndex, 1U);
        EXPECT_EQ(run.Section().mCompileUnitRanges.FindElement(wide.mFilePos + 23, 1), &wide);
        EXPECT_THAT(run.Outline(), ElementsAre("0:compile_unit unit", "0:compile_unit unit"));
    }
}

TEST_F(CompileUnitMappingTest, EscapeValuesAreLengthsInFilesOfClass32) {
    for (const std::uint32_t escape : {0xFFFFFFF0U, 0xFFFFFFFFU}) {
        ByteWriter unit;
        unit.U32(escape).U64(16).U16(4).U64(0x1'0000'0007).U8(8).PadTo(28);
        EXPECT_THAT(Map(ImageOf(unit.Content(), {}, ElfClass::Class64)), ElementsAre("0+28"));
        EXPECT_TRUE(mResult);
        EXPECT_THAT(mLog, HasSubstr("arbTabOffsdet=7, targetAddressSize=8\n"));
        EXPECT_THAT(Map(ImageOf(unit.Content())), IsEmpty());
        EXPECT_FALSE(mResult);
    }
    ByteWriter unit;
    unit.U32(0xFFFFFFEF).PadTo(40);
    EXPECT_THAT(Map(ImageOf(unit.Content(), {}, ElfClass::Class64)), IsEmpty());
    // The 64-bit length may be anything.
    for (const std::uint64_t length :
         {std::uint64_t{15}, std::uint64_t{29}, std::uint64_t{1} << 32U, ~std::uint64_t{0},
          ~std::uint64_t{0} - 11}) {
        ByteWriter wide;
        wide.U32(0xFFFFFFFF).U64(length).U16(4).PadTo(40);
        EXPECT_THAT(Map(ImageOf(wide.Content(), {}, ElfClass::Class64)), IsEmpty());
        EXPECT_FALSE(mResult);
    }
}

TEST_F(CompileUnitMappingTest, LimitsOfHeaders) {
    const auto isMapped = [this](const std::string& unit) {
        const bool isOne = Map(ImageOf(unit)).size() == 1;
        EXPECT_EQ(mResult, isOne);
        EXPECT_EQ(gElfReaderErrorFlag == sSizeError, !isOne);
        return isOne;
    };
    EXPECT_FALSE(isMapped(UnitBytes(11)));
    EXPECT_THAT(mLog, HasSubstr("[Skipping Compile unit: Length too short for valid compile unit]\n"
                                "Error: Compile unit size is overflowing section size.\n"));
    EXPECT_TRUE(isMapped(UnitBytes(12)));
    EXPECT_THAT(mLog, HasSubstr("@: Mapping compile units...\n"
                                "1.@: 0: file_pos=0x00000044, length=0x0000000c, dwarf_version=4, "
                                "arbTabOffsdet=0, targetAddressSize=4\n"));
    for (const std::uint32_t version : {2U, 3U, 4U, 5U, 6U}) {
        EXPECT_TRUE(isMapped(UnitBytes(20, version))) << version;
    }
    for (const std::uint32_t version : {0U, 1U, 7U, 0xFFFFU}) {
        EXPECT_FALSE(isMapped(UnitBytes(20, version))) << version;
    }
    EXPECT_THAT(mLog, HasSubstr("[Skipping Compile unit: Unsupported DWARF version ( -1 )]\n"));
    EXPECT_TRUE(isMapped(UnitBytes(20, 4, 12)));
    EXPECT_FALSE(isMapped(UnitBytes(20, 4, 13)));
    EXPECT_THAT(mLog,
                HasSubstr("[Skipping Compile unit: Unsupported target address size ( 13 )]\n"));
    EXPECT_TRUE(isMapped(UnitBytes(20).substr(0, 24)));
    EXPECT_FALSE(isMapped(UnitBytes(20).substr(0, 23)));
    EXPECT_THAT(mLog, HasSubstr("[Skipping Compile unit: Invalid length ( 56 ) is overflowing "
                                "section end ( 75 )]\n"));
    // Zero bytes after the last unit are not an error.
    EXPECT_THAT(Map(ImageOf(UnitBytes(20) + std::string(3, '\0'))), ElementsAre("0+24"));
    EXPECT_FALSE(mResult);
}

TEST_F(CompileUnitMappingTest, EmptySectionHasNoUnits) {
    for (const std::uint16_t machine : {std::uint16_t{40}, std::uint16_t{118}}) {
        EXPECT_THAT(Map(ImageOf("").Machine(machine)), IsEmpty());
        EXPECT_TRUE(mResult);
    }
}

TEST_F(CompileUnitMappingTest, SlideGoesAsFarAsTheAlignment) {
    for (const std::uint32_t alignment : {0U, 1U, 2U, 4U, 32U}) {
        const std::uint32_t limit = alignment > 0 ? alignment - 1 : 0;
        const auto image = [&](std::uint32_t gap) {
            return ImageOf(UnitBytes(20) + std::string(gap, '\0') + UnitBytes(30),
                           {.alignment = alignment});
        };
        EXPECT_THAT(Map(image(limit)), ElementsAre("0+24", std::to_string(24 + limit) + "+34"));
        EXPECT_TRUE(mResult);
        Map(image(limit + 1));
        EXPECT_FALSE(mResult) << alignment;
    }
    // The end of a unit counts from the unslid position, so nothing can be missed by the slide.
    EXPECT_THAT(Map(ImageOf(std::string(2, '\0') + UnitBytes(20).substr(0, 22), {.alignment = 4})),
                ElementsAre("2+24"));
    Map(ImageOf(UnitBytes(20), {.alignment = 33}));
    EXPECT_FALSE(mResult);
    EXPECT_EQ(gElfReaderErrorFlag, sSizeError);
    EXPECT_THAT(mLog, Not(HasSubstr("Mapping compile units")));
}

TEST_F(CompileUnitMappingTest, SearchGoesBackAndThenForward) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    // The first unit claims ten bytes of the second one. The candidate lies one byte after the
    // position to which the search moves.
    EXPECT_THAT(Map(ImageOf(UnitBytes(110).substr(0, 104) + UnitBytes(40))),
                ElementsAre("0+114", "104+44"));
    EXPECT_TRUE(mResult);
    EXPECT_THAT(mLog, HasSubstr("Try Read corrupted compile unit: begin found at offset=-11!!!\n"));
    EXPECT_THAT(mLog, HasSubstr("Retry No.12: Try Read compile unit from file_pos(dec): 160 \n"));
    // Meaningless bytes between the units.
    EXPECT_THAT(Map(ImageOf(UnitBytes(110) + std::string(41, '\xFF') + UnitBytes(40))),
                ElementsAre("0+114", "155+44"));
    EXPECT_THAT(mLog, HasSubstr("Try Read corrupted compile unit: begin found at offset=41!!!\n"));
    EXPECT_TRUE(mResult);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_UNKNOWN);
}

TEST_F(CompileUnitMappingTest, SearchStopsAtThePreviousUnit) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    EXPECT_THAT(Map(ImageOf(UnitBytes(16) + std::string(200, '\xFF'))), ElementsAre("0+20"));
    EXPECT_TRUE(mResult);
    EXPECT_EQ(gElfReaderErrorFlag, sSizeError);
    // 19 steps back from 72 to 53, then 41 forward.
    EXPECT_THAT(mLog, HasSubstr("Retry No.20: Try Read compile unit from file_pos(dec): 58 \n"
                                "[Skipping Compile unit: "));
    EXPECT_THAT(mLog, HasSubstr("Retry offset 53 reached previous compile unit 53, now search "
                                "forward.\n"
                                "Retry No.41: Try Read compile unit from file_pos(dec): 78 \n"));
    EXPECT_THAT(mLog, HasSubstr("Retry No.81: Try Read compile unit from file_pos(dec): 118 \n"));
    EXPECT_THAT(mLog, Not(HasSubstr("Retry No.82")));
    EXPECT_THAT(mLog, HasSubstr(">>>>Compile unit with invalid size is found. We can't process "
                                "following compile units! [Elf reader doesn't report error because "
                                "the option ELF_TRY_READ_CORRUPTED_COMPILE_UNITS is set.]\n"));
}

TEST_F(CompileUnitMappingTest, SearchNeverLeavesTheSection) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    const ElfImage image = ElfImage()
                               .Section(".before", UnitBytes(60))
                               .Section(".debug_info", std::string(20, '\xFF') + UnitBytes(20))
                               .Section(".debug_abbrev", "");
    EXPECT_THAT(Map(image), ElementsAre("20+24"));
    EXPECT_TRUE(mResult);
}

TEST_F(CompileUnitMappingTest, ReadAheadWindowMapsTheSame) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    const ElfImage image = ImageOf(UnitBytes(5000).substr(0, 4990) + UnitBytes(40) +
                                   std::string(30, '\xFF') + UnitBytes(3000));
    const std::vector<std::string> units = Map(image);
    EXPECT_EQ(units.size(), 3U);
    for (const std::int32_t window : {1, 100, 4096, 0x7FFFFFFF, -5}) {
        VElfOptions::mElfFileReadBufferSize = window;
        EXPECT_EQ(Map(image), units) << window;
    }
}

TEST_F(CompileUnitMappingTest, SectionsBeyondTheFileFail) {
    // The last unit claims bytes that the file doesn't have.
    SectionRun cut(ImageOf(UnitBytes(20) + UnitBytes(0x10000).substr(0, 100), {.size = 0x20000}));
    EXPECT_FALSE(cut.Read());
    EXPECT_EQ(gElfReaderErrorFlag, sSizeError);
    SectionRun whole(ImageOf(UnitBytes(0x1000).substr(0, 100), {.size = 0x1004}));
    EXPECT_FALSE(whole.Read());
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_READ_FAILED);
    for (const std::uint64_t offset : {std::uint64_t{0x80000000}, ~std::uint64_t{0} - 50}) {
        Map(ImageOf(UnitBytes(20), {.offset = offset}, ElfClass::Class64));
        EXPECT_FALSE(mResult);
        EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    Map(ImageOf(UnitBytes(20), {.size = ~std::uint64_t{0}}, ElfClass::Class64));
    EXPECT_FALSE(mResult);
}

TEST_F(CompileUnitMappingTest, LaterVersionsStopTheReadWhenTheirTurnComes) {
    DwarfSections sections;
    sections.Unit({Die(DW_TAG_compile_unit, {Name("first")})});
    sections.RawInfo(UnitBytes(20, 5));
    sections.Unit({Die(DW_TAG_compile_unit, {Name("last")})});
    SectionRun run(ElfImage() + sections);
    EXPECT_FALSE(run.Read());
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_DWARF_VERSION);
    EXPECT_THAT(run.Outline(), ElementsAre("0:compile_unit first"));
    EXPECT_THAT(run.Log(), HasSubstr("dwarf_version=5"));
    EXPECT_THAT(run.Log(), HasSubstr("@: Failed to process debug section.\n"));
}

TEST_F(CompileUnitMappingTest, OverlappingUnitsKeepTheFirstNodeOfAPlace) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    // The first unit ends within the second one and reads its entries as its own.
    DwarfSections inner;
    inner.Unit({Die(DW_TAG_variable, {Name("a")}), Die(DW_TAG_variable, {Name("b")})});
    const std::string second = inner.Info();
    DwarfSections sections;
    sections.Unit({.entries = {Die(DW_TAG_variable, {Name("first")})}, .length = 40});
    const std::size_t missing = 44 - sections.Info().size();
    sections.RawInfo(std::string(missing - 14, '\0') + second);
    SectionRun run(ElfImage() + sections);
    ASSERT_TRUE(run.Read());
    EXPECT_THAT(run.Units(), ElementsAre("0+44", "30+" + std::to_string(second.size())));
    const auto nodes = run.Section().mDieNodes.InOffsetOrder();
    EXPECT_EQ(std::ranges::count_if(
                  nodes, [](const VDebugInfoNode* node) { return node->GetName() == "a"; }),
              1);
}

TEST_F(CompileUnitMappingTest, AUnitWhosePlaceIsTakenIsTheFirstOfItsKind) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    const auto unit = [](DwarfSections& sections, const std::string& entries,
                         std::optional<std::uint64_t> length) {
        const std::uint64_t table = sections.RawAbbreviations(
            Uleb128(1) + Uleb128(DW_TAG_compile_unit) + '\1' + Uleb128(DW_AT_name) +
            Uleb128(DW_FORM_string) + std::string(2, '\0') + Uleb128(2) + Uleb128(DW_TAG_variable) +
            '\0' + Uleb128(DW_AT_name) + Uleb128(DW_FORM_string) + Uleb128(DW_AT_location) +
            Uleb128(DW_FORM_block1) + std::string(3, '\0'));
        sections.Unit(
            {.entries = {Die::Raw(entries)}, .length = length, .abbreviationOffset = table});
    };
    using namespace std::string_literals;
    DwarfSections inner;
    unit(inner, "\1s\0\2x\0\5\3\0\x10\0\0\0"s, {});
    DwarfSections sections;
    unit(sections, "\1f\0\0"s, 40);
    // The first unit ends after the entry of the second one and reads it as its own.
    sections.RawInfo(std::string(30 - sections.Info().size(), '\0') + inner.Info());
    const ReadRun run =
        ReadImage((ElfImage().Symbol({"main", 0x8000, 4, 0x12}) + sections).Build());
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(), ElementsAre("x@1000:0"));
    const DataModel::ObjectId variable = run.model->GetGlobalData("x");
    EXPECT_EQ(run.model->Object(run.model->CompileUnitOf(variable)).name, "s");
}

TEST_F(CompileUnitMappingTest, DebugSectionsOfDsPicHoldEverySecondByte) {
    const auto spread = [](const std::string& bytes) {
        std::string raw;
        for (const char byte : bytes) {
            raw += byte;
            raw += '\xEE';
        }
        return raw;
    };
    // Sections larger and smaller than a read window of their units.
    for (const std::size_t count : {std::size_t{1}, std::size_t{300}}) {
        DwarfSections sections;
        sections.Unit(
            {.entries = std::vector<Die>(
                 count, Die(DW_TAG_variable, {Name("x", DW_FORM_strp),
                                              Number(DW_AT_location, DW_FORM_sec_offset, 0)})),
             .addressSize = 2});
        sections.LocationListEntry(0, 8, {{DW_OP_addr, {0x800}}});
        SectionRun run(ElfImage()
                           .Machine(118)
                           .Section(".debug_info", spread(sections.Info()))
                           .Section(".debug_abbrev", spread(sections.Abbreviations()))
                           .Section(".debug_str", spread(sections.Strings()))
                           .Section(".debug_loc", spread(sections.Locations())));
        ASSERT_TRUE(run.Read());
        EXPECT_EQ(run.Outline(), std::vector<std::string>(count, "0:variable x"));
        EXPECT_EQ(run.Section().mDieNodes.InOffsetOrder().back()->GetLocationAddress(), 0x800U);
    }
}

TEST_F(CompileUnitMappingTest, EveryByteMayStartASearch) {
    VElfOptions::mIsLogFile = 0;
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    std::string units;
    for (int index = 0; index < 20'000; ++index) {
        units += UnitBytes(12) + std::string(20, '\xFF');
    }
    EXPECT_EQ(Map(ImageOf(units)).size(), 20'000U);
    EXPECT_TRUE(mResult);
}

TEST_F(CompileUnitMappingTest, UnitsWithoutEntriesByTheHundredThousand) {
    VElfOptions::mIsLogFile = 0;
    constexpr std::size_t count = 200'000;
    std::string units;
    for (std::size_t index = 0; index < count; ++index) {
        units += UnitBytes(12);
    }
    SectionRun run(ImageOf(units));
    ASSERT_TRUE(run.Read());
    EXPECT_EQ(run.Section().mCompileUnits.size(), count);
    EXPECT_EQ(run.Section().mDieNodes.Size(), 0U);
}

// Every unit covers nearly all of the next one and reads its entries as its own.
TEST_F(CompileUnitMappingTest, UnitsThatAllOverlap) {
    VElfOptions::mIsLogFile = 0;
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    constexpr std::size_t count = 10'000;
    constexpr std::size_t entryCount = 21;
    std::string info;
    for (std::size_t index = 0; index < count; ++index) {
        info += UnitBytes(59).substr(0, 11) + std::string(entryCount, '\1');
    }
    info += std::string(31, '\0');
    const std::string abbreviations = "\1" + Uleb128(DW_TAG_label) + std::string(3, '\0');
    SectionRun run(ElfImage().Section(".debug_info", info).Section(".debug_abbrev", abbreviations));
    ASSERT_TRUE(run.Read());
    EXPECT_EQ(run.Section().mCompileUnits.size(), count);
    EXPECT_EQ(run.Section().mDieNodes.InOffsetOrder().size(), count * entryCount);
}

TEST_F(CompileUnitMappingTest, BucketsFollowTheSizeOfTheSection) {
    const auto buckets = [](std::uint64_t size) {
        SectionRun run(ImageOf("x", {}, ElfClass::Class64));
        run.File().mSecDebugInfo.sh_size = size;
        EXPECT_TRUE(run.Init());
        return run.Section().EstimateBestHashMapBucketsCountFromDebugSectionSize();
    };
    EXPECT_EQ(buckets(0), 12347);
    EXPECT_EQ(buckets(926'024), 12347);
    EXPECT_EQ(buckets(926'025), 15511);
    EXPECT_EQ(buckets(1'350'003'075), 19000013);
    EXPECT_EQ(buckets(0x100000000), 19000013);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
