#include "model/LeafWalk.h"

#include "model/QualifiedNameIndex.h"
#include "support/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::LeafCuts;
using DataModel::LeafLimits;
using DataModel::LeafWalk;
using DataModel::ObjectId;
using testing::ElementsAre;
using testing::SizeIs;
using Place = DataModel::Model::Place;

class LeafWalkTest : public testing::Test, public ModelBuilder {
protected:
    LeafWalkTest()
        : mByte(Base(BasicTypes::UInt8, 1))
        , mWord(Base(BasicTypes::UInt16, 2)) {}

    static std::string Text(const DataModel::Model& model, const Place& place) {
        std::ostringstream text;
        text << model.TypeText(place.type) << '@' << std::hex << place.address << std::dec << ':'
             << place.size;
        if (place.isBitField) {
            text << " bits " << place.bitOffset << '+' << place.bitSize;
        }
        return text.str();
    }

    /// The leaves as "path type@address:size". Each must be what its path resolves to.
    std::vector<std::string> Leaves(ObjectId global, const LeafLimits& limits = {}) {
        std::vector<std::string> leaves;
        LeafWalk walk(mModel, limits);
        walk.Walk(global, [&](std::string_view path, const Place& place) {
            const DataModel::Model::PathResult resolved = mModel.ResolvePath(path);
            EXPECT_EQ(Text(mModel, resolved.place), Text(mModel, place)) << path;
            EXPECT_TRUE(resolved.found) << path << ": " << resolved.problem;
            EXPECT_EQ(place.global, global);
            leaves.push_back(std::string(path) + ' ' + Text(mModel, place));
        });
        mCuts = walk.Cuts();
        return leaves;
    }

    std::uint64_t CountLeaves(ObjectId global, const LeafLimits& limits = {}) {
        std::uint64_t count = 0;
        LeafWalk walk(mModel, limits);
        walk.Walk(global, [&count](std::string_view, const Place&) { ++count; });
        mCuts = walk.Cuts();
        return count;
    }

    ObjectId mByte;
    ObjectId mWord;
    LeafCuts mCuts;
};

TEST_F(LeafWalkTest, WhatHasNoPartsIsItsOwnLeaf) {
    const ObjectId space = mModel.CreateNamespace("app", sGlobalNamespace);
    const ObjectId mode = mModel.CreateEnumTable("Mode", mByte, sGlobalNamespace, false);
    const ObjectId pair = Struct("Pair", 4);
    Member("first", mWord, pair, 0);
    const struct {
        ObjectId type;
        const char* leaf;
    } cases[] = {
        {mWord, "app::v1 uint16@1000:2"},
        {mode, "app::v2 Mode@1000:1"},
        {Pointer(pair), "app::v3 Pair*@1000:4"},
        {mModel.CreateUnknownEntryType(12, 1), "app::v4 unknown(12)@1000:12"},
        {Typedef("Alias", mWord), "app::v5 Alias@1000:2"},
        {Struct("Opaque", 8), "app::v6 Opaque@1000:8"},
        {Array({0}, mWord, 0), "app::v7 uint16[0]@1000:0"},
        {Array({4, 0}, mWord, 0), "app::v8 uint16[4][0]@1000:0"},
        {0, "app::v9 @1000:0"},
    };
    int number = 0;
    for (const auto& [type, leaf] : cases) {
        const ObjectId global = Global("v" + std::to_string(++number), type, 0x1000, space);
        EXPECT_THAT(Leaves(global), ElementsAre(leaf));
    }
}

