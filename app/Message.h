// How the commands speak to their user on standard error: whatever has no place in the results.
// Wrong usage is told by the command line itself.
#pragma once

#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

/// Writes one line, with the program's name in front.
void Tell(std::string_view message);

/// Writes one line about a file.
void Tell(std::string_view file, std::string_view message);

/// Writes why the system refused something, with its reason in the language of the messages.
void Tell(const std::system_error& error);

} // namespace Tessel::Norn::Brindle::Program
