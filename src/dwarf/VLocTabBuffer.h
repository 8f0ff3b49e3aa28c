// Whole `.debug_loc` in memory. Only the first entry of a location list counts (DWARF 4, 2.6.2),
// and only the expression of that entry.
#pragma once

#include "container/ElfRecords.h"
#include "container/VElfBuffer.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The section with its location lists. Addresses in it are 4 bytes wide, whatever the unit says.
class VLocTabBuffer : public VElfBuffer {
public:
    VLocTabBuffer(VElfInput& input, const Elf64_Shdr& section);

    /// Loads the section; a missing one counts as loaded and has no lists. Errors: those of
    /// loading.
    bool Load();
    [[nodiscard]] bool IsLoaded() const { return mLoaded; }

    /// The static number of the first entry of a list.
    /// @param offset section offset of the list in `.debug_loc`
    /// @param ok false if there is no list or it is not static; the result is then 0
    std::uint64_t EvaluateLocationList(std::uint32_t offset, bool& ok);

private:
    bool mLoaded = false;
    bool mIsDsPicTarget;
    Elf64_Shdr mSection;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
