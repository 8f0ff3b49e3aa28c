// The options of the reader by name, for programs that set them from text and for tests that
// restore them. The reader itself uses the variables of `VElfOptions` directly.
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
    /// The name of the option and of its variable.
    std::string_view name;
    /// The variable that holds it, for the life of the process.
    std::variant<std::int32_t*, std::uint64_t*, bool*, std::string*> variable;
    /// What it does, in one line.
    std::string_view meaning;
};

/// All options, in the order of their documentation.
BRINDLE_EXPORT std::span<const OptionDescription> OptionTable();

/// The option of this name, or null. Names are case sensitive.
BRINDLE_EXPORT const OptionDescription* FindOption(std::string_view name);

/// Sets an option from text. Numbers are decimal or begin with 0x, with a sign where the type has
/// one; truth values are 0, 1, true or false; a text option takes the text as it is.
/// @return false, with the option unchanged, if the text is no value of the option's type
BRINDLE_EXPORT bool AssignOption(const OptionDescription& option, std::string_view text);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
