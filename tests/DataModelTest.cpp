#include "model/DataModel.h"

#include "model/LeafWalk.h"
#include "support/ModelBuilder.h"

#include <ctime>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::BasicTypes;
using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using Model = DataModel::Model;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

constexpr ObjectId sNeverGivenOut = 0xFFFF'FFFF'FFFF;

/// A model to fill, with short names for the queries of the tests.
class DataModelTest : public testing::Test, public ModelBuilder {
protected:
    /// The identifier that the next object will have.
    [[nodiscard]] ObjectId Next() const { return mModel.ObjectCount() + 1; }

    [[nodiscard]] std::vector<ObjectId> In(ObjectId scope) const {
        std::vector<ObjectId> ids;
        mModel.ForEachIn(scope, [&](const ModelObject& object) { ids.push_back(object.id); });
        return ids;
    }

    /// The place of a path, as "type@address:size", followed by the bits of a bit field; or how far
    /// it resolved, and why no further.
    [[nodiscard]] std::string Resolve(std::string_view path) const {
        const Model::PathResult result = mModel.ResolvePath(path);
        const Model::Place& place = result.place;
        std::ostringstream text;
        if (!result.found) {
            text << '"' << path.substr(0, result.resolvedLength) << "\", then " << result.problem;
            return text.str();
        }
        text << mModel.TypeText(place.type) << '@' << std::hex << place.address << std::dec << ':'
             << place.size;
        if (place.isBitField) {
            text << " bits " << place.bitOffset << '+' << place.bitSize;
        }
        if (place.indexedDimensions != 0) {
            text << " indexed " << place.indexedDimensions;
        }
        return text.str();
    }
};

struct KeyCase {
    using Call = std::function<ObjectId(Model&)>;

    const char* name;
    Call create;
    /// Looks up what `create` makes.
    Call get;
    /// Looks up keys that differ in one part; all must find nothing.
    std::vector<Call> others;
};

#define CALL(...) [](Model& m) { return m.__VA_ARGS__; }
/// An object that is identified only by name and scope.
#define NAMED(create, get)                                                                         \
    {                                                                                              \
        "" #get, CALL(create), CALL(get("key", 1)), {                                              \
            CALL(get("kez", 1)), CALL(get("", 1)), CALL(get("key", 2))                             \
        }                                                                                          \
    }

const std::vector<KeyCase> sKeyCases = {
    NAMED(CreateNamespace("key", 1), GetNamespace),
    NAMED(CreateBlockScope("key", 1), GetBlockScope),
    NAMED(CreateClassEntryType("key", 4, 1, {}, false, true), GetClassEntryType),
    NAMED(CreateUnionEntryType("key", 4, 1, false), GetUnionEntryType),
    NAMED(CreateEnumTable("key", 0, 1, false), GetEnumTable),
    NAMED(CreateTypedefEntryType("key", 0, 1), GetTypedefEntryType),
    NAMED(CreateGlobalData("key", 0, 8, 1, true, 0, false), GetGlobalData),
    {"global by name",
     CALL(CreateGlobalData("key", 0, 8, 1, true, 0, false)),
     CALL(GetGlobalData("key")),
     {CALL(GetGlobalData("ke"))}},
    {"compile unit",
     CALL(CreateCompileUnit("key")),
     CALL(GetOrCreateCompileUnit("key")),
     {CALL(GetCompileUnit("kez"))}},
    {"segment",
     CALL(CreateSegment("key", 1, 2)),
     CALL(GetSegment("key")),
     {CALL(GetSegment("kez"))}},
    {"global by address",
     CALL(CreateGlobalData("key", 0, 8, 1, true, 0, false)),
     CALL(GetGlobalDataByAddress(8)),
     {CALL(GetGlobalDataByAddress(0))}},
    {"base type",
     CALL(CreateBaseEntryType(BasicTypes::Double, 16, 1)),
     CALL(GetBaseEntryType(BasicTypes::Double, 1)),
     {CALL(GetBaseEntryType(BasicTypes::Int8, 1)), CALL(GetBaseEntryType(BasicTypes::Double, 0))}},
    {"unknown type of size 0",
     CALL(CreateUnknownEntryType(0, 1)),
     CALL(GetUnknownEntryType(0, 1)),
     {CALL(GetUnknownEntryType(1, 1)), CALL(GetUnknownEntryType(0, 2))}},
    {"section",
     CALL(CreateSectionEntryType(7, 1)),
     CALL(GetSectionEntryType(7, 1)),
     {CALL(GetSectionEntryType(1, 7))}},
    {"function",
     CALL(CreateFunction("key", 7, 1, 5, false)),
     CALL(GetFunction("key", 7, 1)),
     {CALL(GetFunction("key", 1, 7)), CALL(GetFunction("key", 7, 5)),
      CALL(GetFunction("kez", 7, 1))}},
    {"function without a named scope",
     CALL(CreateFunction("key", 7, true)),
     CALL(GetFunction("key", 7, 1)),
     {}},
    // Some of the longer lists begin with the identifiers that the key is made of.
    {"function type",
     CALL(CreateFunctionType(7, {8, 9}, 1)),
     CALL(GetFunctionType(7, {8, 9}, 1)),
     {CALL(GetFunctionType(7, {9, 8}, 1)), CALL(GetFunctionType(7, {8}, 9)),
      CALL(GetFunctionType(7, {8}, 1)), CALL(GetFunctionType(7, {8, 9, 0}, 1)),
      CALL(GetFunctionType(7, {8, 9, 1}, 1)), CALL(GetFunctionType(7, {}, 1)),
      CALL(GetFunctionType(0, {8, 9}, 1))}},
    {"function type without parameters",
     CALL(CreateFunctionType(0, {}, 1)),
     CALL(GetFunctionType(0, {}, 1)),
     {CALL(GetFunctionType(0, {0}, 1)), CALL(GetFunctionType(0, {}, 0))}},
    {"old bit field",
     CALL(CreateOldBitfieldEntryType(7, -1, 3, 1)),
     CALL(GetOldBitfieldEntryType(7, -1, 3, 1)),
     {CALL(GetOldBitfieldEntryType(7, 1, 3, 1)), CALL(GetOldBitfieldEntryType(7, -1, 4, 1)),
      CALL(GetOldBitfieldEntryType(1, -1, 3, 7))}},
};

