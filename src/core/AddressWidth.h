// How many bits of an address count, from the file through symbols and locations to the host.
#pragma once

#include "core/ReadingManner.h"

#include <cstdint>
#include <limits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The bits of an address that a read keeps. The classic manner knows 32-bit targets only and cuts
/// what lies above 4 GiB.
constexpr std::uint64_t AddressBits(ReadingManner manner) {
    return manner == ReadingManner::Full ? std::numeric_limits<std::uint64_t>::max()
                                         : std::numeric_limits<std::uint32_t>::max();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
