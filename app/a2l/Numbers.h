// Numbers in A2L: decimal, or hexadecimal after 0x, with or without a sign.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Addresses of A2L have 32 bits.
inline constexpr std::uint64_t sLargestAddress = 0xFFFFFFFF;

/// True for a decimal digit, whatever the locale.
constexpr bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// The value of an unsigned number of up to 64 bits; nothing for any other text.
std::optional<std::uint64_t> ParseUnsigned(std::string_view text);

/// The value of a number with an optional sign; nothing for any other text.
std::optional<std::int64_t> ParseSigned(std::string_view text);

/// True if a word begins like a number.
bool LooksNumeric(std::string_view text);

/// How a number is written, taken from the older number in its place.
class Notation {
public:
    /// @param prefersUpperCase what to use if the older number has no hexadecimal letter
    Notation(std::string_view older, bool prefersUpperCase);

    /// The number in the same base, case and width; wider if it does not fit.
    [[nodiscard]] std::string Write(std::uint64_t number) const;

private:
    /// "0x" or "0X"; empty for a decimal number.
    std::string_view mPrefix;
    std::size_t mWidth = 0;
    bool mIsUpperCase = true;
};

/// Such as "0x1F".
std::string UpperHexadecimal(std::uint64_t number);

/// The case of the hexadecimal letters of a number: true for upper case, nothing without letters.
std::optional<bool> LetterCase(std::string_view number);

} // namespace Tessel::Norn::Brindle::Program::A2l
