// Reads in which one allocation fails, for each allocation of the read.
#include "allocations/CountedAllocation.h"
#include "core/VElfOptions.h"
#include "faults/FaultTest.h"

#include <array>
#include <brindle/brindle.h>
#include <functional>
#include <utility>

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
    FailAllocations(mFolder.Write("image.out", CoffImageOfEverything()), Successor);
}

TEST_F(AllocationFailureTest, EachInTheFullManner) {
    VElfOptions::mIsFullReading = 1;
    FailAllocations(mFolder.Write("image.elf", ModernImageOfEverything()), Successor);
}

/// Reads a file over the C interface and appends the names of its variables to `names`, which has
/// memory for them.
/// @return the first status that isn't good
brindle_status ReadOverInterface(const std::string& path, std::string& names) {
    brindle_reader reader = nullptr;
    brindle_model model = nullptr;
    brindle_status status = brindle_reader_create(&reader);
    if (status == BRINDLE_OK) {
        status = brindle_reader_read(reader, path.c_str(), BRINDLE_CONTAINER_AUTO, &model);
    }
    brindle_id id = 0;
    while (status == BRINDLE_OK &&
           brindle_model_next_of_kind(model, BRINDLE_KIND_GLOBAL, id, &id) == BRINDLE_OK) {
        std::array<char, 256> name = {};
        std::size_t length = 0;
        status = brindle_model_qualified_name(model, id, name.data(), name.size(), &length);
        names.append(name.data(), length).append(1, '\n');
    }
    brindle_model_destroy(model);
    brindle_reader_destroy(reader);
    return status;
}

TEST_F(AllocationFailureTest, EachOverTheInterface) {
    VElfOptions::mIsFullReading = 1;
    for (const auto& [file, content] : {std::pair("image.elf", ModernImageOfEverything()),
                                        std::pair("image.out", CoffImageOfEverything())}) {
        const std::string path = mFolder.Write(file, content);
        constexpr std::size_t roomForNames = 4096;
        std::string expected, names;
        names.reserve(roomForNames);
        ASSERT_EQ(ReadOverInterface(path, expected), BRINDLE_OK);
        ASSERT_FALSE(expected.empty());
        // The first message of a process loads the texts of all.
        ASSERT_EQ(ReadOverInterface(mFolder.Path("missing"), names), BRINDLE_READ_FAILED);
        std::size_t number = 1;
        for (bool hasFailed = true; hasFailed && !HasFailure(); ++number) {
            SCOPED_TRACE(path + ", allocation " + std::to_string(number));
            const std::size_t before = LiveAllocations();
            names.clear();
            brindle_status status = BRINDLE_OK;
            {
                const FailingAllocation failing(number);
                status = ReadOverInterface(path, names);
                hasFailed = FailingAllocation::HasFailed();
            }
            if (status == BRINDLE_OK || !hasFailed) {
                EXPECT_EQ(status, BRINDLE_OK);
                EXPECT_EQ(names, expected);
            } else {
                // Where the reader itself notices, it fails with a message.
                EXPECT_TRUE(status == BRINDLE_OUT_OF_MEMORY || status == BRINDLE_READ_FAILED)
                    << status;
            }
            EXPECT_EQ(LiveAllocations(), before);
        }
        EXPECT_GT(number, 100U) << "hardly any allocation was made to fail";
    }
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

std::size_t FartherSuccessor(std::size_t number) {
    return number + 1 + number / 20;
}

TEST_F(AllocationFailureTest, SomeOfEachSampleImage) {
    for (const char* image : {"arm-cpp-dwarf4-O2.elf", "x86_64-clang-c-dwarf4-O2.elf"}) {
        FailAllocations(std::string(BRINDLE_SAMPLE_IMAGES "/") + image, FartherSuccessor);
    }
}

TEST_F(AllocationFailureTest, SomeOfTypeUnitsAndOfAbstractOrigins) {
    VElfOptions::mIsFullReading = 1;
    for (const char* image : {"arm-cpp-types-dwarf5.elf", "x86_64-clang-cpp-lto.elf"}) {
        FailAllocations(std::string(BRINDLE_SAMPLE_IMAGES "/full/") + image, FartherSuccessor);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
