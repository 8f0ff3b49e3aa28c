#include "PackedColumns.h"

#include "JsonOutput.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::string_view sDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t sGroup = 3;
constexpr std::size_t sDigitsOfGroup = 4;

using DigitPairs = std::array<std::array<char, 2>, 4096>;

constexpr DigitPairs MakeDigitPairs() {
    DigitPairs pairs{};
    for (std::size_t bits = 0; bits < pairs.size(); ++bits) {
        pairs[bits][0] = sDigits[bits >> 6U];
        pairs[bits][1] = sDigits[bits & 63U];
    }
    return pairs;
}

/// Two digits of base64 for each twelve bits.
constexpr DigitPairs sDigitPairs = MakeDigitPairs();

void PutGroup(char* place, std::uint32_t bits) {
    std::ranges::copy(sDigitPairs[bits >> 12U], place);
    std::ranges::copy(sDigitPairs[bits & 0xFFFU], place + 2);
}

/// Appends bytes in base64.
void AppendBase64(std::string& text, std::span<const std::uint8_t> bytes) {
    std::size_t place = text.size();
    text.resize(place + (bytes.size() + sGroup - 1) / sGroup * sDigitsOfGroup);
    for (; bytes.size() >= sGroup; bytes = bytes.subspan(sGroup), place += sDigitsOfGroup) {
        PutGroup(&text[place], std::uint32_t{bytes[0]} << 16U | std::uint32_t{bytes[1]} << 8U |
                                   std::uint32_t{bytes[2]});
    }
    if (!bytes.empty()) {
        const std::uint32_t second = bytes.size() > 1 ? bytes[1] : 0;
        PutGroup(&text[place], std::uint32_t{bytes[0]} << 16U | second << 8U);
        std::fill(text.begin() + static_cast<std::ptrdiff_t>(place + bytes.size() + 1), text.end(),
                  '=');
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

constexpr bool IsPlain(char character) {
    return static_cast<unsigned char>(character) >= ' ' && character != '"' && character != '\\' &&
           character != '<';
}

} // namespace

void PackWriter::FastText(std::string_view text) {
    if (std::ranges::all_of(text, IsPlain)) {
        PlainText(text);
    } else {
        WriteText(*this, text);
    }
}

void PackWriter::PlainText(std::string_view text) {
    Prefix(rapidjson::kStringType);
    os_->Write("\"");
    os_->Write(text);
    os_->Write("\"");
    EndValue(true);
}

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
        json.FastText(text);
    }
    json.EndArray();
}

void WriteColumn(PackWriter& json, std::string_view key, std::span<const std::uint64_t> numbers) {
    const std::size_t width = WidthOf(numbers);
    std::vector<std::uint8_t> bytes(numbers.size() * width);
    std::uint8_t* place = bytes.data();
    for (std::uint64_t number : numbers) {
        for (std::size_t byte = 0; byte < width; ++byte) {
            *place++ = static_cast<std::uint8_t>(number);
            number >>= 8U;
        }
    }
    std::string text = std::to_string(width) + ":";
    AppendBase64(text, bytes);
    WriteKey(json, key);
    json.PlainText(text);
}

void WriteBytes(PackWriter& json, std::string_view key, std::span<const std::uint8_t> bytes) {
    std::string text;
    AppendBase64(text, bytes);
    WriteKey(json, key);
    json.PlainText(text);
}

} // namespace Tessel::Norn::Brindle::Program
