// Which names count as similar to a wrong one.
#include "NearNames.h"

#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Program {

namespace {

std::string NearTo(std::string_view wanted) {
    NearNames near(wanted);
    for (const char* name :
         {"motor", "motors", "moto", "rotor", "gMotorSpeed", "supply", "motor", "x", ""}) {
        near.Offer(name);
    }
    return near.Text();
}

TEST(NearNamesTest, TheNearestThreeAreKeptInTheirOrder) {
    EXPECT_EQ(NearTo("motor"), "; similar names: motor, motors, gMotorSpeed");
    EXPECT_EQ(NearTo("SUPLY"), "; similar names: supply");
    EXPECT_EQ(NearTo("rotors"), "; similar names: motors, rotor, motor");
    EXPECT_EQ(NearTo("temperature"), "");
    EXPECT_EQ(NearTo(""), "");
    EXPECT_EQ(NearTo(std::string(1000, 'x')), "");
}

TEST(NearNamesTest, AnotherCaseIsNearerThanALongerName) {
    NearNames near("GL");
    for (const char* name : {"__do_global_dtors_aux", "gm", "gl", "plant::gl"}) {
        near.Offer(name);
    }
    EXPECT_EQ(near.List(), "gl, plant::gl, __do_global_dtors_aux");
}

} // namespace

} // namespace Tessel::Norn::Brindle::Program
