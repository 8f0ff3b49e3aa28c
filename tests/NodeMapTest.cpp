// The table of nodes by offset, especially when entries come out of order, as in overlapping units.
#include "nodes/VDebugInfoNamedNode.h"
#include "nodes/VDieNodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class NodeMapTest : public testing::Test {
protected:
    VDebugInfoNode* Insert(dwarf_tag tag, std::uint32_t offset, VDebugInfoNode* type = nullptr) {
        auto* node =
            mArena.Create<VDebugInfoNodeGeneral>(tag, offset, nullptr, nullptr, VNodeText());
        if (type != nullptr) {
            node->SetTypeNode(*type);
        }
        mNodes.Insert(*node);
        return node;
    }

    [[nodiscard]] std::vector<std::uint32_t> OffsetsOf(NodeGroup group) const {
        std::vector<std::uint32_t> offsets;
        mNodes.ForEachOf(group,
                         [&](const VDebugInfoNode& node) { offsets.push_back(node.GetOffset()); });
        return offsets;
    }

    [[nodiscard]] std::vector<std::uint32_t> ReferredOffsets() const {
        std::vector<std::uint32_t> offsets;
        mNodes.ForEachReferredAndReferring(
            [&](const VDebugInfoNode& node) { offsets.push_back(node.GetOffset()); });
        return offsets;
    }

    VNodeArena mArena;
    VDieNodes mNodes;
};

TEST_F(NodeMapTest, OffsetsAndGroupsHoldWhatCameOutOfOrder) {
    Insert(DW_TAG_variable, 70);
    VDebugInfoNode* member = Insert(DW_TAG_member, 128);
    Insert(DW_TAG_variable, 4000);
    VDebugInfoNode* late = Insert(DW_TAG_variable, 64);
    Insert(DW_TAG_typedef, 127);
    Insert(DW_TAG_variable, 128);
    mNodes.Complete();

    EXPECT_THAT(OffsetsOf(NodeGroup::Variables), ElementsAre(64, 70, 4000));
    EXPECT_THAT(OffsetsOf(NodeGroup::GroupedTypes), ElementsAre(127));
    EXPECT_THAT(OffsetsOf(NodeGroup::MembersAndEnumerations), ElementsAre(128));
    EXPECT_EQ(mNodes.Find(64), late);
    EXPECT_EQ(mNodes.Find(128), member) << "an offset keeps its first node";
    for (const std::uint32_t nothing : {0U, 63U, 65U, 129U, 4001U, 5000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(mNodes.Find(nothing), nullptr) << nothing;
    }

    // What comes after a lookup joins the rest.
    VDebugInfoNode* last = Insert(DW_TAG_variable, 4001);
    EXPECT_EQ(mNodes.Find(4001), last);
    EXPECT_EQ(mNodes.InOffsetOrder().size(), 6U);
}

TEST_F(NodeMapTest, ReferredNodesThatReferAreToldInOrder) {
    VDebugInfoNode* base = Insert(DW_TAG_base_type, 1);
    VDebugInfoNode* definition = Insert(DW_TAG_typedef, 2, base);
    Insert(DW_TAG_const_type, 3, base);
    Insert(DW_TAG_const_type, 4, base);
    EXPECT_NE(mNodes.Find(4), nullptr) << "a question is no reference";
    EXPECT_NE(mNodes.FindReferred(1), nullptr) << "it refers to nothing itself";
    EXPECT_NE(mNodes.FindReferred(3), nullptr);
    EXPECT_EQ(mNodes.FindReferred(5), nullptr);
    EXPECT_THAT(ReferredOffsets(), ElementsAre(3));
    mNodes.NoteReferred(definition->GetOffset());
    EXPECT_THAT(ReferredOffsets(), ElementsAre(2, 3));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
