// What the C interface returns about finished models and the library.
#include "Interface.h"

#include "support/ElfImage.h"
#include "support/MatchesPattern.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace Reader::DWARF;
using testing::ElementsAre;
using testing::Pair;

// Hosts are compiled against these layouts, whatever the library becomes.
static_assert(sizeof(void*) != 8 ||
              (sizeof(brindle_text) == 16 && sizeof(brindle_option) == 48 &&
               sizeof(brindle_callbacks) == 48 && sizeof(brindle_factory) == 376 &&
               sizeof(brindle_object) == 112 && sizeof(brindle_base_class) == 24 &&
               sizeof(brindle_enumerator) == 40 && sizeof(brindle_place) == 72 &&
               sizeof(brindle_leaf_limits) == 24 && sizeof(brindle_leaf_cuts) == 32 &&
               sizeof(brindle_input) == 56 && sizeof(brindle_row_choice) == 48 &&
               sizeof(brindle_row_block) == 88 && sizeof(brindle_image) == 80 &&
               sizeof(brindle_section) == 64));

class QueriesTest : public testing::Test {
protected:
    /// One unit:
    ///   struct Base { int id; };
    ///   struct Motor : Base { uint low : 3, high : 5; int pid[2][3]; Mode mode; };   (in "plant")
    ///   Motor motors[2]; static int count;
    /// and a second unit with a `count` of its own.
    static std::string Image() {
        const DieLabel number, base, motor, mode, pid, motors, otherNumber;
        DwarfSections sections;
        sections.Unit(
            {Die(DW_TAG_compile_unit, {Name("motor.cpp")},
                 {Int(number),
                  Die(pid, DW_TAG_array_type, {Type(number)},
                      {Die(DW_TAG_subrange_type, {UpperBound(1)}),
                       Die(DW_TAG_subrange_type, {UpperBound(2)})}),
                  Die(DW_TAG_namespace, {Name("plant")},
                      {Struct(base, "Base", 4, {Member("id", number, 0)}),
                       Die(mode, DW_TAG_enumeration_type, {Name("Mode"), ByteSize(4)},
                           {Die(DW_TAG_enumerator, {Name("Off"), ConstValue(0)}),
                            Die(DW_TAG_enumerator, {Name("On"), ConstValue(-7)})}),
                       Struct(motor, "Motor", 40,
                              {Die(DW_TAG_inheritance, {Type(base), MemberOffset(0)}),
                               Die(DW_TAG_member, {Name("low"), Type(number), ByteSize(4),
                                                   BitSize(3), BitOffset(29), MemberOffset(4)}),
                               Member("pid", pid, 8), Member("mode", mode, 32)})}),
                  Die(motors, DW_TAG_array_type, {Type(motor)},
                      {Die(DW_TAG_subrange_type, {UpperBound(1)})}),
                  Variable("motors", motors, 0x1000),
                  Die(DW_TAG_variable, {Name("count"), Type(number), Address(0x2000)})})});
        sections.Unit(
            {Die(DW_TAG_compile_unit, {Name("pump.cpp")},
                 {Int(otherNumber),
                  Die(DW_TAG_variable, {Name("count"), Type(otherNumber), Address(0x3000)})})});
        return (ElfImage().Symbol({"motors", 0x1000, 80}) + sections).Build();
    }

    [[nodiscard]] brindle_object Object(brindle_id id) const {
        auto object = Sized<brindle_object>();
        EXPECT_EQ(brindle_model_object(mModel, id, &object), BRINDLE_OK);
        return object;
    }

    [[nodiscard]] std::string TypeText(brindle_id type) const {
        std::array<char, 64> text = {};
        EXPECT_EQ(brindle_model_type_text(mModel, type, text.data(), text.size(), nullptr),
                  BRINDLE_OK);
        return text.data();
    }

    TemporaryFolder mFolder;
    CReader mReader;
    CModel mModel{mReader, mFolder.Write("image.elf", Image())};
};

