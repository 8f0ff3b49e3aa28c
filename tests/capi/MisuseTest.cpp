// Wrong calls of the C interface: each returns a status, none does harm.
#include "Interface.h"

#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <array>
#include <bit>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <type_traits>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace Reader::DWARF;
using testing::ElementsAre;

brindle_bool IgnoreLeaf(void* /*user*/, const brindle_text* /*path*/,
                        const brindle_place* /*place*/) {
    return 1;
}

std::array<char, 256> gText;
/// Whether the latest call that returns a number set it to 0.
bool (*gIsZero)() = nullptr;

/// The place for a call's result.
template <typename Value>
Value* Into() {
    static Value sValue = {};
    if constexpr (std::is_class_v<Value>) {
        sValue = Sized<Value>();
        gIsZero = [] { return true; };
    } else {
        sValue = 77;
        gIsZero = [] { return sValue == 0; };
    }
    return &sValue;
}

struct ReaderCall {
    std::function<brindle_status(brindle_reader)> call;
    const char* name;
};

#define READER_CALL(function, ...)                                                                 \
    ReaderCall {                                                                                   \
        [](brindle_reader reader) {                                                                \
            return brindle_reader_##function(reader __VA_OPT__(, ) __VA_ARGS__);                   \
        },                                                                                         \
            #function                                                                              \
    }

std::vector<ReaderCall> ReaderCalls() {
    static const auto sFactory = Sized<brindle_factory>();
    static auto sInput = Sized<brindle_input>();
    sInput.path = "none";
    static brindle_model sModel = nullptr;
    const auto read = [](brindle_reader reader) {
        auto* model = std::bit_cast<brindle_model>(std::uintptr_t{1});
        const brindle_status status =
            brindle_reader_read(reader, "none", BRINDLE_CONTAINER_ELF, &model);
        EXPECT_EQ(model, nullptr);
        return status;
    };
    return {{read, "read"},
            READER_CALL(last_status),
            READER_CALL(error_text, gText.data(), gText.size(), nullptr),
            READER_CALL(set_language, 1),
            READER_CALL(set_read_all_types, 1),
            READER_CALL(set_callbacks, nullptr),
            READER_CALL(deliver, "none", BRINDLE_CONTAINER_ELF, &sFactory),
            READER_CALL(read_input, &sInput, &sModel),
            READER_CALL(deliver_input, &sInput, &sFactory),
            READER_CALL(remark_at, 0, nullptr, nullptr, 0, nullptr),
            READER_CALL(cancel)};
}

/// A query to a model, with the identifier of an object if it is about one.
struct ModelCall {
    std::function<brindle_status(brindle_model, brindle_id)> call;
    const char* name;

    brindle_status operator()(brindle_model model, brindle_id id) const {
        gIsZero = [] { return true; };
        const brindle_status status = call(model, id);
        EXPECT_TRUE(status == BRINDLE_OK || gIsZero()) << name;
        return status;
    }
};

#define MODEL_CALL(function, ...)                                                                  \
    ModelCall {                                                                                    \
        [](brindle_model model, [[maybe_unused]] brindle_id id) {                                  \
            return brindle_model_##function(model, __VA_ARGS__);                                   \
        },                                                                                         \
            #function                                                                              \
    }

/// The queries about one object; queries about lists ask for the first item.
std::vector<ModelCall> ObjectCalls() {
    return {MODEL_CALL(object, id, Into<brindle_object>()),
            MODEL_CALL(first_in, id, Into<brindle_id>()),
            MODEL_CALL(next_in, id, Into<brindle_id>()),
            MODEL_CALL(base_class, id, 0, Into<brindle_base_class>()),
            MODEL_CALL(enumerator, id, 0, Into<brindle_enumerator>()),
            MODEL_CALL(dimension, id, 0, Into<std::uint32_t>()),
            MODEL_CALL(parameter, id, 0, Into<brindle_id>()),
            MODEL_CALL(size_of, id, Into<std::uint64_t>()),
            MODEL_CALL(element_stride, id, Into<std::uint64_t>()),
            MODEL_CALL(without_typedefs, id, Into<brindle_id>()),
            MODEL_CALL(compile_unit_of, id, Into<brindle_id>()),
            MODEL_CALL(qualified_name, id, gText.data(), gText.size(), nullptr),
            MODEL_CALL(type_text, id, gText.data(), gText.size(), nullptr)};
}

