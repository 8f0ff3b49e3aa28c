// The references of skipped entries that count: whether the members of an anonymous type may move
// depends on whether the type is referred to once or more often.
#pragma once

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDieNodeMap;
struct VCompileUnitHeader;

/// Counts the references of one unit after the other, and reports them to the map of nodes.
class VSkippedReferences {
public:
    /// Begins the references of a unit.
    void EnterUnit(const VCompileUnitHeader& unit);
    /// Records that a skipped entry refers to this section offset.
    void Note(std::uint32_t offset);
    /// Marks what the entries of the unit refer to within it. All its nodes must be in the map.
    void LeaveUnit(const VDieNodeMap& nodes);
    /// Marks what entries refer to in other units. All nodes must be in the map.
    /// @return true if each reference of all units led to a node
    bool Finish(const VDieNodeMap& nodes);

private:
    /// A bit for each byte of 64 bytes of the section.
    struct Stretch {
        std::uint64_t once = 0;
        std::uint64_t again = 0;
    };

    /// Those of the unit; empty between units.
    std::vector<Stretch> mStretches;
    std::uint32_t mFirstStretch = 0;
    /// Offsets in other units that entries refer to.
    std::vector<std::uint32_t> mElsewhere;
    bool mLeadToNodes = true;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
