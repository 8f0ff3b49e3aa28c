// Wrong calls of the C interface: each is told by its status, none does harm.
#include "Interface.h"

#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <array>
#include <bit>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <type_traits>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace Reader::DWARF;
using testing::ElementsAre;

brindle_bool IgnoreLeaf(void* /*user*/, const brindle_text* /*path*/,
                        const brindle_place* /*place*/) {
    return 1;
}

struct ReaderCall {
    const char* name;
    std::function<brindle_status(brindle_reader)> call;
};

std::vector<ReaderCall> ReaderCalls() {
    return {
        {"last_status", brindle_reader_last_status},
        {"error_text",
         [](brindle_reader reader) {
             std::array<char, 8> text = {};
             return brindle_reader_error_text(reader, text.data(), text.size(), nullptr);
         }},
        {"set_language",
         [](brindle_reader reader) { return brindle_reader_set_language(reader, 1); }},
        {"set_read_all_types",
         [](brindle_reader reader) { return brindle_reader_set_read_all_types(reader, 1); }},
        {"set_callbacks",
         [](brindle_reader reader) { return brindle_reader_set_callbacks(reader, nullptr); }},
        {"read",
         [](brindle_reader reader) {
             auto* model = std::bit_cast<brindle_model>(std::uintptr_t{1});
             const brindle_status status =
                 brindle_reader_read(reader, "none", BRINDLE_CONTAINER_ELF, &model);
             EXPECT_EQ(model, nullptr);
             return status;
         }},
        {"deliver",
         [](brindle_reader reader) {
             const auto factory = Sized<brindle_factory>();
             return brindle_reader_deliver(reader, "none", BRINDLE_CONTAINER_ELF, &factory);
         }},
        {"remark_at",
         [](brindle_reader reader) {
             return brindle_reader_remark_at(reader, 0, nullptr, nullptr, 0, nullptr);
         }},
        {"cancel", brindle_reader_cancel},
    };
}

/// A question to a model, about an object of an identifier where it is about one.
struct ModelCall {
    const char* name;
    std::function<brindle_status(brindle_model, brindle_id)> call;
};

template <typename Value>
ModelCall Asks(const char* name,
               std::function<brindle_status(brindle_model, brindle_id, Value*)> function) {
    return {name, [function](brindle_model model, brindle_id id) {
                if constexpr (std::is_class_v<Value>) {
                    auto structure = Sized<Value>();
                    return function(model, id, &structure);
                } else {
                    Value value = 77;
                    const brindle_status status = function(model, id, &value);
                    EXPECT_TRUE(status == BRINDLE_OK || value == 0);
                    return status;
                }
            }};
}

template <typename Value>
ModelCall AsksFirst(const char* name,
                    brindle_status (*function)(brindle_model, brindle_id, std::size_t, Value*)) {
    return Asks<Value>(name, [function](brindle_model model, brindle_id id, Value* value) {
        return function(model, id, 0, value);
    });
}

ModelCall AsksText(const char* name, brindle_status (*function)(brindle_model, brindle_id, char*,
                                                                std::size_t, std::size_t*)) {
    return {name, [function](brindle_model model, brindle_id id) {
                std::array<char, 256> text = {};
                std::size_t length = 0;
                return function(model, id, text.data(), text.size(), &length);
            }};
}

/// The questions about one object, for its first list item where it is about lists.
std::vector<ModelCall> ObjectCalls() {
    return {
        Asks<brindle_object>("object", brindle_model_object),
        Asks<brindle_id>("first_in", brindle_model_first_in),
        Asks<brindle_id>("next_in", brindle_model_next_in),
        AsksFirst<brindle_base_class>("base_class", brindle_model_base_class),
        AsksFirst<brindle_enumerator>("enumerator", brindle_model_enumerator),
        AsksFirst<std::uint32_t>("dimension", brindle_model_dimension),
        AsksFirst<brindle_id>("parameter", brindle_model_parameter),
        Asks<std::uint64_t>("size_of", brindle_model_size_of),
        Asks<std::uint64_t>("element_stride", brindle_model_element_stride),
        Asks<brindle_id>("without_typedefs", brindle_model_without_typedefs),
        Asks<brindle_id>("compile_unit_of", brindle_model_compile_unit_of),
        AsksText("qualified_name", brindle_model_qualified_name),
        AsksText("type_text", brindle_model_type_text),
    };
}

