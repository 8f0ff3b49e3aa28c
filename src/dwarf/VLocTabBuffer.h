// Whole `.debug_loc` in memory. Of a location list (DWARF 4, 2.6.2) only the first entry counts,
// and of that only the expression.
#pragma once

#include "container/ElfRecords.h"
#include "container/VElfBuffer.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The section with its location lists. Addresses in it are 4 bytes wide, whatever the unit says.
class VLocTabBuffer : public VElfBuffer {
public:
    VLocTabBuffer(VElfInput& input, const Elf64_Shdr& section);

    /// Loads the section; one that is missing counts as loaded and holds no list. Errors: those of
    /// loading.
    bool Load();
    [[nodiscard]] bool IsLoaded() const { return mLoaded; }

    /// The static number that the first entry of a list gives.
    /// @param offset section offset of the list in `.debug_loc`
    /// @param ok false if there is no list or it is not static; the result is then 0
    std::uint64_t EvaluateLocationList(std::uint32_t offset, bool& ok);

private:
    bool mLoaded = false;
    bool mIsDsPicTarget;
    Elf64_Shdr mSection;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
