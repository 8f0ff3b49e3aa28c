// The nodes of a section by the section offsets of their debug entries. It resolves all references,
// and the passes walk it in ascending offset order, either whole or by the kind of node that
// concerns them.
//
// Nodes are in a flat list, and a node is identified by its place in the list. For entries at the
// section offsets 0x0b, 0x2d, 0x34, 0x52 and 0x59:
//
//     place         0      1      2      3      4
//     mNodes      unit   base  struct member    var
//     mMarks       ...    ...    ...    ...    ...     what passes have to do there
//     mPlaces     CompileUnits: 0   GroupedTypes: 2   MembersAndEnumerations: 3   Variables: 4
//
//     mStretches  bytes 0x00 to 0x3f: bits 0x0b, 0x2d, 0x34 set, first place 0
//                 bytes 0x40 to 0x7f: bits 0x12, 0x19 set, first place 3
//
// The node at 0x59 is found without a search: stretch 0x59 / 64 = 1 has bit 0x59 % 64 = 0x19 set,
// and one set bit (0x12) precedes it, so its place is 3 + 1 = 4. A hash table would take more
// memory, and every lookup would miss the cache.
#pragma once

#include "core/Prefetch.h"
#include "nodes/VNodeArena.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// Nodes that passes pick out from all others. A node is in at most one group.
enum class NodeGroup : std::uint8_t {
    CompileUnits,
    Variables,
    /// See `IsGroupedType`.
    GroupedTypes,
    MembersAndEnumerations,
    /// Rvalue references and pointers to members.
    OtherPointers,
    None
};

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

/// Section offset of a debug entry to its node.
///
/// Entries come in the order of reading, which is nearly always the order of offsets: the map is a
/// flat table with an index over it. Only entries out of order, as in overlapping units, are kept
/// aside until the first lookup. Nodes are borrowed; they lie in an arena.
class VDieNodeMap {
public:
    using Link = VNodeLink<VDebugInfoNode>;

    VDieNodeMap();
    ~VDieNodeMap();
    VDieNodeMap(const VDieNodeMap&) = delete;
    VDieNodeMap& operator=(const VDieNodeMap&) = delete;
    VDieNodeMap(VDieNodeMap&&) = delete;
    VDieNodeMap& operator=(VDieNodeMap&&) = delete;

    /// Makes room for about this many entries.
    void Reserve(std::size_t count) {
        mNodes.reserve(count);
        mMarks.reserve(count);
    }

    /// Forgets all nodes, and the entries that have none.
    void Clear();
    /// Adds a node under its offset. If the offset is taken, its first node stays.
    void Insert(std::uint32_t sectionOffset, VDebugInfoNode* node);
    /// Adds many nodes in ascending order of their offsets, all of them new.
    void InsertAll(std::span<VDebugInfoNode* const> nodes);

    /// Counts an entry that gets no node for now.
    void Skip() { ++mSkippedCount; }
    /// Counts that a skipped entry gets its node after all.
    void TakeBack() { --mSkippedCount; }
    [[nodiscard]] std::size_t SkippedCount() const { return mSkippedCount; }

