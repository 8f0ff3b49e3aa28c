// The size of a byte, for code that counts places in bits.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle {

/// Wide enough that an offset of 32 bits times this doesn't overflow.
inline constexpr std::int64_t sBitsPerByte = 8;

} // namespace Tessel::Norn::Brindle
