// Reads on request over the C interface, and what image and rows contain afterwards: read from a
// path, from memory, with options of their own, after waiting.
#include "Interface.h"

#include "support/TemporaryFolder.h"

#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <thread>
#include <tuple>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using testing::ElementsAreArray;
using testing::Gt;
using testing::SizeIs;

std::string Sample(const std::string& name) {
    return std::string(BRINDLE_SAMPLE_IMAGES "/") + name;
}

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

brindle_input Input(const char* path) {
    auto input = Sized<brindle_input>();
    input.path = path;
    input.container = BRINDLE_CONTAINER_AUTO;
    return input;
}

/// A model that is read from an input.
class ReadModel {
public:
    ReadModel(brindle_reader reader, const brindle_input& input)
        : mStatus(brindle_reader_read_input(reader, &input, &mModel)) {}
    ~ReadModel() { brindle_model_destroy(mModel); }
    ReadModel(const ReadModel&) = delete;
    ReadModel& operator=(const ReadModel&) = delete;
    ReadModel(ReadModel&&) = delete;
    ReadModel& operator=(ReadModel&&) = delete;

    [[nodiscard]] brindle_model Handle() const { return mModel; }
    [[nodiscard]] brindle_status Status() const { return mStatus; }

    [[nodiscard]] brindle_image Image() const {
        auto image = Sized<brindle_image>();
        EXPECT_EQ(brindle_model_image(mModel, &image), BRINDLE_OK);
        return image;
    }

    /// Everything that is known about the image, with the sections and their first bytes.
    [[nodiscard]] std::string Description() const {
        const brindle_image image = Image();
        std::ostringstream text;
        text << image.file_size << ' ' << image.container << ' ' << image.byte_order << ' '
             << image.address_size << ' ' << image.pointer_size << ' ' << image.machine << '\n';
        for (std::size_t index = 0; index < image.section_count; ++index) {
            auto section = Sized<brindle_section>();
            EXPECT_EQ(brindle_model_section(mModel, index, &section), BRINDLE_OK);
            std::array<std::uint8_t, 4> bytes = {};
            const brindle_status status =
                brindle_model_initial_bytes(mModel, section.address, bytes.data(), bytes.size());
            text << View(section.name) << ' ' << section.address << ' ' << section.kind << ' '
                 << status << ' ' << testing::PrintToString(bytes) << '\n';
        }
        return text.str();
    }

private:
    brindle_model mModel = nullptr;
    brindle_status mStatus;
};

std::string RowText(std::string_view path, const brindle_place& place) {
    std::ostringstream text;
    text << path << ' ' << place.global << ' ' << place.type << ' ' << place.address << ' '
         << place.size << ' ' << place.bit_offset << ' ' << place.bit_size;
    return text.str();
}

/// All rows of a walk, block by block.
std::vector<std::string> Rows(brindle_model model, const brindle_row_choice& choice,
                              std::size_t wanted) {
    std::vector<std::string> texts;
    brindle_rows rows = nullptr;
    EXPECT_EQ(brindle_rows_create(model, &choice, &rows), BRINDLE_OK);
    auto block = Sized<brindle_row_block>();
    while (brindle_rows_next(rows, wanted, &block) == BRINDLE_OK) {
        for (std::size_t row = 0; row < block.count; ++row) {
            brindle_place place = {};
            place.global = block.globals[row];
            place.type = block.types[row];
            place.address = block.addresses[row];
            place.size = block.sizes[row];
            place.bit_offset = block.bit_offsets[row];
            place.bit_size = block.bit_sizes[row];
            texts.push_back(RowText(block.paths + block.path_starts[row], place));
        }
    }
    EXPECT_EQ(brindle_rows_destroy(rows), BRINDLE_OK);
    return texts;
}

std::vector<std::string> VisitedLeaves(brindle_model model) {
    std::vector<std::string> texts;
    const auto visit = [](void* user, const brindle_text* path, const brindle_place* place) {
        static_cast<std::vector<std::string>*>(user)->push_back(RowText(View(*path), *place));
        return brindle_bool{1};
    };
    EXPECT_EQ(brindle_model_visit_leaves(model, 0, nullptr, visit, &texts, nullptr), BRINDLE_OK);
    return texts;
}

std::string OptionValue(const char* name) {
    std::array<char, 64> text = {};
    EXPECT_EQ(brindle_option_get(name, text.data(), text.size(), nullptr), BRINDLE_OK);
    return text.data();
}

