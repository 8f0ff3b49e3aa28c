#include "model/AddressLookup.h"

#include "support/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::AddressHit;
using DataModel::AddressLookup;
using DataModel::ObjectId;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AddressLookupTest : public testing::Test, public ModelBuilder {
protected:
    AddressLookupTest()
        : mByte(Base(BasicTypes::UInt8, 1))
        , mWord(Base(BasicTypes::UInt16, 2))
        , mLong(Base(BasicTypes::UInt32, 4)) {}

    /// What lies at an address, as "path+offset". Each path must lead to the place.
    std::vector<std::string> At(std::uint64_t address) {
        std::vector<std::string> texts;
        for (const AddressHit& hit : AddressLookup(mModel).Find(address)) {
            const DataModel::Model::PathResult resolved = mModel.ResolvePath(hit.path);
            EXPECT_TRUE(resolved.found) << hit.path << ": " << resolved.problem;
            EXPECT_EQ(resolved.place.address, hit.place.address) << hit.path;
            EXPECT_EQ(resolved.place.type, hit.place.type) << hit.path;
            texts.push_back(hit.path + '+' + std::to_string(hit.offset));
        }
        return texts;
    }

    ObjectId mByte;
    ObjectId mWord;
    ObjectId mLong;
};

TEST_F(AddressLookupTest, MembersElementsAndGaps) {
    const ObjectId loop = Struct("Loop", 12);
    Member("gain", mLong, loop, 0);
    Member("state", mByte, loop, 4);
    Member("table", Array({2, 2}, mByte, 4), loop, 8);
    const ObjectId motor = Struct("Motor", 28);
    Member("loops", Array({2}, loop, 24), motor, 4);
    Global("motors", Array({1000000000}, motor, 28000000000), 0x1000);
    Global("tail", mByte, 0x1000 + 28000000000);
    const struct {
        std::uint64_t address;
        const char* hit;
    } cases[] = {
        {0x1000, "motors[0]+0"},
        {0x1004, "motors[0].loops[0].gain+0"},
        {0x1007, "motors[0].loops[0].gain+3"},
        {0x1008, "motors[0].loops[0].state+0"},
        {0x1009, "motors[0].loops[0]+5"},
        {0x100E, "motors[0].loops[0].table[1][0]+0"},
        {0x1000 + 28000000000 - 1, "motors[999999999].loops[1].table[1][1]+0"},
        {0x1000 + 28000000000, "tail+0"},
    };
    for (const auto& [address, hit] : cases) {
        EXPECT_THAT(At(address), ElementsAre(hit));
    }
    EXPECT_THAT(At(0xFFF), IsEmpty());
    EXPECT_THAT(At(0x1000 + 28000000001), IsEmpty());
}

TEST_F(AddressLookupTest, EveryMemberOfAUnionAndEveryVariable) {
    const ObjectId view = Union("View", 4);
    UnionMember("word", mWord, view);
    UnionMember("bytes", Array({4}, mByte, 4), view);
    Global("inner", mLong, 0x1010);
    Global("ram", Array({64}, mByte, 64), 0x1000);
    Global("small", mByte, 0x1008);
    Global("view", view, 0x100C);
    Global("mark", 0, 0x1010);
    Global("last", mLong, 0xFFFFFFFFFFFFFFFE);
    EXPECT_THAT(At(0x100D), ElementsAre("ram[13]+0", "view.word+1", "view.bytes[1]+0"));
    EXPECT_THAT(At(0x100E), ElementsAre("ram[14]+0", "view.bytes[2]+0"));
    EXPECT_THAT(At(0x1010), ElementsAre("ram[16]+0", "inner+0", "mark+0"));
    EXPECT_THAT(At(0x1011), ElementsAre("ram[17]+0", "inner+1"));
    EXPECT_THAT(At(0xFFFFFFFFFFFFFFFF), ElementsAre("last+1"));
    EXPECT_THAT(At(0), IsEmpty());
    const AddressLookup lookup(mModel);
    EXPECT_EQ(mModel.Object(lookup.NearestBefore(0x1012)).name, "inner");
    EXPECT_EQ(lookup.NearestBefore(0xFFF), 0U);
}

TEST_F(AddressLookupTest, BitFieldsByTheBytesThatHoldThem) {
    const ObjectId flags = Struct("Flags", 5);
    BitField("low", mLong, flags, 0, 0, 4);
    BitField("wide", mLong, flags, 0, 4, 12);
    BitField("high", mLong, flags, 0, 24, 8);
    Global("flags", flags, 0x1000);
    const ObjectId packed = Struct("Packed", 3);
    BitField("code", mWord, packed, 0, 7, 11);
    Global("packed", packed, 0x2000);
    EXPECT_THAT(At(0x1000), ElementsAre("flags.low+0", "flags.wide+0"));
    EXPECT_THAT(At(0x1001), ElementsAre("flags.wide+1"));
    EXPECT_THAT(At(0x1002), ElementsAre("flags+2"));
    EXPECT_THAT(At(0x1003), ElementsAre("flags.high+3"));
    EXPECT_THAT(At(0x2002), ElementsAre("packed.code+2"));
    DataModel::ImageDescription image;
    image.byteOrder = DataModel::ByteOrder::Big;
    mModel.DescribeImage(image);
    EXPECT_THAT(At(0x1000), ElementsAre("flags.high+0"));
    EXPECT_THAT(At(0x1001), ElementsAre("flags+1"));
    EXPECT_THAT(At(0x1002), ElementsAre("flags.wide+2"));
    EXPECT_THAT(At(0x1003), ElementsAre("flags.low+3", "flags.wide+3"));
    EXPECT_THAT(At(0x2000), ElementsAre("packed.code+0"));
}

TEST_F(AddressLookupTest, ModelsThatHoldThemselvesManyTimesOver) {
    const ObjectId knot = Union("Knot", 4);
    const ObjectId other = Union("Other", 4);
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
        ObjectId inner = mLong;
        for (int depth = 0; depth < 12; ++depth) {
            const ObjectId outer = Union(name + std::to_string(depth), 4);
            UnionMember("x", inner, outer);
            UnionMember("y", inner, outer);
            inner = outer;
        }
        UnionMember(name, inner, knot);
    }
    UnionMember("self", other, knot);
    UnionMember("self", knot, other);
    Global("knot", knot, 0x1000);
    AddressLookup lookup(mModel);
    EXPECT_THAT(lookup.Find(0x1003), SizeIs(1000));
    EXPECT_THAT(lookup.Find(0x1003), SizeIs(1000));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
