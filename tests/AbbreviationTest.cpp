// Abbreviation tables: what belongs to a table, and how codes are found in it.
#include "dwarf/VAbrSectionBuffer.h"
#include "nodes/VDebugInfoNode.h"
#include "support/DwarfSections.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// An abbreviation without attributes.
std::string Plain(std::uint32_t code, std::uint32_t tag) {
    return Uleb128(code) + Uleb128(tag) + std::string(3, '\0');
}

class AbbreviationTest : public testing::Test {
protected:
    /// Tags of the codes in the table at an offset, -1 for codes that it doesn't have.
    static std::vector<std::int64_t> Tags(const std::string& section, std::uint32_t offset,
                                          const std::vector<std::uint32_t>& codes) {
        SectionRun run(ElfImage().Section(".debug_info", "").Section(".debug_abbrev", section));
        EXPECT_TRUE(run.Init());
        const VAbrTab& table = run.Section().mAbrSectionBuffer->GetTable(offset);
        std::vector<std::int64_t> tags;
        for (const std::uint32_t code : codes) {
            const TAbrTabItem* item = table.Find(code);
            tags.push_back(item != nullptr ? std::int64_t{item->mTag} : -1);
        }
        return tags;
    }

    ScopedReaderState mState;
};

TEST_F(AbbreviationTest, TablesEndWithTheirSection) {
    const std::string section = Plain(1, 0x11) + Plain(2, 0x4103) + '\0' + Plain(3, 0x34);
    const auto size = static_cast<std::uint32_t>(section.size());
    EXPECT_THAT(Tags(section, 0, {1, 2, 3}), ElementsAre(0x11, 0x4103, -1));
    EXPECT_THAT(Tags(section, size - 5, {1, 2, 3}), ElementsAre(-1, -1, 0x34));
    // A truncated abbreviation doesn't count.
    for (std::uint32_t cut = 1; cut < 5; ++cut) {
        EXPECT_THAT(Tags(section.substr(0, size - cut), size - 5, {3}), ElementsAre(-1));
    }
    for (const std::uint32_t offset : {size, size + 1, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_THAT(Tags(section, offset, {1, 2, 3}), ElementsAre(-1, -1, -1));
    }
    EXPECT_THAT(Tags("", 0, {1}), ElementsAre(-1));
    EXPECT_THAT(Tags(std::string(1, '\0') + section, 0, {1, 2}), ElementsAre(-1, -1));
}

TEST_F(AbbreviationTest, CodeThatComesAgainEndsTheTable) {
    EXPECT_THAT(Tags(Plain(1, 0x11) + Plain(70000, 0x12) + Plain(1, 0x13) + Plain(2, 0x14), 0,
                     {1, 2, 70000}),
                ElementsAre(0x11, -1, 0x12));
    EXPECT_THAT(Tags(Plain(70000, 0x12) + Plain(70000, 0x13) + Plain(2, 0x14), 0, {70000, 2}),
                ElementsAre(0x12, -1));
}

TEST_F(AbbreviationTest, CodesMayBeAnyNumbersInAnyOrder) {
    std::vector<std::uint32_t> codes = {0xFFFFFFFF, 64, 1, 63, 100000, 2, 4097};
    for (std::uint32_t code = 1000; code > 200; --code) {
        codes.push_back(code);
    }
    std::string section;
    std::vector<std::int64_t> tags;
    for (const std::uint32_t code : codes) {
        section += Plain(code, code ^ 0x55U);
        tags.push_back(code ^ 0x55U);
    }
    EXPECT_EQ(Tags(section, 0, codes), tags);
    EXPECT_THAT(Tags(section, 0, {0, 3, 65, 200, 1001, 99999, 0xFFFFFFFE}),
                ElementsAre(-1, -1, -1, -1, -1, -1, -1));
}

// A list of attributes ends where either half of a pair is 0, and the next byte is a code.
TEST_F(AbbreviationTest, HalfPairsEndTheList) {
    for (const std::string& end :
         {std::string("\0\0", 2), std::string("\0\x0b", 2), std::string("\x3b\0", 2)}) {
        const std::string first = Uleb128(1) + Uleb128(DW_TAG_base_type) + '\0' +
                                  Uleb128(DW_AT_byte_size) + Uleb128(DW_FORM_data1) + end;
        DwarfSections sections;
        const std::uint64_t table =
            sections.RawAbbreviations(first + Plain(2, DW_TAG_label) + '\0');
        sections.Unit({.entries = {Die::Raw("\1\4\2\1\7")}, .abbreviationOffset = table});
        SectionRun run(ElfImage() + sections);
        ASSERT_TRUE(run.Read());
        EXPECT_THAT(run.Outline(), ElementsAre("0:base_type ", "0:label ", "0:base_type "));
        EXPECT_EQ(run.Section().mDieNodes.InOffsetOrder().back()->GetByteSize(), 7);
    }
}

TEST_F(AbbreviationTest, LongRunsOfUnwantedAttributes) {
    constexpr std::size_t count = 10'000;
    std::vector<DieAttribute> attributes(count, Number(DW_AT_decl_line, DW_FORM_data8, 1));
    attributes.push_back(Name("x"));
    attributes.insert(attributes.end(), count, Number(DW_AT_decl_line, DW_FORM_data4, 1));
    DwarfSections sections;
    sections.Unit({Die(DW_TAG_variable, attributes), Die(DW_TAG_variable, {Name("y")})});
    SectionRun run(ElfImage() + sections);
    ASSERT_TRUE(run.Read());
    EXPECT_THAT(run.Outline(), ElementsAre("0:variable x", "0:variable y"));
}

TEST_F(AbbreviationTest, UnitsShareTables) {
    DwarfSections sections;
    const std::uint64_t table = sections.RawAbbreviations(
        Uleb128(1) + Uleb128(DW_TAG_variable) + '\0' + Uleb128(DW_AT_low_pc) +
        Uleb128(DW_FORM_addr) + Uleb128(DW_AT_type) + Uleb128(DW_FORM_ref_addr) +
        Uleb128(DW_AT_stmt_list) + Uleb128(DW_FORM_sec_offset) + Uleb128(DW_AT_name) +
        Uleb128(DW_FORM_string) + std::string(3, '\0'));
    // One table, three widths of addresses and offsets.
    for (const auto& [addressSize, is64Bit] :
         {std::pair{4, false}, std::pair{8, true}, std::pair{2, false}, std::pair{8, false}}) {
        const auto address = static_cast<std::size_t>(addressSize);
        ByteWriter entry;
        entry.U8(1).Integer(1, address).Integer(2, is64Bit ? 8 : address);
        entry.Integer(3, is64Bit ? 8 : 4).Text("x");
        sections.Unit({.entries = {Die::Raw(entry.Content())},
                       .addressSize = addressSize,
                       .is64BitDwarf = is64Bit,
                       .abbreviationOffset = table});
    }
    SectionRun run(ElfImage(ElfClass::Class64) + sections);
    ASSERT_TRUE(run.Read());
    EXPECT_EQ(run.Outline(), std::vector<std::string>(4, "0:variable x"));
}

// Each unit names another offset of one table that reaches the end of the section: first a table of
// many abbreviations, then one abbreviation whose attribute list never ends.
TEST_F(AbbreviationTest, OverlappingTablesAreBounded) {
    VElfOptions::mIsLogFile = 1;
    constexpr std::uint32_t count = 20'000;
    std::string items;
    std::string attributes = Uleb128(1) + Uleb128(DW_TAG_label) + '\0';
    for (std::uint32_t index = 0; index < count; ++index) {
        items += Plain(index + 0x200000, DW_TAG_label);
        attributes += Uleb128(DW_AT_name) + Uleb128(DW_FORM_string);
    }
    for (const std::string& table : {items, attributes}) {
        DwarfSections sections;
        sections.RawAbbreviations(table);
        for (std::uint64_t index = 0; index < count; ++index) {
            sections.Unit(
                {.entries = {Die::Raw(std::string(5, '\1'))}, .abbreviationOffset = index * 2});
        }
        SectionRun run(ElfImage() + sections);
        ASSERT_TRUE(run.Read());
        EXPECT_THAT(run.Log(),
                    testing::HasSubstr("Error: Too many overlapping abbreviation tables"));
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
