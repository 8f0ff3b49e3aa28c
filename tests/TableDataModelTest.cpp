// From the contract of data models to the table of the C interface: each operation reaches the
// function of its name with its arguments in order.
#include "TableDataModel.h"

#include <atomic>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using CInterface::TableDataModel;
using DataModel::BasicTypes;
using DataModel::ObjectId;
using DataModel::Factory::HostDataModel;

/// Arguments as text. A list comes as a pointer and its length.
class ArgumentTexts {
public:
    void Add(const char* text) { mTexts.emplace_back(text); }
    void Add(const std::string& text) { mTexts.push_back(text); }
    void Add(BasicTypes type) { Add(static_cast<std::int32_t>(type)); }
    template <typename Item>
    void Add(const std::vector<Item>& list) {
        std::string text;
        for (const Item item : list) {
            text.append(std::to_string(item)).append(";");
        }
        mTexts.push_back(text);
    }
    void Add(const std::uint64_t* list) { mIdentifiers = list; }
    void Add(const std::uint32_t* list) { mNumbers = list; }
    template <typename Number>
    requires std::is_integral_v<Number>
    void Add(Number number) {
        const auto length = static_cast<std::size_t>(number);
        if (mIdentifiers != nullptr) {
            Add(std::vector<std::uint64_t>(mIdentifiers, mIdentifiers + length));
            mIdentifiers = nullptr;
        } else if (mNumbers != nullptr) {
            Add(std::vector<std::uint32_t>(mNumbers, mNumbers + length));
            mNumbers = nullptr;
        } else {
            mTexts.push_back(std::to_string(number));
        }
    }

    [[nodiscard]] const std::vector<std::string>& Texts() const { return mTexts; }

private:
    std::vector<std::string> mTexts;
    const std::uint64_t* mIdentifiers = nullptr;
    const std::uint32_t* mNumbers = nullptr;
};

/// A value of a parameter's type that no other parameter of the call has, even with two booleans in
/// a row.
template <typename Value>
Value Distinct(int& last) {
    ++last;
    if constexpr (std::is_same_v<Value, std::string>) {
        return "text" + std::to_string(last);
    } else if constexpr (std::is_same_v<Value, bool>) {
        return last % 2 == 0;
    } else if constexpr (std::is_same_v<Value, BasicTypes>) {
        return static_cast<BasicTypes>(last);
    } else if constexpr (std::is_class_v<Value>) {
        return {100, 200, 300};
    } else {
        return static_cast<Value>(-last);
    }
}

/// A function of the table that records its arguments and returns 1.
template <typename Result, typename... Parameters>
Result WriteDown([[maybe_unused]] void* user, Parameters... parameters) {
    (static_cast<ArgumentTexts*>(user)->Add(parameters), ...);
    return static_cast<Result>(1);
}

template <typename Result, typename... Parameters, typename FieldResult, typename... Fields>
void ExpectPassedOn(const char* name, Result (HostDataModel::*operation)(Parameters...),
                    FieldResult (*brindle_factory::*field)(void*, Fields...)) {
    ArgumentTexts received;
    brindle_factory table = {};
    table.user_data = &received;
    table.*field = WriteDown<FieldResult, Fields...>;
    const std::atomic<bool> isCancelled = false;
    TableDataModel model(table, isCancelled);
    [[maybe_unused]] int last = 0;
    // Braces keep the order of the arguments.
    const std::tuple<std::remove_cvref_t<Parameters>...> arguments{
        Distinct<std::remove_cvref_t<Parameters>>(last)...};
    ArgumentTexts given;
    std::apply(
        [&](const auto&... argument) {
            (given.Add(argument), ...);
            EXPECT_EQ((static_cast<HostDataModel&>(model).*operation)(argument...), Result(1))
                << name;
        },
        arguments);
    EXPECT_EQ(received.Texts(), given.Texts()) << name;
    TableDataModel empty(brindle_factory{}, isCancelled);
    std::apply(
        [&](const auto&... argument) {
            EXPECT_EQ((static_cast<HostDataModel&>(empty).*operation)(argument...), Result(0))
                << name << " without function";
        },
        arguments);
}