TEST(DataModelKeysTest, GetFindsTheFirstOfItsKeyAndNothingOfAnother) {
    Model ofAllKinds;
    for (const KeyCase& key : sKeyCases) {
        SCOPED_TRACE(key.name);
        Model model;
        const ObjectId first = key.create(model);
        EXPECT_EQ(first, 2U);
        EXPECT_EQ(key.create(model), 3U);
        EXPECT_EQ(key.get(model), first);
        for (const auto& other : key.others) {
            EXPECT_EQ(other(model), 0U);
        }
        key.create(ofAllKinds);
    }
    // All of them in one model: kinds of one name or number don't meet.
    EXPECT_EQ(ofAllKinds.GetNamespace("key", 1), 2U);
    EXPECT_EQ(ofAllKinds.GetTypedefEntryType("key", 1), 7U);
    EXPECT_EQ(ofAllKinds.GetGlobalData("key"), 8U);
}

TEST_F(DataModelTest, CompileUnitsAreMadeOnlyWhereTheNameIsNew) {
    const ObjectId made = mModel.GetOrCreateCompileUnit("a.c");
    EXPECT_EQ(mModel.GetOrCreateCompileUnit("a.c"), made);
    EXPECT_NE(mModel.GetOrCreateCompileUnit("b.c"), made);
    EXPECT_EQ(mModel.ObjectCount(), 3U);
}

TEST_F(DataModelTest, NumbersKeepTheirUpperHalves) {
    constexpr std::uint64_t sWide = 0x1'0000'0002U;
    const ObjectId pointer = mModel.CreatePointerEntryType(sWide, sWide, sGlobalNamespace);
    EXPECT_EQ(mModel.Object(pointer).type, sWide);
    EXPECT_EQ(mModel.Object(pointer).size, sWide);
    const ObjectId narrow = mModel.CreatePointerEntryType(pointer, 4, sWide);
    EXPECT_EQ(mModel.Object(narrow).scope, sWide);
    EXPECT_EQ(mModel.Object(narrow).size, 4U);
    const ObjectId array = mModel.CreateArrayEntryType({3}, narrow, sWide, sGlobalNamespace);
    EXPECT_EQ(mModel.Object(array).size, sWide);
    EXPECT_THAT(mModel.Dimensions(array), ElementsAre(3));
    const ObjectId variable = Global("v", pointer, sWide);
    const ObjectId second = Global("v", pointer, sWide + 1);
    EXPECT_EQ(mModel.Object(variable).address, sWide);
    EXPECT_EQ(mModel.Object(second).address, sWide + 1);
}

TEST_F(DataModelTest, GlobalsAreFoundByScopeNameAndAddressEach) {
    const ObjectId scope = mModel.CreateNamespace("n", sGlobalNamespace);
    const ObjectId inScope = Global("v", 0, 0x10, scope);
    const ObjectId atTop = Global("v", 0, 0x20);
    const ObjectId sameAddress = Global("w", 0, 0x10);
    const ObjectId unplaced = mModel.CreateGlobalData("u", 0, 0x30, scope, false, 0, false);
    EXPECT_EQ(mModel.GetGlobalData("v", sGlobalNamespace), atTop);
    EXPECT_EQ(mModel.GetGlobalData("v"), inScope);
    EXPECT_EQ(mModel.GetGlobalData("w"), sameAddress);
    EXPECT_EQ(mModel.GetGlobalDataByAddress(0x10), inScope);
    EXPECT_EQ(mModel.GetGlobalData("u"), unplaced);
    EXPECT_EQ(mModel.GetGlobalDataByAddress(0x30), 0U);
}

