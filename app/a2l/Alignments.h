// How a target aligns its scalars, found out from the structures of an image.
#pragma once

#include "model/DataModel.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Alignments in bytes.
struct Alignments {
    /// Of integers of 1, 2, 4 and 8 bytes.
    std::array<std::uint64_t, 4> integers = {1, 2, 4, 8};
    /// Of floating point numbers of 2, 4 and 8 bytes.
    std::array<std::uint64_t, 3> floats = {2, 4, 8};
};

/// A scalar is aligned to its size, or to the largest smaller power of two that nearly all members
/// of its kind keep to: single packed structures count for nothing.
Alignments AlignmentsOf(const DataModel::Model& model);

} // namespace Tessel::Norn::Brindle::Program::A2l
