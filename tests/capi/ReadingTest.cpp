// Reads over the C interface: what a host receives during a read, what it may do meanwhile, how it
// ends the read, and what happens if it does what it must not.
#include "Interface.h"

#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <array>
#include <atomic>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace Reader::DWARF;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Action = std::function<void()>;

/// Calls the action in the user data.
void Act(void* action) {
    (*static_cast<Action*>(action))();
}

/// Runs the action when the first phase of a read begins.
brindle_callbacks ActingCallbacks(Action& action) {
    auto callbacks = Sized<brindle_callbacks>();
    callbacks.user_data = &action;
    callbacks.SetProgressText = [](void* user, const char* /*text*/) { Act(user); };
    return callbacks;
}

/// A host model that returns a number for each object, and runs an action when a variable is
/// delivered.
struct CountingHost {
    brindle_id last = 0;
    std::vector<std::string> variables;
    Action onVariable = [] {};

    static CountingHost& Of(void* user) { return *static_cast<CountingHost*>(user); }

    brindle_factory Factory() {
        auto factory = Sized<brindle_factory>();
        factory.user_data = this;
        factory.GetGlobalNamespace = [](void* user) { return ++Of(user).last; };
        factory.CreateGlobalData = [](void* user, const char* name, brindle_id, std::uint64_t,
                                      brindle_id, brindle_bool, std::int16_t, brindle_bool) {
            Of(user).variables.emplace_back(name);
            Of(user).onVariable();
            return ++Of(user).last;
        };
        factory.CreateUnknownEntryType = [](void* user, std::uint64_t, brindle_id) {
            return ++Of(user).last;
        };
        factory.CreateNamespace = [](void* user, const char*, brindle_id) {
            return ++Of(user).last;
        };
        return factory;
    }
};

class ReadingTest : public testing::Test {
protected:
    static std::string Image() {
        const DieLabel number;
        return (ElfImage().Symbol({"one", 0x1000, 4}) +
                Unit({Int(number), Variable("one", number, 0x1000), Variable("two", number, 0x1004),
                      Variable("three", number, 0x1008)}))
            .Build();
    }

    brindle_status Deliver(CountingHost& host) const {
        const brindle_factory factory = host.Factory();
        return brindle_reader_deliver(mReader, mPath.c_str(), BRINDLE_CONTAINER_AUTO, &factory);
    }

    void ExpectThatReadsWork() const {
        EXPECT_THAT(CModel(mReader, mPath).Variables(), ElementsAre("one", "two", "three"));
    }

    TemporaryFolder mFolder;
    std::string mPath = mFolder.Write("image.elf", Image());
    CReader mReader;
};

TEST_F(ReadingTest, CallbacksTellProgressAndFailure) {
    struct Told {
        std::vector<std::string> texts;
        int intervals = 0;
        int values = 0;
        std::vector<std::string> errors;
    } told;
    auto callbacks = Sized<brindle_callbacks>();
    callbacks.user_data = &told;
    callbacks.SetProgressText = [](void* user, const char* text) {
        static_cast<Told*>(user)->texts.emplace_back(text);
    };
    callbacks.SetProgressInterval = [](void* user, std::int32_t start, std::int32_t end) {
        EXPECT_LE(start, end);
        ++static_cast<Told*>(user)->intervals;
    };
    callbacks.SetProgressValue = [](void* user, std::int32_t /*value*/) {
        ++static_cast<Told*>(user)->values;
    };
    callbacks.SignalError = [](void* user, std::int32_t severity, std::uint32_t code,
                               const char* first, const char* message) {
        EXPECT_EQ(severity, 2);
        EXPECT_EQ(code, 4112U);
        EXPECT_STREQ(first, "");
        static_cast<Told*>(user)->errors.emplace_back(message);
    };
    ASSERT_EQ(brindle_reader_set_callbacks(mReader, &callbacks), BRINDLE_OK);
    ExpectThatReadsWork();
    EXPECT_THAT(told.texts, Not(IsEmpty()));
    EXPECT_GT(told.intervals, 0);
    EXPECT_GT(told.values, 0);
    EXPECT_THAT(told.errors, IsEmpty());

    ASSERT_EQ(brindle_reader_set_language(mReader, 49), BRINDLE_OK);
    const CModel failed(mReader, mFolder.Path("missing.elf"));
    EXPECT_THAT(told.errors, ElementsAre(mReader.ErrorText()));
    EXPECT_EQ(brindle_reader_set_language(mReader, 1), BRINDLE_OK);
    const CModel failedAgain(mReader, mFolder.Path("missing.elf"));
    EXPECT_THAT(told.errors, SizeIs(2));
    EXPECT_NE(told.errors.back(), told.errors.front()) << "the language is that of the reader";

    EXPECT_EQ(brindle_reader_set_callbacks(mReader, nullptr), BRINDLE_OK);
    const CModel unheard(mReader, mFolder.Path("missing.elf"));
    EXPECT_THAT(told.errors, SizeIs(2));
}

