// Entries of code get no nodes unless something asks for them. The delivery must be the same as if
// they had nodes.
#include "dwarf/CodeEntries.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

DieAttribute OnStack() {
    return Location({{DW_OP_fbreg, {8}}});
}

Die Function(const std::string& name, std::vector<Die> code) {
    return Die(DW_TAG_subprogram, {Name(name)}, std::move(code));
}

Die Structure(const std::string& name) {
    return Die(DW_TAG_structure_type, {Name(name), ByteSize(4)});
}

/// A tree that was read without code.
class SkippedEntriesTest : public testing::Test {
protected:
    /// The image of one unit of these entries.
    SectionRun& Read(std::vector<Die> entries, const ElfImage& image = ElfImage()) {
        mSections.Unit({Die(DW_TAG_compile_unit, {Name("a.c")}, std::move(entries))});
        return Read(image);
    }

    SectionRun& Read(const ElfImage& image = ElfImage()) {
        mRun.emplace(image + mSections);
        EXPECT_TRUE(mRun->ReadWithoutCode());
        return *mRun;
    }

    /// Null if the entry has no node.
    [[nodiscard]] VDebugInfoNode* At(DieLabel label) {
        return mRun->Section().mDieNodes.Find(mSections.OffsetOf(label));
    }

    ScopedReaderState mState;
    DwarfSections mSections;
    std::optional<SectionRun> mRun;
};

TEST_F(SkippedEntriesTest, NodesAreWhatCanBeDeliveredAndWhatStandsAroundIt) {
    SectionRun& run = Read({
        Function("f",
                 {
                     Die(DW_TAG_formal_parameter, {Name("p")}),
                     Die(DW_TAG_unspecified_parameters),
                     Die(DW_TAG_variable, {Name("local"), OnStack()}),
                     Structure("Before"),
                     Die(DW_TAG_lexical_block, {},
                         {
                             Die(DW_TAG_label, {Name("again")}),
                             Die(DW_TAG_inlined_subroutine, {},
                                 {
                                     Die(DW_TAG_formal_parameter, {Name("q")}),
                                     Die(DW_TAG_variable, {Name("count"), Address(0x1000)}),
                                     Die(DW_TAG_variable, {Name("r"), OnStack()}),
                                 }),
                             Die(DW_TAG_variable, {Name("nowhere")}),
                         }),
                     Die(DW_TAG_lexical_block, {},
                         {Die(DW_TAG_variable, {Name("s"), Location({{DW_OP_reg0, {}}})})}),
                     Die(DW_TAG_GNU_call_site, {}, {Die(DW_TAG_GNU_call_site_parameter)}),
                     Structure("Behind"),
                 }),
        Die(DW_TAG_subroutine_type, {}, {Die(DW_TAG_formal_parameter, {Name("argument")})}),
        Die(DW_TAG_lexical_block, {}, {Die(DW_TAG_variable, {Name("outside"), OnStack()})}),
    });
    EXPECT_THAT(run.Outline(),
                ElementsAre("0:compile_unit a_c", "1:subprogram f", "2:structure_type Before",
                            "2:lexical_block ", "3:inlined_subroutine ", "4:variable count",
                            "3:variable nowhere", "2:structure_type Behind", "1:subroutine_type ",
                            "2:formal_parameter argument", "1:lexical_block ",
                            "2:variable outside"));
    EXPECT_EQ(run.Section().EntryCount(), 22U) << "progress counts every entry";
    EXPECT_EQ(run.Section().EntriesBefore(5), 10U);
    EXPECT_EQ(recCnt, 30U);
}

TEST_F(SkippedEntriesTest, AnEntryIsReadAfterAllIfAnotherRefersToIt) {
    const DieLabel base;
    const DieLabel block;
    const DieLabel parameter;
    const DieLabel stackVariable;
    const DieLabel far;
    const DieLabel ofType;
    const DieLabel ofOrigin;
    const DieLabel ofFar;
    const DieLabel kept;
    mSections.Unit({Die(
        DW_TAG_compile_unit, {Name("b.c")},
        {Function("g", {Die(far, DW_TAG_variable, {Type(base, DW_FORM_ref_addr), OnStack()})})})});
    SectionRun& run = Read({
        Die(base, DW_TAG_base_type, {Name("int"), ByteSize(4), Encoding(DW_ATE_signed)}),
        Function("f",
                 {
                     Die(block, DW_TAG_lexical_block, {},
                         {
                             Die(kept, DW_TAG_variable, {Name("kept"), Address(0x1000)}),
                             Die(stackVariable, DW_TAG_variable, {OnStack(), Type(parameter)}),
                         }),
                     Die(parameter, DW_TAG_formal_parameter, {Type(far, DW_FORM_ref_addr)}),
                 }),
        Die(ofType, DW_TAG_typedef, {Name("T"), Type(stackVariable)}),
        Die(ofOrigin, DW_TAG_variable, {Specification(parameter)}),
    });
    EXPECT_EQ(At(parameter), nullptr);
    const std::size_t entryCount = run.Section().EntryCount();
    run.Section().ResolveNodes();
    ASSERT_NE(At(stackVariable), nullptr);
    EXPECT_EQ(At(ofType)->GetTypeNode(), At(stackVariable));
    EXPECT_EQ(At(ofOrigin)->GetSpecificationNode(), At(parameter));
    ASSERT_NE(At(far), nullptr) << "a skipped entry refers to another unit";
    EXPECT_EQ(At(parameter)->GetTypeNode(), At(far));
    EXPECT_EQ(At(far)->GetTypeNode(), At(base));
    std::vector<VDebugInfoNode*> children(At(block)->Children().begin(),
                                          At(block)->Children().end());
    EXPECT_THAT(children, ElementsAre(At(kept), At(stackVariable))) << "in their order";
    EXPECT_EQ(run.Section().EntryCount(), entryCount);
    EXPECT_EQ(run.Section().mSkipped.Count(), 0U);
}

