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

    DataModel::DataModel mModel;
    RecordingDataModel mRecorder{mModel};
    CurrentDataModel mCurrent{mRecorder};
    VCLIFactoryWrapper mFactory;
};

TEST_F(FactoryWrapperTest, BaseTypesGoOverByCodeAndSize) {
    mFactory.GetBaseEntryType(BasicType::Int, 4, 5);
    EXPECT_EQ(LastCall(), "GetBaseEntryType(basicType=4, objIdParentScope=5)");
    mFactory.CreateBaseEntryType(BasicType::Int, 3, 5);
    EXPECT_EQ(LastCall(), "CreateBaseEntryType(basicType=10, length=3, objIdParentScope=5)");
    mFactory.CreateBaseEntryType(9, BasicTypes::Bool, 5);
    EXPECT_EQ(LastCall(), "CreateBaseEntryType(basicType=7, length=9, objIdParentScope=5)");
}

TEST_F(FactoryWrapperTest, GlobalDataReachesTheHostWithItsAddressBeforeItsScope) {
    mFactory.CreateGlobalData("x", 7, 5, 0x1000, true, 3, false);
    EXPECT_EQ(LastCall(), "CreateGlobalData(symName=\"x\", objIdOfSymType=7, address=4096, "
                          "objIdOfScopeParent=5, addressIsValid=true, addressExtension=3, "
                          "addressExtensionIsValid=false)");
}

TEST_F(FactoryWrapperTest, SpareOperationsMapToTheHostsNames) {
    mFactory.CreateStructEntryType("S", 8, 5, {1, 2}, false);
    EXPECT_THAT(LastCall(), testing::StartsWith("CreateClassEntryType("));
    EXPECT_THAT(LastCall(), testing::EndsWith("anonymous=false, isStruct=true)"));
    mFactory.GetStructEntryType("S", 5);
    EXPECT_THAT(LastCall(), testing::StartsWith("GetClassEntryType(className=\"S\""));
    mFactory.CreateFunction("f", 7, 5, 6);
    EXPECT_THAT(LastCall(), testing::EndsWith("objIdCompileUnit=6, flag=false)"));
    mFactory.CreateFunction("f", 7, 5);
    EXPECT_THAT(LastCall(), testing::EndsWith("hasParentScope=true)"));
    mFactory.CreateFunction("f", 7, 0);
    EXPECT_THAT(LastCall(), testing::EndsWith("hasParentScope=false)"));
    mFactory.CreateOldBitfieldType(7, -1, 3, 5);
    EXPECT_THAT(LastCall(), testing::StartsWith("CreateOldBitfieldEntryType("));
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
    DataModel::DataModel outer;
    DataModel::DataModel inner;
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
