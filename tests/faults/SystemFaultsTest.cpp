// Files that can't be read or end while they are read: each gives the documented error, and no
// address that isn't in the file. PosixFaultsTest.cpp has what only some systems can do.
#include "core/VElfOptions.h"
#include "faults/FaultTest.h"
#include "model/RecordedCall.h"
#include "support/ElfImage.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace Tessel::Norn::Brindle::Tests {
namespace {

class SystemFaultsTest : public FaultTest {
protected:
    FaultOutcome Read(const std::string& path) {
        DataModel::Model model;
        return FaultTest::Read(model, path);
    }

    /// A read of an image during which its file is cut after a number of calls.
    struct CutRead {
        FaultOutcome outcome;
        std::vector<std::string> variables;
        bool wasCut = false;
    };
    CutRead ReadCut(const std::string& path, const std::string& image, std::size_t calls,
                    std::uintmax_t length) {
        std::ofstream(path, std::ios::binary)
            .write(image.data(), static_cast<std::streamsize>(image.size()));
        DataModel::Model model;
        CutRead read;
        std::size_t count = 0;
        read.outcome = FaultTest::Read(model, path, [&](const DataModel::RecordedCall&) {
            if (++count == calls) {
                std::filesystem::resize_file(path, length);
                read.wasCut = true;
            }
        });
        read.variables = Variables(model);
        return read;
    }

    std::string mImage = ImageOfEverything();
};

TEST_F(SystemFaultsTest, WhatIsNoFileCanNotBeOpened) {
    const std::string file = mFolder.Write("file", "x");
    for (const std::string& path : {mFolder.Path("missing"), mFolder.Path("."), file + "/below",
                                    mFolder.Path(std::string(5000, 'n')), std::string()}) {
        EXPECT_EQ(Read(path).message, "ELF file Open has failed.") << path;
    }
}

TEST_F(SystemFaultsTest, FileWithoutBytes) {
    EXPECT_EQ(Read(mFolder.Write("empty", "")).message, "ELF file Seek has failed.");
}

TEST_F(SystemFaultsTest, EveryTruncatedFileIsRefused) {
    // The section table is at the end, so that no part of the file is read without it.
    for (std::size_t length = 0; length < mImage.size(); ++length) {
        const FaultOutcome outcome = Read(mFolder.Write("cut.elf", mImage.substr(0, length)));
        EXPECT_FALSE(outcome.result) << length;
        EXPECT_NE(outcome.message, "") << length;
    }
}

TEST_F(SystemFaultsTest, FileThatShrinksDuringTheRead) {
    constexpr std::size_t padding = 20'000;
    const struct {
        const char* name;
        std::string content;
        bool isFull;
    } images[] = {{"image.elf", ImageOfEverything(padding), false},
                  {"image.exe", WindowsImageOfEverything(padding), false},
                  {"modern.elf", ModernImageOfEverything(padding), true}};
    for (const auto& [name, content, isFull] : images) {
        Reader::DWARF::VElfOptions::mIsFullReading = isFull ? 1 : 0;
        DataModel::Model whole;
        const std::string path = mFolder.Write(name, content);
        ASSERT_TRUE(FaultTest::Read(whole, path).result);
        const std::vector<std::string> expected = Variables(whole);
        for (const std::uintmax_t length : {0U, 100U, 700U}) {
            CutRead read;
            for (std::size_t calls = 1; calls == 1 || read.wasCut; ++calls) {
                SCOPED_TRACE(path + " cut to " + std::to_string(length) + " after call " +
                             std::to_string(calls));
                read = ReadCut(path, content, calls, length);
                EXPECT_EQ(read.outcome.exception, "");
                EXPECT_NE(read.outcome.result, !read.outcome.message.empty());
                for (const std::string& variable : read.variables) {
                    EXPECT_EQ(std::ranges::count(expected, variable), 1) << variable;
                }
                if (isFull && read.outcome.result) {
                    EXPECT_EQ(read.variables, expected);
                }
            }
        }
        EXPECT_FALSE(ReadCut(path, content, 1, 0).outcome.result);
    }
}

// The symbol table is longer than what the reader keeps of a file, and is read once more at the
// end.
TEST_F(SystemFaultsTest, FileThatShrinksBeforeItsSymbolsAreDelivered) {
    constexpr std::size_t count = 600;
    ElfImage image;
    for (std::uint64_t number = 1; number <= count; ++number) {
        image.Symbol({"symbol" + std::to_string(number), number * 8, 8});
    }
    Reader::DWARF::VElfOptions::mIsFullReading = 1;
    const std::string path = mFolder.Path("symbols.elf");
    for (std::size_t calls = 1; calls <= 5; ++calls) {
        const CutRead read = ReadCut(path, image.Build(), calls, 700);
        EXPECT_EQ(read.outcome.result, read.variables.size() == count) << calls;
        EXPECT_NE(read.outcome.result, !read.outcome.message.empty()) << calls;
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