TEST_F(ReadingTest, RemarksTellWhatAReadPassedOver) {
    DwarfUnit future{{UnitDie({})}};
    future.version = 6;
    const std::string path = mFolder.Write(
        "future.elf", (ElfImage().Symbol({"one", 0x1000, 4}) +
                       DwarfSections().Unit(future).Unit({UnitDie({})}).Unit({UnitDie({})}))
                          .Build());
    const auto textAt = [&](std::size_t index, brindle_remark& remark) {
        std::array<char, 200> text = {};
        const brindle_status status =
            brindle_reader_remark_at(mReader, index, &remark, text.data(), text.size(), nullptr);
        return status == BRINDLE_OK ? std::string(text.data()) : std::to_string(status);
    };
    const auto notFound = std::to_string(BRINDLE_NOT_FOUND);
    auto remark = Sized<brindle_remark>();
    EXPECT_EQ(textAt(0, remark), notFound) << "nothing was read";
    ASSERT_EQ(brindle_option_set("mIsFullReading", "1"), BRINDLE_OK);
    const CModel english(mReader, path);
    EXPECT_EQ(textAt(0, remark), "1 of 3 units is of DWARF 6, which isn't read.");
    EXPECT_EQ(remark.kind, BRINDLE_REMARK_UNITS_NOT_READ);
    EXPECT_EQ(remark.count, 1U);
    EXPECT_EQ(remark.total, 3U);
    EXPECT_EQ(textAt(1, remark), notFound);
    EXPECT_EQ(brindle_reader_last_status(mReader), BRINDLE_OK) << "that of the read";
    ASSERT_EQ(brindle_reader_set_language(mReader, 49), BRINDLE_OK);
    const CModel german(mReader, path);
    EXPECT_EQ(textAt(0, remark), "1 von 3 Units ist in DWARF 6, das nicht gelesen wird.");
    brindle_remark unsized = {};
    EXPECT_EQ(textAt(0, unsized), std::to_string(BRINDLE_INVALID_ARGUMENT));
    const CModel none(mReader, mPath);
    EXPECT_EQ(textAt(0, remark), notFound) << "remarks are those of the latest read";
    EXPECT_EQ(brindle_reader_set_language(mReader, 1), BRINDLE_OK);
    EXPECT_EQ(brindle_option_set("mIsFullReading", "0"), BRINDLE_OK);
}

TEST_F(ReadingTest, WhatDisturbsARunningReadIsRefused) {
    const CModel finished(mReader, mPath);
    bool hasActed = false;
    Action disturb = [&] {
        if (std::exchange(hasActed, true)) {
            return;
        }
        const CReader other;
        EXPECT_EQ(CModel(other, mPath).Status(), BRINDLE_BUSY);
        EXPECT_EQ(other.ErrorText(), "a read runs in this process");
        EXPECT_EQ(CModel(mReader, mPath).Status(), BRINDLE_BUSY);
        EXPECT_EQ(brindle_option_set("mForceDebugSectionVersion", "1"), BRINDLE_BUSY);
        EXPECT_EQ(brindle_reader_set_language(other, 49), BRINDLE_BUSY);
        std::thread([&] { EXPECT_EQ(CModel(other, mPath).Status(), BRINDLE_BUSY); }).join();
        // A finished model doesn't depend on the settings of later reads.
        EXPECT_THAT(finished.Variables(), SizeIs(3));
        EXPECT_EQ(brindle_reader_set_callbacks(mReader, nullptr), BRINDLE_OK);
    };
    const brindle_callbacks callbacks = ActingCallbacks(disturb);
    brindle_reader_set_callbacks(mReader, &callbacks);
    ExpectThatReadsWork();
    EXPECT_TRUE(hasActed);
    EXPECT_EQ(brindle_reader_last_status(mReader), BRINDLE_OK) << "the read's own status stays";
    ExpectThatReadsWork();
}