TEST_F(LeafWalkTest, MembersElementsAndBitsInTheOrderOfTheirOffsets) {
    const ObjectId gains = Struct("Gains", 6);
    Member("p", mWord, gains, 0);
    BitField("low", mByte, gains, 4, 0, 3);
    BitField("high", mByte, gains, 4, 3, 5);
    Member("i", mWord, gains, 2);
    const ObjectId overlay = Union("Overlay", 4);
    UnionMember("raw", Array({2, 2}, mByte, 4), overlay);
    UnionMember("word", mWord, overlay);
    const ObjectId motor = Struct("Motor", 32);
    Member("pid", Typedef("Pids", Array({2}, Typedef("GainsAlias", gains), 16)), motor, 4);
    Member("view", overlay, motor, 20);
    Member("next", Pointer(motor), motor, 0);
    EXPECT_THAT(
        Leaves(Global("motor", Typedef("MotorAlias", motor), 0x1000)),
        ElementsAre("motor.next Motor*@1000:4", "motor.pid[0].p uint16@1004:2",
                    "motor.pid[0].i uint16@1006:2", "motor.pid[0].low uint8@1008:1 bits 0+3",
                    "motor.pid[0].high uint8@1008:1 bits 3+5", "motor.pid[1].p uint16@100c:2",
                    "motor.pid[1].i uint16@100e:2", "motor.pid[1].low uint8@1010:1 bits 0+3",
                    "motor.pid[1].high uint8@1010:1 bits 3+5", "motor.view.raw[0][0] uint8@1014:1",
                    "motor.view.raw[0][1] uint8@1015:1", "motor.view.raw[1][0] uint8@1016:1",
                    "motor.view.raw[1][1] uint8@1017:1", "motor.view.word uint16@1014:2"));
    EXPECT_EQ(mCuts.arrays + mCuts.wholes, 0U);
    EXPECT_FALSE(mCuts.isExhausted);
}

TEST_F(LeafWalkTest, InheritedAndAnonymousMembersComeLikeOwnOnes) {
    const ObjectId named = Struct("Named", 4);
    Member("id", mWord, named, 0);
    Member("tag", mWord, named, 2);
    const ObjectId inner = Struct("", 4);
    Member("low", mWord, inner, 0);
    Member("high", mWord, inner, 2);
    const ObjectId overlay = Union("", 4);
    UnionMember("raw", mWord, overlay);
    UnionMember("", inner, overlay);
    const ObjectId motor = Struct("Motor", 16);
    Member("id", mWord, motor, 8);
    Member("", Typedef("OverlayAlias", overlay), motor, 12);
    Member("", mWord, motor, 10);
    mModel.AddBaseClass(motor, Typedef("NamedAlias", named), 4);
    EXPECT_THAT(Leaves(Global("m", motor, 0x100)),
                ElementsAre("m.Named::id uint16@104:2", "m.tag uint16@106:2", "m.id uint16@108:2",
                            "m.raw uint16@10c:2", "m.low uint16@10c:2", "m.high uint16@10e:2"));
}

TEST_F(LeafWalkTest, AVirtualBaseClassHasNoStaticPlace) {
    // Delivered at 0, where the derived class has data of its own.
    const ObjectId device = Struct("Device", 8);
    Member("_vptr.Device", Pointer(mByte), device, 0);
    Member("port", mWord, device, 4);
    const ObjectId driven = Struct("Driven", 14);
    mModel.AddBaseClass(driven, device, 0);
    Member("_vptr.Driven", Pointer(mByte), driven, 0);
    Member("level", mWord, driven, 4);
    EXPECT_THAT(Leaves(Global("d", driven, 0x100)),
                ElementsAre("d._vptr.Driven uint8*@100:4", "d.level uint16@104:2"));
    EXPECT_FALSE(mModel.ResolvePath("d.port").found);

    // Two base classes with data can't both begin where the class begins.
    const ObjectId valve = Struct("Valve", 20);
    mModel.AddBaseClass(valve, driven, 0);
    mModel.AddBaseClass(valve, device, 0);
    Member("own", mWord, valve, 6);
    EXPECT_THAT(Leaves(Global("v", valve, 0x200)), ElementsAre("v.own uint16@206:2"));

    // An empty base class shares its place with a member, and a member without size shares its
    // place with a base class.
    const ObjectId tag = Struct("Tag", 1);
    const ObjectId tagged = Struct("Tagged", 4);
    mModel.AddBaseClass(tagged, tag, 0);
    Member("value", mWord, tagged, 0);
    const ObjectId labelled = Struct("Labelled", 8);
    mModel.AddBaseClass(labelled, tagged, 0);
    Member("tag", Array({2}, tag, 2), labelled, 0);
    Member("length", mWord, labelled, 4);
    EXPECT_THAT(Leaves(Global("t", labelled, 0x300)),
                ElementsAre("t.tag[0] Tag@300:1", "t.tag[1] Tag@301:1", "t.value uint16@300:2",
                            "t.length uint16@304:2"));
}

