#include "Input.h"

#include "Calls.h"

#include "core/OptionTable.h"
#include "host/ContainerDetection.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>

namespace Tessel::Norn::Brindle::CInterface {

using Reader::DWARF::DWARFContainerType;
using Reader::DWARF::OptionDescription;

namespace {

/// The container for a host's number; nothing if the number has no meaning.
std::optional<DWARFContainerType> ContainerOf(brindle_container container, const Input& input) {
    switch (container) {
    case BRINDLE_CONTAINER_AUTO:
        return input.content != nullptr ? Reader::DWARF::DetectContainer(input.content)
                                        : Reader::DWARF::DetectContainer(input.path);
    case BRINDLE_CONTAINER_ELF:
    case BRINDLE_CONTAINER_COFF:
    case BRINDLE_CONTAINER_PE:
        return static_cast<DWARFContainerType>(container);
    default:
        return std::nullopt;
    }
}

} // namespace

Outcome TakeInput(const brindle_input* given, Input& input) {
    brindle_input known = {};
    if (!TakeStructure(given, known)) {
        return {BRINDLE_INVALID_ARGUMENT, "the input is null or has no size"};
    }
    if (known.path == nullptr && known.bytes == nullptr) {
        return {BRINDLE_INVALID_ARGUMENT, "the path is null"};
    }
    input.path = known.path != nullptr ? known.path : "";
    if (known.bytes != nullptr) {
        const auto* const bytes = static_cast<const std::uint8_t*>(known.bytes);
        input.content =
            std::make_shared<const std::vector<std::uint8_t>>(bytes, bytes + known.byte_count);
    }
    const std::optional<DWARFContainerType> container = ContainerOf(known.container, input);
    if (!container) {
        return {BRINDLE_INVALID_ARGUMENT, "there is no container of this number"};
    }
    input.container = *container;
    input.waits = known.waits != 0;
    for (std::size_t index = 0; index < known.setting_count; ++index) {
        if (known.settings == nullptr || known.settings[index].name == nullptr ||
            known.settings[index].value == nullptr) {
            return {BRINDLE_INVALID_ARGUMENT, "a setting has no name or no value"};
        }
        input.settings.emplace_back(known.settings[index].name, known.settings[index].value);
    }
    return {};
}

SettingScope::~SettingScope() {
    // In reverse order, since an option may be named twice.
    while (!mPutBack.empty()) {
        mPutBack.back()();
        mPutBack.pop_back();
    }
}

Outcome SettingScope::Set(const std::vector<std::pair<std::string, std::string>>& settings) {
    for (const auto& [name, value] : settings) {
        const OptionDescription* const option = Reader::DWARF::FindOption(name);
        if (option == nullptr) {
            return {BRINDLE_NOT_FOUND, "there is no option '" + name + "'"};
        }
        std::visit(
            [this](auto* variable) {
                mPutBack.emplace_back([variable, former = *variable] { *variable = former; });
            },
            option->variable);
        if (!Reader::DWARF::AssignOption(*option, value)) {
            std::string text = "'" + value;
            text.append("' is no value of the option '").append(name).append("'");
            return {BRINDLE_INVALID_VALUE, std::move(text)};
        }
    }
    return {};
}

} // namespace Tessel::Norn::Brindle::CInterface