TEST_F(DataModelTest, ObjectsTellWhatWasDelivered) {
    const ObjectId unit = mModel.CreateCompileUnit("a.c");
    const ObjectId word = Base(BasicTypes::UInt32, 4);
    const ObjectId parent = mModel.CreateClassEntryType("S", 12, unit, {}, true, false);
    const ModelObject bits = mModel.Object(BitField("b", word, parent, 8, 0x80000001U, 0xFFFFFFFF));
    EXPECT_EQ(bits.kind, ObjectKind::BitField);
    EXPECT_EQ(bits.name, "b");
    EXPECT_EQ(bits.type, word);
    EXPECT_EQ(bits.scope, parent);
    EXPECT_EQ(bits.offset, 8U);
    EXPECT_EQ(bits.bitOffset, 0x80000001U);
    EXPECT_EQ(bits.bitSize, 0xFFFFFFFFU);
    EXPECT_EQ(bits.size + bits.address + bits.compileUnit, 0U);
    const ModelObject old = mModel.Object(mModel.CreateOldBitfieldEntryType(word, -3, 5, 1));
    EXPECT_EQ(old.bitOffset, 0xFFFFFFFDU);
    EXPECT_EQ(old.bitSize, 5U);
    const ModelObject segment = mModel.Object(mModel.CreateSegment("ram", 0x20000000, 0x400));
    EXPECT_EQ(segment.address, 0x20000000U);
    EXPECT_EQ(segment.size, 0x400U);
    EXPECT_EQ(segment.type, 0U);
    const ModelObject function = mModel.Object(mModel.CreateFunction("f", 9, 1, unit, false));
    EXPECT_EQ(function.compileUnit, unit);
    EXPECT_EQ(function.type, 9U);
    EXPECT_EQ(function.size, 0U);
    EXPECT_EQ(mModel.Object(word).basicType, BasicTypes::UInt32);
    EXPECT_EQ(mModel.Object(parent).kind, ObjectKind::Class);
    EXPECT_TRUE(mModel.Object(parent).anonymous);
    EXPECT_EQ(mModel.Object(parent).size, 12U);
    EXPECT_EQ(mModel.Object(Global("g", word, ~0ULL)).address, ~0ULL);
    const ObjectId shared = mModel.CreateMemberStaticData("s", word, parent, 0x40, true, 0, false);
    EXPECT_EQ(mModel.Object(shared).address, 0x40U);
}

TEST_F(DataModelTest, ListsBelongToTheirObjectsAlone) {
    const ObjectId base = Struct("Base", 4);
    const ObjectId derived = mModel.CreateClassEntryType("D", 16, 1, {base}, false, false);
    const ObjectId table = mModel.CreateEnumTable("E", 0, 1, false);
    const ObjectId array = Array({3, 4}, base, 48);
    const ObjectId function = FunctionType(base, {derived, base});
    EXPECT_TRUE(mModel.AddBaseClass(derived, base, 8));
    EXPECT_TRUE(mModel.AddEnumDescriptionToEnumTable(table, -1, "low"));
    EXPECT_TRUE(mModel.AddEnumDescriptionToEnumTable(table, 1, "high"));
    EXPECT_FALSE(mModel.AddBaseClass(table, base, 0));
    EXPECT_FALSE(mModel.AddBaseClass(0, base, 0));
    EXPECT_FALSE(mModel.AddEnumDescriptionToEnumTable(derived, 0, "x"));
    EXPECT_FALSE(mModel.AddEnumDescriptionToEnumTable(sNeverGivenOut, 0, "x"));

    ASSERT_EQ(mModel.BaseClasses(derived).size(), 2U);
    EXPECT_EQ(mModel.BaseClasses(derived)[0].offset, 0U);
    EXPECT_EQ(mModel.BaseClasses(derived)[1].offset, 8U);
    ASSERT_EQ(mModel.Enumerators(table).size(), 2U);
    EXPECT_EQ(mModel.Enumerators(table)[0].value, -1);
    EXPECT_EQ(mModel.Enumerators(table)[1].name, "high");
    EXPECT_THAT(mModel.Dimensions(array), ElementsAre(3U, 4U));
    EXPECT_THAT(mModel.Parameters(function), ElementsAre(derived, base));
    for (const ObjectId other : {base, ObjectId{0}, sNeverGivenOut}) {
        EXPECT_THAT(mModel.BaseClasses(other), IsEmpty());
        EXPECT_THAT(mModel.Enumerators(other), IsEmpty());
        EXPECT_THAT(mModel.Dimensions(other), IsEmpty());
        EXPECT_THAT(mModel.Parameters(other), IsEmpty());
    }
}

TEST_F(DataModelTest, ScopesGiveTheirContentsInOrderOfCreation) {
    const ObjectId outer = Struct("Outer", 8);
    const ObjectId first = Member("a", 0, outer, 0);
    const ObjectId nested = Struct("Nested", 4, outer);
    const ObjectId inNested = Member("x", 0, nested, 0);
    const ObjectId second = Member("b", 0, outer, 4);
    EXPECT_THAT(In(outer), ElementsAre(first, nested, second));
    EXPECT_THAT(In(nested), ElementsAre(inNested));
    EXPECT_THAT(In(sGlobalNamespace), ElementsAre(outer));
    std::vector<ObjectId> members;
    mModel.ForEach(ObjectKind::Member,
                   [&](const ModelObject& object) { members.push_back(object.id); });
    EXPECT_THAT(members, ElementsAre(first, inNested, second));
}

