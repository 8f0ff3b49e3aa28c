// Faults of files that only a POSIX system has: pipes, links that lead nowhere, permissions,
// devices and the full disk that one of them plays.
#include "core/VElfOptions.h"
#include "faults/FaultTest.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class PosixFaultsTest : public FaultTest {
protected:
    FaultOutcome Read(const std::string& path) {
        DataModel::Model model;
        return FaultTest::Read(model, path);
    }

    std::string mImage = ImageOfEverything();
};

TEST_F(PosixFaultsTest, WhatIsNoFileCanNotBeOpened) {
    const std::string pipe = mFolder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", mFolder.Path("dangling"));
    std::filesystem::create_symlink("loop", mFolder.Path("loop"));
    for (const std::string& path : {pipe, mFolder.Path("dangling"), mFolder.Path("loop")}) {
        EXPECT_EQ(Read(path).message, "ELF file Open has failed.") << path;
    }
}

TEST_F(PosixFaultsTest, FileThatMayNotBeRead) {
    const std::string path = mFolder.Write("image.elf", mImage);
    ASSERT_TRUE(Read(path).result);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    // The superuser may read anything.
    constexpr uid_t nobody = 65534;
    const uid_t user = geteuid();
    if (user == 0 && seteuid(nobody) != 0) {
        GTEST_SKIP() << "no other user to be";
    }
    const FaultOutcome outcome = Read(path);
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.message, "ELF file Open has failed.");
}

TEST_F(PosixFaultsTest, DevicesThatGiveNoBytes) {
    for (const char* path : {"/proc/self/mem", "/dev/null", "/dev/full"}) {
        EXPECT_EQ(Read(path).message, "ELF file Seek has failed.") << path;
    }
}

TEST_F(PosixFaultsTest, FullDiskChangesNothingOfTheResult) {
    const std::string path = mFolder.Write("image.elf", mImage);
    DataModel::Model undisturbed;
    ASSERT_TRUE(FaultTest::Read(undisturbed, path).result);
    VElfOptions::mIsLogFile = 1;
    VElfOptions::mDumpDebugInfoNodes = 1;
    VElfOptions::mDumpProducerInfoFileName = "/dev/full";
    for (const char* name : {"image.log", "image.elf.debugInfoNodes0.rec0.log.txt"}) {
        std::filesystem::create_symlink("/dev/full", mFolder.Path(name));
    }
    for (const bool isFlushed : {false, true}) {
        VElfOptions::mLogAutoFlush = isFlushed;
        DataModel::Model model;
        EXPECT_TRUE(FaultTest::Read(model, path).result);
        EXPECT_EQ(Variables(model), Variables(undisturbed));
        EXPECT_EQ(model.ObjectCount(), undisturbed.ObjectCount());
        EXPECT_EQ(VElfOptions::mIsLogFile, 1);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
