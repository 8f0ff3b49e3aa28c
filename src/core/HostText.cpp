#include "core/HostText.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The characters of Windows-1252 for the bytes 0x80 to 0x9F; the others are those of Latin-1.
constexpr std::array<char16_t, 32> sWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

/// A well-formed sequence of UTF-8 by its first byte and the range of its second one; all further
/// bytes are 0x80 to 0xBF.
struct Utf8Sequence {
    std::uint8_t firstLow;
    std::uint8_t firstHigh;
    std::uint8_t secondLow;
    std::uint8_t secondHigh;
    std::uint8_t length;
};

// The ranges keep out overlong forms, surrogates and what lies beyond U+10FFFF.
constexpr Utf8Sequence sUtf8Sequences[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

/// Looks at all characters: a loop without an early exit is faster, since it can be vectorized.
bool IsAscii(std::string_view text) {
    std::uint8_t bits = 0;
    for (const char character : text) {
        bits |= static_cast<std::uint8_t>(character);
    }
    return bits < 0x80;
}

/// Length of the well-formed sequence at the start of the text, 0 if there is none.
std::size_t Utf8SequenceLength(std::string_view text) {
    const auto byteAt = [text](std::size_t index) {
        return static_cast<std::uint8_t>(text[index]);
    };
    if (byteAt(0) < 0x80) {
        return 1;
    }
    for (const Utf8Sequence& sequence : sUtf8Sequences) {
        if (byteAt(0) < sequence.firstLow || byteAt(0) > sequence.firstHigh) {
            continue;
        }
        if (text.size() < sequence.length || byteAt(1) < sequence.secondLow ||
            byteAt(1) > sequence.secondHigh) {
            return 0;
        }
        for (std::size_t index = 2; index < sequence.length; ++index) {
            if ((byteAt(index) & 0xC0U) != 0x80) {
                return 0;
            }
        }
        return sequence.length;
    }
    return 0;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Utf8SequenceLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

void AppendAsUtf8(std::string& out, char16_t character) {
    const auto append = [&out](unsigned byte) { out.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0U | (character >> 6U));
        append(0x80U | (character & 0x3FU));
    } else {
        append(0xE0U | (character >> 12U));
        append(0x80U | ((character >> 6U) & 0x3FU));
        append(0x80U | (character & 0x3FU));
    }
}

std::string FromWindows1252(std::string_view text) {
    std::string out;
    out.reserve(text.size() * 2);
    for (const char character : text) {
        const auto byte = static_cast<std::uint8_t>(character);
        AppendAsUtf8(out, byte >= 0x80 && byte < 0xA0 ? sWindows1252[byte - 0x80U] : byte);
    }
    return out;
}

} // namespace

std::string ToHostText(std::string_view narrowText) {
    std::string text;
    AssignHostText(text, narrowText);
    return text;
}

void AssignHostText(std::string& text, std::string_view narrowText) {
    if (IsAscii(narrowText) || IsUtf8(narrowText)) {
        text.assign(narrowText);
    } else {
        text = FromWindows1252(narrowText);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
