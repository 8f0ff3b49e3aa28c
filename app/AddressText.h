// Addresses as users write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Whether a text can only be meant as an address: no name begins with a digit.
bool IsAddress(std::string_view text);

/// The address that a text gives in hexadecimal digits of either case after 0x or 0X.
/// @return nothing for any other text, and for a number of more than 64 bits
std::optional<std::uint64_t> ParseAddress(std::string_view text);

} // namespace Tessel::Norn::Brindle::Program