TEST_F(DataModelTest, UnknownIdentifiersAreKeptAndAnswerNothing) {
    const ObjectId variable = Global("v", sNeverGivenOut, 4, sNeverGivenOut);
    EXPECT_EQ(mModel.Object(variable).type, sNeverGivenOut);
    EXPECT_EQ(mModel.Object(variable).scope, sNeverGivenOut);
    EXPECT_EQ(mModel.GetGlobalData("v", sNeverGivenOut), variable);
    EXPECT_EQ(Resolve("v"), "@4:0");
    for (const ObjectId id : {ObjectId{0}, Next(), sNeverGivenOut, ~ObjectId{0}}) {
        EXPECT_EQ(mModel.Object(id).id, 0U);
        EXPECT_THAT(In(id), IsEmpty());
        EXPECT_EQ(mModel.SizeOf(id), 0U);
        EXPECT_EQ(mModel.WithoutTypedefs(id), 0U);
        EXPECT_EQ(mModel.QualifiedName(id), "");
        EXPECT_EQ(mModel.TypeText(id), "");
        EXPECT_EQ(mModel.CompileUnitOf(id), 0U);
    }
}

TEST_F(DataModelTest, QualifiedNamesTellAllScopesButCompileUnits) {
    const ObjectId unit = mModel.CreateCompileUnit("main.cpp");
    const ObjectId space = mModel.CreateNamespace("app", unit);
    const ObjectId inner = Struct("Motor<int, 3>", 4, space);
    const ObjectId function = Function("run", inner);
    const ObjectId block = mModel.CreateBlockScope("1", function);
    const ObjectId symbols = mModel.CreateNamespace("_Symbol_Table_BKR_", sGlobalNamespace);
    EXPECT_EQ(mModel.QualifiedName(Global("count", 0, 0, block)),
              "app::Motor<int, 3>::run::1::count");
    EXPECT_EQ(mModel.QualifiedName(Global("local", 0, 0, unit)), "local");
    EXPECT_EQ(mModel.QualifiedName(Global("g", 0, 0, symbols)), "_Symbol_Table_BKR_::g");
    EXPECT_EQ(mModel.QualifiedName(Pointer(inner)), "");
    EXPECT_EQ(mModel.QualifiedName(sGlobalNamespace), "");
}

TEST_F(DataModelTest, CompileUnitsAreThoseAroundOrOfTheFunction) {
    const ObjectId unit = mModel.CreateCompileUnit("a.c");
    const ObjectId other = mModel.CreateCompileUnit("b.c");
    const ObjectId type = Struct("S", 4, unit);
    const ObjectId function = mModel.CreateFunction("f", 0, sGlobalNamespace, other, false);
    EXPECT_EQ(mModel.CompileUnitOf(Member("m", 0, type, 0)), unit);
    EXPECT_EQ(mModel.CompileUnitOf(Global("s", 0, 0, function)), other);
    EXPECT_EQ(mModel.CompileUnitOf(mModel.CreateFunction("g", 0, type, 0, false)), unit);
    EXPECT_EQ(mModel.CompileUnitOf(Global("e", 0, 0)), 0U);
}

TEST_F(DataModelTest, SizesComeFromTheTypeBehind) {
    const ObjectId word = Base(BasicTypes::UInt16, 2);
    const ObjectId record = Struct("S", 12);
    const ObjectId alias = Typedef("T", Typedef("U", record));
    EXPECT_EQ(mModel.SizeOf(alias), 12U);
    EXPECT_EQ(mModel.SizeOf(mModel.CreateEnumTable("E", word, 1, false)), 2U);
    EXPECT_EQ(mModel.SizeOf(Global("g", alias, 0)), 12U);
    EXPECT_EQ(mModel.SizeOf(BitField("b", word, record, 0, 1, 2)), 2U);
    EXPECT_EQ(mModel.SizeOf(Array({6}, alias, 72)), 72U);
    EXPECT_EQ(mModel.SizeOf(Pointer(record)), 4U);
    EXPECT_EQ(mModel.SizeOf(mModel.CreateSegment("ram", 1, 99)), 99U);
    EXPECT_EQ(mModel.SizeOf(FunctionType(word, {})), 0U);
    EXPECT_EQ(mModel.WithoutTypedefs(alias), record);
    EXPECT_EQ(mModel.WithoutTypedefs(word), word);
}

