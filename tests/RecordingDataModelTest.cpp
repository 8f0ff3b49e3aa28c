#include "model/RecordingDataModel.h"

#include "model/DataModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::RecordedCall;
using DataModel::RecordingDataModel;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(RecordingDataModelTest, TextsAreEscaped) {
    DataModel::Model model;
    RecordingDataModel recorder(model);
    recorder.GetNamespace("a\"b\\c\n\x1F\xC3\xA4", 0);
    EXPECT_EQ(recorder.Calls().back().Text(),
              "GetNamespace(namespaceName=\"a\\\"b\\\\c\\x0A\\x1F\xC3\xA4\", objIdParentScope=0) "
              "-> 0");
}

TEST(RecordingDataModelTest, ASinkSeesEachCallAfterItWasAnswered) {
    DataModel::Model model;
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

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
