#include "model/RecordingDataModel.h"

#include "model/DataModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::BasicTypes;
using DataModel::RecordedCall;
using DataModel::RecordingDataModel;
using testing::ElementsAre;
using testing::IsEmpty;

/// A model that refuses: its recorder has somebody to pass an exception on from.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::vector<std::string> Texts(const std::vector<RecordedCall>& calls) {
    std::vector<std::string> texts;
    texts.reserve(calls.size());
    for (const RecordedCall& call : calls) {
        texts.push_back(call.Text());
    }
    return texts;
}

TEST(RecordingDataModelTest, EveryOperationIsPassedOnAndRecorded) {
    DataModel::DataModel model;
    RecordingDataModel recorder(model);
    recorder.GetGlobalNamespace();
    recorder.CreateNamespace("n", 1);
    recorder.GetNamespace("n", 1);
    recorder.CreateBlockScope("1", 2);
    recorder.GetBlockScope("1", 2);
    recorder.CreateCompileUnit("a.c");
    recorder.GetCompileUnit("a.c");
    recorder.GetOrCreateCompileUnit("b.c");
    recorder.CreateBaseEntryType(BasicTypes::UInt32, 4, 1);
    recorder.GetBaseEntryType(BasicTypes::UInt32, 1);
    recorder.CreateUnknownEntryType(~0ULL, 1);
    recorder.GetUnknownEntryType(0, 1);
    recorder.CreateClassEntryType("C", 0xFFFFFFFF, 1, {}, false, true);
    recorder.CreateClassEntryType("D", 8, 1, {8, 9}, true, false);
    recorder.GetClassEntryType("C", 1);
    recorder.CreateUnionEntryType("U", 4, 1, true);
    recorder.GetUnionEntryType("U", 1);
    recorder.AddBaseClass(8, 9, 4);
    recorder.AddBaseClass(0, 9, 4);
    recorder.CreateMemberData("m", 6, 8, 4, -1, true);
    recorder.CreateUnionMemberData("m", 6, 10, 0, 0, false);
    recorder.CreateMemberStaticData("s", 6, 8, 16, true, 2, false);
    recorder.CreateBitfieldInUdt("b", 6, 8, 4, 3, 2, 0, false);
    EXPECT_THAT(
        Texts(recorder.Calls()),
        ElementsAre(
            "GetGlobalNamespace() -> 1",
            "CreateNamespace(namespaceName=\"n\", objIdParentScope=1) -> 2",
            "GetNamespace(namespaceName=\"n\", objIdParentScope=1) -> 2",
            "CreateBlockScope(blockIdentifier=\"1\", objIdParentScope=2) -> 3",
            "GetBlockScope(blockIdentifier=\"1\", objIdParentScope=2) -> 3",
            "CreateCompileUnit(compileUnitName=\"a.c\") -> 4",
            "GetCompileUnit(compileUnitName=\"a.c\") -> 4",
            "GetOrCreateCompileUnit(compileUnitName=\"b.c\") -> 5",
            "CreateBaseEntryType(basicType=5, length=4, objIdParentScope=1) -> 6",
            "GetBaseEntryType(basicType=5, objIdParentScope=1) -> 6",
            "CreateUnknownEntryType(sizeOfUnknownType=18446744073709551615, objIdParentScope=1) -> "
            "7",
            "GetUnknownEntryType(sizeOfUnknownType=0, objIdParentScope=1) -> 0",
            "CreateClassEntryType(className=\"C\", classSize=4294967295, objIdOfScopeParent=1, "
            "vecObjIdsOfInheritances=[], anonymous=false, isStruct=true) -> 8",
            "CreateClassEntryType(className=\"D\", classSize=8, objIdOfScopeParent=1, "
            "vecObjIdsOfInheritances=[8, 9], anonymous=true, isStruct=false) -> 9",
            "GetClassEntryType(className=\"C\", objIdOfParentClass=1) -> 8",
            "CreateUnionEntryType(unionName=\"U\", unionSize=4, objIdOfParentClass=1, "
            "anonymous=true) -> 10",
            "GetUnionEntryType(unionName=\"U\", objIdOfParentClass=1) -> 10",
            "AddBaseClass(objIdOfClass=8, objIdOfBaseClass=9, byteOffset=4) -> true",
            "AddBaseClass(objIdOfClass=0, objIdOfBaseClass=9, byteOffset=4) -> false",
            "CreateMemberData(memberName=\"m\", objIdOfMemberType=6, objIdOfParentClass=8, "
            "byteOffset=4, addressExtension=-1, addressExtensionIsValid=true) -> 11",
            "CreateUnionMemberData(memberName=\"m\", objIdOfMemberType=6, objIdOfParentUnion=10, "
            "byteOffset=0, addressExtension=0, addressExtensionIsValid=false) -> 12",
            "CreateMemberStaticData(memberName=\"s\", objIdOfMemberType=6, objIdOfParentClass=8, "
            "address=16, addressIsValid=true, addressExtension=2, addressExtensionIsValid=false) "
            "-> 13",
            "CreateBitfieldInUdt(memberName=\"b\", objIdOfBitfieldType=6, ObjectIdOfParentUdt=8, "
            "byteOffset=4, bitOffset=3, bitSize=2, addressExtension=0, "
            "addressExtensionIsValid=false) -> 14"));
    EXPECT_EQ(model.ObjectCount(), 14U);
}

