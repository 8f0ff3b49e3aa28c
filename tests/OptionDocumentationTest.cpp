#include "core/OptionTable.h"

#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
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

std::string TypeOf(std::int32_t* /*option*/) {
    return "integer";
}
std::string TypeOf(std::uint32_t* /*option*/) {
    return "integer";
}
std::string TypeOf(bool* /*option*/) {
    return "boolean";
}
std::string TypeOf(std::string* /*option*/) {
    return "text";
}

std::string StartOf(const bool* option) {
    return *option ? "true" : "false";
}
std::string StartOf(const std::string* option) {
    return option->empty() ? "empty" : *option;
}
template <typename Number>
std::string StartOf(const Number* option) {
    return std::to_string(*option);
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
        const DocumentedOption actual = std::visit(
            [](auto* variable) {
                return DocumentedOption{TypeOf(variable), StartOf(variable)};
            },
            option.variable);
        EXPECT_EQ(documented[name].type, actual.type) << name;
        EXPECT_EQ(documented[name].start, actual.start) << name;
        documented.erase(name);
    }
    for (const auto& [name, option] : documented) {
        ADD_FAILURE() << name << " is documented, but is no option";
    }
}

} // namespace Tessel::Norn::Brindle::Tests
