// Reads terminated texts up to a length limit.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The first `limit` characters of a terminated text, or all of it. Reads no byte beyond those.
inline std::string_view CutText(const char* text, std::size_t limit) {
    const void* terminator = std::memchr(text, 0, limit);
    return {text, terminator != nullptr
                      ? static_cast<std::size_t>(static_cast<const char*>(terminator) - text)
                      : limit};
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
