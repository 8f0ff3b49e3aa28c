// Patterns of names as a user writes them on the command line. Commands that list things by name
// match with it.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// True if the whole name fits the pattern, in which `*` stands for any characters, none included,
/// and `?` for one. Every other character stands for itself.
bool MatchesPattern(std::string_view name, std::string_view pattern);

} // namespace Tessel::Norn::Brindle::Program
