// What a target requires of a result, apart from not crashing.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Ends the process with a message if a promise is broken, so that the input becomes a finding.
inline void Require(bool isKept, const char* promise) {
    if (!isKept) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

/// True for valid UTF-8 (Unicode, 3.9, table of well-formed byte sequences).
inline bool IsUtf8(std::string_view text) {
    std::size_t index = 0;
    const auto byteAt = [text](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    while (index < text.size()) {
        const unsigned first = byteAt(index);
        const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (length > 1) {
            const unsigned second = byteAt(index + 1);
            const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
            const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
            if (first < 0xC2 || first > 0xF4 || second < least || second > most) {
                return false;
            }
        }
        for (std::size_t offset = 2; offset < length; ++offset) {
            if (byteAt(index + offset) < 0x80 || byteAt(index + offset) > 0xBF) {
                return false;
            }
        }
        index += length;
    }
    return true;
}

} // namespace Tessel::Norn::Brindle::Fuzzing
