// The options of the reader by their names: what a program needs to set them from text, and a test
// to restore them. The reader itself uses the variables of `VElfOptions` directly.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// One option.
struct OptionDescription {
    /// Its name, which is that of the variable.
    std::string_view name;
    /// The variable that holds it, for the life of the process.
    std::variant<std::int32_t*, std::uint64_t*, bool*, std::string*> variable;
    /// What it does, in one line.
    std::string_view meaning;
};

/// All options, in the order of their documentation.
BRINDLE_EXPORT std::span<const OptionDescription> OptionTable();

/// The option of a name, or null. Names are case sensitive.
BRINDLE_EXPORT const OptionDescription* FindOption(std::string_view name);

/// Sets an option from text: a number, decimal or with 0x, with a sign where the type has one;
/// 0, 1, true or false; or the text itself.
/// @return false, with the option unchanged, if the text is no value of the option's type
BRINDLE_EXPORT bool AssignOption(const OptionDescription& option, std::string_view text);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
