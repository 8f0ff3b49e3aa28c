// The tasks of the passes at each node, and what they have found out about it.
#pragma once

#include "nodes/NodeInsertion.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What the passes have to do at a node, known when it is added: a pass then skips all nodes that
/// don't concern it. A set of bits.
enum class NodeTask : std::uint8_t {
    None = 0,
    Name = 1,
    References = 2,
    Size = 4,
};

constexpr NodeTask operator|(NodeTask left, NodeTask right) {
    return static_cast<NodeTask>(static_cast<std::uint8_t>(left) |
                                 static_cast<std::uint8_t>(right));
}

/// A byte of marks for each node, by its index in `VDieNodeMap`.
class VNodeMarks {
public:
    /// Makes room for about this many nodes.
    void Reserve(std::size_t count) { mMarks.reserve(count); }
    void Clear() { mMarks.clear(); }
    /// Adds the marks of a node after all others.
    void Append(NodeTask tasks) { mMarks.push_back(static_cast<std::uint8_t>(tasks)); }
    /// Inserts nodes as `VDieNodeMap::Insert` did.
    void Insert(std::span<const VNodeInsertion> insertions);

    [[nodiscard]] bool Has(std::size_t index, NodeTask task) const {
        return (mMarks[index] & static_cast<std::uint8_t>(task)) != 0;
    }

    /// Records that one more entry, or several more, refer to the node.
    void NoteReferred(std::size_t index, bool isBySeveral = false) {
        if (isBySeveral || IsReferred(index)) {
            Set(index, kIsReferredAgain);
        }
        Set(index, kIsReferred);
    }
    [[nodiscard]] bool IsReferred(std::size_t index) const {
        return (mMarks[index] & kIsReferred) != 0;
    }
    [[nodiscard]] bool IsReferredAgain(std::size_t index) const {
        return (mMarks[index] & kIsReferredAgain) != 0;
    }

    /// Marks the node as reached.
    /// @return false if it was marked before
    bool Reach(std::size_t index) {
        const bool isNew = (mMarks[index] & kIsReached) == 0;
        Set(index, kIsReached);
        return isNew;
    }

private:
    // Beside the bits of the tasks.
    static constexpr std::uint8_t kIsReached = 0x10;
    static constexpr std::uint8_t kIsReferredAgain = 0x20;
    static constexpr std::uint8_t kIsReferred = 0x40;

    void Set(std::size_t index, std::uint8_t bits) {
        mMarks[index] = static_cast<std::uint8_t>(mMarks[index] | bits);
    }

    std::vector<std::uint8_t> mMarks;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
