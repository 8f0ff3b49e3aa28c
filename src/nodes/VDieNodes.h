// All nodes of a section, in the order of their offsets: three tables that run in parallel. For
// five entries:
//
//     index            0      1      2      3      4
//     VDieNodeMap    unit   base  struct member    var     which node has an offset
//     VNodeGroups    CompileUnits: 0   GroupedTypes: 2   MembersAndEnumerations: 3   Variables: 4
//     VNodeMarks      ...    ...    ...    ...    ...      what passes have to do there
//
// Passes walk the nodes, either all or only the kind of node that concerns them.
#pragma once

#include "core/Prefetch.h"
#include "nodes/VDieNodeMap.h"
#include "nodes/VNodeGroups.h"
#include "nodes/VNodeMarks.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The nodes of a section. Reading adds them one after the other, `Complete` ends that, and then
/// passes use them. Nodes are borrowed; they lie in an arena.
class VDieNodes {
public:
    using Link = VDieNodeMap::Link;

    VDieNodes();
    ~VDieNodes();
    VDieNodes(const VDieNodes&) = delete;
    VDieNodes& operator=(const VDieNodes&) = delete;
    VDieNodes(VDieNodes&&) = delete;
    VDieNodes& operator=(VDieNodes&&) = delete;

    /// @name Adding
    /// @{

    /// Makes room for about this many nodes.
    void Reserve(std::size_t count);
    /// Forgets all nodes.
    void Clear();
    /// Adds a node. If its offset is taken, the first node stays. Entries come in the order of
    /// their offsets, except where units overlap: late nodes can be found only after the next
    /// `Complete`.
    void Insert(VDebugInfoNode& node);
    /// Adds the late nodes. Call it when a section is read.
    void Complete();
    /// Adds many nodes in ascending order of their offsets. If an offset is taken, its node
    /// stays.
    void InsertAll(std::span<VDebugInfoNode* const> nodes);

    /// @}
    /// @name Finding
    /// @{

    /// The node of exactly this offset, or null.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const {
        return mMap.Find(sectionOffset);
    }
    /// The last node before an offset, null if there is none.
    [[nodiscard]] VDebugInfoNode* LastBefore(std::uint32_t sectionOffset) const {
        return mMap.LastBefore(sectionOffset);
    }
    /// All nodes in ascending order of their offsets. The view is valid until the next node is
    /// added.
    [[nodiscard]] std::span<const Link> InOffsetOrder() const { return mMap.InOffsetOrder(); }
    /// Indices in `InOffsetOrder` of the nodes of a group, ascending. The view is valid until the
    /// next node is added.
    [[nodiscard]] std::span<const std::uint32_t> IndicesOf(NodeGroup group) const {
        return mGroups.IndicesOf(group);
    }
    /// Number of nodes, without those that came late since the last `Complete`.
    [[nodiscard]] std::size_t Size() const { return mMap.Size(); }
    /// See `VDebugInfoNode::IsBitFieldWithoutSize`.
    [[nodiscard]] bool HasBitFieldsWithoutSize() const { return mHasBitFieldsWithoutSize; }

    /// @}
    /// @name Walks
    /// In ascending order of the offsets.
    /// @{

    /// Calls `visit` with each of these indices of `InOffsetOrder`, and prefetches the nodes, which
    /// it is going to read.
    template <typename Visitor>
    void ForEachIndex(std::span<const std::uint32_t> indices, Visitor&& visit) const {
        ForEachAhead(
            indices, kNodesAhead, [this](std::uint32_t index) { return NodeAt(index); }, visit);
    }

    /// Calls `visit` with each node of a group.
    template <typename Visitor>
    void ForEachOf(NodeGroup group, Visitor&& visit) const {
        ForEachIndex(IndicesOf(group), [&](std::uint32_t index) { visit(*NodeAt(index)); });
    }

    /// Calls `visit` with each node at which a pass has this task.
    template <typename Visitor>
    void ForEachWith(NodeTask task, Visitor&& visit) const {
        ForEachIf([&](std::size_t index) { return mMarks.Has(index, task); }, visit);
    }

    /// Calls `visit` with each node that is known to be referred to and has references itself.
    template <typename Visitor>
    void ForEachReferredAndReferring(Visitor&& visit) const {
        ForEachIf(
            [&](std::size_t index) {
                return mMarks.IsReferred(index) && mMarks.Has(index, NodeTask::References);
            },
            visit);
    }

    /// @}
    /// @name Marks
    /// @{

    /// Records that one more entry, or several more, refer to the entry at an offset.
    /// @return false if it has no node
    bool NoteReferred(std::uint32_t sectionOffset, bool isBySeveral = false) {
        const std::size_t index = mMap.IndexOf(sectionOffset);
        if (index == VDieNodeMap::kNoIndex) {
            return false;
        }
        mMarks.NoteReferred(index, isBySeveral);
        return true;
    }
    /// As `Find`, and records a reference to the node.
    VDebugInfoNode* FindReferred(std::uint32_t sectionOffset) {
        const std::size_t index = mMap.IndexOf(sectionOffset);
        if (index == VDieNodeMap::kNoIndex) {
            return nullptr;
        }
        mMarks.NoteReferred(index);
        return NodeAt(index);
    }
    /// True if at most one entry is known to refer to a node.
    [[nodiscard]] bool IsReferredOnce(const VDebugInfoNode& node) const;
    /// Marks a node as reached.
    /// @return false if it was marked before, or is not in the map
    bool Reach(const VDebugInfoNode& node);

    /// @}

private:
    /// How many nodes ahead walks prefetch.
    static constexpr std::size_t kNodesAhead = 16;

    [[nodiscard]] VDebugInfoNode* NodeAt(std::size_t index) const {
        return mMap.InOffsetOrder()[index];
    }

    template <typename Condition, typename Visitor>
    void ForEachIf(Condition&& condition, Visitor&& visit) const {
        ForEachIndexAhead(
            mMap.Size(), kNodesAhead,
            [&](std::size_t index) { return condition(index) ? NodeAt(index) : nullptr; },
            [&](std::size_t index) {
                if (condition(index)) {
                    visit(*NodeAt(index));
                }
            });
    }

    VDieNodeMap mMap;
    VNodeGroups mGroups;
    VNodeMarks mMarks;
    /// Nodes that came late since the last `Complete`, by offset.
    std::map<std::uint32_t, VDebugInfoNode*> mLate;
    std::int64_t mLastOffset = -1;
    bool mHasBitFieldsWithoutSize = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