TEST_F(LeafWalkTest, ABaseClassThatIsThereTwiceIsToldTwice) {
    const ObjectId root = Struct("Root", 2);
    Member("x", mWord, root, 0);
    const ObjectId left = Struct("Left<A::B>", 4);
    mModel.AddBaseClass(left, root, 0);
    Member("l", mWord, left, 2);
    const ObjectId right = Struct("Right", 4);
    mModel.AddBaseClass(right, root, 0);
    Member("l", mWord, right, 2);
    const ObjectId bottom = Struct("Bottom", 8);
    mModel.AddBaseClass(bottom, left, 0);
    mModel.AddBaseClass(bottom, right, 4);
    EXPECT_THAT(Leaves(Global("b", bottom, 0x100)),
                ElementsAre("b.x uint16@100:2", "b.l uint16@102:2", "b.Right::Root::x uint16@104:2",
                            "b.Right::l uint16@106:2"));
}

TEST_F(LeafWalkTest, LimitsCutAndTellIt) {
    const ObjectId record = Struct("Record", 10);
    Member("id", mWord, record, 0);
    Member("table", Array({2, 4}, mByte, 8), record, 2);
    const ObjectId global = Global("records", Array({3}, record, 30), 0x100);
    EXPECT_THAT(Leaves(global, {.arrayElements = 8}), SizeIs(27));
    EXPECT_EQ(mCuts.arrays, 0U);
    EXPECT_THAT(Leaves(global, {.arrayElements = 3}), SizeIs(12));
    EXPECT_EQ(mCuts.arrays, 3U);
    EXPECT_EQ(mCuts.firstArray, "records[0].table");
    EXPECT_THAT(Leaves(global, {.arrayElements = 2}),
                ElementsAre("records[0].id uint16@100:2", "records[0].table[0][0] uint8@102:1",
                            "records[0].table[0][1] uint8@103:1", "records[1].id uint16@10a:2",
                            "records[1].table[0][0] uint8@10c:1",
                            "records[1].table[0][1] uint8@10d:1"));
    EXPECT_EQ(mCuts.firstArray, "records");
    EXPECT_THAT(Leaves(global, {.leaves = 27}), SizeIs(27));
    EXPECT_FALSE(mCuts.isExhausted);
    EXPECT_THAT(Leaves(global, {.leaves = 26}), SizeIs(26));
    EXPECT_TRUE(mCuts.isExhausted);
}

