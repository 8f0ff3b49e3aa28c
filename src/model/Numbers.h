// Small arithmetic of the data model's memory: halves of numbers, positions in lists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace Tessel::Norn::Brindle::DataModel {

constexpr std::uint32_t LowerHalf(std::uint64_t number) {
    return static_cast<std::uint32_t>(number);
}

constexpr std::uint32_t UpperHalf(std::uint64_t number) {
    return static_cast<std::uint32_t>(number >> 32U);
}

constexpr std::uint64_t Joined(std::uint32_t upper, std::uint32_t lower) {
    return (std::uint64_t{upper} << 32U) | lower;
}

/// A position as the 32 bits in which it is kept.
/// @throws std::length_error beyond 2^32 - 1
inline std::uint32_t AsPosition(std::size_t position) {
    if (position > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("data model is full");
    }
    return static_cast<std::uint32_t>(position);
}

} // namespace Tessel::Norn::Brindle::DataModel
