// The command `a2l update` while one allocation fails, for each allocation of the command.
#include "CommandLine.h"
#include "Commands.h"
#include "ReaderOptions.h"
#include "ResultOutput.h"

#include "allocations/CountedAllocation.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using Reader::DWARF::DW_ATE_unsigned;
using Reader::DWARF::DW_TAG_base_type;
using Reader::DWARF::DW_TAG_compile_unit;
using Reader::DWARF::DW_TAG_variable;

std::string Measurement(const std::string& name) {
    return "/begin MEASUREMENT " + name +
           " \"\" UWORD C 0 0 0 1 ECU_ADDRESS 0x0 /end MEASUREMENT\n";
}

std::string ImageOfTwoVariables() {
    const DieLabel word;
    DwarfSections sections;
    sections.Unit(
        {Die(DW_TAG_compile_unit, {Name("a.c")},
             {Die(word, DW_TAG_base_type, {Name("word"), ByteSize(2), Encoding(DW_ATE_unsigned)}),
              Die(DW_TAG_variable, {Name("speed"), Type(word), External(), Address(0x2000)}),
              Die(DW_TAG_variable, {Name("torque"), Type(word), External(), Address(0x2004)})})});
    ElfImage image;
    image.Symbol({"speed", 0x2000, 2});
    return (image + sections).Build();
}

class UpdateFaultTest : public testing::Test {
protected:
    using Files = std::map<std::string, std::string>;

    UpdateFaultTest() {
        mFolder.Write("image.elf", ImageOfTwoVariables());
        WriteDescription();
    }

    void WriteDescription() {
        mFolder.Write("main.a2l", "/begin PROJECT p \"\" /begin MODULE m \"\"\n" +
                                      Measurement("speed") +
                                      "/include \"part.a2l\" /end MODULE /end PROJECT\n");
        mFolder.Write("part.a2l", Measurement("torque"));
    }

    /// Runs the command; `number` is the allocation to fail, 0 for none.
    /// @return true if an allocation failed
    bool Update(std::size_t number) {
        std::ostringstream results;
        Program::ResultOutput output(*results.rdbuf());
        Program::SetProgramDefaults();
        Program::CommandLine commandLine;
        Program::AddA2lCommands(commandLine);
        std::vector<std::string> arguments = {"brindle",
                                              "a2l",
                                              "update",
                                              "--in-place",
                                              mFolder.Path("main.a2l"),
                                              mFolder.Path("image.elf")};
        mStatus = Program::ExitStatus::Failed;
        try {
            const FailingAllocation failing(number);
            mStatus = commandLine.Run(std::move(arguments), output);
        } catch (const std::exception& /*error*/) {
            // The program tells it.
        }
        return number != 0 && FailingAllocation::HasFailed();
    }

    [[nodiscard]] Files Contents() const {
        Files files;
        for (const auto& entry : std::filesystem::directory_iterator(mFolder.Path(""))) {
            std::ifstream file(entry.path(), std::ios::binary);
            files[entry.path().filename().string()] =
                std::string(std::istreambuf_iterator<char>(file), {});
        }
        return files;
    }

    TemporaryFolder mFolder;
    Program::ExitStatus mStatus = Program::ExitStatus::Failed;
};

TEST_F(UpdateFaultTest, EachAllocationLeavesAllFilesOldOrAllNew) {
    const Files before = Contents();
    testing::internal::CaptureStderr();
    Update(0);
    ASSERT_EQ(mStatus, Program::ExitStatus::Success);
    const Files after = Contents();
    ASSERT_NE(after.at("main.a2l"), before.at("main.a2l"));
    ASSERT_NE(after.at("part.a2l"), before.at("part.a2l"));
    std::size_t unchanged = 0;
    for (std::size_t number = 1; !HasFailure(); ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        WriteDescription();
        if (!Update(number)) {
            EXPECT_EQ(mStatus, Program::ExitStatus::Success);
            break;
        }
        const Files now = Contents();
        EXPECT_TRUE(now == after || (now == before && mStatus != Program::ExitStatus::Success));
        unchanged += now == before ? 1U : 0U;
    }
    testing::internal::GetCapturedStderr();
    EXPECT_GT(unchanged, 100U) << "hardly any allocation was made to fail";
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
