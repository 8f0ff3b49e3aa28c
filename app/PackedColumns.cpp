#include "PackedColumns.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::string_view sDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t sGroup = 3;

/// Turns bytes into base64 digits, three bytes at a time.
class Base64Text {
public:
    /// @param byteCount number of bytes that will come
    Base64Text(std::string start, std::size_t byteCount)
        : mText(std::move(start)) {
        mText.reserve(mText.size() + (byteCount + sGroup - 1) / sGroup * 4);
    }

    void Add(std::uint8_t byte) {
        mBits = mBits << 8U | byte;
        if (++mCount == sGroup) {
            AddDigits();
        }
    }

    const std::string& Finish() {
        if (mCount != 0) {
            const std::size_t missing = sGroup - mCount;
            mBits <<= 8U * missing;
            AddDigits();
            mText.replace(mText.size() - missing, missing, missing, '=');
        }
        return mText;
    }

private:
    void AddDigits() {
        const std::array<char, 4> digits = {sDigits[mBits >> 18U & 63U],
                                            sDigits[mBits >> 12U & 63U], sDigits[mBits >> 6U & 63U],
                                            sDigits[mBits & 63U]};
        mText.append(digits.data(), digits.size());
        mBits = 0;
        mCount = 0;
    }

    std::string mText;
    std::uint32_t mBits = 0;
    std::size_t mCount = 0;
};

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

TextTable::TextTable() {
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
    Base64Text text(std::to_string(width) + ":", numbers.size() * width);
    for (std::uint64_t number : numbers) {
        for (std::size_t byte = 0; byte < width; ++byte) {
            text.Add(static_cast<std::uint8_t>(number));
            number >>= 8U;
        }
    }
    WriteKey(json, key);
    WriteString(json, text.Finish());
}

void WriteBytes(PackWriter& json, std::string_view key, std::span<const std::uint8_t> bytes) {
    Base64Text text({}, bytes.size());
    for (const std::uint8_t byte : bytes) {
        text.Add(byte);
    }
    WriteKey(json, key);
    WriteString(json, text.Finish());
}

} // namespace Tessel::Norn::Brindle::Program
