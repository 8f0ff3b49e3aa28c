#include "emit/VCLIFactoryWrapper.h"
#include "host/CurrentDataModel.h"
#include "model/DataModel.h"
#include "model/RecordingDataModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using Tessel::Norn::Brindle::DataModel::RecordingDataModel;
using Tessel::Norn::Brindle::DataModel::Factory::CurrentDataModel;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class FactoryWrapperTest : public testing::Test {
protected:
    /// The last call that reached the data model, worded without its result.
    std::string LastCall() {
        std::string text = mRecorder.Calls().empty() ? "" : mRecorder.Calls().back().Text();
        return text.substr(0, text.find(" -> "));
    }

    DataModel::Model mModel;
    RecordingDataModel mRecorder{mModel};
    CurrentDataModel mCurrent{mRecorder};
    VCLIFactoryWrapper mFactory;
};

TEST_F(FactoryWrapperTest, BaseTypesGoOverByCodeAndSize) {
    mFactory.GetBaseEntryType(BasicType::Int, 4, 5);
    EXPECT_EQ(LastCall(), "GetBaseEntryType(basicType=4, objIdParentScope=5)");
    mFactory.CreateBaseEntryType(BasicType::Int, 3, 5);
    EXPECT_EQ(LastCall(), "CreateBaseEntryType(basicType=10, length=3, objIdParentScope=5)");
    mFactory.GetBaseEntryType(BasicTypes::Bool, 5);
    EXPECT_EQ(LastCall(), "GetBaseEntryType(basicType=7, objIdParentScope=5)");
    mFactory.CreateBaseEntryType(9, BasicTypes::Bool, 5);
    EXPECT_EQ(LastCall(), "CreateBaseEntryType(basicType=7, length=9, objIdParentScope=5)");
}

