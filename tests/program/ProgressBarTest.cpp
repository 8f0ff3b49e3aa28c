// What the progress bar draws on its terminal.
#include "ProgressBar.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <sstream>

namespace Tessel::Norn::Brindle::Program {

namespace {

class ProgressBarTest : public testing::Test {
protected:
    /// The text since the last call.
    std::string Drawn() {
        std::string text = mScreen.str();
        mScreen.str({});
        return text;
    }

    std::ostringstream mScreen;
    std::optional<ProgressBar> mBar{std::in_place, mScreen};
};

TEST_F(ProgressBarTest, OneLineTellsPhaseAndPercentAndIsWipedOut) {
    mBar->SetPhase("reading");
    EXPECT_EQ(Drawn(), "\rreading");
    mBar->SetInterval(0, 1000);
    EXPECT_EQ(Drawn(), "\rreading     [" + std::string(40, '.') + "] 0%");
    mBar->SetValue(9);
    EXPECT_EQ(Drawn(), "");
    mBar->SetValue(505);
    EXPECT_EQ(Drawn(), "\rreading     [" + std::string(20, '#') + std::string(20, '.') + "] 50%");
    mBar->SetPhase("resolving");
    EXPECT_EQ(Drawn(), "\rresolving" + std::string(49, ' '));
    mBar->SetValue(700);
    EXPECT_EQ(Drawn(), "");
    mBar.reset();
    EXPECT_EQ(Drawn(), "\r         \r");
}

TEST_F(ProgressBarTest, TheLineFitsANarrowTerminal) {
    for (const std::size_t width : {std::size_t{1}, std::size_t{15}, std::size_t{40}}) {
        mBar.emplace(mScreen, width);
        mBar->SetPhase("delivering");
        mBar->SetInterval(0, 10);
        Drawn();
        mBar->SetValue(10);
        const std::string line = Drawn();
        EXPECT_LE(line.size(), width) << line; // of which one moves to the start
        EXPECT_EQ(line.ends_with("####] 100%"), width == 40) << line;
    }
}

TEST_F(ProgressBarTest, ValuesOfAnySizeStayWithinTheBar) {
    const auto least = std::numeric_limits<std::int32_t>::min();
    const auto most = std::numeric_limits<std::int32_t>::max();
    mBar->SetInterval(least, most);
    mBar->SetValue(0);
    mBar->SetInterval(10, 20);
    Drawn();
    mBar->SetValue(least);
    EXPECT_EQ(Drawn(), "");
    mBar->SetValue(most);
    EXPECT_TRUE(Drawn().ends_with("100%"));
    mBar->SetInterval(20, 10);
    mBar->SetValue(15);
    EXPECT_EQ(Drawn().find('%'), std::string::npos);
}

} // namespace

} // namespace Tessel::Norn::Brindle::Program
