// Text by a printf format, of any length.
#pragma once

#include <cstdarg>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The text that a format of `std::printf` makes of the arguments.
std::string FormatText(const char* format, std::va_list arguments);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
