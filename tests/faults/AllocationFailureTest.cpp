// Reads in which one allocation fails, for each allocation of the read.
#include "allocations/CountedAllocation.h"
#include "core/VElfOptions.h"
#include "faults/FaultTest.h"

#include <functional>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class AllocationFailureTest : public FaultTest {
protected:
    /// Reads the file with the allocations 1, `next`(1) and so on failing, up to the first number
    /// that the read doesn't reach.
    void FailAllocations(const std::string& path,
                         const std::function<std::size_t(std::size_t)>& next) {
        DataModel::Model undisturbed;
        ASSERT_TRUE(Read(undisturbed, path).result);
        std::size_t number = 1;
        while (FailAllocation(path, number, undisturbed) && !HasFailure()) {
            number = next(number);
        }
        EXPECT_GT(number, 100U) << "hardly any allocation was made to fail";
        DataModel::Model afterwards;
        EXPECT_TRUE(Read(afterwards, path).result);
        EXPECT_EQ(Variables(afterwards), Variables(undisturbed));
    }

private:
    /// @return true if the read reached this allocation
    bool FailAllocation(const std::string& path, std::size_t number,
                        const DataModel::Model& undisturbed) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const std::size_t before = LiveAllocations();
        bool hasFailed = false;
        {
            DataModel::Model model;
            FaultOutcome outcome;
            {
                const FailingAllocation failing(number);
                outcome = Read(model, path);
                hasFailed = FailingAllocation::HasFailed();
            }
            if (outcome.exception.empty() && !outcome.result) {
                EXPECT_NE(outcome.message, "");
            }
            if (outcome.result) {
                EXPECT_EQ(model.ObjectCount(), undisturbed.ObjectCount());
                EXPECT_EQ(Variables(model), Variables(undisturbed));
            }
            EXPECT_FALSE(VElfOptions::mLogFile.is_open());
            EXPECT_FALSE(VElfOptions::mDumpProducerInfoFile.is_open());
            QueryAll(model);
        }
        // The options are texts too, and keep the memory that they grew to.
        EXPECT_EQ(LiveAllocations(), before);
        return hasFailed;
    }
};

std::size_t Successor(std::size_t number) {
    return number + 1;
}

TEST_F(AllocationFailureTest, EachOfASmallRead) {
    FailAllocations(mFolder.Write("image.elf", ImageOfEverything()), Successor);
    FailAllocations(mFolder.Write("image.exe", WindowsImageOfEverything()), Successor);
}

TEST_F(AllocationFailureTest, EachWithASearchForUnitsThroughAWindow) {
    VElfOptions::mTryReadCorruptedCompileUnits = 1;
    VElfOptions::mElfFileReadBufferSize = 4096;
    FailAllocations(mFolder.Write("image.elf", ImageOfEverything()), Successor);
}

TEST_F(AllocationFailureTest, EachWithDemangledNamesLogAndDumps) {
    VElfOptions::mIsLogFile = 1;
    VElfOptions::mDumpDebugInfoNodes = 1;
    VElfOptions::mDumpProducerInfoFileName = mFolder.Path("producers.txt").c_str();
    VElfOptions::mDemangleSymTabNames = 2;
    FailAllocations(mFolder.Write("image.elf", ImageOfEverything()), Successor);
}

TEST_F(AllocationFailureTest, SomeOfEachSampleImage) {
    for (const char* image : {"arm-cpp-dwarf4-O2.elf", "x86_64-clang-c-dwarf4-O2.elf"}) {
        FailAllocations(std::string(BRINDLE_SAMPLE_IMAGES "/") + image,
                        [](std::size_t number) { return number + 1 + number / 20; });
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
