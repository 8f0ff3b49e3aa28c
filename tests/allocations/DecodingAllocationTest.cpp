// Counts the heap allocations of decoding: the entries that make up nearly all of a file need none
// except the large chunks of the tree's arena.
#include "allocations/CountedAllocation.h"
#include "nodes/VDebugInfoNode.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"
#include "support/UsualEntries.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

/// The entries of a unit: a type, and the requested number of entries that refer to it.
using EntryMaker = std::function<Die(std::size_t index, const DieLabel& type)>;

struct Reading {
    std::size_t allocationCount = 0;
    std::size_t nodeCount = 0;
};

Reading Read(const EntryMaker& makeEntry, std::size_t count) {
    const DieLabel type;
    std::vector<Die> entries = {Die(type, DW_TAG_base_type, {Name("int")})};
    for (std::size_t index = 0; index < count; ++index) {
        entries.push_back(makeEntry(index, type));
    }
    DwarfSections sections;
    sections.Unit({Die(DW_TAG_compile_unit, {Name("unit.c")}, std::move(entries))});
    SectionRun run(ElfImage().Symbol({"variable", 0x1000, 4}) + sections);
    VElfFile& file = run.File();
    EXPECT_TRUE(run.Init() && file.LoadStrTabSection() && file.LoadSymbolMap(file.mSymbolMap));
    EXPECT_TRUE(run.Section().MapCompileUnits());
    const std::size_t before = Allocations();
    EXPECT_TRUE(run.Section().ProcessCompileUnits());
    return {Allocations() - before, run.Section().EntryCount()};
}

TEST(DecodingAllocationTest, CommonEntriesAllocateNothingOfTheirOwn) {
    const ScopedReaderState state;
    const auto numbered = [](const char* name, std::size_t index) {
        return name + std::to_string(index);
    };
    const std::vector<std::pair<const char*, EntryMaker>> makers = {
        {"base types",
         [&](std::size_t index, const DieLabel&) {
             return Die(DW_TAG_base_type,
                        {Name(numbered("type", index)), ByteSize(4), Encoding(DW_ATE_unsigned)});
         }},
        {"variables",
         [&](std::size_t index, const DieLabel& type) {
             return Die(DW_TAG_variable, {Name(numbered("variable", index)), Type(type), External(),
                                          Address(0x1000)});
         }},
        {"variables with names in .debug_str",
         [&](std::size_t index, const DieLabel& type) {
             return Die(DW_TAG_variable,
                        {Name(numbered("variable", index), DW_FORM_strp), Type(type),
                         LinkageName(numbered("_Zvariable", index), DW_FORM_strp)});
         }},
        {"structures and members",
         [&](std::size_t index, const DieLabel& type) {
             return Die(DW_TAG_structure_type, {Name(numbered("s", index)), ByteSize(8)},
                        {Member("whole", type, 0),
                         Die(DW_TAG_member, {Name("bits"), Type(type), BitSize(3), BitOffset(5),
                                             MemberLocation({{DW_OP_plus_uconst, {4}}})})});
         }},
        {"enumerations",
         [&](std::size_t index, const DieLabel& type) {
             return Die(DW_TAG_enumeration_type, {Name(numbered("e", index)), ByteSize(1)},
                        {Die(DW_TAG_enumerator, {Name("one"), ConstValue(1), Type(type)})});
         }},
        {"arrays and pointers",
         [&](std::size_t /*index*/, const DieLabel& type) {
             return Die(DW_TAG_array_type, {Type(type)},
                        {Die(DW_TAG_subrange_type, {UpperBound(9)}),
                         Die(DW_TAG_pointer_type, {Type(type), ByteSize(4)})});
         }},
    };
    constexpr std::size_t count = 5'000;
    for (const auto& [kind, makeEntry] : makers) {
        SCOPED_TRACE(kind);
        const Reading once = Read(makeEntry, count);
        const Reading twice = Read(makeEntry, 2 * count);
        const std::size_t moreNodes = twice.nodeCount - once.nodeCount;
        EXPECT_GE(moreNodes, count);
        EXPECT_GT(once.allocationCount, 0U);
        // Chunks of the arena hold thousands of nodes, and tables double.
        EXPECT_LT(twice.allocationCount, once.allocationCount + moreNodes / 200);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
