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
};

/// @param place a bit field
/// @param size bytes of the number that the tool reads: 1 to 8
/// @param isBigEndian its byte order, that of the image
/// @param wantedMask the mask that the tool uses now, if any: a place where it fits is preferred to
///     one where the number is aligned
/// @return nothing if no number of the size holds the whole field
std::optional<MaskedPlace> FindMaskedPlace(const DataModel::Model::Place& place, std::uint64_t size,
                                           bool isBigEndian,
                                           std::optional<std::uint64_t> wantedMask);

} // namespace Tessel::Norn::Brindle::Program::A2l
