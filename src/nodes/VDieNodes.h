// All nodes of a section, in the order of their offsets: three tables that run beside each other.
// For five entries:
//
//     index            0      1      2      3      4
//     VDieNodeMap    unit   base  struct member    var     which node has an offset
//     VNodeGroups    CompileUnits: 0   GroupedTypes: 2   MembersAndEnumerations: 3   Variables: 4
//     VNodeMarks      ...    ...    ...    ...    ...      what passes have to do there
//
// Passes walk the nodes, whole or by the kind of node that they are for.
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

/// The nodes of a section. Reading files them one after the other, `Complete` ends it, and then
/// passes ask. Nodes are borrowed; they lie in an arena.
class VDieNodes {
public:
    using Link = VDieNodeMap::Link;

    VDieNodes();
    ~VDieNodes();
    VDieNodes(const VDieNodes&) = delete;
    VDieNodes& operator=(const VDieNodes&) = delete;
    VDieNodes(VDieNodes&&) = delete;
    VDieNodes& operator=(VDieNodes&&) = delete;

    /// @name Filing
    /// @{

    /// Makes room for about this many nodes.
    void Reserve(std::size_t count);
    /// Forgets all nodes.
    void Clear();
    /// Files a node. An offset that is there already keeps its first node. Entries come in the
    /// order of their offsets, except where units overlap: what is late is found from the next
    /// `Complete` on.
    void Insert(VDebugInfoNode& node);
    /// Files what came late. To be called when a section is read.
    void Complete();
    /// Files many nodes in ascending order of their offsets. An offset that is there keeps its
    /// node.
    void InsertAll(std::span<VDebugInfoNode* const> nodes);

    /// @}
    /// @name Finding
    /// @{

    /// The node of exactly this offset, or null.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const {
        return mMap.Find(sectionOffset);
    }
    /// The last node in front of an offset, null if there is none.
    [[nodiscard]] VDebugInfoNode* LastBefore(std::uint32_t sectionOffset) const {
        return mMap.LastBefore(sectionOffset);
    }
    /// All nodes in ascending order of their offsets. The view ends with the next node that is
    /// filed.
    [[nodiscard]] std::span<const Link> InOffsetOrder() const { return mMap.InOffsetOrder(); }
    /// Where the nodes of a group stand in `InOffsetOrder`, ascending. The view ends with the next
    /// node that is filed.
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

    /// Calls `visit` with each of these indices of `InOffsetOrder`, whose nodes it is going to look
    /// at.
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

    /// Calls `visit` with each node that a pass has this to do at.
    template <typename Visitor>
    void ForEachWith(NodeTask task, Visitor&& visit) const {
        ForEachIf([&](std::size_t index) { return mMarks.Has(index, task); }, visit);
    }

    /// Calls `visit` with each node that is known to be referred to and refers to others itself.
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

    /// One more entry refers to the one at an offset, or several more.
    /// @return false if it has no node
    bool NoteReferred(std::uint32_t sectionOffset, bool isBySeveral = false) {
        const std::size_t index = mMap.IndexOf(sectionOffset);
        if (index == VDieNodeMap::kNoIndex) {
            return false;
        }
        mMarks.NoteReferred(index, isBySeveral);
        return true;
    }
    /// As `Find`, for an entry that refers to the one at the offset.
    VDebugInfoNode* FindReferred(std::uint32_t sectionOffset) {
        const std::size_t index = mMap.IndexOf(sectionOffset);
        if (index == VDieNodeMap::kNoIndex) {
            return nullptr;
        }
        mMarks.NoteReferred(index);
        return NodeAt(index);
    }
    /// True if one entry at most is known to refer to a filed node.
    [[nodiscard]] bool IsReferredOnce(const VDebugInfoNode& node) const;
    /// Marks a node as reached.
    /// @return false if it was before, or is not filed
    bool Reach(const VDebugInfoNode& node);

    /// @}

private:
    /// Nodes that walks prefetch.
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
    /// What came late since the last `Complete`, by offset.
    std::map<std::uint32_t, VDebugInfoNode*> mLate;
    std::int64_t mLastOffset = -1;
    bool mHasBitFieldsWithoutSize = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