TEST_F(DataModelTest, TypesReadAsDeclarations) {
    const ObjectId int32 = Base(BasicTypes::Int32, 4);
    const ObjectId space = mModel.CreateNamespace("app", sGlobalNamespace);
    const ObjectId motor = Struct("Motor", 8, space);
    const ObjectId noResult = FunctionType(0, {int32, Pointer(motor)});
    const ObjectId arrayOf3 = Array({3}, int32, 12);
    const struct {
        ObjectId type;
        const char* text;
    } cases[] = {
        {Base(BasicTypes::Double, 8), "double"},
        {Base(BasicTypes::Double, 16), "float(16)"},
        {Base(BasicTypes::NoType, 5), "notype(5)"},
        {Base(static_cast<BasicTypes>(99), 2), "notype(2)"},
        {Base(BasicTypes::UnsignedLong, 4), "unsigned long"},
        {Base(BasicTypes::WideChar, 2), "wchar"},
        {mModel.CreateUnknownEntryType(4, 1), "unknown(4)"},
        {motor, "app::Motor"},
        {mModel.CreateEnumTable("Mode", int32, motor, false), "app::Motor::Mode"},
        {mModel.CreateTypedefEntryType("Alias", int32, space), "app::Alias"},
        {Typedef("", arrayOf3), "int32[3]"},
        {mModel.CreateUnionEntryType("", 4, 1, true), "union"},
        {Pointer(motor), "app::Motor*"},
        {Pointer(Pointer(Base(BasicTypes::Void, 0))), "void**"},
        {Pointer(0), "?*"},
        {Array({4, 2}, int32, 32), "int32[4][2]"},
        {Array({4}, arrayOf3, 48), "int32[4][3]"},
        {Array({4}, Pointer(int32), 16), "int32*[4]"},
        {Pointer(arrayOf3), "int32 (*)[3]"},
        {Pointer(Array({4}, arrayOf3, 48)), "int32 (*)[4][3]"},
        {noResult, "void (int32, app::Motor*)"},
        {Pointer(noResult), "void (*)(int32, app::Motor*)"},
        {FunctionType(Pointer(int32), {}), "int32* ()"},
        {Pointer(FunctionType(Pointer(int32), {})), "int32* (*)()"},
        {Array({2}, Pointer(noResult), 8), "void (*[2])(int32, app::Motor*)"},
        {Pointer(FunctionType(Pointer(arrayOf3), {Pointer(noResult)})),
         "int32 (*(*)(void (*)(int32, app::Motor*)))[3]"},
        {Global("notAType", int32, 0), ""},
    };
    for (const auto& [type, text] : cases) {
        EXPECT_EQ(mModel.TypeText(type), text);
    }
}

TEST_F(DataModelTest, DeclarationsHaveTheNameInItsPlace) {
    const ObjectId int32 = Base(BasicTypes::Int32, 4);
    const ObjectId callback = Pointer(FunctionType(0, {Pointer(int32)}));
    EXPECT_EQ(mModel.Declaration(int32, "x"), "int32 x");
    EXPECT_EQ(mModel.Declaration(Pointer(int32), "x"), "int32* x");
    EXPECT_EQ(mModel.Declaration(Array({4, 2}, int32, 32), "x"), "int32 x[4][2]");
    EXPECT_EQ(mModel.Declaration(Pointer(Array({3}, int32, 12)), "x"), "int32 (*x)[3]");
    EXPECT_EQ(mModel.Declaration(callback, "x"), "void (*x)(int32*)");
    EXPECT_EQ(mModel.Declaration(Array({2}, callback, 8), "x"), "void (*x[2])(int32*)");
    EXPECT_EQ(mModel.Declaration(FunctionType(int32, {}), "x"), "int32 x()");
    EXPECT_EQ(mModel.Declaration(0, "x"), "? x");
    EXPECT_EQ(mModel.Declaration(int32, ""), "int32");
}

/// struct Gains { uint16 p, i; uint8 flags : bits 3+2; }
/// struct Motor : Named (at 4) { Gains pid[2][3]; Gains* next; union { uint32 raw; Gains g; }; }
class DataModelPathTest : public DataModelTest {
protected:
    DataModelPathTest() {
        mWord = Base(BasicTypes::UInt16, 2);
        const ObjectId byte = Base(BasicTypes::UInt8, 1);
        const ObjectId gains = Struct("Gains", 6);
        Member("p", mWord, gains, 0);
        Member("i", mWord, gains, 2);
        BitField("flags", byte, gains, 4, 3, 2);
        const ObjectId named = Struct("Named", 4);
        Member("id", mWord, named, 2);
        Member("pid", mWord, named, 0);
        const ObjectId overlay = mModel.CreateUnionEntryType("", 6, sGlobalNamespace, true);
        mModel.CreateUnionMemberData("raw", Base(BasicTypes::UInt32, 4), overlay, 0, 0, false);
        mModel.CreateUnionMemberData("g", gains, overlay, 0, 0, false);
        const ObjectId motor = Struct("Motor", 64);
        mModel.AddBaseClass(motor, Typedef("NamedAlias", named), 4);
        Member("pid", Array({2, 3}, Typedef("GainsAlias", gains), 36), motor, 8);
        Member("next", Pointer(motor), motor, 44);
        Member("", overlay, motor, 48);
        mMotor = Typedef("MotorAlias", motor);
    }

    ObjectId mWord = 0;
    ObjectId mMotor = 0;
};

