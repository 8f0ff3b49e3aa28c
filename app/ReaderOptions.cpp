#include "ReaderOptions.h"

#include "NearNames.h"
#include "Phrases.h"

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
    return Phrased("the reader has no option '{}'", name) + near.Text();
}

std::string ValueDescription(const OptionDescription& option) {
    static constexpr std::array<Phrase, std::variant_size_v<decltype(option.variable)>>
        sDescriptions = {"a whole number of 32 bits", "an unsigned whole number of 64 bits",
                         "0, 1, true or false", "a text"};
    return Phrased(sDescriptions[option.variable.index()]);
}

} // namespace

void SetProgramDefaults() {
    Reader::DWARF::VElfOptions::mIsFullReading = 1;
}

std::string ApplyReaderOption(std::string_view setting) {
    const std::size_t separator = setting.find('=');
    if (separator == std::string_view::npos) {
        return Phrased("'{}' is not of the form OPTION=VALUE", setting);
    }
    const std::string_view name = setting.substr(0, separator);
    const std::string_view value = setting.substr(separator + 1);
    const OptionDescription* option = Reader::DWARF::FindOption(name);
    if (option == nullptr) {
        return UnknownOptionMessage(name);
    }
    if (!Reader::DWARF::AssignOption(*option, value)) {
        return Phrased("'{}' is not a value for {}, which takes {}", value, name,
                       ValueDescription(*option));
    }
    return {};
}

} // namespace Tessel::Norn::Brindle::Program
