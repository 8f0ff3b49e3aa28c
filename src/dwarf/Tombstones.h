// What linkers write for the address of a thing that they discarded, whose debug information they
// leave in place:
//
//   GNU ld            0
//   gold              0 for a whole section that it discarded, plus the place in it
//   lld               all ones in the width of an address, or one less
//
// All of them are valid addresses as well: the vector table of a controller lies at 0, and a port
// may.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The tombstones of a unit, as its file has them.
/// @param addressSize bytes of an address in the unit; 0, unknown, counts as 4
constexpr std::array<std::uint64_t, 3> TombstonesOf(std::uint32_t addressSize) {
    constexpr std::uint64_t all64Bits = std::numeric_limits<std::uint64_t>::max();
    const std::uint32_t size = addressSize != 0 ? addressSize : 4;
    const std::uint64_t allOnes =
        size < sizeof all64Bits ? (std::uint64_t{1} << (size * 8)) - 1 : all64Bits;
    return {0, allOnes, allOnes - 1};
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
