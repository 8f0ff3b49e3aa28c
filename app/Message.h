// The messages of the commands on standard error: everything that has no place in the results. The
// command line itself reports wrong usage.
#pragma once

#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

/// Writes one line after the program's name.
void Tell(std::string_view message);

/// Writes one line about a file.
void Tell(std::string_view file, std::string_view message);

/// Writes that the system refused something, with its reason in the language of the messages.
void Tell(const std::system_error& error);

} // namespace Tessel::Norn::Brindle::Program
