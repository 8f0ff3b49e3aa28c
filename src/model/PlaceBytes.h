// Which bytes of the target's memory hold a place. The lookup by address and the decoding of values
// ask.
#pragma once

#include "../core/Export.h"
#include "../host/ImageDescription.h"
#include "../model/DataModel.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// Bytes one after the other.
struct ByteSpan {
    /// Of the first byte.
    std::uint64_t address = 0;
    /// In bytes.
    std::uint64_t size = 0;

    /// True if the byte at an address is one of them.
    [[nodiscard]] bool Holds(std::uint64_t byteAddress) const {
        return byteAddress >= address && byteAddress - address < size;
    }
};

/// True if position and width of a bit field can be true: 1 to 64 bits in a storage unit of at most
/// 64 bytes, or at most one byte after it. Damaged files give other values.
BRINDLE_EXPORT bool IsSaneBitField(const Model::Place& place);

/// The bytes of a place: of a sane bit field only those that hold some of its bits, of any other
/// place all `size` bytes. The least significant bit of the field is bit `bitOffset % 8` of the
/// least significant of these bytes, which is the first one of a little-endian image and the last
/// one of a big-endian image.
BRINDLE_EXPORT ByteSpan BytesOf(const Model::Place& place, ByteOrder byteOrder);

} // namespace Tessel::Norn::Brindle::DataModel
