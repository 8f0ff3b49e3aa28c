#include "ReaderOptions.h"

#include "core/OptionTable.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Reader::DWARF::OptionDescription;

constexpr std::size_t sSuggestionCount = 3;
/// A longer name is nobody's slip of the fingers.
constexpr std::size_t sLongestComparedName = 100;

std::string LowerCase(std::string_view text) {
    std::string result(text.substr(0, sLongestComparedName));
    std::ranges::transform(result, result.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return result;
}

/// How many characters have to be changed, added or removed to turn one text into the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t line = 0; line < from.size(); ++line) {
        std::size_t diagonal = std::exchange(row[0], line + 1);
        for (std::size_t column = 0; column < to.size(); ++column) {
            const std::size_t replaced = diagonal + (from[line] == to[column] ? 0 : 1);
            diagonal = row[column + 1];
            row[column + 1] = std::min({replaced, diagonal + 1, row[column] + 1});
        }
    }
    return row.back();
}

/// A part of a name counts as near, since the long names are easily remembered in part.
std::size_t NameDistance(const std::string& wanted, std::string_view optionName) {
    const std::string known = LowerCase(optionName);
    return known.find(wanted) != std::string::npos ? 0 : EditDistance(wanted, known);
}

std::string UnknownOptionMessage(std::string_view name) {
    const std::string wanted = LowerCase(name);
    std::vector<std::pair<std::size_t, std::string_view>> ranking;
    for (const OptionDescription& option : Reader::DWARF::OptionTable()) {
        ranking.emplace_back(NameDistance(wanted, option.name), option.name);
    }
    const std::size_t count = std::min(sSuggestionCount, ranking.size());
    std::ranges::stable_sort(ranking, {}, &std::pair<std::size_t, std::string_view>::first);
    std::string message = "the reader has no option '" + std::string(name) + "'; nearest names: ";
    for (std::size_t rank = 0; rank < count; ++rank) {
        message.append(rank == 0 ? "" : ", ").append(ranking[rank].second);
    }
    return message;
}

std::string_view ValueDescription(const OptionDescription& option) {
    static constexpr std::array<std::string_view, std::variant_size_v<decltype(option.variable)>>
        sDescriptions = {"a whole number of 32 bits", "a whole number of 32 bits without sign",
                         "0, 1, true or false", "a text"};
    return sDescriptions[option.variable.index()];
}

} // namespace

std::string ApplyReaderOption(std::string_view setting) {
    const std::size_t separator = setting.find('=');
    if (separator == std::string_view::npos) {
        return std::string("'").append(setting) + "' is not of the form OPTION=VALUE";
    }
    const std::string_view name = setting.substr(0, separator);
    const std::string_view value = setting.substr(separator + 1);
    const OptionDescription* option = Reader::DWARF::FindOption(name);
    if (option == nullptr) {
        return UnknownOptionMessage(name);
    }
    if (!Reader::DWARF::AssignOption(*option, value)) {
        return std::string("'").append(value) + "' is no value for " + std::string(name) +
               ", which is " + std::string(ValueDescription(*option));
    }
    return {};
}

} // namespace Tessel::Norn::Brindle::Program