TEST_F(QueriesTest, ObjectsTellWhatTheyAre) {
    ASSERT_EQ(mModel.Status(), BRINDLE_OK);
    const brindle_object motor = Object(mModel.Find("plant::Motor"));
    EXPECT_EQ(motor.kind, BRINDLE_KIND_STRUCT);
    EXPECT_EQ(View(motor.name), "Motor");
    EXPECT_EQ(motor.size, 40U);
    EXPECT_EQ(motor.anonymous, 0);
    EXPECT_EQ(Object(motor.scope).kind, BRINDLE_KIND_NAMESPACE);

    ASSERT_EQ(motor.list_length, 1U);
    auto base = Sized<brindle_base_class>();
    EXPECT_EQ(brindle_model_base_class(mModel, motor.id, 0, &base), BRINDLE_OK);
    EXPECT_EQ(base.type, mModel.Find("::plant::Base"));
    EXPECT_EQ(base.offset, 0U);
    EXPECT_EQ(brindle_model_base_class(mModel, motor.id, 1, &base), BRINDLE_NOT_FOUND);

    std::vector<std::pair<std::string, std::uint32_t>> members;
    brindle_id id = 0;
    brindle_model_first_in(mModel, motor.id, &id);
    for (; id != 0; brindle_model_next_in(mModel, id, &id)) {
        members.emplace_back(View(Object(id).name), Object(id).offset);
    }
    EXPECT_THAT(members, ElementsAre(Pair("low", 4U), Pair("pid", 8U), Pair("mode", 32U)));

    const brindle_object low = Object(mModel.Find("plant::Motor::low"));
    EXPECT_EQ(low.kind, BRINDLE_KIND_BIT_FIELD);
    EXPECT_EQ(low.bit_offset, 0U);
    EXPECT_EQ(low.bit_size, 3U);

    const brindle_object pid = Object(Object(mModel.Find("plant::Motor::pid")).type);
    EXPECT_EQ(pid.kind, BRINDLE_KIND_ARRAY);
    EXPECT_EQ(pid.list_length, 2U);
    std::uint32_t elements = 0;
    EXPECT_EQ(brindle_model_dimension(mModel, pid.id, 1, &elements), BRINDLE_OK);
    EXPECT_EQ(elements, 3U);
    std::uint64_t stride = 0;
    EXPECT_EQ(brindle_model_element_stride(mModel, pid.id, &stride), BRINDLE_OK);
    EXPECT_EQ(stride, 4U);
    EXPECT_EQ(Object(pid.type).basic_type, BRINDLE_BASIC_INT32);
    EXPECT_EQ(TypeText(pid.id), "int32[2][3]");

    const brindle_object mode = Object(mModel.Find("plant::Mode"));
    ASSERT_EQ(mode.list_length, 2U);
    auto on = Sized<brindle_enumerator>();
    EXPECT_EQ(brindle_model_enumerator(mModel, mode.id, 1, &on), BRINDLE_OK);
    EXPECT_EQ(View(on.name), "On");
    EXPECT_EQ(on.value, -7);

    const brindle_object motors = Object(mModel.Find("motors", BRINDLE_KIND_GLOBAL));
    EXPECT_EQ(motors.address, 0x1000U);
    std::uint64_t size = 0;
    EXPECT_EQ(brindle_model_size_of(mModel, motors.id, &size), BRINDLE_OK);
    EXPECT_EQ(size, 80U);
}