    /// The node of exactly this offset, or null. Records that it is referred to.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const {
        VDebugInfoNode* node = FindUnskipped(sectionOffset);
        if (node == nullptr) {
            mMissing.push_back(sectionOffset);
        }
        return node;
    }
    /// As `Find`, for callers that ignore skipped entries.
    [[nodiscard]] VDebugInfoNode* FindUnskipped(std::uint32_t sectionOffset) const;
    /// As `Find`, but records nothing.
    [[nodiscard]] VDebugInfoNode* Peek(std::uint32_t sectionOffset) const;

    /// The last node before an offset, null if there is none.
    [[nodiscard]] VDebugInfoNode* LastBefore(std::uint32_t sectionOffset) const;

    /// Records an offset as asked for, without counting a reference to it.
    void Announce(std::uint32_t sectionOffset) const {
        if (Peek(sectionOffset) == nullptr) {
            mMissing.push_back(sectionOffset);
        }
    }
    [[nodiscard]] std::size_t MissingCount() const { return mMissing.size(); }
    /// Offsets that `Find` was asked for without having their node, since the last call.
    [[nodiscard]] std::vector<std::uint32_t> TakeMissing() const {
        return std::exchange(mMissing, {});
    }
    void ForgetMissing() const { mMissing.clear(); }

    /// Records that a node of the map is referred to by a link that `Find` did not resolve.
    void NoteReferred(const VDebugInfoNode& node) const;
    void NoteReferred(std::uint32_t sectionOffset) const {
        static_cast<void>(FindUnskipped(sectionOffset));
    }

    /// Records references by links that `Find` did not resolve, for 64 bytes of the section.
    /// @param stretch index of these bytes; the bits say which are referred to, once or again
    /// @return true if there is a node for each bit
    bool NoteReferred(std::size_t stretch, std::uint64_t once, std::uint64_t again) const;
    /// While this is off, `Find` doesn't count what it finds as referred to.
    void CountReferences(bool isOn) { mCountsReferences = isOn; }

    /// Marks a node of the map as reached.
    /// @return false if it was marked before, or is in no map
    bool Reach(const VDebugInfoNode& node) const;

    /// True if at most one link is known to lead to a node of the map.
    [[nodiscard]] bool IsReferredOnce(const VDebugInfoNode& node) const;

    /// All nodes in ascending order of their offsets. The view is valid until the next `Insert`.
    [[nodiscard]] std::span<const Link> InOffsetOrder() const;

    /// Places in `InOffsetOrder` of the nodes of a group, ascending. The view is valid until the
    /// next `Insert`.
    [[nodiscard]] std::span<const std::uint32_t> PlacesOf(NodeGroup group) const;

    /// Calls `visit` with each of these places of `InOffsetOrder`, and prefetches the nodes, which
    /// it is going to read.
    template <typename Visitor>
    void ForEachPlace(std::span<const std::uint32_t> places, Visitor&& visit) const {
        for (std::size_t index = 0; index < places.size(); ++index) {
            if (index + kNodesAhead < places.size()) {
                Prefetch(places[index + kNodesAhead]);
            }
            visit(places[index]);
        }
    }

    /// Calls `visit` with each node of a group, in ascending order of their offsets.
    template <typename Visitor>
    void ForEachOf(NodeGroup group, Visitor&& visit) const {
        ForEachPlace(PlacesOf(group), [&](std::uint32_t place) { visit(*mNodes[place]); });
    }

    /// Calls `visit` with each node at which a pass has this task, in ascending order of their
    /// offsets.
    template <typename Visitor>
    void ForEachWith(NodeTask task, Visitor&& visit) const {
        Settle();
        ForEachIf([task](NodeMarks marks) { return Has(marks, task); }, visit);
    }

    /// Calls `visit` with each node that is known to be referred to and has references itself, in
    /// ascending order of their offsets.
    template <typename Visitor>
    void ForEachReferredAndReferring(Visitor&& visit) const {
        Settle();
        ForEachIf(
            [](NodeMarks marks) {
                return (marks & kIsReferred) != 0 && Has(marks, NodeTask::References);
            },
            visit);
    }

    /// Number of entries, including skipped ones.
    [[nodiscard]] std::size_t Size() const {
        return mNodes.size() + mOutOfOrder.size() + mSkippedCount;
    }
    /// Number of entries before the node at a place of `InOffsetOrder`, including skipped ones.
    [[nodiscard]] std::size_t EntriesBefore(std::size_t place) const;
    /// See `VDebugInfoNode::IsBitFieldWithoutSize`.
    [[nodiscard]] bool HasBitFieldsWithoutSize() const { return mHasBitFieldsWithoutSize; }

    /// Bytes of the section that share a record of the index.
    static constexpr std::uint32_t kStretchSize = 64;

private:
    /// The tasks of a node, and the marks below.
    using NodeMarks = std::uint8_t;
    static constexpr NodeMarks kIsReached = 0x10;
    static constexpr NodeMarks kIsReferredAgain = 0x20;
    static constexpr NodeMarks kIsReferred = 0x40;

    static bool Has(NodeMarks marks, NodeTask task) {
        return (marks & static_cast<NodeMarks>(task)) != 0;
    }

    /// How many nodes ahead walks prefetch.
    static constexpr std::size_t kNodesAhead = 16;

    BRINDLE_FETCHES void Prefetch(std::size_t place) const {
        Brindle::Prefetch(mNodes[place].Get());
    }

    template <typename Condition, typename Visitor>
    void ForEachIf(Condition&& condition, Visitor&& visit) const {
        for (std::size_t place = 0; place < mNodes.size(); ++place) {
            if (place + kNodesAhead < mNodes.size() && condition(mMarks[place + kNodesAhead])) {
                Prefetch(place + kNodesAhead);
            }
            if (condition(mMarks[place])) {
                visit(*mNodes[place]);
            }
        }
    }

    /// 64 bytes of the section: a bit for each byte at which an entry begins, in two halves, and
    /// the place of the first entry in these bytes or after them.
    struct Stretch {
        std::array<std::uint32_t, 2> entryStarts{};
        std::uint32_t firstPlace = 0;

        [[nodiscard]] std::uint64_t Starts() const {
            return entryStarts[0] | std::uint64_t{entryStarts[1]} << 32U;
        }
    };

    static constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);
    [[nodiscard]] std::size_t PlaceOf(std::uint32_t sectionOffset) const;
    /// Counts nodes in the flat table.
    [[nodiscard]] std::size_t CountBefore(std::uint32_t sectionOffset) const;
    [[nodiscard]] bool HasEntryAt(std::uint32_t sectionOffset) const;
    void Append(VDebugInfoNode* node) const;
    void Append(VDebugInfoNode* node, NodeMarks marks) const;
    void Settle() const;
    void MergeOutOfOrder() const;
    /// Merges nodes into the flat table.
    void Merge(std::span<VDebugInfoNode* const> late) const;

    // Lookups complete what insertions left open, hence mutable.
    mutable std::vector<Link> mNodes;
    mutable std::map<std::uint32_t, VDebugInfoNode*> mOutOfOrder;
    mutable std::vector<Stretch> mStretches;
    mutable std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)>
        mPlaces;
    mutable std::vector<NodeMarks> mMarks;
    mutable std::vector<std::uint32_t> mMissing;
    mutable bool mHasBitFieldsWithoutSize = false;
    mutable bool mIsSettled = false;
    bool mCountsReferences = true;
    std::size_t mSkippedCount = 0;
    std::int64_t mLastOffset = -1;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
