// A host that throws in the midst of a read: its exception comes out of `Read`, everything of the
// read is released, and the next read is as good as the first.
#include "core/VElfOptions.h"
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/RecordingDataModel.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <cstddef>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace Reader::DWARF;
using testing::SizeIs;

class HostFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws when its time has come.
class Countdown {
public:
    explicit Countdown(std::size_t callsBefore)
        : mLeft(callsBefore) {}

    void Tick() {
        if (mLeft-- == 0) {
            throw HostFailure("the host gives up");
        }
    }

private:
    std::size_t mLeft;
};

/// Files that the process has open, where the system tells.
std::size_t OpenFileCount() {
    const std::filesystem::path folder = "/proc/self/fd";
    if (!std::filesystem::exists(folder)) {
        return 0;
    }
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

class HostExceptionTest : public testing::Test {
protected:
    static std::string Image() {
        const DieLabel number;
        const DieLabel motor;
        DwarfSections sections;
        sections.Unit({Die(
            DW_TAG_compile_unit, {Name("main.cpp"), Producer("compiler")},
            {Die(number, DW_TAG_base_type, {Name("int"), ByteSize(4), Encoding(DW_ATE_signed)}),
             Die(DW_TAG_namespace, {Name("plant")},
                 {Die(motor, DW_TAG_structure_type, {Name("Motor"), ByteSize(8)},
                      {Die(DW_TAG_member, {Name("id"), Type(number), MemberOffset(0)}),
                       Die(DW_TAG_member, {Name("speed"), Type(number), MemberOffset(4)})})}),
             Die(DW_TAG_variable, {Name("first"), Type(motor), External(), Address(0x1000)}),
             Die(DW_TAG_subprogram, {Name("main"), External(), Type(number)},
                 {Die(DW_TAG_variable, {Name("kept"), Type(number), Address(0x1008)})})})});
        return (ElfImage().Symbol({"first", 0x1000, 8}).Symbol({"other", 0x2000, 4}) + sections)
            .Build();
    }

    /// Expects that a read with these countdowns ends by the host's exception.
    void ExpectFailure(Countdown& calls, Countdown& callbacks) const {
        DataModel::DataModel model;
        DataModel::RecordingDataModel throwing(
            model, [&](const DataModel::RecordedCall&) { calls.Tick(); });
        const DataModel::Factory::CurrentDataModel current(throwing);
        VDWARFReader reader;
        reader.SetProgressTextCallback = [&](auto&&...) { callbacks.Tick(); };
        reader.SetProgressIntervalCallback = [&](auto&&...) { callbacks.Tick(); };
        reader.SetProgressValueCallback = [&](auto&&...) { callbacks.Tick(); };
        reader.SignalErrorCallback = [](auto&&...) { ADD_FAILURE() << "no fault of the file"; };
        EXPECT_THROW(reader.Read(mPath, DWARFContainerType::Container_ELF), HostFailure);
        for (DataModel::ObjectId id = 1; id <= model.ObjectCount(); ++id) {
            EXPECT_LE(model.QualifiedName(id).size() + model.TypeText(id).size(), 200U)
                << "what was delivered until then can be asked";
        }
    }

    [[nodiscard]] std::size_t CallbackCount() const {
        DataModel::DataModel model;
        const DataModel::Factory::CurrentDataModel current(model);
        VDWARFReader reader;
        std::size_t count = 0;
        reader.SetProgressTextCallback = [&](auto&&...) { ++count; };
        reader.SetProgressIntervalCallback = [&](auto&&...) { ++count; };
        reader.SetProgressValueCallback = [&](auto&&...) { ++count; };
        EXPECT_TRUE(reader.Read(mPath, DWARFContainerType::Container_ELF));
        return count;
    }

    ScopedReaderState mState;
    TemporaryFolder mFolder;
    std::string mPath = mFolder.Write("image.elf", Image());
};

TEST_F(HostExceptionTest, AnExceptionAtAnyCallReleasesTheRead) {
    const ReadRun undisturbed = ReadFile(mPath);
    ASSERT_TRUE(undisturbed.result);
    ASSERT_THAT(undisturbed.Variables(), SizeIs(3));
    VElfOptions::mIsLogFile = 1;
    VElfOptions::mDumpProducerInfoFileName = mFolder.Path("producers.txt");
    const std::size_t openFiles = OpenFileCount();
    const std::size_t callbackCount = CallbackCount();
    ASSERT_GT(callbackCount, 2U);

    Countdown never(1'000'000);
    for (std::size_t call = 0; call < undisturbed.calls.size(); ++call) {
        Countdown countdown(call);
        ExpectFailure(countdown, never);
    }
    for (std::size_t call = 0; call < callbackCount; ++call) {
        Countdown countdown(call);
        ExpectFailure(never, countdown);
    }
    EXPECT_EQ(OpenFileCount(), openFiles);
    EXPECT_FALSE(VElfOptions::mLogFile.is_open());
    EXPECT_FALSE(VElfOptions::mDumpProducerInfoFile.is_open());
    EXPECT_EQ(ReadFile(mPath).calls, undisturbed.calls);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
