// The layouts that `types` prints, from models filled by hand.
#include "TypeLayouts.h"

#include "NamePattern.h"
#include "ResultOutput.h"

#include "support/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Program {

namespace {

using BasicTypes = DataModel::BasicTypes;
using DataModel::ObjectId;
using testing::HasSubstr;
using testing::Not;

class TypeLayoutsTest : public testing::Test, protected Tests::ModelBuilder {
protected:
    std::string Layouts(const std::string& pattern = {}) {
        std::stringbuf text;
        ResultOutput output(text);
        mHasMatch = WriteTypeLayouts(mModel, NameFilter(pattern), output);
        output.Sync();
        return text.str();
    }

    ObjectId mInt8 = Base(BasicTypes::Int8, 1);
    ObjectId mInt32 = Base(BasicTypes::Int32, 4);
    ObjectId mUInt32 = Base(BasicTypes::UInt32, 4);
    bool mHasMatch = false;
};

TEST_F(TypeLayoutsTest, AStructureReadsAsCWithItsGaps) {
    const ObjectId motor = Struct("Motor", 40);
    Member("state", mInt8, motor, 0);
    Member("next", Pointer(motor), motor, 4);
    BitField("on", mUInt32, motor, 8, 0, 1);
    BitField("mode", mUInt32, motor, 8, 1, 3);
    Member("table", Array({2, 3}, mInt32, 24), motor, 12);
    Member("tell", Pointer(FunctionType(0, {mInt32, Pointer(motor)})), motor, 36);
    EXPECT_EQ(Layouts(), R"(struct Motor {                              /* size 40 */
    int8 state;                             /* offset 0, size 1 */
    /* hole of 3 bytes at offset 1 */
    Motor* next;                            /* offset 4, size 4 */
    uint32 on : 1;                          /* offset 8, bit 0, width 1 */
    uint32 mode : 3;                        /* offset 8, bit 1, width 3 */
    /* 28 bits unused at offset 8 */
    int32 table[2][3];                      /* offset 12, size 24 */
    void (*tell)(int32, Motor*);            /* offset 36, size 4 */
};
)");
}

TEST_F(TypeLayoutsTest, NamelessTypesStandWhereTheyAreHeld) {
    const ObjectId inner = AnonymousStruct("<unnamed-struct>", 4);
    Member("x", mInt8, inner, 0);
    const ObjectId choice = mModel.CreateEnumTable("<unnamed-enum>", mInt32, 1, true);
    mModel.AddEnumDescriptionToEnumTable(choice, -1, "Never");
    const ObjectId outer = Union("Outer", 8);
    UnionMember("pair", Array({2}, inner, 8), outer);
    UnionMember("whole", mUInt32, outer);
    Typedef("Choice", choice);
    // Its members have moved to the enclosing structure.
    AnonymousStruct("<unnamed-struct>", 4);
    EXPECT_EQ(Layouts(), R"(union Outer {                               /* size 8 */
    struct {                                /* size 4 */
        int8 x;                             /* offset 0, size 1 */
        /* padding of 3 bytes at offset 1 */
    } pair[2];                              /* offset 0, size 8 */
    uint32 whole;                           /* offset 0, size 4 */
};

typedef enum : int32 {                      /* size 4 */
    Never = -1,
} Choice;                                   /* size 4 */
)");
}

TEST_F(TypeLayoutsTest, BaseClassesAndScopesAreTold) {
    const ObjectId space = mModel.CreateNamespace("plant", 1);
    const ObjectId base = Struct("Named", 4, space);
    Member("id", mInt32, base, 0);
    const ObjectId device = mModel.CreateClassEntryType("Device", 8, space, {}, false, false);
    mModel.AddBaseClass(device, base, 0);
    Member("row", mInt32, device, 4);
    EXPECT_EQ(Layouts("Dev*"), R"(class plant::Device : plant::Named {        /* size 8 */
    /* base class plant::Named: offset 0, size 4 */
    int32 row;                              /* offset 4, size 4 */
};
)");
}

TEST_F(TypeLayoutsTest, ABaseClassThatCanNotLieThereHasNoOffset) {
    const ObjectId device = Struct("Device", 8);
    Member("id", mInt32, device, 4);
    const ObjectId driven = Struct("Driven", 16);
    mModel.AddBaseClass(driven, device, 0);
    Member("_vptr.Driven", Pointer(mInt8), driven, 0);
    EXPECT_EQ(Layouts("Driven"), R"(struct Driven : Device {                    /* size 16 */
    /* base class Device: no static offset, size 8 */
    int8* _vptr.Driven;                     /* offset 0, size 4 */
    /* padding of 12 bytes at offset 4 */
};
)");
}

