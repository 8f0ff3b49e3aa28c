// Where a bit field lies for a tool that reads a whole number and masks it.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Bytes of the largest number that a mask is applied to.
inline constexpr std::uint64_t sLargestMaskedNumber = 8;

/// An address and the bits that count in the number that is read there.
struct MaskedPlace {
    std::uint64_t address = 0;
    std::uint64_t mask = 0;
    /// The number lies within the storage unit of the field, or the unit within the number.
    bool isAtUnit = true;
};

/// A number as a tool reads it.
struct MaskedNumber {
    /// Bytes: 1 to 8.
    std::uint64_t size = 0;
    DataModel::ByteOrder order = DataModel::ByteOrder::Little;
    /// It can begin only at multiples of so many bytes.
    std::uint64_t addressUnit = 1;
};

/// The mask that selects exactly the bits of a field in a number at an address.
/// @param place a bit field
/// @param imageOrder byte order of the image
/// @return nothing if the number doesn't hold the whole field, or not in consecutive bits
std::optional<std::uint64_t> MaskAt(std::uint64_t address, const DataModel::Model::Place& place,
                                    DataModel::ByteOrder imageOrder, const MaskedNumber& number);

/// @param wantedMask the mask that the tool uses now, if any: the address where it is right, if
///     there is one, is preferred to all others
/// @return nothing if no number of this kind holds the whole field
std::optional<MaskedPlace> FindMaskedPlace(const DataModel::Model::Place& place,
                                           DataModel::ByteOrder imageOrder,
                                           const MaskedNumber& number,
                                           std::optional<std::uint64_t> wantedMask);

} // namespace Tessel::Norn::Brindle::Program::A2l
