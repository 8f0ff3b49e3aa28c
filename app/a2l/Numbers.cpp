#include "a2l/Numbers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <limits>
#include <system_error>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

constexpr std::size_t sPrefixLength = 2;

bool IsHexadecimal(std::string_view text) {
    return text.size() > sPrefixLength && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

} // namespace

std::optional<std::uint64_t> ParseUnsigned(std::string_view text) {
    const bool isHexadecimal = IsHexadecimal(text);
    const std::string_view digits = isHexadecimal ? text.substr(sPrefixLength) : text;
    std::uint64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number, isHexadecimal ? 16 : 10);
    const bool isNumber = error == std::errc() && rest == end;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> ParseSigned(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const std::optional<std::uint64_t> magnitude = ParseUnsigned(text);
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!magnitude || *magnitude > most) {
        return std::nullopt;
    }
    const auto value = static_cast<std::int64_t>(*magnitude);
    return isNegative ? -value : value;
}

bool LooksNumeric(std::string_view text) {
    const std::size_t start = text.find_first_not_of("+-");
    return start <= 1 && text[start] >= '0' && text[start] <= '9';
}

std::optional<bool> LetterCase(std::string_view number) {
    if (!IsHexadecimal(number)) {
        return std::nullopt;
    }
    const std::size_t letter = number.find_first_of("abcdefABCDEF", sPrefixLength);
    if (letter == std::string_view::npos) {
        return std::nullopt;
    }
    return number[letter] <= 'F';
}

Notation::Notation(std::string_view older, bool prefersUpperCase) {
    if (IsHexadecimal(older)) {
        mPrefix = older[1] == 'X' ? "0X" : "0x";
        mWidth = older.size() - sPrefixLength;
        mIsUpperCase = LetterCase(older).value_or(prefersUpperCase);
    } else if (older.starts_with('0')) {
        // Only leading zeros show that a decimal number has a fixed width.
        mWidth = older.size();
    }
}

std::string Notation::Write(std::uint64_t number) const {
    std::array<char, 20> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                            mPrefix.empty() ? 10 : 16);
    const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    std::string result(mPrefix);
    result.append(mWidth - std::min(mWidth, text.size()), '0').append(text);
    if (mIsUpperCase) {
        std::transform(result.begin() + static_cast<std::ptrdiff_t>(mPrefix.size()), result.end(),
                       result.begin() + static_cast<std::ptrdiff_t>(mPrefix.size()),
                       [](unsigned char digit) { return static_cast<char>(std::toupper(digit)); });
    }
    return result;
}

std::string UpperHexadecimal(std::uint64_t number) {
    return Notation("0x0", true).Write(number);
}

} // namespace Tessel::Norn::Brindle::Program::A2l
