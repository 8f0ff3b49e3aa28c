// Whole `.debug_abbrev` in memory, with every table that was read from it so far.
#pragma once

#include "container/ElfRecords.h"
#include "container/VElfBuffer.h"
#include "dwarf/VAbrTab.h"

#include <cstdint>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The section and its tables. A table is read once and serves all units with its offset.
class VAbrSectionBuffer : public VElfBuffer {
public:
    /// @param forms the forms of the manner of reading
    VAbrSectionBuffer(VElfInput& input, const Elf64_Shdr& section, const DieForms& forms);

    /// Loads the section; one that is missing gives an empty buffer. Errors: those of loading.
    bool Load();

    /// The table at an offset of the section, empty if there is none. Once overlapping tables have
    /// used up the limit they count as empty, so that a damaged file costs no more than its size.
    VAbrTab& GetTable(std::uint32_t offset);

private:
    Elf64_Shdr mSection;
    const DieForms& mForms;
    bool mIsDsPicTarget;
    std::unordered_map<std::uint32_t, VAbrTab, SeededHash> mTables;
    /// Bytes that were read for tables; overlapping parts count each time.
    std::uint64_t mBytesRead = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