TEST_F(TypeLayoutsTest, ABaseClassThatIsThereTwiceMayHaveOnePlace) {
    const ObjectId device = Struct("Device", 4);
    Member("id", mInt32, device, 0);
    const ObjectId pair = Struct("Pair", 8);
    mModel.AddBaseClass(pair, device, 0);
    mModel.AddBaseClass(pair, device, 4);
    Member("own", mInt32, pair, 0);
    EXPECT_THAT(Layouts("Pair"), HasSubstr("base class Device: no static offset, size 4"));
    EXPECT_THAT(Layouts("Pair"), HasSubstr("base class Device: offset 4, size 4"));
}

TEST_F(TypeLayoutsTest, WhatIsOnlyDeclaredOrHasOnlyAVariableIsToldSo) {
    Struct("Nobody", 0);
    const ObjectId point = AnonymousStruct("<unnamed-struct>", 4);
    Member("x", mInt32, point, 0);
    Global("corners", Array({2}, point, 8), 0x100);
    Global("origin", point, 0x200);
    EXPECT_EQ(Layouts(), R"(struct Nobody;                              /* size 0 */

struct {                                    /* size 4 */
    int32 x;                                /* offset 0, size 4 */
};                                          /* type of corners */
)");
}

TEST_F(TypeLayoutsTest, ValuesOfAnEnumHaveTheSignOfItsType) {
    for (const auto& [name, type] : {std::pair("Signed", mInt32), std::pair("Unsigned", mUInt32)}) {
        const ObjectId table = mModel.CreateEnumTable(name, Typedef("Word", type), 1, false);
        mModel.AddEnumDescriptionToEnumTable(table, std::int32_t{-2}, name);
    }
    EXPECT_THAT(Layouts("Signed"), HasSubstr("    Signed = -2,\n"));
    EXPECT_THAT(Layouts("Unsigned"), HasSubstr("    Unsigned = 4294967294,\n"));
    const ObjectId wide = mModel.CreateEnumTable("Wide", Base(BasicTypes::UInt64, 8), 1, false);
    mModel.AddWideEnumDescriptionToEnumTable(wide, -2, "Last");
    mModel.AddWideEnumDescriptionToEnumTable(wide, 0xFFFF'FFFE, "Middle");
    EXPECT_THAT(Layouts("Wide"), HasSubstr("    Last = 18446744073709551614,\n"
                                           "    Middle = 4294967294,\n"));
}

TEST_F(TypeLayoutsTest, UnusedBitsAreThoseThatNothingCovers) {
    const ObjectId packed = Struct("Packed", 11);
    Member("stamp", mUInt32, packed, 0);
    const ObjectId uint16 = Base(BasicTypes::UInt16, 2);
    // Packed fields may extend beyond their storage unit; what follows lies in it.
    BitField("code", uint16, packed, 3, 8, 11);
    BitField("flags", uint16, packed, 5, 3, 5);
    Member("rest", Array({5}, mInt8, 5), packed, 6);
    const ObjectId small = Struct("Small", 1);
    BitField("bits", mUInt32, small, 0, 0, 5);
    const std::string text = Layouts();
    EXPECT_THAT(text, Not(HasSubstr("hole")));
    EXPECT_THAT(Layouts("Packed"), Not(HasSubstr("unused")));
    EXPECT_THAT(text, HasSubstr("    /* 3 bits unused at offset 0 */\n};\n"));
}

TEST_F(TypeLayoutsTest, WhatReadsAlikeIsWrittenOnceWithItsCompileUnits) {
    for (const char* unit : {"a.c", "b.c", "c.c"}) {
        const ObjectId scope = mModel.CreateCompileUnit(unit);
        const ObjectId point = Struct("Point", 8, scope);
        Member("x", mInt32, point, 0);
        Member("y", unit[0] == 'c' ? mUInt32 : mInt32, point, 4);
        Typedef("Word", mInt32, scope);
    }
    EXPECT_EQ(Layouts(),
              R"(struct Point {                              /* size 8, in a.c and 1 more */
    int32 x;                                /* offset 0, size 4 */
    int32 y;                                /* offset 4, size 4 */
};

typedef int32 Word;                         /* size 4 */

struct Point {                              /* size 8, in c.c */
    int32 x;                                /* offset 0, size 4 */
    uint32 y;                               /* offset 4, size 4 */
};
)");
    EXPECT_TRUE(mHasMatch);
    EXPECT_EQ(Layouts("Pint"), "");
    EXPECT_FALSE(mHasMatch);
}

} // namespace

} // namespace Tessel::Norn::Brindle::Program
