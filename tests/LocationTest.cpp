// Location expressions and location lists, as attributes of entries.
#include "core/VElfOptions.h"
#include "dwarf/VLocTabBuffer.h"
#include "nodes/VDebugInfoNode.h"
#include "support/DwarfSections.h"
#include "support/NodeTree.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"

#include <ctime>
#include <gtest/gtest.h>
#include <optional>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

constexpr std::optional<std::uint64_t> sNotStatic = std::nullopt;

using Operations = std::vector<Operation>;

/// The result of evaluating a location attribute.
struct Evaluated {
    std::optional<std::uint64_t> value;
    std::uint32_t bitSize = 0;
    std::uint32_t bitOffset = 0;
    bool isBitField = false;
};

class LocationTest : public testing::Test {
protected:
    static Evaluated Evaluate(const DieAttribute& attribute, DwarfUnit unit = {},
                              DwarfSections sections = DwarfSections(),
                              ByteOrder byteOrder = ByteOrder::Little) {
        const DieLabel label;
        const bool isMember = attribute.attribute == DW_AT_data_member_location;
        unit.entries = {Die(
            DW_TAG_compile_unit, {},
            {Die(label, isMember ? DW_TAG_member : DW_TAG_variable, {attribute, Name("behind")})})};
        sections.Unit(unit);
        SectionRun run(ElfImage(ElfClass::Class32, byteOrder) + sections);
        EXPECT_TRUE(run.Read());
        const VDebugInfoNode& node = run.At(sections.OffsetOf(label));
        EXPECT_EQ(node.GetName(), "behind");
        EXPECT_TRUE(isMember ? node.HasMemberOffset() : node.HasLocation());
        Evaluated result;
        if (isMember || !node.IsRegisterOrStackLocation()) {
            result.value = isMember ? node.GetMemberOffset() : node.GetLocationAddress();
        } else {
            EXPECT_EQ(node.GetLocationAddress(), 0U);
        }
        result.bitSize = node.GetBitSize();
        result.bitOffset = node.GetBitOffset();
        result.isBitField = node.IsBitFieldFromLocation();
        return result;
    }

    static std::optional<std::uint64_t> InEntry(Operations operations) {
        return Evaluate(Location(std::move(operations), DW_FORM_block2)).value;
    }

    /// The first entry of a list, followed by a second entry.
    static std::optional<std::uint64_t> InList(const Operations& operations,
                                               std::optional<std::uint16_t> length = {},
                                               std::uint64_t begin = 0, std::uint64_t end = 8) {
        DwarfSections sections;
        sections.RawLocations("some other list");
        const std::uint64_t offset = sections.LocationListEntry(begin, end, operations, length);
        sections.LocationListEntry(8, 16, {{DW_OP_addr, {0x7777}}});
        return Evaluate(Number(DW_AT_location, DW_FORM_sec_offset, offset), {}, sections).value;
    }

    ScopedReaderState mState;
};

TEST_F(LocationTest, OperatorsThatBothPlacesShare) {
    const std::vector<std::pair<Operations, std::uint32_t>> cases = {
        {{{DW_OP_addr, {0x1000}}}, 0x1000},
        {{{DW_OP_const1u, {0xFE}}}, 0xFE},
        {{{DW_OP_const1s, {-2}}}, 0xFFFFFFFE},
        {{{DW_OP_const2u, {0xFEDC}}}, 0xFEDC},
        {{{DW_OP_const2s, {-3}}}, 0xFFFFFFFD},
        {{{DW_OP_const4u, {0xFEDCBA98}}}, 0xFEDCBA98},
        {{{DW_OP_const4s, {-4}}}, 0xFFFFFFFC},
        {{{DW_OP_constu, {624485}}}, 624485},
        {{{DW_OP_consts, {-128}}}, 0xFFFFFF80},
        {{{DW_OP_constu, {12}}, {DW_OP_plus}}, 12},
        {{{DW_OP_constu, {12}}, {DW_OP_minus}}, 0xFFFFFFF4},
        {{{DW_OP_constu, {12}}, {DW_OP_constu, {5}}, {DW_OP_minus}}, 7},
        {{{DW_OP_addr, {0x1000}}, {DW_OP_plus_uconst, {300}}}, 0x112C},
        {{{DW_OP_addr, {0xFFFFFFFF}}, {DW_OP_plus_uconst, {2}}}, 1},
    };
    for (std::size_t index = 0; index < cases.size(); ++index) {
        SCOPED_TRACE(index);
        const auto& [operations, value] = cases[index];
        EXPECT_EQ(InEntry(operations), value);
        EXPECT_EQ(InList(operations), value);
        EXPECT_EQ(
            Evaluate(Location(operations), {}, DwarfSections(ByteOrder::Big), ByteOrder::Big).value,
            value);
    }
}

