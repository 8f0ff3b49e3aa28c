// What `diff` finds between two models filled by hand.
#include "ModelComparison.h"

#include "support/ModelBuilder.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::BasicTypes;
using DataModel::ObjectId;
using testing::ElementsAre;
using testing::IsEmpty;

/// A build with a structure `motor` whose members `fill` adds.
class Build : public Tests::ModelBuilder {
public:
    Build(std::uint64_t address, const std::function<void(Build&)>& fill) {
        fill(*this);
        Global("motor", mMotor, address);
    }

    ObjectId mInt8 = Base(BasicTypes::Int8, 1);
    ObjectId mInt16 = Base(BasicTypes::Int16, 2);
    ObjectId mInt32 = Base(BasicTypes::Int32, 4);
    ObjectId mMotor = Struct("Motor", 16);
};

std::string Text(const Difference& difference) {
    const bool isOld = difference.oldPlace != nullptr;
    std::string text = difference.isLeaf ? "." : "";
    text += isOld ? difference.oldPlace->name : difference.newPlace->name;
    if (!isOld || difference.newPlace == nullptr) {
        return text + (isOld ? " vanished" : " appeared");
    }
    text += difference.IsMoved() ? " moved" : "";
    text += difference.IsResized() ? " resized" : "";
    return text + (difference.IsRetyped() ? " retyped" : "");
}

std::vector<std::string> Compare(const Build& before, const Build& after,
                                 const ComparisonScope& scope = {}) {
    std::vector<std::string> texts;
    ModelComparison(before.mModel, after.mModel, scope).Run([&](const Difference& difference) {
        texts.push_back(Text(difference));
    });
    return texts;
}

TEST(ModelComparisonTest, EachVariableAndLeafThatIsNotTheSameIsTold) {
    const Build before(0x1000, [](Build& build) {
        build.Member("same", build.mInt32, build.mMotor, 0);
        build.Member("wider", build.mInt16, build.mMotor, 4);
        build.Member("gone", build.mInt8, build.mMotor, 6);
        build.BitField("shifted", build.mInt32, build.mMotor, 8, 0, 4);
        build.BitField("grown", build.mInt32, build.mMotor, 8, 8, 4);
        build.Global("old", build.mInt32, 0x10);
        build.Global("sign", build.mInt32, 0x20);
    });
    const Build after(0x1000, [](Build& build) {
        build.Member("same", build.mInt32, build.mMotor, 0);
        build.Member("wider", build.mInt32, build.mMotor, 4);
        build.BitField("shifted", build.mInt32, build.mMotor, 8, 4, 4);
        build.BitField("grown", build.mInt32, build.mMotor, 8, 8, 5);
        build.Member("come", build.mInt8, build.mMotor, 12);
        build.Global("sign", build.Base(BasicTypes::UInt32, 4), 0x20);
        build.Global("new", build.mInt32, 0x30);
    });
    EXPECT_THAT(Compare(before, after),
                ElementsAre("old vanished", "sign retyped", ".motor.wider resized retyped",
                            ".motor.gone vanished", ".motor.shifted moved", ".motor.grown resized",
                            ".motor.come appeared", "new appeared"));
    EXPECT_THAT(Compare(before, before), IsEmpty());
}

TEST(ModelComparisonTest, LeavesAreComparedWithinTheirVariables) {
    const auto build = [](std::uint64_t address, std::uint32_t offset) {
        return Build(address, [offset](Build& builder) {
            builder.Member("still", builder.mInt32, builder.mMotor, 0);
            builder.Member("speed", builder.mInt32, builder.mMotor, offset);
            builder.Member("step", builder.mInt8, builder.mMotor, 15);
        });
    };
    EXPECT_THAT(Compare(build(0x1000, 4), build(0x2000, 8)),
                ElementsAre("motor moved", ".motor.speed moved"));
    ComparisonScope scope;
    scope.filter = NameFilter("*speed");
    EXPECT_THAT(Compare(build(0x1000, 4), build(0x2000, 8), scope),
                ElementsAre(".motor.speed moved"));
    scope.hasLeaves = false;
    EXPECT_THAT(Compare(build(0x1000, 4), build(0x2000, 8), scope), IsEmpty());
}

