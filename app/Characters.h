// Operations on the characters of a text: decoding one after the other, lower case, and width
// on a screen. Patterns and tables use them. Any bytes are allowed; none outside the text is
// read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Decodes the character at a position and moves past it. A byte that is not UTF-8 gives a value
/// that no character has.
/// @param position before the end of the text
char32_t TakeCharacter(std::string_view text, std::size_t& position);

/// @name The other case of a character; the character itself if it has none
/// @{
char32_t LowerCase(char32_t character);
char32_t UpperCase(char32_t character);
/// @}

/// Columns that a text without control characters takes on a screen: 2 for a wide character, 0 for
/// a combining one.
std::size_t DisplayWidth(std::string_view text);

/// A text cut in its middle to a width, since names differ at their ends, with an ellipsis
/// in place of the cut part. A text that fits comes back unchanged.
/// @param ellipsis one column for each byte if it is ASCII, else one in all; at most
///     `width`
std::string CutInMiddle(std::string_view text, std::size_t width, std::string_view ellipsis);

/// The start of a text that fits a width.
std::string_view StartOfWidth(std::string_view text, std::size_t width);

} // namespace Tessel::Norn::Brindle::Program
