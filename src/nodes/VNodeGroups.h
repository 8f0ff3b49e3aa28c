// The indices of the nodes that passes pick out from all others.
#pragma once

#include "dwarf/codes/DwarfConstants.h"
#include "nodes/NodeInsertion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Nodes that passes pick out from all others. A node is in at most one group.
enum class NodeGroup : std::uint8_t {
    CompileUnits,
    Variables,
    /// See `IsGroupedType`.
    GroupedTypes,
    MembersAndEnumerations,
    Arrays,
    /// Rvalue references and pointers to members.
    OtherPointers,
    None
};

/// For each group the indices of its nodes in `VDieNodeMap`, ascending.
class VNodeGroups {
public:
    void Clear() { mIndices = {}; }
    /// Adds a node with an index after all others.
    void Append(dwarf_tag tag, std::size_t index);
    /// Inserts nodes as `VDieNodeMap::Insert` did.
    void Insert(std::span<const VNodeInsertion> insertions);

    /// The view is valid until the next change.
    [[nodiscard]] std::span<const std::uint32_t> IndicesOf(NodeGroup group) const {
        return mIndices[static_cast<std::size_t>(group)];
    }

private:
    std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)> mIndices;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
