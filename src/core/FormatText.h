// Formats text as printf does, of any length.
#pragma once

#include <cstdarg>
#include <string>

/// Lets the compiler check the calls of a printf-like function. Parameters: the positions of its
/// format and of its first argument, counted from 1; 0 for a `va_list`.
#if defined(__GNUC__)
#define BRINDLE_PRINTF_LIKE(formatPlace, argumentPlace)                                            \
    __attribute__((format(printf, formatPlace, argumentPlace)))
#else
#define BRINDLE_PRINTF_LIKE(formatPlace, argumentPlace)
#endif

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Formats the arguments as `std::printf` does.
BRINDLE_PRINTF_LIKE(1, 0)
std::string FormatText(const char* format, std::va_list arguments);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
