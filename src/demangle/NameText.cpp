#include "demangle/NameText.h"

#include <algorithm>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr int sNameLengthLimit = 1025;

/// Bytes of the UTF-8 sequence that a lead byte announces; 1 for every other byte.
std::size_t AnnouncedLength(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Bytes of the first character of a text that isn't empty.
std::size_t CharacterLength(std::string_view text) {
    const std::size_t length = AnnouncedLength(static_cast<unsigned char>(text.front()));
    const std::string_view rest = text.substr(1, length - 1);
    return rest.size() == length - 1 && std::ranges::all_of(rest, IsContinuation) ? length : 1;
}

/// Bytes of the longest run of whole characters that fits the room.
std::size_t FittingLength(std::string_view text, std::size_t room) {
    if (text.size() <= room) {
        return text.size();
    }
    std::size_t fitting = 0;
    std::size_t next = CharacterLength(text);
    while (next <= room) {
        fitting = next;
        next += CharacterLength(text.substr(next));
    }
    return fitting;
}

} // namespace

int ParseNameLength(std::string_view text, std::size_t room, int& digits) {
    std::size_t count = 0;
    int value = 0;
    for (; count < text.size() && IsDigit(text[count]); ++count) {
        if (value < sNameLengthLimit) {
            value = value * 10 + (text[count] - '0');
        }
    }
    digits = static_cast<int>(count);
    return value < sNameLengthLimit && static_cast<std::size_t>(value) <= room ? value : 0;
}

int ParseNameLength(const char* text, const char* end, int& digits) {
    const std::string_view range = text < end ? std::string_view(text, end) : std::string_view();
    return ParseNameLength(range, range.size(), digits);
}

void AppendText(char* out, std::string_view text, int limit) {
    if (limit < 0) {
        return;
    }
    const auto room = static_cast<std::size_t>(limit);
    const void* const terminator = std::memchr(out, '\0', room + 1);
    if (terminator == nullptr) {
        return;
    }
    const auto length = static_cast<const char*>(terminator) - out;
    utStrNCpy(out + length, text, limit - static_cast<int>(length));
}

int utStrNCpy(char* out, std::string_view text, int limit) {
    if (limit < 0) {
        return 0;
    }
    const std::size_t length = FittingLength(text, static_cast<std::size_t>(limit));
    text.copy(out, length);
    out[length] = '\0';
    return static_cast<int>(length);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