class InputTest : public testing::Test {
protected:
    TemporaryFolder mFolder;
    CReader mReader;
};

TEST_F(InputTest, AFileInMemoryTellsWhatItsPathTells) {
    for (const char* name : {"arm-c-dwarf4-O0.elf", "powerpc-cpp-dwarf4-O0.elf",
                             "x86_64-c-dwarf4-O0.exe", "arm-symbols.elf"}) {
        SCOPED_TRACE(name);
        const std::string path = Sample(name);
        const ReadModel byPath(mReader, Input(path.c_str()));
        std::string content = Content(path);
        brindle_input input = Input(nullptr);
        input.bytes = content.data();
        input.byte_count = content.size();
        const ReadModel fromMemory(mReader, input);
        // The library has made a copy.
        content.assign(content.size(), 'x');
        EXPECT_EQ(fromMemory.Status(), BRINDLE_OK);
        EXPECT_EQ(fromMemory.Description(), byPath.Description());
        EXPECT_EQ(VisitedLeaves(fromMemory.Handle()), VisitedLeaves(byPath.Handle()));
    }
    brindle_input empty = Input("nothing.elf");
    empty.bytes = "";
    EXPECT_EQ(ReadModel(mReader, empty).Status(), BRINDLE_READ_FAILED);
}

TEST_F(InputTest, TheImageTellsItsTarget) {
    const std::string path = Sample("powerpc-c-dwarf4-O2.elf");
    const ReadModel model(mReader, Input(path.c_str()));
    const brindle_image image = model.Image();
    EXPECT_EQ(View(image.path), path);
    EXPECT_EQ(image.file_size, Content(path).size());
    EXPECT_EQ(image.byte_order, BRINDLE_BIG_ENDIAN);
    EXPECT_EQ(image.machine, 20);
    EXPECT_EQ(image.address_size, 4);
    EXPECT_EQ(image.pointer_size, 4);
    EXPECT_NE(image.is_linked, 0);
    EXPECT_GT(image.section_count, 2U);
    auto section = Sized<brindle_section>();
    EXPECT_EQ(brindle_model_section(model.Handle(), image.section_count, &section),
              BRINDLE_NOT_FOUND);
    std::array<std::uint8_t, 4> bytes = {1, 2, 3, 4};
    EXPECT_EQ(brindle_model_initial_bytes(model.Handle(), 0xFFFFFFFFFFFFFFFEU, bytes.data(), 4),
              BRINDLE_NOT_FOUND);
    EXPECT_EQ(bytes.front(), 1);
}

TEST_F(InputTest, OptionsOfARequestHoldForItsReadAlone) {
    const std::string path = Sample("full/arm-c-O0.elf");
    const std::array settings = {brindle_setting{"mIsFullReading", "1"},
                                 brindle_setting{"mElfForceSymbolTable", "2"}};
    brindle_input input = Input(path.c_str());
    input.settings = settings.data();
    input.setting_count = settings.size();
    const ReadModel full(mReader, input);
    EXPECT_EQ(full.Status(), BRINDLE_OK);
    EXPECT_THAT(VisitedLeaves(full.Handle()), SizeIs(Gt(100U)));
    EXPECT_EQ(OptionValue("mIsFullReading"), "0");

    // The second one is refused; then the first must not take effect.
    for (const auto& [wrong, status] :
         {std::pair{brindle_setting{"mNoSuchOption", "1"}, BRINDLE_NOT_FOUND},
          std::pair{brindle_setting{"mElfForceSymbolTable", "much"}, BRINDLE_INVALID_VALUE},
          std::pair{brindle_setting{"mElfForceSymbolTable", nullptr}, BRINDLE_INVALID_ARGUMENT}}) {
        const std::array refused = {settings.front(), wrong};
        input.settings = refused.data();
        const ReadModel model(mReader, input);
        EXPECT_EQ(model.Status(), status);
        EXPECT_EQ(model.Handle(), nullptr);
        EXPECT_EQ(OptionValue("mIsFullReading"), "0");
    }
}

/// Reads in threads of their own that wait for a read which is blocked in its first callback.
class WaitingTest : public InputTest {
protected:
    void SetUp() override {
        auto callbacks = Sized<brindle_callbacks>();
        callbacks.user_data = this;
        callbacks.SetProgressText = [](void* user, const char* /*text*/) {
            auto& test = *static_cast<WaitingTest*>(user);
            if (!std::exchange(test.mHasActed, true)) {
                test.mMeanwhile();
            }
        };
        brindle_reader_set_callbacks(mReader, &callbacks);
        mInput.waits = 1;
    }

