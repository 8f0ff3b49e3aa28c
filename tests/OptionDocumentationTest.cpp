#include "core/OptionTable.h"

#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
#include <type_traits>
#include <variant>

namespace Tessel::Norn::Brindle::Tests {

namespace {

using Reader::DWARF::OptionDescription;
using Reader::DWARF::OptionTable;

struct DocumentedOption {
    std::string type;
    std::string start;
    bool operator==(const DocumentedOption&) const = default;
};

template <typename Value>
DocumentedOption Describe(const Value* option) {
    if constexpr (std::is_same_v<Value, bool>) {
        return {"boolean", *option ? "true" : "false"};
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return {"text", option->empty() ? "empty" : *option};
    } else {
        return {"integer", std::to_string(*option)};
    }
}

std::map<std::string, DocumentedOption> DocumentedOptions() {
    static const std::regex sRow(R"(\| `(m[^`]*)` \| (\w+) \| `?([^`|]*?)`? \| .*)");
    std::ifstream file(BRINDLE_DOCUMENTATION "/options.md");
    std::map<std::string, DocumentedOption> options;
    for (std::string line; std::getline(file, line);) {
        if (std::smatch row; std::regex_match(line, row, sRow)) {
            EXPECT_TRUE(options.try_emplace(row[1], DocumentedOption{row[2], row[3]}).second)
                << "twice: " << line;
        }
    }
    return options;
}

} // namespace

// Other tests restore what they set, so that the variables hold their start values here.
TEST(OptionDocumentationTest, ListsEveryOptionWithItsTypeAndStartValue) {
    std::map<std::string, DocumentedOption> documented = DocumentedOptions();
    for (const OptionDescription& option : OptionTable()) {
        const std::string name(option.name);
        const DocumentedOption actual =
            std::visit([](const auto* variable) { return Describe(variable); }, option.variable);
        EXPECT_EQ(documented[name].type, actual.type) << name;
        EXPECT_EQ(documented[name].start, actual.start) << name;
        documented.erase(name);
    }
    for (const auto& [name, option] : documented) {
        ADD_FAILURE() << name << " is documented, but is no option";
    }
}

} // namespace Tessel::Norn::Brindle::Tests