TEST_F(QueriesTest, PathsLeadToPlacesAndTellOfVariablesOfOneName) {
    auto place = Sized<brindle_place>();
    ASSERT_EQ(brindle_model_resolve_path(mModel, "motors[1].pid[1][2]", 0, &place), BRINDLE_OK);
    EXPECT_EQ(place.address, 0x1000U + 40 + 8 + 4 * 5);
    EXPECT_EQ(place.size, 4U);
    EXPECT_EQ(place.is_bit_field, 0);
    EXPECT_EQ(place.candidates, 1U);
    ASSERT_EQ(brindle_model_resolve_path(mModel, "motors[0].pid[1]", 0, &place), BRINDLE_OK);
    EXPECT_EQ(place.indexed_dimensions, 1U);
    ASSERT_EQ(brindle_model_resolve_path(mModel, "motors[1].low", 0, &place), BRINDLE_OK);
    EXPECT_EQ(place.is_bit_field, 1);
    EXPECT_EQ(place.bit_size, 3U);

    std::vector<std::uint64_t> addresses;
    for (std::size_t index = 0;
         brindle_model_resolve_path(mModel, "count", index, &place) == BRINDLE_OK; ++index) {
        EXPECT_EQ(place.candidates, 2U);
        addresses.push_back(place.address);
    }
    EXPECT_THAT(addresses, ElementsAre(0x2000U, 0x3000U));
    EXPECT_EQ(place.address, 0U) << "a failed question leaves no address behind";

    std::array<char, 64> problem = {};
    std::size_t resolved = 0;
    EXPECT_EQ(brindle_model_path_problem(mModel, "motors[2].low", &resolved, problem.data(),
                                         problem.size(), nullptr),
              BRINDLE_OK);
    EXPECT_EQ(resolved, 6U);
    EXPECT_STREQ(problem.data(), "index 2 is beyond the dimension of 2");
    EXPECT_EQ(brindle_model_path_problem(mModel, "motors[1].low", &resolved, problem.data(),
                                         problem.size(), nullptr),
              BRINDLE_OK);
    EXPECT_STREQ(problem.data(), "");
}

TEST_F(QueriesTest, QualifiedNamesFindAllObjectsOfTheirKind) {
    const brindle_id first = mModel.Find("count", BRINDLE_KIND_GLOBAL);
    brindle_id second = 0;
    ASSERT_EQ(brindle_model_find(mModel, "count", BRINDLE_KIND_ANY, first, &second), BRINDLE_OK);
    EXPECT_EQ(Object(first).address, 0x2000U);
    EXPECT_EQ(Object(second).address, 0x3000U);
    brindle_id third = 0;
    EXPECT_EQ(brindle_model_find(mModel, "count", BRINDLE_KIND_ANY, second, &third),
              BRINDLE_NOT_FOUND);
    brindle_id unit = 0;
    EXPECT_EQ(brindle_model_compile_unit_of(mModel, second, &unit), BRINDLE_OK);
    EXPECT_EQ(View(Object(unit).name), "pump_cpp");
    EXPECT_EQ(mModel.Find("Motor"), 0U) << "a name alone is no qualified name";
    EXPECT_EQ(mModel.Find("plant::Motor", BRINDLE_KIND_UNION), 0U);
    EXPECT_EQ(mModel.Find(""), 0U);
    EXPECT_EQ(mModel.Find("::"), 0U);
    EXPECT_EQ(mModel.Find("plant::Motor::"), 0U);
}

TEST_F(QueriesTest, LeavesAreVisitedUntilTheHostHasEnough) {
    struct Visits {
        std::vector<std::string> paths;
        std::size_t most = 1000;
    };
    const brindle_leaf_visitor visit = [](void* user, const brindle_text* path,
                                          const brindle_place* /*place*/) -> brindle_bool {
        auto& visits = *static_cast<Visits*>(user);
        visits.paths.emplace_back(View(*path));
        return visits.paths.size() < visits.most ? 1 : 0;
    };
    Visits all;
    EXPECT_EQ(brindle_model_visit_leaves(mModel, 0, nullptr, visit, &all, nullptr), BRINDLE_OK);
    EXPECT_EQ(all.paths.size(), 2U * 9 + 2);
    EXPECT_EQ(all.paths.front(), "motors[0].id");

    Visits few{.paths = {}, .most = 3};
    auto limits = Sized<brindle_leaf_limits>();
    limits.array_elements = 1;
    auto cuts = Sized<brindle_leaf_cuts>();
    const brindle_id motors = mModel.Find("motors", BRINDLE_KIND_GLOBAL);
    EXPECT_EQ(brindle_model_visit_leaves(mModel, motors, &limits, visit, &few, &cuts), BRINDLE_OK);
    EXPECT_THAT(few.paths, ElementsAre("motors[0].id", "motors[0].low", "motors[0].pid[0][0]"));
    EXPECT_GT(cuts.arrays, 0U);
    EXPECT_EQ(cuts.is_exhausted, 0);
}

