// The indices that name one element of an array of several dimensions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace Tessel::Norn::Brindle::Program::A2l {

/// The indices of an element, as "[1][0]", from its place in memory.
/// @param element below the product of the dimensions, which are outermost first
inline std::string IndicesOf(std::uint64_t element, std::span<const std::uint32_t> dimensions) {
    std::string indices;
    for (std::size_t dimension = dimensions.size(); dimension-- > 0;) {
        indices.insert(0, "[" + std::to_string(element % dimensions[dimension]) + "]");
        element /= dimensions[dimension];
    }
    return indices;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
