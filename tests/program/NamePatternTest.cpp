// What patterns on the command line match.
#include "NamePattern.h"

#include "RowOrder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {
namespace {

TEST(NamePatternTest, APatternFitsWhatAShellUserExpects) {
    struct Case {
        std::string_view pattern;
        std::string_view name;
        bool fits = false;
        bool ignoresCase = false;
    };
    for (const Case& each : std::vector<Case>{
             {"motor", "motor", true},
             {"motor", "motors", false},
             {"", "", true},
             {"*", "", true},
             {"m*r", "motor", true},
             {"*e*e*e*e*", "gSpeedMax", false},
             {"m**s?", "motors1", true},
             {"m*s?", "motors", false},
             {"?????", "gr\u00F6\u00DFe", true},
             {"[mr]otor", "rotor", true},
             {"[!mr]otor", "rotor", false},
             {"[^a-l]otor", "rotor", true},
             {"table[0-9]", "table7", true},
             {"table[[:digit:]_]", "table_", true},
             {"table[[:digit:]]", "tables", false},
             {"[]x]", "]", true},
             {R"([a\]b])", "]", true},
             {"[\u00E4-\u00FC]", "\u00F6", true},
             {"a[b", "a[b", true},
             // Brackets of an index, too.
             {"loops[0].gain", "loops[0].gain", true},
             {"loops[*].gain", "loops[12].gain", true},
             {"loops[?]*", "loops[1].gain", true},
             {"loops[12]", "loops1", true},
             {R"(loops\[12])", "loops1", false},
             {R"(loops\[12])", "loops[12]", true},
             {R"(a\*b)", "a*b", true},
             {R"(a\*b)", "axb", false},
             {R"(a\)", R"(a\)", true},
             {"MOTOR*", "motors", true, true},
             {"m[O-P]tor", "motor", true, true},
             {"\u00C4*", "\u00E4nderung", true, true},
             {"MOTOR*", "motors", false},
             {"?", "\xFF", true},
         }) {
        EXPECT_EQ(NamePattern(each.pattern, each.ignoresCase).Fits(each.name), each.fits)
            << each.pattern << " and " << each.name;
    }
}

TEST(NamePatternTest, TheBeginningOfAMatchIsFound) {
    EXPECT_TRUE(NamePattern("motors[1].speed").CanBegin("motors"));
    EXPECT_TRUE(NamePattern("motors[1].speed").CanBegin("motors[1]"));
    EXPECT_TRUE(NamePattern("m?t[n-p]*").CanBegin("motors[1]"));
    EXPECT_FALSE(NamePattern("motors[1].speed").CanBegin("motors[2]"));
    EXPECT_FALSE(NamePattern("motor").CanBegin("motors"));
}

TEST(NamePatternTest, AWordWithoutWildcardsIsPlain) {
    for (const std::string_view plain : {"motor", "motors[9].name", R"(a\*b)", "t[0][1]"}) {
        EXPECT_TRUE(NamePattern::IsPlain(plain)) << plain;
    }
    for (const std::string_view pattern : {"m*", "m?", "[ab]", "t[*]", "t[0-9]"}) {
        EXPECT_FALSE(NamePattern::IsPlain(pattern)) << pattern;
    }
    EXPECT_TRUE(NamePattern::PartOf("loops[0]", false).Fits("motor.loops[0].gain"));
    EXPECT_FALSE(NamePattern::PartOf("loops[0]", false).Fits("motor.loops0.gain"));
    EXPECT_TRUE(NamePattern::PartOf("GAIN", true).Fits("motor.loops[0].gain"));
}

TEST(NamePatternTest, AFilterKnowsScopesAndCompileUnits) {
    const NameFilter ofUnit("motor_c::counter");
    EXPECT_TRUE(ofUnit.Takes("counter", 0, "motor_c"));
    EXPECT_TRUE(ofUnit.Takes("step::counter", 6, "motor_c"));
    EXPECT_FALSE(ofUnit.Takes("counter", 0, "sensors_c"));
    EXPECT_FALSE(ofUnit.Takes("counter", 0));
    EXPECT_TRUE(NameFilter("motor_c::counter.*").MayTakeBehind("counter", 0, "motor_c"));
    EXPECT_FALSE(NameFilter("motor_c::counter.*").MayTakeBehind("counter", 0, "sensors_c"));
    EXPECT_TRUE(NameFilter("step::counter").Takes("step::counter", 6, "motor_c"));
    EXPECT_TRUE(NameFilter("counter").Takes("step::counter", 6));
}

TEST(NamePatternTest, NamesAreSortedByTheirNumbers) {
    std::vector<std::string> names = {"t[10]", "t[9]", "t", "a2b", "a10b", "a02", "b1"};
    std::ranges::sort(names, IsNameBefore);
    EXPECT_THAT(names, testing::ElementsAre("a02", "a2b", "a10b", "b1", "t", "t[9]", "t[10]"));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Program