TEST_F(LocationTest, FullMannerComputesIn64Bits) {
    struct Case {
        Operations operations;
        std::optional<std::uint64_t> classic;
        std::optional<std::uint64_t> full;
        int addressSize = 8;
    };
    const Case cases[] = {
        {{{DW_OP_addr, {0x7'2000'0010}}}, 0x2000'0010, 0x7'2000'0010},
        {{{DW_OP_addr, {0xFFFF'FFF0}}, {DW_OP_plus_uconst, {0x20}}}, 0x10, 0x1'0000'0010},
        {{{DW_OP_constu, {0x3'0000'0002}}}, 2, 0x3'0000'0002},
        {{{DW_OP_consts, {-128}}}, 0xFFFF'FF80, 0xFFFF'FFFF'FFFF'FF80},
        {{{DW_OP_const1s, {-2}}}, 0xFFFF'FFFE, 0xFFFF'FFFF'FFFF'FFFE},
        {{{DW_OP_const4s, {-4}}}, 0xFFFF'FFFC, 0xFFFF'FFFF'FFFF'FFFC},
        {{{DW_OP_const4u, {0xFFFF'FFFC}}}, 0xFFFF'FFFC, 0xFFFF'FFFC},
        {{{DW_OP_const8u, {0x5'0000'0000}}}, sNotStatic, 0x5'0000'0000},
        // Where the target's addresses have 32 bits, the full manner gives 32 as well.
        {{{DW_OP_addr, {0xFFFF'FFFF}}, {DW_OP_plus_uconst, {2}}}, 1, 1, 4},
        {{{DW_OP_const1s, {-2}}}, 0xFFFF'FFFE, 0xFFFF'FFFE, 4},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << "operator " << int{each.operations.front().code});
        const DieAttribute location = Location(each.operations);
        const DwarfUnit unit{.addressSize = each.addressSize};
        VElfOptions::mIsFullReading = 0;
        EXPECT_EQ(Evaluate(location, unit).value, each.classic);
        VElfOptions::mIsFullReading = 1;
        EXPECT_EQ(Evaluate(location, unit).value, each.full);
    }
    // An address as a plain number.
    const DieAttribute number = Number(DW_AT_location, DW_FORM_addr, 0x7'2000'0010);
    EXPECT_EQ(Evaluate(number, {.addressSize = 8}).value, 0x7'2000'0010);
    VElfOptions::mIsFullReading = 0;
    EXPECT_EQ(Evaluate(number, {.addressSize = 8}).value, 0x2000'0010U);
}

TEST_F(LocationTest, OperatorsThatDifferByPlace) {
    EXPECT_EQ(InEntry({{DW_OP_plus_uconst, {8}}}), 8U);
    EXPECT_EQ(InList({{DW_OP_plus_uconst, {8}}}), sNotStatic);
    EXPECT_EQ(InEntry({{DW_OP_plus}}), sNotStatic);
    EXPECT_EQ(InList({{DW_OP_minus}}), sNotStatic);
    const Operations bitField = {{DW_OP_addr, {4}}, {DW_OP_bit_piece, {3, 5}}};
    const Evaluated evaluated = Evaluate(Location(bitField));
    EXPECT_EQ(evaluated.value, 4U);
    EXPECT_EQ(evaluated.bitSize, 3U);
    EXPECT_EQ(evaluated.bitOffset, 5U);
    EXPECT_TRUE(evaluated.isBitField);
    EXPECT_EQ(InList(bitField), 4U);
    const Evaluated failed = Evaluate(Location({bitField[0], bitField[1], {DW_OP_fbreg, {-4}}}));
    EXPECT_EQ(failed.value, sNotStatic);
    EXPECT_EQ(failed.bitSize, 3U);
    EXPECT_EQ(failed.bitOffset, 5U);
    EXPECT_TRUE(failed.isBitField) << "as read before the failure";
    // The stack doesn't change, and what follows still counts.
    EXPECT_EQ(InEntry({{DW_OP_plus_uconst, {4}}, {DW_OP_bit_piece, {3, 5}}, {DW_OP_const1u, {9}}}),
              9U);
}

TEST_F(LocationTest, OtherOperatorsAreNotStatic) {
    for (int code = 0; code < 256; ++code) {
        constexpr std::uint8_t known[] = {
            DW_OP_addr,    DW_OP_const1u,   DW_OP_const1s,    DW_OP_const2u, DW_OP_const2s,
            DW_OP_const4u, DW_OP_const4s,   DW_OP_constu,     DW_OP_consts,  DW_OP_minus,
            DW_OP_plus,    DW_OP_bit_piece, DW_OP_plus_uconst};
        if (std::find(std::begin(known), std::end(known), code) == std::end(known)) {
            // Two values below it, and operands of every kind after it.
            const std::string bytes = {
                DW_OP_const1u, 1, DW_OP_const1u, 2, static_cast<char>(code), 0, 0};
            EXPECT_EQ(Evaluate(Block(DW_AT_location, DW_FORM_block1, bytes)).value, sNotStatic)
                << code;
        }
    }
    EXPECT_EQ(InList({{DW_OP_addr, {1}}, {DW_OP_stack_value}}), sNotStatic);
    EXPECT_EQ(InList({{DW_OP_fbreg, {-4}}}), sNotStatic);
}

TEST_F(LocationTest, BlocksOfAllForms) {
    for (const std::uint32_t form :
         {DW_FORM_block, DW_FORM_block1, DW_FORM_block2, DW_FORM_block4, DW_FORM_exprloc}) {
        EXPECT_EQ(Evaluate(Address(0x1000, form)).value, 0x1000U);
        EXPECT_EQ(Evaluate(Location({}, form)).value, sNotStatic);
        EXPECT_EQ(Evaluate(Location({{DW_OP_fbreg, {-4}}}, form)).value, sNotStatic);
        EXPECT_EQ(Evaluate(MemberLocation({{DW_OP_plus_uconst, {12}}}, form)).value, 12U);
    }
    EXPECT_EQ(Evaluate(Address(0x9'1234'5678), {.addressSize = 8}).value, 0x12345678U);
}

TEST_F(LocationTest, NumbersAreOffsetsOfListsByFormAndVersion) {
    DwarfSections sections;
    sections.RawLocations(std::string(12, '\0'));
    sections.LocationListEntry(0, 8, {{DW_OP_addr, {0x2000}}});
    for (const int version : {2, 3, 4}) {
        const bool isList = version < 4;
        for (const std::uint32_t form : {DW_FORM_data4, DW_FORM_data8}) {
            EXPECT_EQ(Evaluate(MemberOffset(12, form), {.version = version}, sections).value,
                      isList ? 0x2000U : 12U);
        }
        EXPECT_EQ(
            Evaluate(MemberOffset(12, DW_FORM_sec_offset), {.version = version}, sections).value,
            0x2000U);
        for (const std::uint32_t form :
             {DW_FORM_data1, DW_FORM_data2, DW_FORM_udata, DW_FORM_sdata, DW_FORM_addr}) {
            EXPECT_EQ(Evaluate(MemberOffset(12, form), {.version = version}, sections).value, 12U);
        }
    }
    // Without the section no lookup succeeds.
    EXPECT_EQ(Evaluate(Number(DW_AT_location, DW_FORM_data4, 12), {.version = 3}).value,
              sNotStatic);
    EXPECT_EQ(Evaluate(MemberOffset(12, DW_FORM_data4), {.version = 3}).value, 0U);
    EXPECT_EQ(Evaluate(MemberOffset(12, DW_FORM_data4), {.version = 4}).value, 12U);
}

TEST_F(LocationTest, SectionThatCannotBeLoadedLeavesPlainNumbers) {
    const DieLabel member;
    DwarfSections sections;
    sections.Unit(
        {.entries = {Die(DW_TAG_compile_unit, {},
                         {Die(member, DW_TAG_member, {MemberOffset(12, DW_FORM_data4)})})},
         .version = 3});
    const NodeTree tree(sections, ElfImage().Section(".debug_loc", "x", {.size = 0x10000000}));
    EXPECT_EQ(tree[member].GetMemberOffset(), 12U);
}

TEST_F(LocationTest, ListsAndTheirLimits) {
    const Operations address = {{DW_OP_addr, {0x2000}}};
    EXPECT_EQ(InList(address, {}, 0, 0), sNotStatic);
    EXPECT_EQ(InList(address, {}, 8, 0), 0x2000U);
    EXPECT_EQ(InList(address, std::uint16_t{0}), sNotStatic);
    EXPECT_EQ(InList(address, std::uint16_t{4}), 0x2000U);
    const Operations pushes(63, {DW_OP_const1u, {7}});
    Operations longest = pushes;
    longest.push_back({DW_OP_plus});
    EXPECT_EQ(InList(longest), 14U);
    longest.push_back({DW_OP_plus});
    EXPECT_EQ(InList(longest), sNotStatic);
    // Offsets at and after the end; an entry that the section truncates.
    DwarfSections sections;
    sections.LocationListEntry(0, 8, {{DW_OP_const1u, {1}}, {DW_OP_const1u, {2}}}, 5);
    for (const std::uint64_t offset : {0U, 4U, 13U, 14U, 15U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(Evaluate(Number(DW_AT_location, DW_FORM_sec_offset, offset), {}, sections).value,
                  sNotStatic)
            << offset;
    }
}

TEST_F(LocationTest, ListsTakeAddressesOfFourBytes) {
    DwarfSections sections;
    const std::string address = ByteWriter().U8(DW_OP_addr).U64(0x2000).Content();
    const std::string head = ByteWriter().U32(0).U32(8).U16(address.size()).Content();
    const std::uint64_t offset = sections.RawLocations(head + address);
    EXPECT_EQ(
        Evaluate(Number(DW_AT_location, DW_FORM_sec_offset, offset), {.addressSize = 8}, sections)
            .value,
        sNotStatic);
}

TEST_F(LocationTest, StackHolds127Values) {
    Operations pushes(127, {DW_OP_const1u, {7}});
    EXPECT_EQ(InEntry(pushes), 7U);
    pushes.push_back({DW_OP_const1u, {8}});
    EXPECT_EQ(InEntry(pushes), sNotStatic);
    EXPECT_EQ(InEntry(Operations(200, {DW_OP_const1u, {7}})), sNotStatic);
}

// Each expression is followed by the name "behind".
TEST_F(LocationTest, TheLastOperandMayPassItsExpression) {
    const std::vector<std::pair<std::string, std::uint32_t>> cases = {
        {"\x03\1\2\3", 0x62030201}, {"\x08", 0x62}, {"\x0b\1", 0x6201},
        {"\x10\x80", 0x62U << 7U},  {"#", 0x62},    {"\x9d\3", 0},
    };
    for (const auto& [bytes, value] : cases) {
        EXPECT_EQ(Evaluate(Block(DW_AT_location, DW_FORM_block1, bytes)).value, value) << bytes;
    }
    EXPECT_EQ(Evaluate(Block(DW_AT_location, DW_FORM_block1, "\x9d\3")).bitOffset, 0x62U);
    const DwarfUnit wide{.addressSize = 8};
    EXPECT_EQ(Evaluate(Block(DW_AT_location, DW_FORM_block1, "\x03\1\2\3\4"), wide).value,
              0x04030201U);
}

TEST_F(LocationTest, OperandsEndWithTheUnitOrTheSection) {
    for (const std::string_view bytes :
         {"\x03\1\2\3", "\x08", "\x0b\1", "\x10\x80", "#", "\x9d\3", "\x9d\x80"}) {
        const DieLabel variable;
        const NodeTree tree(DwarfSections().Unit(
            {Die(variable, DW_TAG_variable,
                 {Name("variable"), Block(DW_AT_location, DW_FORM_block1, std::string(bytes))})}));
        EXPECT_TRUE(tree[variable].IsRegisterOrStackLocation()) << bytes;
        EXPECT_EQ(tree[variable].GetLocationAddress(), 0U) << bytes;
        DwarfSections list;
        list.RawLocations(ByteWriter().U32(0).U32(8).U16(bytes.size()).Content() +
                          std::string(bytes));
        EXPECT_EQ(Evaluate(Number(DW_AT_location, DW_FORM_sec_offset, 0), {}, list).value,
                  sNotStatic)
            << bytes;
    }
}

// All entries refer to one list whose operand extends to the end of the section.
TEST_F(LocationTest, OperandsWithoutEndCostNothing) {
    DwarfSections sections;
    sections.RawLocations(ByteWriter().U32(0).U32(8).U16(2).U8(DW_OP_constu).Content() +
                          std::string(4'000'000, '\x80'));
    const std::uint64_t table = sections.RawAbbreviations(
        Uleb128(1) + Uleb128(DW_TAG_variable) + '\0' + Uleb128(DW_AT_location) +
        Uleb128(DW_FORM_sec_offset) + std::string(3, '\0'));
    std::string entries;
    for (int index = 0; index < 200'000; ++index) {
        entries += std::string("\1\0\0\0\0", 5);
    }
    sections.Unit({.entries = {Die::Raw(entries)}, .abbreviationOffset = table});
    SectionRun run(ElfImage() + sections);
    const std::clock_t start = std::clock();
    ASSERT_TRUE(run.Read());
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 20);
    EXPECT_TRUE(run.Section().mDieNodes.InOffsetOrder().back()->IsRegisterOrStackLocation());
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
