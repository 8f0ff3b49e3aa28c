// How the commands speak to their user on standard error: whatever has no place in the results.
// Wrong usage is told by the command line itself.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Writes one line, with the program's name in front.
void Tell(std::string_view message);

/// The same, about a file.
void Tell(std::string_view file, std::string_view message);

} // namespace Tessel::Norn::Brindle::Program