TEST(RecordingDataModelTest, DerivedTypesDataAndFunctionsAreRecordedToo) {
    DataModel::DataModel model;
    RecordingDataModel recorder(model);
    recorder.CreateArrayEntryType({3, 0xFFFFFFFF}, 1, 40, 1);
    recorder.CreatePointerEntryType(2, 4, 1);
    recorder.CreateEnumTable("E", 2, 1, false);
    recorder.GetEnumTable("E", 1);
    recorder.AddEnumDescriptionToEnumTable(4, -2147483647 - 1, "low");
    recorder.CreateTypedefEntryType("T", 2, 1);
    recorder.GetTypedefEntryType("T", 1);
    recorder.CreateGlobalData("g", 2, 4096, 1, true, 0, false);
    recorder.GetGlobalData("g", 1);
    recorder.GetGlobalData("g");
    recorder.GetGlobalDataByAddress(4096);
    recorder.CreateFunctionType(2, {3, 4}, 1);
    recorder.GetFunctionType(2, {3, 4}, 1);
    recorder.CreateFunction("f", 7, 1, 5, false);
    recorder.CreateFunction("f", 7, true);
    recorder.GetFunction("f", 7, 1);
    recorder.CreateOldBitfieldEntryType(2, -1, 3, 1);
    recorder.GetOldBitfieldEntryType(2, -1, 3, 1);
    recorder.CreateSectionEntryType(9, 1);
    recorder.GetSectionEntryType(9, 1);
    recorder.CreateSegment("ram", 1, 2);
    recorder.GetSegment("ram");
    recorder.SetTransformed(true);
    EXPECT_THAT(
        Texts(recorder.Calls()),
        ElementsAre(
            "CreateArrayEntryType(dimensions=[3, 4294967295], objIdOfArrayElementsType=1, "
            "arraySize=40, objIdParentScope=1) -> 2",
            "CreatePointerEntryType(objIdOfReferencedType=2, ptrSize=4, objIdParentScope=1) -> 3",
            "CreateEnumTable(tableName=\"E\", objIdOfUnderlyingType=2, objIdOfScopeParent=1, "
            "anonymous=false) -> 4",
            "GetEnumTable(tableName=\"E\", objIdOfScopeParent=1) -> 4",
            "AddEnumDescriptionToEnumTable(objIdOfEnumTable=4, enumValue=-2147483648, "
            "enumText=\"low\") -> true",
            "CreateTypedefEntryType(aliasName=\"T\", objIdReferencedType=2, objIdParentScope=1) "
            "-> 5",
            "GetTypedefEntryType(aliasName=\"T\", objIdParentScope=1) -> 5",
            "CreateGlobalData(symName=\"g\", objIdOfSymType=2, address=4096, "
            "objIdOfScopeParent=1, addressIsValid=true, addressExtension=0, "
            "addressExtensionIsValid=false) -> 6",
            "GetGlobalData(symName=\"g\", objIdOfScopeParent=1) -> 6",
            "GetGlobalData(symName=\"g\") -> 6", "GetGlobalDataByAddress(address=4096) -> 6",
            "CreateFunctionType(objIdOfReturnType=2, vecParameterTypes=[3, 4], "
            "objIdParentScope=1) -> 7",
            "GetFunctionType(objIdOfReturnType=2, vecParameterTypes=[3, 4], objIdParentScope=1) "
            "-> 7",
            "CreateFunction(name=\"f\", objIdFunctionType=7, objIdParentScope=1, "
            "objIdCompileUnit=5, flag=false) -> 8",
            "CreateFunction(name=\"f\", objIdFunctionType=7, hasParentScope=true) -> 9",
            "GetFunction(name=\"f\", functionType=7, objIdParentScope=1) -> 8",
            "CreateOldBitfieldEntryType(objIdOfBaseType=2, bitOffset=-1, bitSize=3, "
            "objIdParentScope=1) -> 10",
            "GetOldBitfieldEntryType(objIdOfBaseType=2, bitOffset=-1, bitSize=3, "
            "objIdParentScope=1) -> 10",
            "CreateSectionEntryType(size=9, objIdParentScope=1) -> 11",
            "GetSectionEntryType(size=9, objIdParentScope=1) -> 11",
            "CreateSegment(segmentName=\"ram\", address=1, size=2) -> 12",
            "GetSegment(segmentName=\"ram\") -> 12", "SetTransformed(transformedDataModel=true)"));
}