/// All other queries.
std::vector<ModelCall> WholeModelCalls() {
    const auto rows = [](brindle_model model, brindle_id /*id*/) {
        brindle_rows walk = nullptr;
        const brindle_status status = brindle_rows_create(model, nullptr, &walk);
        brindle_rows_destroy(walk);
        return status;
    };
    return {{rows, "rows_create"},
            MODEL_CALL(find_address, 0x20000000, 0, Into<brindle_place>(), nullptr, gText.data(),
                       gText.size(), nullptr),
            MODEL_CALL(image, Into<brindle_image>()),
            MODEL_CALL(section, 0, Into<brindle_section>()),
            MODEL_CALL(initial_bytes, 0x20000000, gText.data(), 1),
            MODEL_CALL(object_count, Into<std::uint64_t>()),
            MODEL_CALL(next_of_kind, BRINDLE_KIND_ANY, 0, Into<brindle_id>()),
            MODEL_CALL(find, "speed", BRINDLE_KIND_GLOBAL, 0, Into<brindle_id>()),
            MODEL_CALL(resolve_path, "speed", 0, Into<brindle_place>()),
            MODEL_CALL(path_problem, "speed.x[", nullptr, gText.data(), gText.size(), nullptr),
            MODEL_CALL(visit_leaves, 0, nullptr, IgnoreLeaf, nullptr, Into<brindle_leaf_cuts>())};
}

/// Runs every query on a model and all its objects.
void AskEverything(const CModel& model) {
    const std::uint64_t count = model.ObjectCount();
    ASSERT_GE(count, 1U);
    for (brindle_id id = 0; id <= count + 1; ++id) {
        for (const ModelCall& question : ObjectCalls()) {
            const brindle_status status = question(model, id);
            EXPECT_TRUE(status == BRINDLE_OK || status == BRINDLE_NOT_FOUND ||
                        status == BRINDLE_BUFFER_TOO_SMALL)
                << question.name << " of " << id << ": " << status;
        }
    }
    for (const ModelCall& question : WholeModelCalls()) {
        const brindle_status status = question(model, 0);
        EXPECT_TRUE(status == BRINDLE_OK || status == BRINDLE_NOT_FOUND) << question.name;
    }
}

class MisuseTest : public testing::Test {
protected:
    /// An image with the variable `speed` in debug information and symbol table.
    static ElfImage Image() {
        const DieLabel number;
        return ElfImage().Symbol({"speed", 0x20000000, 4}) +
               Unit({Int(number), Variable("speed", number, 0x20000000)});
    }

    TemporaryFolder mFolder;
    std::string mPath = mFolder.Write("image.elf", Image().Build());
};

TEST_F(MisuseTest, HandlesThatAreNoneOrNoLongerAreRefused) {
    brindle_reader stale = nullptr;
    ASSERT_EQ(brindle_reader_create(&stale), BRINDLE_OK);
    brindle_model staleModel = nullptr;
    ASSERT_EQ(brindle_reader_read(stale, mPath.c_str(), BRINDLE_CONTAINER_ELF, &staleModel),
              BRINDLE_OK);
    const CModel other(stale, mPath);
    EXPECT_EQ(brindle_reader_destroy(stale), BRINDLE_OK);
    EXPECT_EQ(brindle_reader_destroy(stale), BRINDLE_INVALID_HANDLE);
    EXPECT_EQ(other.Variables(), std::vector<std::string>{"speed"}) << "models outlive readers";
    EXPECT_EQ(brindle_model_destroy(staleModel), BRINDLE_OK);
    EXPECT_EQ(brindle_model_destroy(staleModel), BRINDLE_INVALID_HANDLE);
    // New handles must differ from those of old objects.
    const CReader reader;
    const CModel model(reader, mPath);

    const auto address = std::bit_cast<std::uintptr_t>(&stale);
    const std::array notGivenOut = {std::uintptr_t{0}, address,
                                    std::numeric_limits<std::uintptr_t>::max()};
    for (const ReaderCall& call : ReaderCalls()) {
        for (const std::uintptr_t number : notGivenOut) {
            EXPECT_EQ(call.call(std::bit_cast<brindle_reader>(number)), BRINDLE_INVALID_HANDLE)
                << call.name;
        }
        EXPECT_EQ(call.call(stale), BRINDLE_INVALID_HANDLE) << call.name;
        EXPECT_EQ(call.call(std::bit_cast<brindle_reader>(static_cast<brindle_model>(model))),
                  BRINDLE_INVALID_HANDLE)
            << call.name << ": a model is no reader";
    }
    std::vector<ModelCall> modelCalls = ObjectCalls();
    std::ranges::copy(WholeModelCalls(), std::back_inserter(modelCalls));
    for (const ModelCall& call : modelCalls) {
        for (const std::uintptr_t number : notGivenOut) {
            EXPECT_EQ(call(std::bit_cast<brindle_model>(number), 1), BRINDLE_INVALID_HANDLE)
                << call.name;
        }
        EXPECT_EQ(call(staleModel, 1), BRINDLE_INVALID_HANDLE) << call.name;
        EXPECT_EQ(call(std::bit_cast<brindle_model>(static_cast<brindle_reader>(reader)), 1),
                  BRINDLE_INVALID_HANDLE)
            << call.name << ": a reader is no model";
    }
    EXPECT_EQ(brindle_reader_destroy(nullptr), BRINDLE_OK);
    EXPECT_EQ(brindle_model_destroy(nullptr), BRINDLE_OK);
}