#define EXPECT_PASSED_ON(operation)                                                                \
    ExpectPassedOn(#operation, &HostDataModel::operation, &brindle_factory::operation)

TEST(TableDataModelTest, EachOperationReachesTheFunctionOfItsName) {
    EXPECT_PASSED_ON(GetGlobalNamespace);
    EXPECT_PASSED_ON(GetNamespace);
    EXPECT_PASSED_ON(CreateNamespace);
    EXPECT_PASSED_ON(GetBlockScope);
    EXPECT_PASSED_ON(CreateBlockScope);
    EXPECT_PASSED_ON(GetCompileUnit);
    EXPECT_PASSED_ON(CreateCompileUnit);
    EXPECT_PASSED_ON(GetOrCreateCompileUnit);
    EXPECT_PASSED_ON(GetBaseEntryType);
    EXPECT_PASSED_ON(CreateBaseEntryType);
    EXPECT_PASSED_ON(GetUnknownEntryType);
    EXPECT_PASSED_ON(CreateUnknownEntryType);
    EXPECT_PASSED_ON(GetClassEntryType);
    EXPECT_PASSED_ON(CreateClassEntryType);
    EXPECT_PASSED_ON(GetUnionEntryType);
    EXPECT_PASSED_ON(CreateUnionEntryType);
    EXPECT_PASSED_ON(AddBaseClass);
    EXPECT_PASSED_ON(CreateMemberData);
    EXPECT_PASSED_ON(CreateUnionMemberData);
    EXPECT_PASSED_ON(CreateMemberStaticData);
    EXPECT_PASSED_ON(CreateBitfieldInUdt);
    EXPECT_PASSED_ON(CreateArrayEntryType);
    EXPECT_PASSED_ON(CreatePointerEntryType);
    EXPECT_PASSED_ON(GetEnumTable);
    EXPECT_PASSED_ON(CreateEnumTable);
    EXPECT_PASSED_ON(AddEnumDescriptionToEnumTable);
    EXPECT_PASSED_ON(AddWideEnumDescriptionToEnumTable);
    EXPECT_PASSED_ON(GetTypedefEntryType);
    EXPECT_PASSED_ON(CreateTypedefEntryType);
    EXPECT_PASSED_ON(GetGlobalDataByAddress);
    EXPECT_PASSED_ON(CreateGlobalData);
    EXPECT_PASSED_ON(GetFunction);
    EXPECT_PASSED_ON(GetFunctionType);
    EXPECT_PASSED_ON(CreateFunctionType);
    EXPECT_PASSED_ON(GetOldBitfieldEntryType);
    EXPECT_PASSED_ON(CreateOldBitfieldEntryType);
    EXPECT_PASSED_ON(GetSectionEntryType);
    EXPECT_PASSED_ON(CreateSectionEntryType);
    EXPECT_PASSED_ON(GetSegment);
    EXPECT_PASSED_ON(CreateSegment);
    using Text = const std::string&;
    ExpectPassedOn<ObjectId, Text, ObjectId>("GetGlobalData", &HostDataModel::GetGlobalData,
                                             &brindle_factory::GetGlobalData);
    ExpectPassedOn<ObjectId, Text>("GetGlobalDataByName", &HostDataModel::GetGlobalData,
                                   &brindle_factory::GetGlobalDataByName);
    ExpectPassedOn<ObjectId, Text, ObjectId, ObjectId, ObjectId, bool>(
        "CreateFunction", &HostDataModel::CreateFunction, &brindle_factory::CreateFunction);
    ExpectPassedOn<ObjectId, Text, ObjectId, bool>("CreateFunctionWithoutScope",
                                                   &HostDataModel::CreateFunction,
                                                   &brindle_factory::CreateFunctionWithoutScope);

    static bool sIsTransformed = false;
    brindle_factory table = {};
    table.SetTransformed = [](void*, brindle_bool isTransformed) {
        sIsTransformed = isTransformed != 0;
    };
    const std::atomic<bool> isCancelled = false;
    TableDataModel(table, isCancelled).SetTransformed(true);
    EXPECT_TRUE(sIsTransformed);
    TableDataModel(brindle_factory{}, isCancelled).SetTransformed(true);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
