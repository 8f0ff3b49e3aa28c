// Inserts late nodes into a list in the order of offsets, and into all lists that run in parallel
// with it.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// A node that is inserted. At equal indices, nodes with lower offsets come first.
struct VNodeInsertion {
    /// Index of the first node after it, before anything is inserted.
    std::size_t mIndex = 0;
    VDebugInfoNode* mNode = nullptr;
};

/// Inserts a value for each of these nodes into a list with one value for each node. The existing
/// values are moved in pieces.
/// @param valueOf returns the value of a node
template <typename T, typename ValueOf>
void InsertForEach(std::span<const VNodeInsertion> insertions, std::vector<T>& values,
                   ValueOf&& valueOf) {
    std::vector<T> merged;
    merged.reserve(values.size() + insertions.size());
    auto next = values.cbegin();
    for (const VNodeInsertion& insertion : insertions) {
        const auto end = values.cbegin() + static_cast<std::ptrdiff_t>(insertion.mIndex);
        merged.insert(merged.end(), next, end);
        merged.push_back(valueOf(*insertion.mNode));
        next = end;
    }
    merged.insert(merged.end(), next, values.cend());
    values = std::move(merged);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
