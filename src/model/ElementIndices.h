// How a path names an element of an array: "[1][0]".
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <span>
#include <string>

namespace Tessel::Norn::Brindle::DataModel {

/// Appends the indices of an element, one for each dimension, as `ResolvePath` takes them.
/// @param element position in memory, below the product of the dimensions
/// @param dimensions outermost first, none of them 0, as `Model::Dimensions` gives them for an
///     array with elements
BRINDLE_EXPORT void AppendElementIndices(std::string& path, std::uint64_t element,
                                         std::span<const std::uint32_t> dimensions);

} // namespace Tessel::Norn::Brindle::DataModel
