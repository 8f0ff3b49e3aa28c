#include "BitLanes.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// No compiler lays out this many overlapping members in one place.
constexpr std::size_t sMostLanes = 256;

void AddToLane(BitCluster& cluster, const BitSpan& span) {
    for (std::vector<BitSpan>& lane : cluster.lanes) {
        if (lane.back().end <= span.start) {
            lane.push_back(span);
            return;
        }
    }
    if (cluster.lanes.size() < sMostLanes) {
        cluster.lanes.push_back({span});
    }
}

} // namespace

std::vector<BitCluster> ClustersOf(std::vector<BitSpan> spans) {
    std::erase_if(spans, [](const BitSpan& span) { return span.start >= span.end; });
    std::ranges::stable_sort(spans, {}, &BitSpan::start);
    std::vector<BitCluster> clusters;
    for (const BitSpan& span : spans) {
        const std::uint64_t start = span.start / sBitsOfByte * sBitsOfByte;
        const std::uint64_t end = (span.end + sBitsOfByte - 1) / sBitsOfByte * sBitsOfByte;
        if (clusters.empty() || clusters.back().end <= start) {
            clusters.push_back({start, end, {}});
        }
        clusters.back().end = std::max(clusters.back().end, end);
        AddToLane(clusters.back(), span);
    }
    return clusters;
}

} // namespace Tessel::Norn::Brindle::Program
