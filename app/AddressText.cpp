#include "AddressText.h"

#include <charconv>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

bool IsAddress(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

std::optional<std::uint64_t> ParseAddress(std::string_view text) {
    if (!text.starts_with("0x") && !text.starts_with("0X")) {
        return std::nullopt;
    }
    text.remove_prefix(2);
    std::uint64_t address = 0;
    const char* const limit = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), limit, address, 16);
    const bool isNumber = error == std::errc() && end == limit;
    return isNumber ? std::optional(address) : std::nullopt;
}

} // namespace Tessel::Norn::Brindle::Program
