// The nodes of a section by the section offsets of their debug entries. All references are resolved
// through it, and the passes walk it in ascending offset order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// Section offset of a debug entry to its node.
///
/// Entries come in the order of reading, which is nearly always the order of offsets: the map is a
/// flat table with a sparse index over it, and only what comes out of order, as overlapping units
/// do, is kept aside until the first question. Nodes are borrowed.
class VDieNodeMap {
public:
    VDieNodeMap();
    ~VDieNodeMap();
    VDieNodeMap(const VDieNodeMap&) = delete;
    VDieNodeMap& operator=(const VDieNodeMap&) = delete;
    VDieNodeMap(VDieNodeMap&&) = delete;
    VDieNodeMap& operator=(VDieNodeMap&&) = delete;

    /// Makes room for about this many entries.
    void Reserve(std::size_t count) { mNodes.reserve(count); }

    /// Adds a node under its offset. An offset that is there already keeps its first node.
    void Insert(std::uint32_t sectionOffset, VDebugInfoNode* node);

    /// The node of exactly this offset, or null.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const;

    /// All nodes in ascending order of their offsets. The view ends with the next `Insert`.
    [[nodiscard]] std::span<VDebugInfoNode* const> InOffsetOrder() const;

    [[nodiscard]] std::size_t Size() const { return mNodes.size() + mOutOfOrder.size(); }

private:
    void Settle() const;
    void MergeOutOfOrder() const;
    void BuildIndex() const;

    // Questions settle what insertions left open, hence mutable.
    mutable std::vector<VDebugInfoNode*> mNodes;
    mutable std::map<std::uint32_t, VDebugInfoNode*> mOutOfOrder;
    /// For each stretch of 32 bytes of the section the index of the first node in or behind it.
    mutable std::vector<std::uint32_t> mFirstInStretch;
    mutable bool mIsSettled = false;
    std::int64_t mLastOffset = -1;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
