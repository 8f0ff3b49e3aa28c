#include "a2l/Encoding.h"

#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using namespace std::string_view_literals;

constexpr char32_t sLastCharacter = 0x10FFFF;
constexpr char32_t sFirstHighHalf = 0xD800;
constexpr char32_t sFirstLowHalf = 0xDC00;
constexpr char32_t sEndOfHalves = 0xE000;
/// Characters from here on have two units of UTF-16.
constexpr char32_t sFirstOfPairs = 0x10000;

struct Mark {
    std::string_view bytes;
    Encoding encoding;
};

/// A mark that begins with a shorter one comes before it.
constexpr std::array sMarks = {
    Mark{"\xFF\xFE\0\0"sv, Encoding::Utf32Little}, Mark{"\0\0\xFE\xFF"sv, Encoding::Utf32Big},
    Mark{"\xFF\xFE"sv, Encoding::Utf16Little}, Mark{"\xFE\xFF"sv, Encoding::Utf16Big}};

/// How many bytes a unit of an encoding has, and which comes first.
struct Units {
    explicit Units(Encoding encoding)
        : size(encoding == Encoding::Utf16Little || encoding == Encoding::Utf16Big ? 2 : 4)
        , isBig(encoding == Encoding::Utf16Big || encoding == Encoding::Utf32Big) {}

    [[nodiscard]] char32_t Read(std::string_view bytes, std::size_t position) const {
        char32_t unit = 0;
        for (std::size_t index = 0; index < size; ++index) {
            const auto byte =
                static_cast<unsigned char>(bytes[position + (isBig ? index : size - 1 - index)]);
            unit = unit << 8U | byte;
        }
        return unit;
    }

    void Append(std::string& bytes, char32_t unit) const {
        for (std::size_t index = 0; index < size; ++index) {
            bytes += static_cast<char>(unit >> 8U * (isBig ? size - 1 - index : index));
        }
    }

    std::size_t size;
    bool isBig;
};

bool IsHighHalf(char32_t unit) {
    return unit >= sFirstHighHalf && unit < sFirstLowHalf;
}

bool IsLowHalf(char32_t unit) {
    return unit >= sFirstLowHalf && unit < sEndOfHalves;
}

void AppendUtf8(std::string& text, char32_t character) {
    constexpr std::array<char32_t, 3> ends = {0x80, 0x800, sFirstOfPairs};
    constexpr std::array<unsigned, 4> leads = {0, 0xC0, 0xE0, 0xF0};
    std::size_t following = 0;
    while (following < ends.size() && character >= ends[following]) {
        ++following;
    }
    text += static_cast<char>(leads[following] | character >> 6U * following);
    while (following-- > 0) {
        text += static_cast<char>(0x80U | (character >> 6U * following & 0x3FU));
    }
}

/// Takes a character from the front of a text that `Decode` gave.
char32_t TakeCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t following = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t character = following == 0 ? lead : lead & (0x3FU >> following);
    text.remove_prefix(1);
    for (std::size_t index = 0; index < following && !text.empty(); ++index) {
        character = character << 6U | (static_cast<unsigned char>(text.front()) & 0x3FU);
        text.remove_prefix(1);
    }
    return character;
}

} // namespace

Encoding EncodingOf(std::string_view bytes) {
    for (const Mark& mark : sMarks) {
        if (bytes.starts_with(mark.bytes)) {
            return mark.encoding;
        }
    }
    return Encoding::Bytes;
}

std::optional<std::string> Decode(std::string_view bytes, Encoding encoding) {
    const Units units(encoding);
    if (bytes.size() % units.size != 0) {
        return std::nullopt;
    }
    std::string text;
    text.reserve(bytes.size() / units.size);
    for (std::size_t position = 0; position < bytes.size(); position += units.size) {
        char32_t character = units.Read(bytes, position);
        const std::size_t next = position + units.size;
        if (units.size == 2 && IsHighHalf(character) && next < bytes.size() &&
            IsLowHalf(units.Read(bytes, next))) {
            character = sFirstOfPairs + ((character - sFirstHighHalf) << 10U) +
                        (units.Read(bytes, next) - sFirstLowHalf);
            position = next;
        }
        if (character > sLastCharacter) {
            return std::nullopt;
        }
        AppendUtf8(text, character);
    }
    return text;
}

std::string Encode(std::string_view text, Encoding encoding) {
    const Units units(encoding);
    std::string bytes;
    bytes.reserve(text.size() * units.size);
    while (!text.empty()) {
        const char32_t character = TakeCharacter(text);
        if (units.size == 2 && character >= sFirstOfPairs) {
            const char32_t rest = character - sFirstOfPairs;
            units.Append(bytes, sFirstHighHalf + (rest >> 10U));
            units.Append(bytes, sFirstLowHalf + (rest & 0x3FFU));
        } else {
            units.Append(bytes, character);
        }
    }
    return bytes;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
