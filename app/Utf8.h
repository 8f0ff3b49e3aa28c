// The little that the program asks of UTF-8 text. It takes any bytes, and never reads outside them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// True for a byte that continues a character.
constexpr bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Number of characters.
constexpr std::size_t CharacterCount(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !IsContinuation(byte); }));
}

/// Number of bytes of the first character of a text that is not empty.
constexpr std::size_t CharacterLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && IsContinuation(text[length])) {
        ++length;
    }
    return length;
}

} // namespace Tessel::Norn::Brindle::Program
