// The bits of a structure, arranged so that a C compiler lays them out in the same way: what lies
// side by side in one lane, what overlaps in several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// One thing in a structure.
struct BitSpan {
    /// In bits from the start of the structure, in the order in which a compiler fills its bytes.
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    /// What lies there, by the caller's count.
    std::size_t item = 0;
    /// False for what begins and ends with a byte.
    bool isBitField = false;
};

/// Whole bytes of a structure that share no bit with others.
struct BitCluster {
    /// In bits; multiples of 8.
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    /// Spans that do not overlap, ascending, in each lane; several lanes where spans overlap.
    std::vector<std::vector<BitSpan>> lanes;
};

/// The clusters of spans, ascending. Empty spans are left out.
std::vector<BitCluster> ClustersOf(std::vector<BitSpan> spans);

} // namespace Tessel::Norn::Brindle::Program