TEST_F(MisuseTest, ObjectsThatDoNotExistAreNotFound) {
    const CReader reader;
    const CModel model(reader, mPath);
    ASSERT_EQ(model.Status(), BRINDLE_OK);
    const std::uint64_t count = model.ObjectCount();
    for (const ModelCall& call : ObjectCalls()) {
        for (const brindle_id id : {brindle_id{0}, count + 1, brindle_id{1} << 32U,
                                    std::numeric_limits<brindle_id>::max()}) {
            EXPECT_EQ(call(model, id), BRINDLE_NOT_FOUND) << call.name << " of " << id;
        }
    }
    brindle_id next = 5;
    EXPECT_EQ(brindle_model_next_of_kind(model, BRINDLE_KIND_ANY,
                                         std::numeric_limits<brindle_id>::max(), &next),
              BRINDLE_NOT_FOUND);
    EXPECT_EQ(next, 0U);
    EXPECT_EQ(brindle_model_visit_leaves(model, 1, nullptr, IgnoreLeaf, nullptr, nullptr),
              BRINDLE_NOT_FOUND)
        << "a namespace is no variable";
}

TEST_F(MisuseTest, NullAndNumbersWithoutMeaningAreRefused) {
    const CReader reader;
    const CModel model(reader, mPath);
    const auto factory = Sized<brindle_factory>();
    brindle_model read = nullptr;
    brindle_container container = 0;
    brindle_id id = 0;
    auto place = Sized<brindle_place>();
    const std::vector<std::pair<const char*, brindle_status>> calls = {
        {"create", brindle_reader_create(nullptr)},
        {"detect", brindle_detect_container(nullptr, &container)},
        {"detect into", brindle_detect_container(mPath.c_str(), nullptr)},
        {"option set", brindle_option_set(nullptr, "1")},
        {"option value", brindle_option_set("mIsLogFile", nullptr)},
        {"option get", brindle_option_get(nullptr, nullptr, 0, nullptr)},
        {"option text", brindle_option_get("mIsLogFile", nullptr, 0, nullptr)},
        {"option at", brindle_option_at(0, nullptr)},
        {"read path", brindle_reader_read(reader, nullptr, BRINDLE_CONTAINER_AUTO, &read)},
        {"read into", brindle_reader_read(reader, mPath.c_str(), BRINDLE_CONTAINER_ELF, nullptr)},
        {"read container", brindle_reader_read(reader, mPath.c_str(), 3, &read)},
        {"deliver path", brindle_reader_deliver(reader, nullptr, 0, &factory)},
        {"deliver to", brindle_reader_deliver(reader, mPath.c_str(), 0, nullptr)},
        {"count", brindle_model_object_count(model, nullptr)},
        {"object", brindle_model_object(model, 1, nullptr)},
        {"kind", brindle_model_next_of_kind(model, 23, 0, &id)},
        {"negative kind", brindle_model_next_of_kind(model, -1, 0, &id)},
        {"next", brindle_model_next_of_kind(model, BRINDLE_KIND_ANY, 0, nullptr)},
        {"text", brindle_model_qualified_name(model, 1, nullptr, 9, nullptr)},
        {"find", brindle_model_find(model, nullptr, BRINDLE_KIND_ANY, 0, &id)},
        {"find kind", brindle_model_find(model, "speed", 99, 0, &id)},
        {"find into", brindle_model_find(model, "speed", BRINDLE_KIND_ANY, 0, nullptr)},
        {"path", brindle_model_resolve_path(model, nullptr, 0, &place)},
        {"place", brindle_model_resolve_path(model, "speed", 0, nullptr)},
        {"problem", brindle_model_path_problem(model, nullptr, nullptr, nullptr, 0, nullptr)},
        {"visitor", brindle_model_visit_leaves(model, 0, nullptr, nullptr, nullptr, nullptr)},
    };
    for (const auto& [name, status] : calls) {
        EXPECT_EQ(status, BRINDLE_INVALID_ARGUMENT) << name;
    }
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(brindle_reader_last_status(reader), BRINDLE_INVALID_ARGUMENT);
    EXPECT_EQ(reader.ErrorText(), "the factory is null or has no size");
}