/// All other questions.
std::vector<ModelCall> WholeModelCalls() {
    return {
        {"object_count",
         [](brindle_model model, brindle_id /*id*/) {
             std::uint64_t count = 0;
             return brindle_model_object_count(model, &count);
         }},
        {"next_of_kind",
         [](brindle_model model, brindle_id /*id*/) {
             brindle_id next = 0;
             return brindle_model_next_of_kind(model, BRINDLE_KIND_ANY, 0, &next);
         }},
        {"find",
         [](brindle_model model, brindle_id /*id*/) {
             brindle_id found = 0;
             return brindle_model_find(model, "speed", BRINDLE_KIND_GLOBAL, 0, &found);
         }},
        {"resolve_path",
         [](brindle_model model, brindle_id /*id*/) {
             auto place = Sized<brindle_place>();
             return brindle_model_resolve_path(model, "speed", 0, &place);
         }},
        {"path_problem",
         [](brindle_model model, brindle_id /*id*/) {
             std::size_t length = 0;
             return brindle_model_path_problem(model, "speed.x[", nullptr, nullptr, 0, &length);
         }},
        {"visit_leaves",
         [](brindle_model model, brindle_id /*id*/) {
             auto cuts = Sized<brindle_leaf_cuts>();
             return brindle_model_visit_leaves(model, 0, nullptr, IgnoreLeaf, nullptr, &cuts);
         }},
    };
}

/// Asks everything of a model and all its objects.
void AskEverything(const CModel& model) {
    const std::uint64_t count = model.ObjectCount();
    ASSERT_GE(count, 1U);
    for (brindle_id id = 0; id <= count + 1; ++id) {
        for (const ModelCall& question : ObjectCalls()) {
            const brindle_status status = question.call(model, id);
            EXPECT_TRUE(status == BRINDLE_OK || status == BRINDLE_NOT_FOUND ||
                        status == BRINDLE_BUFFER_TOO_SMALL)
                << question.name << " of " << id << ": " << status;
        }
    }
    for (const ModelCall& question : WholeModelCalls()) {
        const brindle_status status = question.call(model, 0);
        EXPECT_TRUE(status == BRINDLE_OK || status == BRINDLE_NOT_FOUND) << question.name;
    }
}

class MisuseTest : public testing::Test {
protected:
    /// An image with the variable `speed` in debug information and symbol table.
    static ElfImage Image() {
        const DieLabel number;
        DwarfSections sections;
        sections.Unit({Die(DW_TAG_compile_unit, {Name("main.c")},
                           {Int(number), Variable("speed", number, 0x20000000)})});
        return ElfImage().Symbol({"speed", 0x20000000, 4}) + sections;
    }

    [[nodiscard]] std::string Path() const { return mPath; }

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
    // New handles must not be those of old objects.
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
    for (const ModelCall& call : WholeModelCalls()) {
        modelCalls.push_back(call);
    }
    for (const ModelCall& call : modelCalls) {
        for (const std::uintptr_t number : notGivenOut) {
            EXPECT_EQ(call.call(std::bit_cast<brindle_model>(number), 1), BRINDLE_INVALID_HANDLE)
                << call.name;
        }
        EXPECT_EQ(call.call(staleModel, 1), BRINDLE_INVALID_HANDLE) << call.name;
        EXPECT_EQ(call.call(std::bit_cast<brindle_model>(static_cast<brindle_reader>(reader)), 1),
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
            EXPECT_EQ(call.call(model, id), BRINDLE_NOT_FOUND) << call.name << " of " << id;
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

    // One that knows members to come.
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

    // What goes in is taken as far as it reaches: behind its end lies what must not be called.
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
    // Room for half of "ö".
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
