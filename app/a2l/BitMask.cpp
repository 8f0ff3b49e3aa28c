#include "a2l/BitMask.h"

#include "core/BitsPerByte.h"
#include "model/PlaceBytes.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ByteOrder;
using DataModel::ByteSpan;

std::uint64_t Ones(std::uint64_t count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

bool IsPossible(const DataModel::Model::Place& place, const MaskedNumber& number) {
    return DataModel::IsSaneBitField(place) && number.size >= 1 &&
           number.size <= sLargestMaskedNumber && number.addressUnit >= 1;
}

} // namespace

// In a unit of 4 bytes, little-endian, bit 13 is bit 13 of a ULONG, bit 5 of the UBYTE at 1, bit 5
// of the UWORD at 1 or bit 13 of the UWORD at 0. Big-endian, it is bit 5 of the UBYTE at 2.
std::optional<std::uint64_t> MaskAt(std::uint64_t address, const DataModel::Model::Place& place,
                                    ByteOrder imageOrder, const MaskedNumber& number) {
    if (!IsPossible(place, number)) {
        return std::nullopt;
    }
    const ByteSpan bytes = DataModel::BytesOf(place, imageOrder);
    const std::uint64_t before = bytes.address - address;
    // Read in the other byte order, the bits of several bytes are torn apart.
    const bool isTorn = bytes.size > 1 && number.order != imageOrder;
    if (before > number.size || bytes.size > number.size - before || isTorn ||
        address % number.addressUnit != 0) {
        return std::nullopt;
    }
    const std::uint64_t behind = number.size - bytes.size - before;
    const std::uint64_t lowerBytes = number.order == ByteOrder::Big ? behind : before;
    return Ones(place.bitSize) << (lowerBytes * sBitsPerByte + place.bitOffset % sBitsPerByte);
}

// The number may begin at any byte, even before or behind the field's storage unit.
std::optional<MaskedPlace> FindMaskedPlace(const DataModel::Model::Place& place,
                                           ByteOrder imageOrder, const MaskedNumber& number,
                                           std::optional<std::uint64_t> wantedMask) {
    if (!IsPossible(place, number)) {
        return std::nullopt;
    }
    const ByteSpan bytes = DataModel::BytesOf(place, imageOrder);
    // A packed field may need a byte more than its unit has.
    const std::uint64_t unitSize =
        std::max(place.size, (place.bitOffset + place.bitSize - 1) / sBitsPerByte + 1);
    const auto spare = static_cast<std::int64_t>(unitSize) - static_cast<std::int64_t>(number.size);
    std::optional<MaskedPlace> best;
    // Better is: the wanted mask, then a number at the unit, then an aligned one, then one that
    // begins nearer.
    std::tuple<bool, bool, bool, std::int64_t> bestRank;
    const std::uint64_t most = std::min(number.size - 1, bytes.address);
    for (std::uint64_t before = 0; before <= most; ++before) {
        const std::uint64_t address = bytes.address - before;
        const auto mask = MaskAt(address, place, imageOrder, number);
        if (!mask) {
            continue;
        }
        const auto start = static_cast<std::int64_t>(address - place.address);
        const bool isAtUnit =
            start >= std::min<std::int64_t>(spare, 0) && start <= std::max<std::int64_t>(spare, 0);
        const std::tuple rank(wantedMask == mask, isAtUnit, address % number.size == 0,
                              -std::abs(start));
        if (!best || rank > bestRank) {
            best = MaskedPlace{address, *mask, isAtUnit};
            bestRank = rank;
        }
    }
    return best;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
