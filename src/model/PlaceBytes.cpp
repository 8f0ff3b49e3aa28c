#include "model/PlaceBytes.h"

#include "core/BitsPerByte.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

constexpr std::uint64_t sWidestField = 64;
constexpr std::uint64_t sLargestUnit = 64;

} // namespace

bool IsSaneBitField(const Model::Place& place) {
    return place.isBitField && place.bitSize >= 1 && place.bitSize <= sWidestField &&
           place.size >= 1 && place.size <= sLargestUnit &&
           place.bitOffset + place.bitSize <= (place.size + 1) * sBitsPerByte;
}

// Bit 13 of a 4-byte unit lies in byte 1 of a little-endian unit, and in byte 2 of a big-endian
// unit.
ByteSpan BytesOf(const Model::Place& place, ByteOrder byteOrder) {
    if (!IsSaneBitField(place)) {
        return {place.address, place.size};
    }
    const std::uint64_t first = place.bitOffset / sBitsPerByte;
    const std::uint64_t last = (place.bitOffset + place.bitSize - 1) / sBitsPerByte;
    // A packed field may need a byte more than its unit has.
    const std::uint64_t unitSize = std::max(place.size, last + 1);
    const std::uint64_t start = byteOrder == ByteOrder::Big ? unitSize - 1 - last : first;
    return {place.address + start, last - first + 1};
}

} // namespace Tessel::Norn::Brindle::DataModel
