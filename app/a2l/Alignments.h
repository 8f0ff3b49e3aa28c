// How a target aligns its scalars, derived from the structures of an image.
#pragma once

#include "model/DataModel.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Alignments in bytes.
struct Alignments {
    /// For integers of 1, 2, 4 and 8 bytes.
    std::array<std::uint64_t, 4> integers = {1, 2, 4, 8};
    /// For floating point numbers of 2, 4 and 8 bytes.
    std::array<std::uint64_t, 3> floats = {2, 4, 8};
};

/// A scalar is aligned to its size, or to the largest smaller power of two that nine of ten members
/// of its kind keep to: single packed structures don't count.
Alignments AlignmentsOf(const DataModel::Model& model);

} // namespace Tessel::Norn::Brindle::Program::A2l
