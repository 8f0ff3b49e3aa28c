#include "Characters.h"

#include <algorithm>
#include <utf8proc.h>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Bytes that are not UTF-8 get values from here on.
constexpr char32_t sFirstOddByte = 0x110000;
constexpr unsigned char sFirstBeyondAscii = 0x80;

std::size_t WidthOf(char32_t character) {
    // The fast path for nearly all characters; control characters never come here.
    if (character < sFirstBeyondAscii || character >= sFirstOddByte) {
        return 1;
    }
    return static_cast<std::size_t>(
        std::max(utf8proc_charwidth(static_cast<utf8proc_int32_t>(character)), 0));
}

/// The longest end of a text that fits a width and begins at a character.
std::string_view EndOfWidth(std::string_view text, std::size_t width) {
    std::size_t rest = DisplayWidth(text);
    std::size_t position = 0;
    while (rest > width) {
        rest -= WidthOf(TakeCharacter(text, position));
    }
    return text.substr(position);
}

} // namespace

char32_t TakeCharacter(std::string_view text, std::size_t& position) {
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < sFirstBeyondAscii) {
        ++position;
        return byte;
    }
    utf8proc_int32_t character = 0;
    // The type of the library's texts.
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data()); // NOLINT
    const utf8proc_ssize_t length = utf8proc_iterate(
        bytes + position, static_cast<utf8proc_ssize_t>(text.size() - position), &character);
    if (length <= 0) {
        ++position;
        return sFirstOddByte + byte;
    }
    position += static_cast<std::size_t>(length);
    return static_cast<char32_t>(character);
}

char32_t LowerCase(char32_t character) {
    if (character >= sFirstOddByte) {
        return character;
    }
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
}

char32_t UpperCase(char32_t character) {
    if (character >= sFirstOddByte) {
        return character;
    }
    return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(character)));
}

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        width += WidthOf(TakeCharacter(text, position));
    }
    return width;
}

std::string CutInMiddle(std::string_view text, std::size_t width, std::string_view ellipsis) {
    if (DisplayWidth(text) <= width) {
        return std::string(text);
    }
    const std::size_t rest = width - std::min(DisplayWidth(ellipsis), width);
    const std::string_view start = StartOfWidth(text, rest / 2);
    return std::string(start).append(ellipsis).append(EndOfWidth(text, rest - DisplayWidth(start)));
}

std::string_view StartOfWidth(std::string_view text, std::size_t width) {
    std::size_t position = 0;
    std::size_t used = 0;
    while (position < text.size()) {
        std::size_t next = position;
        used += WidthOf(TakeCharacter(text, next));
        if (used > width) {
            break;
        }
        position = next;
    }
    return text.substr(0, position);
}

} // namespace Tessel::Norn::Brindle::Program
