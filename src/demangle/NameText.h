// Reading and writing of the small texts that mangled names are made of: length prefixes, and
// bounded copies that keep multi-byte characters whole. Both demangling parsers work with it. It
// never allocates.
#pragma once

#include <cstddef>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// True for "0" to "9", whatever the locale.
constexpr bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Reads the decimal number at the start of a text.
/// @param text   the digits and what follows them
/// @param room   largest value that is taken, in characters
/// @param digits receives the number of digits, whether their value is taken or not
/// @return the value if it is less than 1025 and not above `room`, else 0; 0 if there is no digit
int ParseNameLength(std::string_view text, std::size_t room, int& digits);

/// Reads the decimal length at `text`, stopping at `end`. The digits lie within the room that the
/// length is compared with, so an accepted name may reach beyond `end` by their number.
/// @param digits receives the number of digits, whether their value is taken or not
/// @return the value if it is less than 1025 and not above `end - text`, else 0; 0 if there is no
///     digit, or if `text` lies after `end`
int ParseNameLength(const char* text, const char* end, int& digits);

/// Appends a text to a terminated one and terminates the result. What doesn't fit is left out; a
/// UTF-8 sequence is copied whole or not at all, and any other byte is a character of its own.
/// @param out   buffer of at least `limit` + 1 bytes
/// @param limit most bytes that `out` may hold before its terminator, those already there included
void AppendText(char* out, std::string_view text, int limit);

/// Writes a text to the start of a buffer and terminates it, with the same care as `AppendText`.
/// @param out   buffer of at least `limit` + 1 bytes; what it holds is overwritten
/// @param limit most bytes that `out` may hold before its terminator; a negative one writes nothing
/// @return the number of bytes written before the terminator
int utStrNCpy(char* out, std::string_view text, int limit);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
