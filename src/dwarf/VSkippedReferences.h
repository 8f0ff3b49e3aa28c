// The references of skipped entries that count: whether the members of an anonymous type may move
// depends on whether the type is referred to once or more often.
#pragma once

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDieNodes;
struct VCompileUnitHeader;

/// Counts the references of one unit after the other, and marks the nodes that they lead to.
class VSkippedReferences {
public:
    /// Begins the references of a unit.
    void EnterUnit(const VCompileUnitHeader& unit);
    /// Records that a skipped entry refers to this section offset.
    void Note(std::uint32_t offset);
    /// Marks what the entries of the unit refer to within it. All its nodes must be in the map.
    void LeaveUnit(VDieNodes& nodes);
    /// Marks what entries refer to in other units. All nodes must be in the map.
    /// @return true if each reference of all units led to a node
    bool Finish(VDieNodes& nodes);

private:
    /// A bit for each of 64 bytes of the section: is the byte referred to, and more than once?
    struct ReferredBytes {
        std::uint64_t once = 0;
        std::uint64_t again = 0;
    };

    /// Those of the unit; empty between units.
    std::vector<ReferredBytes> mReferred;
    /// Section offset of the first of these bytes.
    std::uint32_t mFirstOffset = 0;
    /// Offsets in other units that entries refer to.
    std::vector<std::uint32_t> mElsewhere;
    bool mLeadToNodes = true;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
