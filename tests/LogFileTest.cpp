#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "support/ElfImage.h"
#include "support/MatchesPattern.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <thread>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class LogFileTest : public testing::Test {
protected:
    LogFileTest() { VElfOptions::mIsLogFile = 1; }
    void TearDown() override { CloseLogFile(); }

    bool Create(const std::string& path) {
        testing::internal::CaptureStdout();
        const bool isCreated = CreateLogFile(path);
        mOutput = testing::internal::GetCapturedStdout();
        return isCreated;
    }

    ScopedReaderState mState;
    TemporaryFolder mFolder;
    std::string mOutput;
};

TEST_F(LogFileTest, WritersAddLineEndsAndIndentationAsTold) {
    ASSERT_TRUE(Create(mFolder.Path("firmware.v2.elf")));
    elflog("line %d of %s", 1, "100%");
    elfelog("String table not loaded!\n\n");
    VElfOptions::mLogNestLevel = 2;
    elfilog("nested");
    VElfOptions::mLogNestLevel = -1;
    elfilog("too deep");
    VElfOptions::mLogNestLevel = 0;
    SetErrorState(ELFReadErrorEnum::ELFERR_NOT_ELF);
    elflog("%s", std::string(5000, 'x').c_str());
    CloseLogFile();
    elflog("after the end");
    EXPECT_EQ(mFolder.Read("firmware.v2.log"),
              "line 1 of 100%\nString table not loaded!\n\n      nested\n"
              "      --too big or negative nesting level--  too deep\n"
              "Error occurred: 'The file is not in ELF format.'\n" +
                  std::string(5000, 'x') + "\n");
}

TEST_F(LogFileTest, NameReplacesTheExtensionOfTheFileAlone) {
    std::filesystem::create_directory(mFolder.Path("dir.d"));
    for (const auto& [input, log] :
         {std::pair{"dir.d/noextension", "dir.d/noextension.log"},
          std::pair{"dir.d/a.b.out", "dir.d/a.b.log"}, std::pair{"dir.d/.elf", "dir.d/.log"}}) {
        ASSERT_TRUE(Create(mFolder.Path(input)));
        CloseLogFile();
        EXPECT_TRUE(std::filesystem::exists(mFolder.Path(log))) << log;
    }
}

TEST_F(LogFileTest, AutoFlushMakesLinesVisibleAtOnce) {
    VElfOptions::mLogAutoFlush = true;
    ASSERT_TRUE(Create(mFolder.Path("x.elf")));
    elflog("seen");
    EXPECT_EQ(mFolder.Read("x.log"), "seen\n");
}

TEST_F(LogFileTest, FailedCreationCostsOneText) {
    EXPECT_FALSE(Create(mFolder.Path("missing/x.elf")));
    const std::regex expected("\n\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d : error_code='[^']+': "
                              "Failed to create log file: '.*[/\\\\]missing[/\\\\]x\\.log' ");
    EXPECT_TRUE(std::regex_match(mOutput, expected)) << mOutput;
}

TEST_F(LogFileTest, ALogThatCannotBeWrittenCostsNothingElse) {
    const std::string image = mFolder.Write("image.elf", ElfImage().Symbol({"a", 0x10, 4}).Build());
    const std::string log = mFolder.Path("image.log");
    std::filesystem::create_directory(log);
    const ReadRun run = ReadFile(image);
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.Variables(), testing::ElementsAre("a@10:4"));
    EXPECT_THAT(run.signals, testing::IsEmpty());
    EXPECT_THAT(run.standardOutput, MatchesPattern("\n[0-9/]+ [0-9:]+ : error_code='[^']+': "
                                                   "Failed to create log file: '.*' "));
    EXPECT_THAT(run.standardOutput, testing::EndsWith("file: '" + log + "' "));
    EXPECT_EQ(VElfOptions::mIsLogFile, 0);
}

/// Sets a local time without daylight saving for the length of one test.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* zone) { Set(zone); }
    ~ScopedTimeZone() { Set(""); }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;
    ScopedTimeZone(ScopedTimeZone&&) = delete;
    ScopedTimeZone& operator=(ScopedTimeZone&&) = delete;

private:
    /// An empty text stands for the system's time zone on Windows; elsewhere the variable goes.
    static void Set(const char* zone) {
#ifdef _WIN32
        _putenv_s("TZ", zone);
        _tzset();
#else
        zone[0] != '\0' ? setenv("TZ", zone, 1) : unsetenv("TZ");
        tzset();
#endif
    }
};

TEST_F(LogFileTest, StampsAreOfLocalTime) {
    const ScopedTimeZone zone("TST-05:45");
    const auto expected = [] {
        const std::time_t local = std::time(nullptr) + (5 * 60 + 45) * 60;
        const std::tm parts = *std::gmtime(&local);
        char text[40];
        std::snprintf(text, sizeof text, "%04d/%02d/%02d %02d:%02d:%02d ", parts.tm_year + 1900,
                      parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
        return std::string(text);
    };
    const std::string before = expected();
    const std::string stamp = GetLogTimeStamp();
    EXPECT_THAT(stamp, testing::AnyOf(before, expected()));
}

TEST_F(LogFileTest, TheClockTellsMillisecondsFromTheStartOfARead) {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    const std::string image = mFolder.Write("image.elf", ElfImage().Symbol({"a", 0x10, 4}).Build());
    for (int times = 0; times < 2; ++times) {
        const auto before = std::chrono::steady_clock::now();
        EXPECT_TRUE(ReadFile(image).result);
        const auto behind = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        const Milliseconds least = std::chrono::steady_clock::now() - behind;
        const double told = GetLogTimeMs();
        const Milliseconds most = std::chrono::steady_clock::now() - before;
        EXPECT_GE(told, least.count());
        EXPECT_LE(told, most.count());
    }
}

TEST_F(LogFileTest, NeverOverwritesItsInput) {
    const std::string input = mFolder.Write("image.log", "firmware");
    EXPECT_FALSE(Create(input));
    EXPECT_EQ(mFolder.Read("image.log"), "firmware");
}

TEST_F(LogFileTest, NothingIsWrittenWhileTheOptionIsOff) {
    ASSERT_TRUE(Create(mFolder.Path("x.elf")));
    VElfOptions::mIsLogFile = 0;
    elflog("line");
    elfelog("text");
    elfilog("indented");
    CloseLogFile();
    EXPECT_EQ(mFolder.Read("x.log"), "");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