TEST(RecordingDataModelTest, TextsAreEscaped) {
    DataModel::DataModel model;
    RecordingDataModel recorder(model);
    recorder.GetNamespace("a\"b\\c\n\x1F\xC3\xA4", 0);
    EXPECT_EQ(recorder.Calls().back().Text(),
              "GetNamespace(namespaceName=\"a\\\"b\\\\c\\x0A\\x1F\xC3\xA4\", objIdParentScope=0) "
              "-> 0");
}

TEST(RecordingDataModelTest, ASinkSeesEachCallAfterItWasAnswered) {
    DataModel::DataModel model;
    std::vector<std::string> seen;
    RecordingDataModel recorder(model, [&](const RecordedCall& call) {
        seen.push_back(call.Text() + " of " + std::to_string(model.ObjectCount()));
    });
    EXPECT_EQ(recorder.CreateCompileUnit("a"), 2U);
    EXPECT_EQ(recorder.CreateCompileUnit("b"), 3U);
    EXPECT_THAT(seen, ElementsAre("CreateCompileUnit(compileUnitName=\"a\") -> 2 of 2",
                                  "CreateCompileUnit(compileUnitName=\"b\") -> 3 of 3"));
    EXPECT_THAT(recorder.Calls(), IsEmpty());
}

TEST(RecordingDataModelTest, ExceptionsOfTheNextModelPassThrough) {
    DataModel::DataModel model;
    // The next model is itself a recorder, whose sink refuses.
    RecordingDataModel refusing(model, [](const RecordedCall&) { throw Refusal("no"); });
    DataModel::Factory::HostDataModel& next = refusing;
    RecordingDataModel recorder(next);
    EXPECT_THROW(recorder.CreateCompileUnit("a"), Refusal);
    EXPECT_THROW(recorder.SetTransformed(true), Refusal);
    EXPECT_THAT(recorder.Calls(), IsEmpty());
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
