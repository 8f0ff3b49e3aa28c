#include "a2l/BitMask.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

constexpr std::int64_t sBitsPerByte = 8;
/// No storage unit is larger, in bytes.
constexpr std::uint64_t sLargestUnit = 64;

std::uint64_t Ones(std::uint64_t count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// The byte of the unit, little-endian, that holds the last bit of a field.
std::int64_t LastByte(const DataModel::Model::Place& place) {
    return (place.bitOffset + static_cast<std::int64_t>(place.bitSize) - 1) / sBitsPerByte;
}

} // namespace

// The number may begin at any byte, even before the field's storage unit if it is larger: in a
// unit of 4 bytes, little-endian, bit 13 is bit 13 of a ULONG, bit 5 of the UBYTE at 1, bit 5 of
// the UWORD at 1 or bit 13 of the UWORD at 0. Big-endian, it is bit 5 of the UBYTE at 2.
std::optional<MaskedPlace> FindMaskedPlace(const DataModel::Model::Place& place, std::uint64_t size,
                                           bool isBigEndian,
                                           std::optional<std::uint64_t> wantedMask) {
    const bool isSane = size >= 1 && size <= sLargestMaskedNumber && place.size >= 1 &&
                        place.size <= sLargestUnit &&
                        place.bitOffset < sLargestUnit * sBitsPerByte && place.bitSize >= 1 &&
                        place.bitSize <= sLargestMaskedNumber * sBitsPerByte;
    if (!isSane) {
        return std::nullopt;
    }
    const auto spare = static_cast<std::int64_t>(place.size) - static_cast<std::int64_t>(size);
    std::optional<MaskedPlace> best;
    // Better is: the wanted mask, then an aligned number, then one that begins nearer.
    std::tuple<bool, bool, std::int64_t> bestRank;
    // A packed field may extend into the byte after its unit.
    const std::int64_t end =
        isBigEndian ? 0 : LastByte(place) + 1 - static_cast<std::int64_t>(size);
    for (std::int64_t start = std::min<std::int64_t>(spare, 0);
         start <= std::max<std::int64_t>({spare, 0, end}); ++start) {
        const std::int64_t behind = isBigEndian ? spare - start : start;
        const std::int64_t shift = place.bitOffset - sBitsPerByte * behind;
        const bool isInside =
            shift >= 0 && static_cast<std::uint64_t>(shift) + place.bitSize <= size * sBitsPerByte;
        if (!isInside) {
            continue;
        }
        const MaskedPlace found{place.address + static_cast<std::uint64_t>(start),
                                Ones(place.bitSize) << static_cast<std::uint64_t>(shift)};
        const std::tuple rank(wantedMask == found.mask, found.address % size == 0,
                              -std::abs(start));
        if (!best || rank > bestRank) {
            best = found;
            bestRank = rank;
        }
    }
    return best;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
