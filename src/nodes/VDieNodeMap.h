// The nodes of a section by the section offsets of their debug entries. All references are resolved
// through it, and the passes walk it, whole or by the kind of node that they are for, in ascending
// offset order.
#pragma once

#include "core/Prefetch.h"
#include "nodes/VNodeArena.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// Nodes that are looked for among all others. A node is in one group or in none.
enum class NodeGroup : std::uint8_t {
    CompileUnits,
    Variables,
    /// See `IsGroupedType`.
    GroupedTypes,
    MembersAndEnumerations,
    None
};

/// Section offset of a debug entry to its node.
///
/// Entries come in the order of reading, which is nearly always the order of offsets: the map is a
/// flat table with an index over it, and only what comes out of order, as overlapping units do, is
/// kept aside until the first question. Nodes are borrowed; they lie in an arena.
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
    void Reserve(std::size_t count) { mNodes.reserve(count); }

    /// Adds a node under its offset. An offset that is there already keeps its first node.
    void Insert(std::uint32_t sectionOffset, VDebugInfoNode* node);

    /// The node of exactly this offset, or null. Takes note that it is referred to.
    [[nodiscard]] VDebugInfoNode* Find(std::uint32_t sectionOffset) const;

    /// Takes note that a node of the map is referred to by a link that `Find` did not give.
    void NoteReferred(const VDebugInfoNode& node) const;

    /// All nodes in ascending order of their offsets. The view ends with the next `Insert`.
    [[nodiscard]] std::span<const Link> InOffsetOrder() const;

    /// Where the nodes of a group stand in `InOffsetOrder`, ascending. The view ends with the next
    /// `Insert`.
    [[nodiscard]] std::span<const std::uint32_t> PlacesOf(NodeGroup group) const;

    /// Asks for the memory of the node at a place of `InOffsetOrder`, for walks that come to it
    /// `kNodesAhead` nodes later.
    void Prefetch(std::size_t place) const {
        if (place < mNodes.size()) {
            Brindle::Prefetch(mNodes[place].Get());
        }
    }
    static constexpr std::size_t kNodesAhead = 16;

    /// Calls `visit` with each node of a group, in ascending order of their offsets.
    template <typename Visitor>
    void ForEachOf(NodeGroup group, Visitor&& visit) const {
        const std::span<const std::uint32_t> places = PlacesOf(group);
        for (std::size_t index = 0; index < places.size(); ++index) {
            if (index + kNodesAhead < places.size()) {
                Prefetch(places[index + kNodesAhead]);
            }
            visit(*mNodes[places[index]]);
        }
    }

    /// Calls `visit` with each node but the plain parameters that nothing is known to refer to, in
    /// ascending order of their offsets. Of parameters there are more than of any other entries,
    /// and nobody asks for them but who refers to them.
    template <typename Visitor>
    void ForEachWanted(Visitor&& visit) const {
        Settle();
        for (std::size_t place = 0; place < mNodes.size(); ++place) {
            Prefetch(place + kNodesAhead);
            if (!mIsPlainParameter[place] || mIsReferred[place]) {
                visit(*mNodes[place]);
            }
        }
    }

    /// Calls `visit` with each plain parameter that is known to be referred to, those included that
    /// become known on the way, in the order in which they became so.
    template <typename Visitor>
    void ForEachReferredParameter(Visitor&& visit) const {
        for (std::size_t index = 0; index < mReferredParameters.size(); ++index) {
            visit(*mNodes[mReferredParameters[index]]);
        }
    }

    /// Calls `visit` with each node that is known to be referred to, in ascending order of their
    /// offsets.
    template <typename Visitor>
    void ForEachReferred(Visitor&& visit) const {
        for (std::size_t place = 0; place < mIsReferred.size(); ++place) {
            Prefetch(place + kNodesAhead);
            if (mIsReferred[place]) {
                visit(*mNodes[place]);
            }
        }
    }

    [[nodiscard]] std::size_t Size() const { return mNodes.size() + mOutOfOrder.size(); }

private:
    void Append(VDebugInfoNode* node) const;
    void Settle() const;
    void MergeOutOfOrder() const;

    // Questions settle what insertions left open, hence mutable.
    mutable std::vector<Link> mNodes;
    mutable std::map<std::uint32_t, VDebugInfoNode*> mOutOfOrder;
    /// For each stretch of 64 bytes of the section a bit for each byte where an entry begins, and
    /// the place of the first entry in or behind it.
    mutable std::vector<std::uint64_t> mEntryStarts;
    mutable std::vector<std::uint32_t> mFirstInStretch;
    mutable std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)>
        mPlaces;
    mutable std::vector<bool> mIsPlainParameter;
    mutable std::vector<bool> mIsReferred;
    mutable std::vector<std::uint32_t> mReferredParameters;
    mutable bool mIsSettled = false;
    std::int64_t mLastOffset = -1;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