TEST_F(SkippedEntriesTest, ABoundThatNamesOneIsUnknown) {
    const DieLabel length;
    const DieLabel array;
    SectionRun& run = Read({
        Function("f",
                 {
                     Die(length, DW_TAG_variable, {Name("length"), OnStack()}),
                     Die(array, DW_TAG_array_type, {},
                         {Die(DW_TAG_subrange_type,
                              {Reference(DW_AT_upper_bound, DW_FORM_ref4, length)})}),
                 }),
    });
    run.Section().ResolveNodes();
    EXPECT_EQ(At(length), nullptr);
    EXPECT_THAT(At(array)->AsArrayNode()->GetDimensions(), ElementsAre(0U));
}

// Symbols of the declaration's name belong to something else: a variable completes it.
TEST_F(SkippedEntriesTest, ADeclarationStaysCompletedByASkippedVariable) {
    for (const int isFull : {0, 1}) {
        VElfOptions::mIsFullReading = isFull;
        const DieLabel declaration;
        const DwarfSections sections = DwarfSections().Unit(
            {Die(DW_TAG_compile_unit, {Name("a.c")},
                 {
                     Die(declaration, DW_TAG_variable, {Name("total"), External(), Declaration()}),
                     Function("f", {Die(DW_TAG_variable, {Specification(declaration), OnStack()})}),
                 })});
        const ReadRun run =
            ReadImage((ElfImage().Symbol({"total", 0x1000, 4, sGlobalObject}) + sections).Build());
        std::size_t count = 0;
        run.model->ForEach(DataModel::ObjectKind::Global,
                           [&](const DataModel::ModelObject& global) {
                               count += run.model->Object(global.scope).name.empty() ? 1U : 0U;
                           });
        EXPECT_EQ(count, 0U) << isFull;
    }
}

// A bit field whose own size is 0 lies in the first type of its chain whose size is already
// settled. Here a parameter settles the size of the array.
TEST_F(SkippedEntriesTest, AParameterSettlesASizeThatABitFieldDependsOn) {
    const DieLabel base;
    const DieLabel array;
    const DieLabel field;
    SectionRun& run = Read({
        Function("f", {Die(DW_TAG_formal_parameter, {Type(array)})}),
        Die(DW_TAG_structure_type, {Name("S"), ByteSize(8)},
            {Die(field, DW_TAG_member,
                 {Name("bits"), Type(array), ByteSize(0), BitSize(4), BitOffset(0)})}),
        Die(array, DW_TAG_array_type, {Type(base)}, {Die(DW_TAG_subrange_type, {Count(2)})}),
        Die(base, DW_TAG_base_type, {Name("int"), ByteSize(4), Encoding(DW_ATE_signed)}),
    });
    run.Section().ResolveNodes();
    EXPECT_EQ(At(field)->GetBitOffset(), 60U);
}

TEST_F(SkippedEntriesTest, AbbreviationsTellWhatIsSkipped) {
    struct Case {
        dwarf_tag tag;
        bool hasChildren;
        AttributeTarget target;
        FormReading reading;
        CodeEntry expected;
    };
    const Case cases[] = {
        {DW_TAG_formal_parameter, false, AttributeTarget::Type, FormReading::FourBytes,
         CodeEntry::Parameter},
        {DW_TAG_formal_parameter, true, AttributeTarget::Type, FormReading::FourBytes,
         CodeEntry::Kept},
        {DW_TAG_formal_parameter, false, AttributeTarget::Specification, FormReading::FourBytes,
         CodeEntry::Kept},
        {DW_TAG_formal_parameter, false, AttributeTarget::None, FormReading::Unknown,
         CodeEntry::Kept},
        {DW_TAG_formal_parameter, false, AttributeTarget::Name, FormReading::Indirect,
         CodeEntry::Kept},
        {DW_TAG_lexical_block, true, AttributeTarget::None, FormReading::Address, CodeEntry::Scope},
        {DW_TAG_lexical_block, true, AttributeTarget::Type, FormReading::FourBytes,
         CodeEntry::Kept},
        {DW_TAG_lexical_block, false, AttributeTarget::Signature, FormReading::TypeSignature,
         CodeEntry::Kept},
        {DW_TAG_label, false, AttributeTarget::Name, FormReading::Text, CodeEntry::Skipped},
        {DW_TAG_variable, false, AttributeTarget::Location, FormReading::BlockLeb128,
         CodeEntry::Variable},
        {DW_TAG_structure_type, false, AttributeTarget::Name, FormReading::Text, CodeEntry::Kept},
    };
    for (const Case& example : cases) {
        const CodeEntry entry = CodeEntryOf(example.tag, example.hasChildren);
        EXPECT_EQ(WithAttribute(entry, example.tag, example.target, example.reading),
                  example.expected)
            << example.tag << " " << static_cast<int>(example.target);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