// No two arguments of a call are equal, so that swapped arguments are noticed.
TEST_F(FactoryWrapperTest, EachOperationReachesTheHostWithItsArgumentsInOrder) {
    mFactory.GetGlobalNamespace();
    mFactory.CreateNamespace("n", 1);
    mFactory.GetNamespace("n", 1);
    mFactory.CreateBlockScope("1", 2);
    mFactory.GetBlockScope("1", 2);
    mFactory.CreateCompileUnit("a.c");
    mFactory.GetCompileUnit("a.c");
    mFactory.GetOrCreateCompileUnit("b.c");
    mFactory.CreateUnknownEntryType(0xFFFFFFFF, 1);
    mFactory.GetUnknownEntryType(8, 1);
    mFactory.CreateClassEntryType("C", 0xFFFFFFFF, 1, {}, false, true);
    mFactory.CreateClassEntryType("D", 8, 1, {8, 9}, true, false);
    mFactory.CreateStructEntryType("S", 8, 5, {1, 2}, false);
    mFactory.GetClassEntryType("C", 1);
    mFactory.GetStructEntryType("S", 5);
    mFactory.CreateUnionEntryType("U", 4, 1, true);
    mFactory.GetUnionEntryType("U", 1);
    mFactory.AddBaseClass(7, 9, 4);
    mFactory.AddBaseClass(0, 9, 4);
    mFactory.CreateMemberData("m", 6, 7, 4, -1, true);
    mFactory.CreateUnionMemberData("m", 6, 10, 4, 5, false);
    mFactory.CreateMemberStaticData("s", 6, 7, 16, true, 2, false);
    mFactory.CreateBitfieldInUdt("b", 6, 7, 4, 3, 2, 1, false);
    mFactory.CreateArrayEntryType({3, 0xFFFFFFFF}, 1, 40, 2);
    mFactory.CreatePointerEntryType(2, 4, 1);
    mFactory.CreateEnumTable("E", 2, 1, false);
    mFactory.GetEnumTable("E", 1);
    mFactory.AddEnumDescriptionToEnumTable(17, -2147483647 - 1, "low");
    mFactory.CreateTypedefEntryType("T", 2, 1);
    mFactory.GetTypedefEntryType("T", 1);
    mFactory.CreateGlobalData("g", 7, 5, 4096, true, 3, false);
    mFactory.GetGlobalData("g", 5);
    mFactory.GetGlobalData("g");
    mFactory.GetGlobalDataByAddress(4096);
    mFactory.CreateFunctionType(2, {3, 4}, 1);
    mFactory.GetFunctionType(2, {3, 4}, 1);
    mFactory.CreateFunction("f", 7, 5, 6);
    mFactory.CreateFunction("f", 7, 5);
    mFactory.CreateFunction("f", 7, 0);
    mFactory.GetFunction("f", 7, 5);
    mFactory.CreateOldBitfieldType(2, -1, 3, 1);
    mFactory.GetOldBitfieldType(2, -1, 3, 1);
    mFactory.CreateSectionEntryType(9, 1);
    mFactory.GetSectionEntryType(9, 1);
    mFactory.CreateSegment("ram", 1, 2);
    mFactory.GetSegment("ram");
    mFactory.SetTransformed(true);
    std::string calls;
    for (const DataModel::RecordedCall& call : mRecorder.Calls()) {
        calls += call.Text() + '\n';
    }
    EXPECT_EQ(calls, R"(GetGlobalNamespace() -> 1
CreateNamespace(namespaceName="n", objIdParentScope=1) -> 2
GetNamespace(namespaceName="n", objIdParentScope=1) -> 2
CreateBlockScope(blockIdentifier="1", objIdParentScope=2) -> 3
GetBlockScope(blockIdentifier="1", objIdParentScope=2) -> 3
CreateCompileUnit(compileUnitName="a.c") -> 4
GetCompileUnit(compileUnitName="a.c") -> 4
GetOrCreateCompileUnit(compileUnitName="b.c") -> 5
CreateUnknownEntryType(sizeOfUnknownType=4294967295, objIdParentScope=1) -> 6
GetUnknownEntryType(sizeOfUnknownType=8, objIdParentScope=1) -> 0
CreateClassEntryType(className="C", classSize=4294967295, objIdOfScopeParent=1, vecObjIdsOfInheritances=[], anonymous=false, isStruct=true) -> 7
CreateClassEntryType(className="D", classSize=8, objIdOfScopeParent=1, vecObjIdsOfInheritances=[8, 9], anonymous=true, isStruct=false) -> 8
CreateClassEntryType(className="S", classSize=8, objIdOfScopeParent=5, vecObjIdsOfInheritances=[1, 2], anonymous=false, isStruct=true) -> 9
GetClassEntryType(className="C", objIdOfParentClass=1) -> 7
GetClassEntryType(className="S", objIdOfParentClass=5) -> 9
CreateUnionEntryType(unionName="U", unionSize=4, objIdOfParentClass=1, anonymous=true) -> 10
GetUnionEntryType(unionName="U", objIdOfParentClass=1) -> 10
AddBaseClass(objIdOfClass=7, objIdOfBaseClass=9, byteOffset=4) -> true
AddBaseClass(objIdOfClass=0, objIdOfBaseClass=9, byteOffset=4) -> false
CreateMemberData(memberName="m", objIdOfMemberType=6, objIdOfParentClass=7, byteOffset=4, addressExtension=-1, addressExtensionIsValid=true) -> 11
CreateUnionMemberData(memberName="m", objIdOfMemberType=6, objIdOfParentUnion=10, byteOffset=4, addressExtension=5, addressExtensionIsValid=false) -> 12
CreateMemberStaticData(memberName="s", objIdOfMemberType=6, objIdOfParentClass=7, address=16, addressIsValid=true, addressExtension=2, addressExtensionIsValid=false) -> 13
CreateBitfieldInUdt(memberName="b", objIdOfBitfieldType=6, ObjectIdOfParentUdt=7, byteOffset=4, bitOffset=3, bitSize=2, addressExtension=1, addressExtensionIsValid=false) -> 14
CreateArrayEntryType(dimensions=[3, 4294967295], objIdOfArrayElementsType=1, arraySize=40, objIdParentScope=2) -> 15
CreatePointerEntryType(objIdOfReferencedType=2, ptrSize=4, objIdParentScope=1) -> 16
CreateEnumTable(tableName="E", objIdOfUnderlyingType=2, objIdOfScopeParent=1, anonymous=false) -> 17
GetEnumTable(tableName="E", objIdOfScopeParent=1) -> 17
AddEnumDescriptionToEnumTable(objIdOfEnumTable=17, enumValue=-2147483648, enumText="low") -> true
CreateTypedefEntryType(aliasName="T", objIdReferencedType=2, objIdParentScope=1) -> 18
GetTypedefEntryType(aliasName="T", objIdParentScope=1) -> 18
CreateGlobalData(symName="g", objIdOfSymType=7, address=4096, objIdOfScopeParent=5, addressIsValid=true, addressExtension=3, addressExtensionIsValid=false) -> 19
GetGlobalData(symName="g", objIdOfScopeParent=5) -> 19
GetGlobalData(symName="g") -> 19
GetGlobalDataByAddress(address=4096) -> 19
CreateFunctionType(objIdOfReturnType=2, vecParameterTypes=[3, 4], objIdParentScope=1) -> 20
GetFunctionType(objIdOfReturnType=2, vecParameterTypes=[3, 4], objIdParentScope=1) -> 20
CreateFunction(name="f", objIdFunctionType=7, objIdParentScope=5, objIdCompileUnit=6, flag=false) -> 21
CreateFunction(name="f", objIdFunctionType=7, hasParentScope=true) -> 22
CreateFunction(name="f", objIdFunctionType=7, hasParentScope=false) -> 23
GetFunction(name="f", functionType=7, objIdParentScope=5) -> 21
CreateOldBitfieldEntryType(objIdOfBaseType=2, bitOffset=-1, bitSize=3, objIdParentScope=1) -> 24
GetOldBitfieldEntryType(objIdOfBaseType=2, bitOffset=-1, bitSize=3, objIdParentScope=1) -> 24
CreateSectionEntryType(size=9, objIdParentScope=1) -> 25
GetSectionEntryType(size=9, objIdParentScope=1) -> 25
CreateSegment(segmentName="ram", address=1, size=2) -> 26
GetSegment(segmentName="ram") -> 26
SetTransformed(transformedDataModel=true)
)");
}

