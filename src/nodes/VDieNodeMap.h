// The nodes of a section by the section offsets of their debug entries.
//
// Nodes are in a flat list, and a node is identified by its index in the list. For entries at the
// section offsets 0x0b, 0x2d, 0x34, 0x52 and 0x59:
//
//     index         0      1      2      3      4
//     mNodes      unit   base  struct member    var
//
//     mStretches  bytes 0x00 to 0x3f: bits 0x0b, 0x2d, 0x34 set, first index 0
//                 bytes 0x40 to 0x7f: bits 0x12, 0x19 set, first index 3
//
// The node at 0x59 is found without a search: stretch 0x59 / 64 = 1 has bit 0x59 % 64 = 0x19 set,
// and one set bit (0x12) precedes it, so its index is 3 + 1 = 4. A hash table would take more
// memory, and every lookup would miss the cache.
#pragma once

#include "nodes/NodeInsertion.h"
#include "nodes/VNodeArena.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// From the section offset of a debug entry to its node, and to the node's index. Nodes are
/// borrowed; they lie in an arena.
class VDieNodeMap {
public:
    using Link = VNodeLink<VDebugInfoNode>;
    static constexpr std::size_t kNoIndex = static_cast<std::size_t>(-1);

    /// Makes room for about this many nodes.
    void Reserve(std::size_t count) { mNodes.reserve(count); }
    void Clear();
    /// Adds a node after all others.
    void Append(VDebugInfoNode& node);
    /// Inserts nodes in ascending order of their offsets. If an offset is taken, its node stays.
    /// @return what was inserted, and where
    std::vector<VNodeInsertion> Insert(std::span<VDebugInfoNode* const> nodes);

    /// The node of exactly this offset, or null.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const {
        const std::size_t index = IndexOf(sectionOffset);
        return index != kNoIndex ? mNodes[index].Get() : nullptr;
    }
    /// The index of the node of exactly this offset, or `kNoIndex`.
    [[nodiscard]] std::size_t IndexOf(std::uint32_t sectionOffset) const {
        const Stretch* stretch = StretchOf(sectionOffset);
        return stretch != nullptr && stretch->Has(sectionOffset) ? stretch->IndexOf(sectionOffset)
                                                                 : kNoIndex;
    }
    /// The last node before an offset, null if there is none.
    [[nodiscard]] VDebugInfoNode* LastBefore(std::uint32_t sectionOffset) const {
        const std::size_t count = CountBefore(sectionOffset);
        return count != 0 ? mNodes[count - 1].Get() : nullptr;
    }
    /// All nodes in ascending order of their offsets. The view is valid until the next change.
    [[nodiscard]] std::span<const Link> InOffsetOrder() const { return mNodes; }
    [[nodiscard]] std::size_t Size() const { return mNodes.size(); }

private:
    static constexpr std::uint32_t kStretchSize = 64;
    static constexpr std::uint32_t kHalfSize = kStretchSize / 2;

    /// 64 bytes of the section: a bit for each byte at which an entry begins, in two halves, and
    /// the index of the first entry in these bytes or after them.
    struct Stretch {
        std::array<std::uint32_t, 2> entryStarts{};
        std::uint32_t firstIndex = 0;

        void Add(std::uint32_t sectionOffset) {
            entryStarts[sectionOffset / kHalfSize % 2] |= 1U << (sectionOffset % kHalfSize);
        }
        [[nodiscard]] std::uint64_t Starts() const {
            return entryStarts[0] | std::uint64_t{entryStarts[1]} << 32U;
        }
        [[nodiscard]] bool Has(std::uint32_t sectionOffset) const {
            return (Starts() & BitOf(sectionOffset)) != 0;
        }
        /// The index of the first entry at or after the offset.
        [[nodiscard]] std::size_t IndexOf(std::uint32_t sectionOffset) const {
            return firstIndex +
                   static_cast<std::size_t>(std::popcount(Starts() & (BitOf(sectionOffset) - 1)));
        }
        static std::uint64_t BitOf(std::uint32_t sectionOffset) {
            return std::uint64_t{1} << (sectionOffset % kStretchSize);
        }
    };

    /// Null after the last node.
    [[nodiscard]] const Stretch* StretchOf(std::uint32_t sectionOffset) const {
        const std::size_t index = sectionOffset / kStretchSize;
        return index < mStretches.size() ? &mStretches[index] : nullptr;
    }
    [[nodiscard]] std::size_t CountBefore(std::uint32_t sectionOffset) const {
        const Stretch* stretch = StretchOf(sectionOffset);
        return stretch != nullptr ? stretch->IndexOf(sectionOffset) : mNodes.size();
    }
    void AddToStretch(std::uint32_t sectionOffset, std::size_t index);

    std::vector<Link> mNodes;
    std::vector<Stretch> mStretches;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