TEST_F(ReadingTest, AReaderMayBeDestroyedByItsOwnCallback) {
    brindle_reader reader = nullptr;
    ASSERT_EQ(brindle_reader_create(&reader), BRINDLE_OK);
    Action destroy = [&] { brindle_reader_destroy(reader); };
    const brindle_callbacks callbacks = ActingCallbacks(destroy);
    brindle_reader_set_callbacks(reader, &callbacks);
    const CModel model(reader, mPath);
    EXPECT_EQ(model.Status(), BRINDLE_OK);
    EXPECT_THAT(model.Variables(), SizeIs(3));
    EXPECT_EQ(brindle_reader_last_status(reader), BRINDLE_INVALID_HANDLE);
}

TEST_F(ReadingTest, ACancelledReadEndsAndTheNextOneRuns) {
    EXPECT_EQ(brindle_reader_cancel(mReader), BRINDLE_OK) << "without a read it does nothing";
    CountingHost host;
    host.onVariable = [&] {
        if (host.variables.size() == 2) {
            EXPECT_EQ(brindle_reader_cancel(mReader), BRINDLE_OK);
        }
    };
    EXPECT_EQ(Deliver(host), BRINDLE_CANCELLED);
    EXPECT_THAT(host.variables, ElementsAre("one", "two"));
    EXPECT_EQ(mReader.ErrorText(), "the read was cancelled");

    Action cancel = [&] { brindle_reader_cancel(mReader); };
    const brindle_callbacks callbacks = ActingCallbacks(cancel);
    brindle_reader_set_callbacks(mReader, &callbacks);
    const CModel model(mReader, mPath);
    EXPECT_EQ(model.Status(), BRINDLE_CANCELLED);
    EXPECT_GE(model.ObjectCount(), 1U) << "what came until then can be asked";

    brindle_reader_set_callbacks(mReader, nullptr);
    ExpectThatReadsWork();
}

TEST_F(ReadingTest, ThrowingCallbacksEndTheReadAtTheBorder) {
    CountingHost host;
    host.onVariable = [] { throw std::runtime_error("the host is full"); };
    EXPECT_EQ(Deliver(host), BRINDLE_INTERNAL_ERROR);
    EXPECT_EQ(mReader.ErrorText(), "the host is full");
    host.onVariable = [] { throw 5; }; // NOLINT(hicpp-exception-baseclass)
    EXPECT_EQ(Deliver(host), BRINDLE_INTERNAL_ERROR);
    host.onVariable = [] { throw std::bad_alloc(); };
    EXPECT_EQ(Deliver(host), BRINDLE_OUT_OF_MEMORY);

    Action fail = [] { throw std::runtime_error("no progress"); };
    const brindle_callbacks callbacks = ActingCallbacks(fail);
    brindle_reader_set_callbacks(mReader, &callbacks);
    EXPECT_EQ(CModel(mReader, mPath).Status(), BRINDLE_INTERNAL_ERROR);
    brindle_reader_set_callbacks(mReader, nullptr);
    ExpectThatReadsWork();
}

TEST_F(ReadingTest, MissingFunctionsOfATableAnswerZero) {
    const auto empty = Sized<brindle_factory>();
    EXPECT_EQ(brindle_reader_deliver(mReader, mPath.c_str(), BRINDLE_CONTAINER_ELF, &empty),
              BRINDLE_READ_FAILED)
        << "a model without a global namespace is none";

    // The table of a host that knows only the first function; what follows in memory is no part of
    // it.
    CountingHost host;
    brindle_factory shorter = host.Factory();
    shorter.struct_size = offsetof(brindle_factory, GetNamespace);
    EXPECT_EQ(brindle_reader_deliver(mReader, mPath.c_str(), BRINDLE_CONTAINER_ELF, &shorter),
              BRINDLE_OK);
    EXPECT_THAT(host.variables, IsEmpty());
    EXPECT_GT(host.last, 0U);
}

TEST_F(ReadingTest, ReadsOfSeveralThreadsComeOneByOne) {
    std::atomic<int> reads = 0;
    const auto work = [&] {
        const CReader reader;
        for (int tries = 0; tries < 200; ++tries) {
            const CModel model(reader, mPath);
            EXPECT_TRUE(model.Status() == BRINDLE_OK || model.Status() == BRINDLE_BUSY);
            if (model.Status() == BRINDLE_OK) {
                EXPECT_THAT(model.Variables(), SizeIs(3));
                EXPECT_NE(model.Find("three"), 0U);
                ++reads;
            }
        }
    };
    const CModel shared(mReader, mPath);
    const auto ask = [&] {
        for (int tries = 0; tries < 200; ++tries) {
            EXPECT_NE(shared.Find("two"), 0U);
            EXPECT_THAT(shared.Variables(), SizeIs(3));
        }
    };
    std::array threads = {std::thread(work), std::thread(work), std::thread(ask), std::thread(ask)};
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_GT(reads, 0);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
