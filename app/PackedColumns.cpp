#include "PackedColumns.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::string_view sDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t sGroup = 3;
constexpr std::size_t sDigitsOfGroup = 4;

/// Appends bytes in base64.
void AppendBase64(std::string& text, std::span<const std::uint8_t> bytes) {
    std::size_t place = text.size();
    text.resize(place + (bytes.size() + sGroup - 1) / sGroup * sDigitsOfGroup, '=');
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(bytes.size(), sGroup))) {
        const std::size_t count = std::min(bytes.size(), sGroup);
        const std::uint32_t bits = std::uint32_t{bytes[0]} << 16U |
                                   (count > 1 ? std::uint32_t{bytes[1]} << 8U : 0U) |
                                   (count > 2 ? std::uint32_t{bytes[2]} : 0U);
        // The last group has a digit more than bytes; the rest of it stays filled up.
        for (std::size_t digit = 0; digit <= count; ++digit) {
            text[place + digit] = sDigits[bits >> (18U - 6U * digit) & 63U];
        }
        place += sDigitsOfGroup;
    }
}

std::size_t WidthOf(std::span<const std::uint64_t> numbers) {
    std::uint64_t allBits = 0;
    for (const std::uint64_t number : numbers) {
        allBits |= number;
    }
    const auto bytes = static_cast<std::size_t>(std::bit_width(allBits) + 7) / 8;
    return bytes == 0 ? 0 : std::bit_ceil(bytes);
}

void WriteString(PackWriter& json, std::string_view text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void WriteKey(PackWriter& json, std::string_view key) {
    json.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
}

} // namespace

TextTable::TextTable(std::size_t expected) {
    constexpr std::size_t mostReserved = std::size_t{1} << 16U;
    mNumbers.reserve(std::min(expected, mostReserved));
    NumberOf({});
}

std::uint32_t TextTable::NumberOf(std::string_view text) {
    const auto [known, isNew] =
        mNumbers.try_emplace(text, static_cast<std::uint32_t>(mTexts.size()));
    if (isNew) {
        mTexts.push_back(text);
    }
    return known->second;
}

std::uint32_t TextTable::NumberOfCopy(std::string text) {
    const auto known = mNumbers.find(text);
    return known != mNumbers.end() ? known->second
                                   : NumberOf(mCopies.emplace_back(std::move(text)));
}

void TextTable::Write(PackWriter& json) const {
    json.StartArray();
    for (const std::string_view text : mTexts) {
        WriteString(json, text);
    }
    json.EndArray();
}

void WriteColumn(PackWriter& json, std::string_view key, std::span<const std::uint64_t> numbers) {
    const std::size_t width = WidthOf(numbers);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(numbers.size() * width);
    for (std::uint64_t number : numbers) {
        for (std::size_t byte = 0; byte < width; ++byte) {
            bytes.push_back(static_cast<std::uint8_t>(number));
            number >>= 8U;
        }
    }
    std::string text = std::to_string(width) + ":";
    AppendBase64(text, bytes);
    WriteKey(json, key);
    WriteString(json, text);
}

void WriteBytes(PackWriter& json, std::string_view key, std::span<const std::uint8_t> bytes) {
    std::string text;
    AppendBase64(text, bytes);
    WriteKey(json, key);
    WriteString(json, text);
}

} // namespace Tessel::Norn::Brindle::Program
