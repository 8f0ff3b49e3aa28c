// Which bytes of the target's memory hold a place. Used by the lookup by address and by the
// decoding of values.
#pragma once

#include "../core/Export.h"
#include "../host/ImageDescription.h"
#include "../model/DataModel.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// Consecutive bytes.
struct ByteSpan {
    /// Address of the first byte.
    std::uint64_t address = 0;
    /// Size in bytes.
    std::uint64_t size = 0;

    /// True if the byte at an address is one of them.
    [[nodiscard]] bool Holds(std::uint64_t byteAddress) const {
        return byteAddress >= address && byteAddress - address < size;
    }
};

/// True if position and width of a bit field are plausible: 1 to 64 bits in a storage unit of at
/// most 64 bytes, or at most one byte after it. Damaged files give other values.
BRINDLE_EXPORT bool IsSaneBitField(const Model::Place& place);

/// The bytes of a place: for a sane bit field only those that hold some of its bits, for any other
/// place all `size` bytes. The least significant bit of the field is bit `bitOffset % 8` of the
/// least significant of these bytes, which is the first in a little-endian image and the last in a
/// big-endian image.
BRINDLE_EXPORT ByteSpan BytesOf(const Model::Place& place, ByteOrder byteOrder);

} // namespace Tessel::Norn::Brindle::DataModel
