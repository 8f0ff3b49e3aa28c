// What entries refer to that the walk over a unit passes, if it counts. The reading of anonymous
// members depends on whether a type is referred to once or more often.
#pragma once

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDieNodeMap;
struct VCompileUnitHeader;

/// Counts the references of one unit after the other, and tells the map of nodes.
class VPassedReferences {
public:
    /// The unit whose references come now.
    void EnterUnit(const VCompileUnitHeader& unit);
    /// A passed entry refers to this section offset.
    void Note(std::uint32_t offset);
    /// Marks what the entries of the unit refer to within it. All its nodes are in the map.
    void LeaveUnit(const VDieNodeMap& nodes);
    /// Marks what entries refer to in other units. All nodes are in the map.
    /// @return true if each reference of all units led to a node
    bool Finish(const VDieNodeMap& nodes);

private:
    /// A bit for each byte of 64 bytes of the section.
    struct Stretch {
        std::uint64_t once = 0;
        std::uint64_t again = 0;
    };

    /// Of the unit; empty between units.
    std::vector<Stretch> mStretches;
    std::uint32_t mFirstStretch = 0;
    /// What entries refer to in other units.
    std::vector<std::uint32_t> mElsewhere;
    bool mLeadToNodes = true;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
