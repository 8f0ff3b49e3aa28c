// Reads the bodies of types in one unit that was read without them.
#pragma once

#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;
class VDwarf2Section;

/// Keeps the bytes of the unit loaded as long as it lives.
class VBodyReader {
public:
    VBodyReader(VDwarf2Section& section, VCompileUnitHeader& header);
    ~VBodyReader();
    VBodyReader(const VBodyReader&) = delete;
    VBodyReader& operator=(const VBodyReader&) = delete;
    VBodyReader(VBodyReader&&) = delete;
    VBodyReader& operator=(VBodyReader&&) = delete;

    /// False if the unit can't be loaded, with an error set.
    [[nodiscard]] bool IsLoaded() const { return mDie.has_value(); }
    /// Reads the body of a type of the unit, and those within it. Call it once for a type.
    /// @return section offset of its end
    std::uint32_t Read(VDebugInfoNode& type) { return mDie->ReadBody(type); }
    /// The number of nodes that `TakeNodes` would return.
    [[nodiscard]] std::size_t MadeCount() const { return mDie->GetMadeNodes().size(); }
    /// The nodes that were made since the last call, in the order of reading. They are in no map.
    std::vector<VDebugInfoNode*> TakeNodes() { return mDie->TakeMadeNodes(); }

private:
    VCompileUnitReader mUnitReader;
    std::optional<VDie2> mDie;
    std::uint32_t mRecordsBefore;
    std::uint32_t mNextNodeRecord;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
