// The indices of the nodes that passes look for among all others.
#pragma once

#include "dwarf/codes/DwarfConstants.h"
#include "nodes/NodeInsertion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Nodes that are looked for among all others. A node is in one group or in none.
enum class NodeGroup : std::uint8_t {
    CompileUnits,
    Variables,
    /// See `IsGroupedType`.
    GroupedTypes,
    MembersAndEnumerations,
    /// References to rvalues and pointers to members.
    OtherPointers,
    None
};

/// For each group the indices of its nodes, as `VDieNodeMap` counts them, ascending.
class VNodeGroups {
public:
    void Clear() { mIndices = {}; }
    /// Adds a node at an index behind all others.
    void Append(dwarf_tag tag, std::size_t index);
    /// Inserts nodes as `VDieNodeMap::Insert` did.
    void Insert(std::span<const VNodeInsertion> insertions);

    /// The view ends with the next change.
    [[nodiscard]] std::span<const std::uint32_t> IndicesOf(NodeGroup group) const {
        return mIndices[static_cast<std::size_t>(group)];
    }

private:
    std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)> mIndices;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
