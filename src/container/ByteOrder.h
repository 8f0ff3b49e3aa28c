// Reads integers from bytes, in either byte order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The integer that begins at `bytes`, least significant byte first.
template <typename Integer>
Integer DecodeLittleEndian(const std::uint8_t* bytes) {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < sizeof(Integer); ++index) {
        value |= std::uint64_t{bytes[index]} << (8 * index);
    }
    return static_cast<Integer>(value);
}

/// The integer that begins at `bytes`, most significant byte first.
template <typename Integer>
Integer DecodeBigEndian(const std::uint8_t* bytes) {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < sizeof(Integer); ++index) {
        value = (value << 8U) | bytes[index];
    }
    return static_cast<Integer>(value);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