    std::string mPath = Sample("arm-c-dwarf4-O0.elf");
    brindle_input mInput = Input(mPath.c_str());
    CReader mOther;
    std::function<void()> mMeanwhile;
    bool mHasActed = false;
};

TEST_F(WaitingTest, AReadWaitsForTheOneThatRuns) {
    std::atomic<brindle_status> status = BRINDLE_INTERNAL_ERROR;
    std::atomic<bool> hasEnded = false;
    std::thread waiting;
    mMeanwhile = [&] {
        waiting = std::thread([&] {
            status = ReadModel(mOther, mInput).Status();
            hasEnded = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(hasEnded);
        // On the thread of the running read it would wait for itself.
        EXPECT_EQ(ReadModel(mOther, mInput).Status(), BRINDLE_BUSY);
    };
    EXPECT_EQ(ReadModel(mReader, mInput).Status(), BRINDLE_OK);
    waiting.join();
    EXPECT_EQ(status, BRINDLE_OK);
}

TEST_F(WaitingTest, AWaitCanBeCancelled) {
    mMeanwhile = [&] {
        brindle_status status = BRINDLE_INTERNAL_ERROR;
        std::atomic<bool> hasEnded = false;
        std::thread waiting([&] {
            status = ReadModel(mOther, mInput).Status();
            hasEnded = true;
        });
        // A call before the wait begins does nothing.
        while (!hasEnded) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            EXPECT_EQ(brindle_reader_cancel(mOther), BRINDLE_OK);
        }
        waiting.join();
        EXPECT_EQ(status, BRINDLE_CANCELLED);
    };
    EXPECT_EQ(ReadModel(mReader, mInput).Status(), BRINDLE_OK)
        << "the one that ran isn't concerned";
    EXPECT_EQ(ReadModel(mOther, mInput).Status(), BRINDLE_OK) << "nor is the next one";
}

TEST_F(InputTest, HostsThatReadAtOnceGetWhatTheyAskedFor) {
    // Each has a file and a manner of its own: options and messages belong to the process.
    const struct {
        std::string path;
        const char* isFull;
        brindle_status status;
    } requests[] = {{Sample("arm-c-dwarf4-O0.elf"), "0", BRINDLE_OK},
                    {Sample("full/x86_64-c-O0.elf"), "1", BRINDLE_OK},
                    {Sample("full/x86_64-c-O0.elf"), "0", BRINDLE_READ_FAILED}};
    const auto read = [](const auto& request, brindle_bool waits) {
        const CReader reader;
        const brindle_setting setting = {"mIsFullReading", request.isFull};
        brindle_input input = Input(request.path.c_str());
        input.waits = waits;
        input.settings = &setting;
        input.setting_count = 1;
        const ReadModel model(reader, input);
        std::uint64_t count = 0;
        brindle_model_object_count(model.Handle(), &count);
        return std::tuple(model.Status(), count, reader.ErrorText());
    };
    std::vector<decltype(read(requests[0], 0))> alone;
    for (const auto& request : requests) {
        alone.push_back(read(request, 0));
        EXPECT_EQ(std::get<0>(alone.back()), request.status);
    }
    std::vector<std::thread> hosts;
    for (std::size_t host = 0; host < 2 * std::size(requests); ++host) {
        hosts.emplace_back([&, host] {
            const brindle_bool waits = host % 2 == 0 ? 1 : 0;
            // The others end some time, and one of those that are refused then reads.
            const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
            bool hasRead = false;
            for (int tries = 0; tries < 10 || (!hasRead && std::chrono::steady_clock::now() < end);
                 ++tries) {
                const auto result = read(requests[host / 2], waits);
                const bool isRefused = waits == 0 && std::get<0>(result) == BRINDLE_BUSY;
                EXPECT_TRUE(isRefused || result == alone[host / 2]);
                hasRead = hasRead || !isRefused;
            }
            EXPECT_TRUE(hasRead);
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
}

TEST_F(InputTest, NothingIsWrittenToStandardOutput) {
    testing::internal::CaptureStdout();
    const std::string missing = mFolder.Path("missing.elf");
    const std::string cut =
        mFolder.Write("cut.elf", Content(Sample("arm-c-dwarf4-O0.elf")).substr(0, 60));
    EXPECT_EQ(ReadModel(mReader, Input(missing.c_str())).Status(), BRINDLE_READ_FAILED);
    EXPECT_EQ(ReadModel(mReader, Input(cut.c_str())).Status(), BRINDLE_READ_FAILED);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(InputTest, AnAddressLeadsToAllThatHoldsItsByte) {
    const std::string path = Sample("arm-c-dwarf4-O0.elf");
    const ReadModel model(mReader, Input(path.c_str()));
    auto word = Sized<brindle_place>();
    ASSERT_EQ(brindle_model_resolve_path(model.Handle(), "motors[1].serial.all", 0, &word),
              BRINDLE_OK);
    std::vector<std::string> paths;
    auto place = Sized<brindle_place>();
    std::uint64_t offset = 0;
    std::array<char, 64> text = {};
    while (brindle_model_find_address(model.Handle(), word.address + 3, paths.size(), &place,
                                      &offset, text.data(), text.size(), nullptr) == BRINDLE_OK) {
        EXPECT_EQ(place.address + offset, word.address + 3);
        EXPECT_EQ(place.candidates, 3U);
        paths.emplace_back(text.data());
    }
    EXPECT_THAT(paths, testing::UnorderedElementsAre("motors[1].serial.all",
                                                     "motors[1].serial.halves.second",
                                                     "motors[1].serial.bytes[3]"));
    EXPECT_EQ(brindle_model_find_address(model.Handle(), 1, 0, &place, &offset, text.data(),
                                         text.size(), nullptr),
              BRINDLE_NOT_FOUND);
}

TEST_F(InputTest, RowsAreTheLeavesOfAWalk) {
    const std::string path = Sample("arm-cpp-dwarf4-O0.elf");
    const ReadModel model(mReader, Input(path.c_str()));
    const std::vector<std::string> visited = VisitedLeaves(model.Handle());
    ASSERT_THAT(visited, SizeIs(Gt(50U)));
    auto choice = Sized<brindle_row_choice>();
    for (const std::size_t wanted : {0U, 1U, 20U}) {
        EXPECT_THAT(Rows(model.Handle(), choice, wanted), ElementsAreArray(visited)) << wanted;
    }
    // Two variables, the later one first.
    std::array<brindle_id, 2> globals = {};
    brindle_model_next_of_kind(model.Handle(), BRINDLE_KIND_GLOBAL, 0, &globals[1]);
    brindle_model_next_of_kind(model.Handle(), BRINDLE_KIND_GLOBAL, globals[1], globals.data());
    choice.globals = globals.data();
    choice.global_count = globals.size();
    choice.variables = 1;
    const std::vector<std::string> rows = Rows(model.Handle(), choice, 0);
    ASSERT_THAT(rows, SizeIs(2));
    EXPECT_THAT(rows.front(), testing::HasSubstr(" " + std::to_string(globals[0]) + " "));

    brindle_rows none = nullptr;
    globals[1] = 1;
    EXPECT_EQ(brindle_rows_create(model.Handle(), &choice, &none), BRINDLE_NOT_FOUND);
    EXPECT_EQ(none, nullptr);
}

TEST_F(InputTest, RowsTellWhatTheyLeaveOutAndOutliveTheModelsHandle) {
    const std::string path = Sample("arm-c-dwarf4-O0.elf");
    brindle_rows rows = nullptr;
    {
        const ReadModel model(mReader, Input(path.c_str()));
        auto choice = Sized<brindle_row_choice>();
        choice.leaves = 10;
        ASSERT_EQ(brindle_rows_create(model.Handle(), &choice, &rows), BRINDLE_OK);
    }
    auto block = Sized<brindle_row_block>();
    EXPECT_EQ(brindle_rows_next(rows, 0, &block), BRINDLE_OK);
    EXPECT_EQ(block.count, 10U);
    EXPECT_EQ(brindle_rows_next(rows, 0, &block), BRINDLE_NOT_FOUND);
    EXPECT_EQ(block.count, 0U);
    auto cuts = Sized<brindle_leaf_cuts>();
    EXPECT_EQ(brindle_rows_cuts(rows, &cuts), BRINDLE_OK);
    EXPECT_NE(cuts.is_exhausted, 0);
    EXPECT_EQ(brindle_rows_destroy(rows), BRINDLE_OK);
    EXPECT_EQ(brindle_rows_next(rows, 0, &block), BRINDLE_INVALID_HANDLE);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
