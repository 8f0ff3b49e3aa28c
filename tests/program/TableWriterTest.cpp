// Tables with more rows than are kept for alignment.
#include "TableWriter.h"

#include "ResultOutput.h"

#include <array>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace Tessel::Norn::Brindle::Program {
namespace {

TEST(TableWriterTest, VeryLargeTablesAreWrittenInParts) {
    constexpr int rowCount = 150;
    const std::string wide(1'000'000, 'w');
    constexpr std::array columns = {Column{"number", true}, Column{"text"}};
    std::stringbuf text;
    ResultOutput output(text);
    const auto table = MakeTableWriter(TableFormat::Table, columns, output);
    for (std::uint64_t row = 1; row <= rowCount; ++row) {
        table->AddRow(std::array<Cell, 2>{row, row % 2 != 0 ? std::string_view(wide) : "narrow"});
        if (row == rowCount - 1) {
            EXPECT_GT(text.view().size(), wide.size()) << "nothing was written yet";
        }
    }
    table->Finish();
    output.Sync();
    std::istringstream lines(text.str());
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "number  text");
    for (int row = 1; std::getline(lines, line); ++row) {
        ASSERT_LE(row, rowCount);
        const std::string number = std::to_string(row);
        EXPECT_EQ(line.substr(0, 9),
                  std::string(6 - number.size(), ' ') + number + "  " + (row % 2 != 0 ? "w" : "n"));
    }
}

TEST(TableWriterTest, AColumnForChangesIsThereOnceThereAreAny) {
    constexpr std::array columns = {Column{"old"}, Column{"new", false, false, sLeastWidth, true},
                                    Column{"end"}};
    for (const bool isChanged : {false, true}) {
        std::stringbuf text;
        ResultOutput output(text);
        const auto table = MakeTableWriter(TableFormat::Table, columns, output);
        table->AddRow(std::array<Cell, 3>{"a", "a", "x"});
        table->AddRow(std::array<Cell, 3>{"b", isChanged ? "c" : "b", "y"});
        table->Finish();
        output.Sync();
        EXPECT_EQ(text.str(), isChanged ? "old  new  end\na    a    x\nb    c    y\n"
                                        : "old  end\na    x\nb    y\n");
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Program
