#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "support/ElfImage.h"
#include "support/MatchesPattern.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

const char* const sUnknownItemSize = "Section item size is unknown.";
const char* const sDeprecated =
    "The file contains debug section in deprecated DWARF1 format which is not supported by this "
    "reader. Please use base version of ELF/DWARF reader to read this file.";

class ProducerDumpTest : public testing::Test {
protected:
    ProducerDumpTest() { VElfOptions::mDumpProducerInfoFileName = mFolder.Path("dump.txt"); }

    std::string Write(const ElfImage& image) { return mFolder.Write("image.elf", image.Build()); }
    [[nodiscard]] std::string Dump() const { return mFolder.Read("dump.txt"); }
    [[nodiscard]] std::string Block(const std::string& formats,
                                    const std::string& ending = "") const {
        return "\nDumping compile units from file: '" + mFolder.Path("image.elf") + "'\n" +
               std::string(42, '>') + "\n\nFile contains:" + formats + "\n" + ending;
    }

    ScopedReaderState mState;
    TemporaryFolder mFolder;
};

TEST_F(ProducerDumpTest, EachReadAddsItsBlock) {
    const ElfImage symbolsAlone = ElfImage().Symbol({"a", 0x10, 4});
    const ElfImage deprecated = ElfImage().Section(".debug", "x").Section(".vdebug", "x");
    EXPECT_TRUE(ReadFile(Write(symbolsAlone)).result);
    EXPECT_EQ(Dump(), Block(""));
    EXPECT_FALSE(ReadFile(Write(deprecated)).result);
    const std::string error = "\nError: " + std::string(sDeprecated) + " \n";
    EXPECT_EQ(Dump(), Block("") + Block("[DWARF1][NEC]", error));
    EXPECT_FALSE(VElfOptions::mDumpProducerInfoFile.is_open());
}

TEST_F(ProducerDumpTest, FormatsStandInOrderWhetherReadOrNot) {
    VElfOptions::mElfForceSymbolTable = 1;
    EXPECT_TRUE(ReadFile(Write(ElfImage()
                                   .Section(".vdebug", "x")
                                   .Section(".debug", "x")
                                   .Section(".debug_info", "x")
                                   .Section(".debug_abbrev", "x")
                                   .Symbol({"a", 0x10, 4})))
                    .result);
    EXPECT_EQ(Dump(), Block("[DWARF2][DWARF1][NEC]"));
}

TEST_F(ProducerDumpTest, FailureBeforeTheSectionTableIsCompleteLeavesNoBlock) {
    EXPECT_FALSE(ReadFile(mFolder.Write("image.elf", "no image")).result);
    EXPECT_FALSE(ReadFile(Write(ElfImage().Section(".text", "x"))).result);
    EXPECT_FALSE(std::filesystem::exists(mFolder.Path("dump.txt")));
}

TEST_F(ProducerDumpTest, ErrorLineHoldsTheTextOfTheHost) {
    VElfResourceManager::Instance().SetLanguage(49);
    const ReadRun run =
        ReadFile(Write(ElfImage().Symbol({"a", 0x10, 4}).SymbolTable({.entrySize = 0})));
    EXPECT_EQ(Dump(), Block("", "\nError: " + run.message + " \n"));
    EXPECT_THAT(run.message, testing::AllOf(testing::Not(""), testing::Ne(sUnknownItemSize)));
}

TEST_F(ProducerDumpTest, FileThatCannotBeOpenedCostsOneText) {
    const std::string image = Write(ElfImage().Symbol({"a", 0x10, 4}));
    const std::string before = mFolder.Read("image.elf");
    for (const std::string& name : {mFolder.Path("missing/dump.txt"), mFolder.Path(""),
                                    std::string("/proc/dump.txt"), image}) {
        VElfOptions::mDumpProducerInfoFileName = name;
        const ReadRun run = ReadFile(image);
        EXPECT_TRUE(run.result) << name;
        EXPECT_THAT(run.Variables(), testing::ElementsAre("a@10:4"));
        EXPECT_THAT(run.signals, testing::IsEmpty());
        EXPECT_THAT(run.standardOutput, MatchesPattern("\n[0-9/]+ [0-9:]+ : error_code='[^']+': "
                                                       "Failed to create log file: '.*' "));
        EXPECT_THAT(run.standardOutput, testing::EndsWith("file: '" + name + "' "));
    }
    EXPECT_EQ(mFolder.Read("image.elf"), before);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