TEST_F(DataModelPathTest, StepsAddUpToAPlace) {
    Global("motor", mMotor, 0x1000);
    Global("table", Typedef("Table", Array({4, 5}, mWord, 40)), 0x2000);
    Global("sized", Array({4}, mModel.CreateUnknownEntryType(0, 1), 12), 0x3000);
    Global("unsized", Array({2, 4}, mWord, 0), 0x4000);
    Global("padded", Array({4}, mWord, 16), 0x5000);
    Global("ragged", Array({4}, mWord, 14), 0x8000);
    Global("nested", Array({2}, Array({3}, mWord, 6), 12), 0x6000);
    Global("open", Array({0}, mWord, 0), 0x7000);
    const struct {
        const char* path;
        const char* place;
    } cases[] = {
        {"motor", "MotorAlias@1000:64"},
        {"motor.pid", "GainsAlias[2][3]@1008:36"},
        {"motor.pid[1]", "GainsAlias[2][3]@101a:18 indexed 1"},
        {"motor.pid[1][2]", "GainsAlias@1026:6"},
        {"motor.pid[1][2].i", "uint16@1028:2"},
        {"motor.pid[0][1].flags", "uint8@1012:1 bits 3+2"},
        {"motor.id", "uint16@1006:2"},
        {"motor.raw", "uint32@1030:4"},
        {"motor.g.i", "uint16@1032:2"},
        {"motor.next", "Motor*@102c:4"},
        {"table[3]", "uint16[4][5]@201e:10 indexed 1"},
        {"table[3][4]", "uint16@2026:2"},
        {"sized[2]", "unknown(0)@3006:3"},
        {"unsized[1][3]", "uint16@400e:2"},
        {"padded[3]", "uint16@500c:2"},
        {"ragged[3]", "uint16@8006:2"},
        {"nested[1]", "uint16[3]@6006:6"},
        {"nested[1][2]", "uint16@600a:2"},
        {"motor.pid[2]", "\"motor.pid\", then index 2 is beyond the dimension of 2"},
        {"motor.pid[1][3]", "\"motor.pid[1]\", then index 3 is beyond the dimension of 3"},
        {"open[0]", "\"open\", then the file doesn't state how many elements there are"},
        {"motor.pid.p", "\"motor.pid\", then an array has no members, only elements"},
        {"motor.pid[1].p", "\"motor.pid[1]\", then an array has no members, only elements"},
        {"motor.next.id", "\"motor.next\", then a pointer is not followed"},
        {"motor.next[0]", "\"motor.next\", then a pointer is not followed"},
        {"motor.none.x", R"("motor", then no member named "none")"},
        {"motor.ids", R"("motor", then no member named "ids")"},
        {"motor.id.x", "\"motor.id\", then what lies here has no members"},
        {"motor[0]", "\"motor\", then what lies here has no elements"},
        {"motor.pid[0][0].flags.x", "\"motor.pid[0][0].flags\", then a bit field has no parts"},
    };
    for (const auto& [path, place] : cases) {
        EXPECT_EQ(Resolve(path), place) << path;
    }
}