TEST_F(MisuseTest, StructuresAreFilledAsFarAsTheHostKnowsThem) {
    const CReader reader;
    const CModel model(reader, mPath);
    const brindle_id speed = model.Find("speed", BRINDLE_KIND_GLOBAL);

    brindle_object unsized = {};
    EXPECT_EQ(brindle_model_object(model, speed, &unsized), BRINDLE_INVALID_ARGUMENT);
    unsized.struct_size = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(brindle_model_object(model, speed, &unsized), BRINDLE_INVALID_ARGUMENT);

    // A host that was compiled when the structure ended before its name.
    auto older = Sized<brindle_object>();
    older.struct_size = offsetof(brindle_object, name);
    older.address = 0x1234;
    EXPECT_EQ(brindle_model_object(model, speed, &older), BRINDLE_OK);
    EXPECT_EQ(older.kind, BRINDLE_KIND_GLOBAL);
    EXPECT_EQ(older.name.data, nullptr);
    EXPECT_EQ(older.address, 0x1234U);

    // A host that knows members of a later version.
    struct {
        brindle_object known;
        std::uint64_t later;
        std::uint64_t behind;
    } newer = {{}, 1, 2};
    newer.known.struct_size = sizeof newer.known + sizeof newer.later;
    EXPECT_EQ(brindle_model_object(model, speed, &newer.known), BRINDLE_OK);
    EXPECT_EQ(View(newer.known.name), "speed");
    EXPECT_EQ(newer.known.address, 0x20000000U);
    EXPECT_EQ(newer.later, 0U);
    EXPECT_EQ(newer.behind, 2U);

    // Input is read only up to its size: the bytes after it must not be called.
    auto callbacks = Sized<brindle_callbacks>();
    callbacks.struct_size = offsetof(brindle_callbacks, SetProgressText);
    callbacks.SetProgressText = [](void*, const char*) { ADD_FAILURE(); };
    EXPECT_EQ(brindle_reader_set_callbacks(reader, &callbacks), BRINDLE_OK);
    EXPECT_EQ(CModel(reader, mPath).Status(), BRINDLE_OK);
}

TEST_F(MisuseTest, TextsAreCutBetweenCharactersAndTellTheirLength) {
    const std::string path =
        mFolder.Write("umlaut.elf", ElfImage().Symbol({"größe", 0x1000, 4}).Build());
    const CReader reader;
    const CModel model(reader, path);
    brindle_id id = 0;
    ASSERT_EQ(brindle_model_next_of_kind(model, BRINDLE_KIND_GLOBAL, 0, &id), BRINDLE_OK);
    const std::string whole = "_Symbol_Table_BKR_::größe";
    const std::size_t start = whole.find("gr");

    std::size_t length = 0;
    EXPECT_EQ(brindle_model_qualified_name(model, id, nullptr, 0, &length), BRINDLE_OK);
    EXPECT_EQ(length, whole.size());
    std::array<char, 64> buffer = {};
    EXPECT_EQ(brindle_model_qualified_name(model, id, buffer.data(), length + 1, nullptr),
              BRINDLE_OK);
    EXPECT_EQ(buffer.data(), whole);
    // Space for half of "ö".
    EXPECT_EQ(brindle_model_qualified_name(model, id, buffer.data(), start + 4, &length),
              BRINDLE_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer.data(), whole.substr(0, start + 2));
    EXPECT_EQ(length, whole.size());
    buffer[0] = 'x';
    EXPECT_EQ(brindle_model_qualified_name(model, id, buffer.data(), 0, nullptr),
              BRINDLE_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(brindle_model_qualified_name(model, 0, buffer.data(), buffer.size(), &length),
              BRINDLE_NOT_FOUND);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(length, 0U);
}

TEST_F(MisuseTest, WhatAFailedReadLeftCanBeAsked) {
    const CReader reader;
    const CModel none(reader, mFolder.Path("missing.elf"));
    EXPECT_EQ(none.Status(), BRINDLE_READ_FAILED);
    EXPECT_EQ(brindle_reader_last_status(reader), BRINDLE_READ_FAILED);
    EXPECT_EQ(reader.ErrorText(), "ELF file Open has failed.");
    EXPECT_EQ(none.ObjectCount(), 1U);
    AskEverything(none);

    // The debug information is delivered before the missing name table is noticed.
    const CModel half(reader, mFolder.Write("half.elf", Image().WithoutStringTable().Build()));
    EXPECT_EQ(half.Status(), BRINDLE_READ_FAILED);
    EXPECT_THAT(half.Variables(), ElementsAre("speed"));
    AskEverything(half);
}

TEST_F(MisuseTest, DamagedFilesLeaveModelsThatCanBeAsked) {
    const std::string image = Image().Build();
    const CReader reader;
    for (std::size_t size = 0; size < image.size(); size += 7) {
        const CModel cut(reader, mFolder.Write("cut.elf", image.substr(0, size)));
        AskEverything(cut);
        std::string changed = image;
        changed[size] = static_cast<char>(changed[size] ^ 0x15);
        const CModel damaged(reader, mFolder.Write("damaged.elf", changed));
        AskEverything(damaged);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