TEST_F(LeafWalkTest, HugeArraysEnd) {
    constexpr std::uint32_t huge = 0xFFFF'FFFF;
    const ObjectId record = Struct("Record", 4);
    Member("all", Array({huge, huge, huge}, Array({huge}, mByte, 0), 0), record, 0);
    EXPECT_EQ(CountLeaves(Global("a", Array({huge, huge}, record, 0), 0)), 1'000'000U);
    EXPECT_TRUE(mCuts.isExhausted);
    // Too many dimensions for their indices to be written.
    EXPECT_EQ(CountLeaves(Global("b", Array(std::vector<std::uint32_t>(100'000, 2), mByte, 0), 0)),
              1U);
    EXPECT_EQ(mCuts.wholes, 1U);
    EXPECT_EQ(mCuts.firstWhole, "b");
}

TEST_F(LeafWalkTest, ClassesThatContainThemselvesEnd) {
    const ObjectId self = Struct("Self", 8);
    Member("word", mWord, self, 0);
    Member("self", Array({2}, self, 0), self, 4);
    EXPECT_EQ(CountLeaves(Global("a", self, 0)), 3U);
    EXPECT_EQ(mCuts.wholes, 2U);
    EXPECT_EQ(mCuts.firstWhole, "a.self[0]");

    const ObjectId base = Struct("Base", 8);
    mModel.AddBaseClass(base, base, 4);
    Member("word", mWord, base, 0);
    Member("", base, base, 2);
    EXPECT_EQ(CountLeaves(Global("b", base, 0)), 1U);
}

TEST_F(LeafWalkTest, TypesThatHoldEachOtherManyTimesOverEnd) {
    ObjectId members = mByte;
    ObjectId bases = Struct("B", 1);
    Member("x", mByte, bases, 0);
    for (int level = 0; level < 64; ++level) {
        const ObjectId outer = Struct("M", 1);
        Member("a", members, outer, 0);
        Member("b", members, outer, 0);
        members = outer;
        const ObjectId derived = Struct("B", 1);
        mModel.AddBaseClass(derived, bases, 0);
        mModel.AddBaseClass(derived, bases, 0);
        bases = derived;
    }
    EXPECT_EQ(CountLeaves(Global("m", members, 0)), 1'000'000U);
    EXPECT_TRUE(mCuts.isExhausted);
    CountLeaves(Global("b", bases, 0));

    ObjectId nested = mByte;
    for (int level = 0; level < 100'000; ++level) {
        const ObjectId outer = Struct("N", 1);
        Member("n", nested, outer, 0);
        nested = Array({1}, outer, 1);
    }
    EXPECT_EQ(CountLeaves(Global("n", nested, 0)), 1U);
    EXPECT_EQ(mCuts.wholes, 1U);
}

TEST_F(LeafWalkTest, ALongArrayOfRecordsTakesTimeInProportion) {
    const ObjectId record = Struct("Record", 200);
    for (std::uint32_t member = 0; member < 100; ++member) {
        Member("m" + std::to_string(member), mWord, record, 2 * member);
    }
    const ObjectId table = Global("t", Array({10'000}, record, 2'000'000), 0);
    EXPECT_EQ(CountLeaves(table, {.arrayElements = 10'000, .leaves = 2'000'000}), 1'000'000U);
}

TEST_F(LeafWalkTest, PathsResolveForEachVariableOfTheName) {
    const ObjectId record = Struct("Record", 4);
    Member("x", mWord, record, 2);
    const ObjectId one = Global("state", record, 0x100, mModel.CreateCompileUnit("a.c"));
    const ObjectId other = Global("state", mWord, 0x200, mModel.CreateCompileUnit("b.c"));
    const ObjectId third = Global("state", record, 0x300, mModel.CreateCompileUnit("c.c"));
    const auto globals = [this](std::string_view path) {
        std::vector<ObjectId> found;
        for (const auto& result : mModel.ResolvePaths(path)) {
            found.push_back(result.found ? result.place.global : 0);
        }
        return found;
    };
    EXPECT_THAT(globals("state"), ElementsAre(one, other, third));
    EXPECT_THAT(globals("state.x"), ElementsAre(one, third));
    EXPECT_THAT(globals("state.y"), ElementsAre(0));
    EXPECT_THAT(globals("nobody"), ElementsAre(0));

    const ObjectId second = Global("state.2", record, 0x400, mModel.Object(one).scope);
    const ObjectId fourth = Global("state.4", record, 0x500, mModel.Object(one).scope);
    const ObjectId ofOther = Global("state.2", record, 0x600, mModel.CreateCompileUnit("d.c"));
    const ObjectId inFunction = Global("n", mWord, 0x700, Function("f", 0));
    const ObjectId numbered = Global("n.2", mWord, 0x710, mModel.Object(inFunction).scope);
    const ObjectId symbols = mModel.CreateNamespace("_Symbol_Table_BKR_", 1);
    const ObjectId symbol = Global("raw", mWord, 0x800, symbols);
    Global("raw.2", mWord, 0x810, symbols);
    EXPECT_THAT(globals("state"), ElementsAre(one, other, third, second));
    EXPECT_THAT(globals("state.x"), ElementsAre(one, third, second));
    EXPECT_THAT(globals("state.2.x"), ElementsAre(second, ofOther));
    EXPECT_THAT(globals("f::n"), ElementsAre(inFunction, numbered));
    EXPECT_THAT(globals("f::n.2"), ElementsAre(numbered));
    EXPECT_THAT(globals("raw"), ElementsAre(symbol));
    EXPECT_THAT(mModel.SharersOfName(second), ElementsAre(one, second));
    EXPECT_THAT(mModel.SharersOfName(fourth), ElementsAre(fourth));
    EXPECT_THAT(DataModel::QualifiedNameIndex(mModel).Find("f::n"),
                ElementsAre(inFunction, numbered));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