TEST_F(DataModelPathTest, MalformedPathsTellHowFarTheyWent) {
    Global("a", Array({4}, mWord, 8), 0x1000);
    const std::string noIndex = "\"a\", then an index is a decimal number in brackets";
    for (const char* path : {"a[", "a[]", "a[1", "a[-1]", "a[0x1]", "a[ 1]", "a[1.5]", "a[[1]]",
                             "a[99999999999999999999]"}) {
        EXPECT_EQ(Resolve(path), noIndex) << path;
    }
    EXPECT_EQ(Resolve("a[1]b"), R"("a[1]", then "." or "[" is expected)");
    EXPECT_EQ(Resolve("a."), R"("a", then an array has no members, only elements)");
    EXPECT_EQ(Resolve("a[1]."), "\"a[1]\", then what lies here has no members");
    for (const char* path : {"", ".", "[", "..a", ".a", "b", "b[0].x", "::", "x::a", "a::", " a"}) {
        EXPECT_EQ(Resolve(path), "\"\", then no variable of this name") << path;
    }
}

TEST_F(DataModelPathTest, HeadsAreQualifiedNamesOrBareOnes) {
    const ObjectId unit = mModel.CreateCompileUnit("a.cpp");
    const ObjectId space = mModel.CreateNamespace("ns", unit);
    const ObjectId generic = Struct("Table<ns::Key, 1.5>", 4, space);
    const ObjectId function = Function("operator[]", generic);
    const ObjectId symbols = mModel.CreateNamespace("_Symbol_Table_BKR_", sGlobalNamespace);
    Global("x", mWord, 0x10, space);
    Global("only", mWord, 0x20, generic);
    Global("counter", mMotor, 0x30, function);
    Global("x", mWord, 0x40, unit);
    Global("x", mWord, 0x50);
    Global("twice", mWord, 0x80);
    Global("twice", mWord, 0x90, unit);
    Global("other::y", mWord, 0x60, symbols);
    Global("_A::_B", mWord, 0x70, space);
    const struct {
        const char* path;
        const char* place;
    } cases[] = {
        {"x", "uint16@40:2"},
        {"::x", "uint16@40:2"},
        {"ns::x", "uint16@10:2"},
        {"::ns::x", "uint16@10:2"},
        {"only", "uint16@20:2"},
        {"twice", "uint16@80:2"},
        {"ns::Table<ns::Key, 1.5>::only", "uint16@20:2"},
        {"ns::Table<ns::Key, 1.5>::operator[]::counter.id", "uint16@36:2"},
        {"other::y", "uint16@60:2"},
        {"_Symbol_Table_BKR_::other::y", "uint16@60:2"},
        {"ns::_A::_B", "uint16@70:2"},
        {"Table<ns::Key, 1.5>::only", "\"\", then no variable of this name"},
        {"s::x", "\"\", then no variable of this name"},
        {"ns::::x", "\"\", then no variable of this name"},
    };
    for (const auto& [path, place] : cases) {
        EXPECT_EQ(Resolve(path), place) << path;
    }
}

TEST_F(DataModelPathTest, NamesWithPointsAndBracketsWinOverSteps) {
    const ObjectId record = Struct("Odd", 8);
    Member("a", Array({2}, mWord, 4), record, 0);
    Member("a[1]", mWord, record, 4);
    Member("b.c", mWord, record, 6);
    Member("d.e", mWord, record, 2);
    Member("d", mWord, record, 0);
    Global("v", record, 0x100);
    Global("v.d", record, 0x400);
    Global("v.2", record, 0x200);
    Global("v.2.b", mWord, 0x300);
    EXPECT_EQ(Resolve("v.a[0]"), "uint16@100:2");
    EXPECT_EQ(Resolve("v.a[1]"), "uint16@104:2");
    EXPECT_EQ(Resolve("v.2.d.e"), "uint16@202:2");
    EXPECT_EQ(Resolve("v.d"), "Odd@400:8");
    EXPECT_EQ(Resolve("v.2.x"), R"("v.2", then no member named "x")");
    EXPECT_EQ(Resolve("v.2.a"), "uint16[2]@200:4");
    EXPECT_EQ(Resolve("v.2.b"), "uint16@300:2");
    EXPECT_EQ(Resolve("v.2.b.c"), "uint16@206:2");
}

TEST_F(DataModelPathTest, NearerMembersHideInheritedOnes) {
    const ObjectId far = Struct("Far", 4);
    const ObjectId near = Struct("Near", 8);
    const ObjectId second = Struct("Second", 4);
    const ObjectId own = Struct("Own", 16);
    Member("x", mWord, far, 0);
    Member("y", mWord, far, 2);
    mModel.AddBaseClass(near, far, 4);
    Member("z", mWord, near, 0);
    Member("y", mWord, second, 2);
    mModel.AddBaseClass(own, near, 0);
    mModel.AddBaseClass(own, second, 8);
    Member("z", mWord, own, 12);
    Global("v", own, 0);
    EXPECT_EQ(Resolve("v.x"), "uint16@4:2");
    EXPECT_EQ(Resolve("v.y"), "uint16@a:2");
    EXPECT_EQ(Resolve("v.z"), "uint16@c:2");
}

/// Models that no compiler makes. Every query must end, quickly and without deep recursion.
class HostileDataModelTest : public DataModelTest {
protected:
    static constexpr int sMany = 1'000'000;

    void AskEverything(ObjectId id) const {
        EXPECT_EQ(mModel.SizeOf(id), 0U);
        EXPECT_LE(mModel.TypeText(id).size(), 70'000U);
        EXPECT_LE(mModel.QualifiedName(id).size(), 70'000U);
        EXPECT_EQ(mModel.CompileUnitOf(id), 0U);
        EXPECT_FALSE(mModel.ResolvePath("v.a[0].b").found);
    }
};

TEST_F(HostileDataModelTest, TypesThatReferToThemselves) {
    const ObjectId self = Typedef("Self", Next());
    const ObjectId there = Typedef("There", Next() + 1);
    const ObjectId back = Typedef("Back", there);
    const ObjectId array = Array({2}, Next(), 0);
    const ObjectId unnamed = Typedef("", Next());
    EXPECT_EQ(mModel.WithoutTypedefs(self), 0U);
    EXPECT_EQ(mModel.WithoutTypedefs(back), 0U);
    EXPECT_THAT(mModel.TypeText(array), StartsWith("...[2][2]"));
    EXPECT_EQ(mModel.TypeText(unnamed), "...");
    EXPECT_THAT(mModel.TypeText(Pointer(Next())), StartsWith("...***"));
    Global("v", self, 0);
    for (const ObjectId id : {self, there, back, array, unnamed}) {
        AskEverything(id);
    }
    Global("w", array, 0);
    EXPECT_EQ(Resolve("w[1][1][1]").substr(0, 3), "...");
}

TEST_F(HostileDataModelTest, ChainsOfAMillionTypes) {
    ObjectId typedefs = Base(BasicTypes::Int8, 1);
    ObjectId arrays = typedefs;
    for (int link = 0; link < sMany; ++link) {
        typedefs = Typedef("T", typedefs);
        arrays = Array({1}, arrays, 0);
    }
    Global("v", arrays, 0);
    EXPECT_EQ(mModel.WithoutTypedefs(typedefs), 0U);
    AskEverything(typedefs);
    AskEverything(arrays);
    std::string path = "v";
    for (int step = 0; step < 2000; ++step) {
        path += "[0]";
    }
    EXPECT_THAT(Resolve(path), EndsWith("the path has too many steps"));
}

TEST_F(HostileDataModelTest, ScopesWithoutEnd) {
    const ObjectId self = mModel.CreateNamespace("self", Next());
    ObjectId deep = sGlobalNamespace;
    for (int level = 0; level < sMany; ++level) {
        deep = mModel.CreateNamespace("n", deep);
    }
    const ObjectId unnamed = mModel.CreateNamespace("", Next());
    AskEverything(Global("u", 0, 0, unnamed));
    EXPECT_EQ(Resolve("u"), "@0:0") << "by its name alone";
    const ObjectId inSelf = Global("v", 0, 0, self);
    const ObjectId inDeep = Global("w", 0, 0, deep);
    EXPECT_THAT(mModel.QualifiedName(inSelf), StartsWith("...::self::self::"));
    EXPECT_THAT(mModel.QualifiedName(inDeep), StartsWith("...::n::n::"));
    EXPECT_THAT(mModel.QualifiedName(inDeep), EndsWith("::n::w"));
    AskEverything(inSelf);
    AskEverything(inDeep);
    EXPECT_EQ(Resolve("self::self::v"), "\"\", then no variable of this name");
    EXPECT_THAT(In(self), ElementsAre(inSelf));
}

TEST_F(HostileDataModelTest, FunctionTypesThatBranchWithoutEnd) {
    const ObjectId self = FunctionType(0, {Next(), Next()});
    ObjectId deep = self;
    for (int level = 0; level < 100; ++level) {
        deep = FunctionType(deep, {deep, deep, Pointer(deep)});
    }
    AskEverything(self);
    AskEverything(deep);
    const ObjectId wide = FunctionType(0, std::vector<ObjectId>(sMany, self));
    AskEverything(wide);
    EXPECT_EQ(mModel.GetFunctionType(0, std::vector<ObjectId>(sMany, self), 1), wide);
    AskEverything(Array(std::vector<std::uint32_t>(sMany, 7), 0, 0));
}

TEST_F(HostileDataModelTest, InheritanceThatBranchesOrReturns) {
    ObjectId derived = Struct("Root", 0);
    Member("r", Base(BasicTypes::Int8, 1), derived, 1);
    const ObjectId root = derived;
    for (int level = 0; level < 10'000; ++level) {
        const ObjectId base = derived;
        derived = mModel.CreateClassEntryType("D", 0, 1, {}, false, false);
        mModel.AddBaseClass(derived, base, 0);
        mModel.AddBaseClass(derived, base, 4);
    }
    mModel.AddBaseClass(root, derived, 0);
    Member("", root, root, 0);
    Global("v", derived, 0x10);
    EXPECT_EQ(Resolve("v.r"), "int8@11:1");
    AskEverything(derived);
}

TEST_F(HostileDataModelTest, LongTextsAreCutBetweenCharacters) {
    std::string name = "x";
    while (name.size() < 200'000) {
        name += "\xC3\xA4";
    }
    const ObjectId type = Struct(name, 4);
    const ObjectId inner = Struct("Inner", 4, type);
    const std::string text = mModel.QualifiedName(type);
    EXPECT_EQ(text, name.substr(0, text.size() - 3) + "...");
    EXPECT_EQ(text.size() % 2, 0U) << "cut within a character";
    EXPECT_LE(text.size(), 64U * 1024 + 3);
    EXPECT_EQ(mModel.QualifiedName(inner), "...::Inner");
    EXPECT_LE(mModel.TypeText(FunctionType(type, {type, type})).size(), 4U * 1024 + 3);
    EXPECT_THAT(Resolve(name), EndsWith("the path is too long"));
    std::string steps;
    for (int step = 0; step < 10'000; ++step) {
        steps += "::a.[";
    }
    EXPECT_THAT(Resolve(steps), EndsWith("no variable of this name"));
}

TEST_F(HostileDataModelTest, ManyArraysOfManyDimensions) {
    const ObjectId element = Base(BasicTypes::UInt8, 1);
    std::vector<std::uint32_t> dimensions(100'000, 1);
    dimensions.front() = 3;
    const ObjectId array = Array(dimensions, element, 0);
    dimensions.back() = 0xFFFFFFFF;
    dimensions[1] = 0x80000000;
    const ObjectId huge = Array(dimensions, element, 0);
    dimensions[2] = 0;
    EXPECT_EQ(mModel.ElementCount(Array(dimensions, element, 0)), 0U);
    DataModel::LeafWalk leaves(mModel);
    for (std::uint64_t index = 0; index < 20'000; ++index) {
        EXPECT_EQ(mModel.ElementCount(array), 3U);
        EXPECT_EQ(mModel.ElementCount(huge), std::numeric_limits<std::uint64_t>::max());
        leaves.Walk(Global("v", array, index), [&](std::string_view path, const auto& place) {
            EXPECT_EQ(path, mModel.Object(place.global).name);
        });
    }
    EXPECT_EQ(leaves.Cuts().wholes, 20'000U);
}

TEST_F(HostileDataModelTest, OneNameAddressAndScopeCostsNoMoreThanMany) {
    constexpr std::uint64_t sCount = 300'000;
    const std::clock_t start = std::clock();
    const ObjectId first = Global("same", 0, 0x10);
    for (std::uint64_t index = 1; index < sCount; ++index) {
        ASSERT_EQ(mModel.GetGlobalData("same", sGlobalNamespace), first);
        ASSERT_EQ(mModel.GetGlobalDataByAddress(0x10), first);
        Global("same", 0, 0x10);
        // Addresses that differ only in their upper bits, one scope for each.
        ASSERT_EQ(mModel.GetGlobalDataByAddress(index << 40U), 0U);
        Global("same", 0, index << 40U, index + sCount);
    }
    for (std::uint64_t index = 1; index < sCount; ++index) {
        const ObjectId own = mModel.GetGlobalDataByAddress(index << 40U);
        ASSERT_EQ(mModel.Object(own).address, index << 40U);
        ASSERT_EQ(mModel.GetGlobalData("same", index + sCount), own);
    }
    EXPECT_EQ(In(sGlobalNamespace).size(), sCount);
    EXPECT_EQ(Resolve("same"), "@10:0");
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 20)
        << "a search through all of them takes minutes";
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
