// The functions of the C interface that need neither reader nor model: versions, statuses,
// containers and options.
#include "Calls.h"
#include "ReadGate.h"

#include "core/LibraryVersion.h"
#include "core/OptionTable.h"
#include "host/ContainerDetection.h"

#include <array>
#include <string>
#include <type_traits>
#include <variant>

using namespace Tessel::Norn::Brindle;
using CInterface::GiveText;
using CInterface::Guarded;
using CInterface::ReadGate;
using Reader::DWARF::OptionDescription;

namespace {

constexpr std::array sStatusTexts = {
    "no error",
    "the file could not be read",
    "the read was cancelled",
    "a read runs in this process",
    "the handle is not, or no longer, one of the library",
    "an argument is null, a structure has no size, or a number has no meaning",
    "there is nothing of this name, identifier or index",
    "the text is no value of the option",
    "the buffer is too small for the text",
    "there is not enough memory",
    "an unexpected exception ended the call",
};
static_assert(sStatusTexts.size() == BRINDLE_INTERNAL_ERROR + 1);

/// By the index of the option's variable.
constexpr std::array<brindle_option_type, 4> sOptionTypes = {
    BRINDLE_OPTION_INTEGER, BRINDLE_OPTION_UNSIGNED, BRINDLE_OPTION_BOOLEAN, BRINDLE_OPTION_TEXT};
static_assert(std::variant_size_v<decltype(OptionDescription::variable)> == sOptionTypes.size());

std::string ValueText(const OptionDescription& option) {
    return std::visit(
        [](const auto* variable) -> std::string {
            using Value = std::remove_cvref_t<decltype(*variable)>;
            if constexpr (std::is_same_v<Value, std::string>) {
                return *variable;
            } else if constexpr (std::is_same_v<Value, bool>) {
                return *variable ? "true" : "false";
            } else {
                return std::to_string(*variable);
            }
        },
        option.variable);
}

} // namespace

int32_t brindle_interface_version(void) {
    return BRINDLE_INTERFACE_VERSION;
}

const char* brindle_version(void) {
    return LibraryVersion();
}

const char* brindle_status_text(brindle_status status) {
    const bool isKnown = status >= 0 && status <= BRINDLE_INTERNAL_ERROR;
    return isKnown ? sStatusTexts[static_cast<std::size_t>(status)] : "unknown status";
}

brindle_status brindle_detect_container(const char* path, brindle_container* container) {
    if (container == nullptr || path == nullptr) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    *container = BRINDLE_CONTAINER_ELF;
    return Guarded([&] {
        *container = static_cast<brindle_container>(Reader::DWARF::DetectContainer(path));
        return BRINDLE_OK;
    });
}

brindle_status brindle_option_at(size_t index, brindle_option* option) {
    return Guarded([&] {
        const auto table = Reader::DWARF::OptionTable();
        brindle_option description = {};
        if (index < table.size()) {
            description.name = CInterface::TextOf(table[index].name);
            description.meaning = CInterface::TextOf(table[index].meaning);
            description.type = sOptionTypes.at(table[index].variable.index());
        }
        if (!CInterface::GiveStructure(description, option)) {
            return BRINDLE_INVALID_ARGUMENT;
        }
        return index < table.size() ? BRINDLE_OK : BRINDLE_NOT_FOUND;
    });
}

brindle_status brindle_option_set(const char* name, const char* value) {
    return Guarded([&]() -> brindle_status {
        if (name == nullptr || value == nullptr) {
            return BRINDLE_INVALID_ARGUMENT;
        }
        const OptionDescription* const option = Reader::DWARF::FindOption(name);
        if (option == nullptr) {
            return BRINDLE_NOT_FOUND;
        }
        return ReadGate::BetweenReads<brindle_status>(BRINDLE_BUSY, [&] {
            return Reader::DWARF::AssignOption(*option, value) ? BRINDLE_OK : BRINDLE_INVALID_VALUE;
        });
    });
}

brindle_status brindle_option_get(const char* name, char* buffer, size_t capacity, size_t* length) {
    return Guarded([&]() -> brindle_status {
        const CInterface::TextTarget target{buffer, capacity, length};
        GiveText({}, target);
        if (name == nullptr) {
            return BRINDLE_INVALID_ARGUMENT;
        }
        const OptionDescription* const option = Reader::DWARF::FindOption(name);
        if (option == nullptr) {
            return BRINDLE_NOT_FOUND;
        }
        std::string text;
        const auto status = ReadGate::BetweenReads<brindle_status>(BRINDLE_BUSY, [&] {
            text = ValueText(*option);
            return BRINDLE_OK;
        });
        return status == BRINDLE_OK ? GiveText(text, target) : status;
    });
}