TEST_F(QueriesTest, OptionsAreListedAndKeepWhatIsSet) {
    auto option = Sized<brindle_option>();
    std::size_t count = 0;
    for (; brindle_option_at(count, &option) == BRINDLE_OK; ++count) {
        const std::string name(View(option.name));
        const std::string value = option.type == BRINDLE_OPTION_TEXT      ? "größer :: 1"
                                  : option.type == BRINDLE_OPTION_BOOLEAN ? "true"
                                  : option.type == BRINDLE_OPTION_INTEGER ? "-2147483648"
                                                                          : "4294967295";
        std::array<char, 64> before = {};
        ASSERT_EQ(brindle_option_get(name.c_str(), before.data(), before.size(), nullptr),
                  BRINDLE_OK);
        EXPECT_EQ(brindle_option_set(name.c_str(), value.c_str()), BRINDLE_OK) << name;
        std::array<char, 64> after = {};
        EXPECT_EQ(brindle_option_get(name.c_str(), after.data(), after.size(), nullptr),
                  BRINDLE_OK);
        EXPECT_EQ(after.data(), value) << name;
        if (option.type != BRINDLE_OPTION_TEXT) {
            EXPECT_EQ(brindle_option_set(name.c_str(), "much"), BRINDLE_INVALID_VALUE) << name;
        }
        EXPECT_EQ(brindle_option_set(name.c_str(), before.data()), BRINDLE_OK) << name;
    }
    EXPECT_GT(count, 15U);
    EXPECT_EQ(option.name.size, 0U);
    EXPECT_EQ(brindle_option_set("mISLOGFILE", "1"), BRINDLE_NOT_FOUND);
    EXPECT_EQ(brindle_option_get("mIsLog", nullptr, 0, &count), BRINDLE_NOT_FOUND);
}

TEST_F(QueriesTest, AllTypesComeOnlyWhenAsked) {
    const DieLabel number;
    const DwarfSections sections = Unit({Int(number), Typedef({}, "unused", number)});
    const std::string path =
        mFolder.Write("types.elf", (ElfImage().Symbol({"x", 0x10, 4}) + sections).Build());
    EXPECT_EQ(CModel(mReader, path).Find("unused"), 0U);
    EXPECT_EQ(brindle_reader_set_read_all_types(mReader, 1), BRINDLE_OK);
    EXPECT_NE(CModel(mReader, path).Find("unused", BRINDLE_KIND_TYPEDEF), 0U);
}

TEST_F(QueriesTest, TheLibraryTellsItsVersionsStatusesAndContainers) {
    EXPECT_EQ(brindle_interface_version(), BRINDLE_INTERFACE_VERSION);
    EXPECT_THAT(brindle_version(), MatchesPattern("[0-9]+\\.[0-9]+\\.[0-9]+"));
    EXPECT_STREQ(brindle_status_text(BRINDLE_OK), "no error");
    EXPECT_STREQ(brindle_status_text(-1), brindle_status_text(999));
    const std::array<std::pair<const char*, brindle_container>, 3> starts = {
        {{"\x7F"
          "ELF1",
          BRINDLE_CONTAINER_ELF},
         {"MZ", BRINDLE_CONTAINER_PE},
         {"\xC2", BRINDLE_CONTAINER_COFF}}};
    for (const auto& [start, expected] : starts) {
        brindle_container container = -9;
        EXPECT_EQ(brindle_detect_container(mFolder.Write("start", start).c_str(), &container),
                  BRINDLE_OK);
        EXPECT_EQ(container, expected);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