// The numbers come from the order of the file. Here a and b have exchanged theirs, while nothing
// tells the two flags apart.
TEST(ModelComparisonTest, VariablesThatShareANameMatchByWhatIsCertain) {
    const Build before(0x1000, [](Build& build) {
        build.Global("gain", build.mInt16, 0x10);
        build.Global("gain.2", build.mInt32, 0x20);
        build.Global("flag", build.mInt8, 0x30);
        build.Global("flag.2", build.mInt8, 0x31);
        build.Global("lone.2", build.mInt8, 0x40);
    });
    const Build after(0x1000, [](Build& build) {
        build.Global("gain", build.mInt32, 0x20);
        build.Global("gain.2", build.mInt16, 0x18);
        build.Global("flag", build.mInt8, 0x30);
        build.Global("flag.2", build.mInt8, 0x32);
        build.Global("lone.2", build.mInt8, 0x40);
    });
    ComparisonScope scope;
    for (const char* pattern : {"gain", "gain.2"}) {
        scope.filter = NameFilter(pattern);
        EXPECT_THAT(Compare(before, after, scope), ElementsAre("gain moved")) << pattern;
    }
    scope.filter = NameFilter("flag");
    EXPECT_THAT(Compare(before, after, scope), ElementsAre("flag.2 moved"));
    ModelComparison whole(before.mModel, after.mModel, {});
    whole.Run([](const Difference& /*difference*/) {});
    EXPECT_EQ(whole.Remarks().renumbered, 2U);
    EXPECT_EQ(whole.Remarks().firstOldName, "gain");
    EXPECT_EQ(whole.Remarks().firstNewName, "gain.2");
    EXPECT_EQ(whole.Remarks().byOrder, 2U);
    EXPECT_EQ(whole.Remarks().firstByOrder, "flag");
}

TEST(ModelComparisonTest, AVariableThatAppearsMayStandForItsLeaves) {
    const Build plain(0x1000,
                      [](Build& build) { build.Member("speed", build.mInt32, build.mMotor, 0); });
    const Build spare(0x1000, [](Build& build) {
        build.Member("speed", build.mInt32, build.mMotor, 0);
        build.Global("spare", build.mMotor, 0x2000);
    });
    ComparisonScope scope;
    EXPECT_THAT(Compare(plain, spare, scope),
                ElementsAre("spare appeared", ".spare.speed appeared"));
    scope.hasLeavesOfWhole = false;
    EXPECT_THAT(Compare(plain, spare, scope), ElementsAre("spare appeared"));
    EXPECT_THAT(Compare(spare, plain, scope), ElementsAre("spare vanished"));
    scope.filter = NameFilter("*.speed");
    EXPECT_THAT(Compare(plain, spare, scope), ElementsAre(".spare.speed appeared"));
}

TEST(ModelComparisonTest, ATypeThatKeepsItsNameAndChangesItsMeaningIsTold) {
    const auto build = [](BasicTypes word, const std::string& lastMode) {
        return Build(0x1000, [&](Build& builder) {
            const ObjectId alias = builder.Typedef("word_t", builder.Base(word, 4));
            const ObjectId mode = builder.mModel.CreateEnumTable("mode", alias, 1, false);
            builder.mModel.AddEnumDescriptionToEnumTable(mode, 0, "off");
            builder.mModel.AddEnumDescriptionToEnumTable(mode, 1, lastMode);
            builder.Member("word", alias, builder.mMotor, 0);
            builder.Member("same", builder.mInt32, builder.mMotor, 4);
            builder.Global("words", builder.Array({2}, alias, 8), 0x2000);
            builder.Global("mode", mode, 0x3000);
        });
    };
    EXPECT_THAT(Compare(build(BasicTypes::UInt32, "on"), build(BasicTypes::UInt32, "on")),
                IsEmpty());
    EXPECT_THAT(Compare(build(BasicTypes::UInt32, "on"), build(BasicTypes::Float, "on")),
                ElementsAre(".words[0] retyped", ".words[1] retyped", ".motor.word retyped"));
    EXPECT_THAT(Compare(build(BasicTypes::UInt32, "on"), build(BasicTypes::UInt32, "manual")),
                ElementsAre("mode retyped"));
}

TEST(ModelComparisonTest, APatternAndMissingPartsLimitWhatIsTold) {
    const auto fill = [](Build& build) {
        build.Member("speed", build.mInt32, build.mMotor, 0);
        build.Member("step", build.mInt32, build.mMotor, 4);
    };
    const Build before(0x1000, [&fill](Build& build) {
        fill(build);
        build.Global("old", build.mInt32, 0x10);
    });
    const Build after(0x2000, [&fill](Build& build) {
        fill(build);
        build.Global("new", build.mInt32, 0x30);
    });
    ComparisonScope scope;
    scope.filter = NameFilter("motor");
    EXPECT_THAT(Compare(before, after, scope), ElementsAre("motor moved"));
    scope.filter = NameFilter("*speed");
    EXPECT_THAT(Compare(before, after, scope), IsEmpty());
    scope.filter = NameFilter("[no]*");
    EXPECT_THAT(Compare(before, after, scope), ElementsAre("old vanished", "new appeared"));

    scope.filter = NameFilter("???");
    EXPECT_THAT(Compare(before, after, scope), ElementsAre("old vanished", "new appeared"));
    scope.hasAllOfOld = false;
    EXPECT_THAT(Compare(before, after, scope), ElementsAre("old vanished"));
    scope.hasAllOfNew = false;
    EXPECT_THAT(Compare(before, after, scope), IsEmpty());
}

} // namespace

} // namespace Tessel::Norn::Brindle::Program
