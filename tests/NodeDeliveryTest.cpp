// What a node knows of its delivery, which mostly fits into 32 bits, and the memory of nodes.
#include "nodes/VDebugInfoNamedNode.h"
#include "nodes/VNodeArena.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class NodeDeliveryTest : public testing::Test {
protected:
    VNodeArena mArena;
    VDebugInfoNodeGeneral mNode{DW_TAG_typedef, 64, nullptr, nullptr, VNodeText()};
};

TEST_F(NodeDeliveryTest, ObjectsOfAnySizeReplaceTheDeliveryInProgress) {
    for (const std::uint64_t object :
         {std::uint64_t{1}, std::uint64_t{0x3FFFFFFF}, std::uint64_t{0x40000000},
          std::uint64_t{0x80000001}, ~std::uint64_t{0}}) {
        VDebugInfoNodeGeneral node(DW_TAG_typedef, 64, nullptr, nullptr, VNodeText());
        EXPECT_EQ(node.GetEntryObject(), 0U);
        node.SetEmissionFrame(7);
        EXPECT_EQ(node.GetEmissionFrame(), 7U);
        EXPECT_EQ(node.GetEntryObject(), 0U) << "the delivery has only begun";
        node.SetEntryObject(object, mArena);
        node.SetEmissionFrame(0);
        EXPECT_EQ(node.GetEntryObject(), object);
        EXPECT_EQ(node.GetEmissionFrame(), 0U);
        EXPECT_FALSE(node.IsDeliveryRefused() || node.IsDropped()) << object;
    }
}

TEST_F(NodeDeliveryTest, WhatIsKnownOfADeliverySurvivesARefusal) {
    mNode.SetEmissionFrame(7);
    mNode.SetDropped(mArena);
    EXPECT_EQ(mNode.GetEmissionFrame(), 7U);
    mNode.SetEntryObject(0, mArena);
    mNode.SetDeliveryRefused(mArena);
    mNode.SetEmissionFrame(3);
    EXPECT_EQ(mNode.GetEmissionFrame(), 3U);
    EXPECT_TRUE(mNode.IsDropped() && mNode.IsDeliveryRefused());
}

TEST_F(NodeDeliveryTest, LaterObjectReplacesTheFirst) {
    mNode.SetEntryObject(5, mArena);
    mNode.SetEntryObject(std::uint64_t{1} << 40U, mArena);
    EXPECT_EQ(mNode.GetEntryObject(), std::uint64_t{1} << 40U);
    mNode.SetEntryObject(6, mArena);
    EXPECT_EQ(mNode.GetEntryObject(), 6U);
}

TEST(NodeArenaTest, ClearedMemoryServesAgain) {
    VNodeArena arena;
    struct Large {
        std::byte bytes[VNodeArena::kChunkSize / 4];
    };
    std::vector<const void*> before;
    std::vector<const void*> after;
    for (auto* places : {&before, &after}) {
        for (int count = 0; count < 9; ++count) {
            places->push_back(arena.Create<Large>());
            places->push_back(arena.KeepText("speed"));
        }
        arena.Clear();
    }
    EXPECT_EQ(after, before);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
