// Exceptions of the host, thrown from its data model and from its callbacks: they pass through the
// reader, which releases everything on the way.
#include "allocations/CountedAllocation.h"
#include "core/VElfOptions.h"
#include "faults/FaultTest.h"

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <system_error>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class HostExceptionTest : public FaultTest {
protected:
    /// Throws at the call of this number, from 1.
    void Count() {
        if (++mCalls == mFatalCall) {
            throw std::runtime_error("host");
        }
    }

    /// Reads with the first, second and each following call throwing, up to the first number that
    /// the read doesn't reach.
    /// @return the number of calls of an undisturbed read
    int ThrowAtEach(const std::string& path, const CallSink& sink) {
        LetOptionsGrow(path);
        bool hasThrown = false;
        do {
            ++mFatalCall;
            mCalls = 0;
            SCOPED_TRACE("call " + std::to_string(mFatalCall));
            const std::size_t before = LiveAllocations();
            {
                DataModel::Model model;
                const FaultOutcome outcome = Read(model, path, sink);
                hasThrown = outcome.exception == "host";
                QueryAll(model);
            }
            EXPECT_EQ(hasThrown, mCalls == mFatalCall);
            EXPECT_EQ(LiveAllocations(), before);
            EXPECT_EQ(OpenFileCount(), mOpenFiles);
        } while (hasThrown);
        EXPECT_FALSE(VElfOptions::mLogFile.is_open());
        EXPECT_FALSE(VElfOptions::mDumpProducerInfoFile.is_open());
        return mCalls;
    }

    int mCalls = 0;
    int mFatalCall = 0;
    std::size_t mOpenFiles = OpenFileCount();

private:
    /// Number of files that the process has open, if the system says. Windows doesn't, and an
    /// emulator on Linux would count its own.
    static std::size_t OpenFileCount() {
#ifdef _WIN32
        return 0;
#else
        const std::filesystem::path folder = "/proc/self/fd";
        std::error_code error;
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder, error), {}));
#endif
    }

    /// The options are texts too, and keep the memory that they grew to.
    void LetOptionsGrow(const std::string& path) {
        DataModel::Model model;
        Read(model, path);
    }
};

TEST_F(HostExceptionTest, FromEachCallOfTheDataModel) {
    VElfOptions::mIsLogFile = 1;
    VElfOptions::mDumpProducerInfoFileName = mFolder.Path("producers.txt");
    for (const bool isFull : {false, true}) {
        VElfOptions::mIsFullReading = isFull ? 1 : 0;
        const std::string path =
            mFolder.Write("image.elf", isFull ? ModernImageOfEverything() : ImageOfEverything());
        DataModel::Model before;
        ASSERT_TRUE(Read(before, path).result);
        mFatalCall = 0;
        EXPECT_GT(ThrowAtEach(path, [this](const DataModel::RecordedCall&) { Count(); }), 50);
        DataModel::Model after;
        EXPECT_TRUE(Read(after, path).result);
        EXPECT_EQ(Variables(after), Variables(before));
    }
}

TEST_F(HostExceptionTest, FromEachCallbackOfAGoodAndAFailedRead) {
    VElfOptions::mIsLogFile = 1;
    mOnCallback = [this] { Count(); };
    EXPECT_GE(ThrowAtEach(mFolder.Write("image.elf", ImageOfEverything()), {}), 4);
    mFatalCall = 0;
    EXPECT_EQ(ThrowAtEach(mFolder.Write("other.elf", "no image"), {}), 1);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
