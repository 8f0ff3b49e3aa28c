// Text by a printf format, of any length.
#pragma once

#include <cstdarg>
#include <string>

/// Lets the compiler check calls of a function against the format that it takes: the places of the
/// format and of its first argument, counted from 1; 0 for a `va_list`.
#if defined(__GNUC__)
#define BRINDLE_PRINTF_LIKE(formatPlace, argumentPlace)                                            \
    __attribute__((format(printf, formatPlace, argumentPlace)))
#else
#define BRINDLE_PRINTF_LIKE(formatPlace, argumentPlace)
#endif

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The text that a format of `std::printf` makes of the arguments.
BRINDLE_PRINTF_LIKE(1, 0)
std::string FormatText(const char* format, std::va_list arguments);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