TEST_F(FactoryWrapperTest, ArraysWithoutDimensionsDoNotReachTheHost) {
    EXPECT_EQ(mFactory.CreateArrayEntryType({}, 7, 40, 5), 0U);
    EXPECT_EQ(LastCall(), "");
    EXPECT_NE(mFactory.CreateArrayEntryType({2, 5}, 7, 40, 5), 0U);
}

TEST_F(FactoryWrapperTest, NamesReachTheHostAsUtf8) {
    mFactory.CreateNamespace("Gr\xF6\xDF"
                             "e",
                             1);
    EXPECT_THAT(LastCall(), testing::HasSubstr("\"Größe\""));
    std::string_view cut;
    const std::string text("abc\0def", 7);
    __sToManagedFactoryString(cut, text);
    EXPECT_EQ(cut, "abc");
}

TEST_F(FactoryWrapperTest, UnknownTypesAreMadeOncePerSizeAndScope) {
    const ObjectId first = sGetSymbolTableBaseEntryTypeObjId(mFactory, 5, 0);
    EXPECT_NE(first, 0U);
    EXPECT_EQ(sGetSymbolTableBaseEntryTypeObjId(mFactory, 5, 0), first);
    EXPECT_NE(sGetSymbolTableBaseEntryTypeObjId(mFactory, 6, 0), first);
}

TEST(FactoryWrapperWithoutModelTest, EveryOperationAnswersNothing) {
    VCLIFactoryWrapper factory;
    EXPECT_FALSE(factory.PreCondition());
    EXPECT_EQ(factory.GetGlobalNamespace(), 0U);
    EXPECT_EQ(factory.CreateClassEntryType("C", 4, 1, {1, 2, 3}, false, false), 0U);
    EXPECT_FALSE(factory.AddBaseClass(1, 2, 3));
    EXPECT_FALSE(factory.AddEnumDescriptionToEnumTable(1, 2, "x"));
    factory.SetTransformed(true);
}

TEST(FactoryWrapperWithoutModelTest, ScopesOfCurrentModelsNest) {
    DataModel::Model outer;
    DataModel::Model inner;
    const CurrentDataModel currentOuter(outer);
    {
        const CurrentDataModel currentInner(inner);
        VCLIFactoryWrapper().CreateNamespace("inner", 1);
    }
    VCLIFactoryWrapper().CreateNamespace("outer", 1);
    EXPECT_EQ(inner.Object(2).name, "inner");
    EXPECT_EQ(outer.Object(2).name, "outer");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
