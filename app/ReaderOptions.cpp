#include "ReaderOptions.h"

#include "NearNames.h"

#include "core/OptionTable.h"
#include "core/VElfOptions.h"

#include <array>
#include <cstddef>
#include <variant>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Reader::DWARF::OptionDescription;

std::string UnknownOptionMessage(std::string_view name) {
    NearNames near(name);
    for (const OptionDescription& option : Reader::DWARF::OptionTable()) {
        near.Offer(option.name);
    }
    return "the reader has no option '" + std::string(name) + "'" + near.Text();
}

std::string_view ValueDescription(const OptionDescription& option) {
    static constexpr std::array<std::string_view, std::variant_size_v<decltype(option.variable)>>
        sDescriptions = {"a whole number of 32 bits", "a whole number of 64 bits without sign",
                         "0, 1, true or false", "a text"};
    return sDescriptions[option.variable.index()];
}

} // namespace

void SetProgramDefaults() {
    Reader::DWARF::VElfOptions::mIsFullReading = 1;
}

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
