// The bits of a structure, arranged so that a C compiler reproduces the layout: adjacent members
// share a lane, overlapping ones are in different lanes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

inline constexpr std::uint64_t sBitsOfByte = 8;

/// One thing in a structure.
struct BitSpan {
    /// In bits from the start of the structure, in the order in which a compiler fills its bytes.
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    /// Index of the member in the caller's list.
    std::size_t item = 0;
    /// False for a member that begins and ends at a byte.
    bool isBitField = false;
};

/// Whole bytes of a structure that share no bit with others.
struct BitCluster {
    /// In bits; multiples of 8.
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    /// In each lane, spans in ascending order that don't overlap; several lanes if spans overlap.
    std::vector<std::vector<BitSpan>> lanes;
};

/// The clusters of spans, ascending. Empty spans are left out.
std::vector<BitCluster> ClustersOf(std::vector<BitSpan> spans);

} // namespace Tessel::Norn::Brindle::Program
