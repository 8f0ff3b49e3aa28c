// Whole `.debug_abbrev` in memory, with every table that was read from it so far.
#pragma once

#include "container/ElfRecords.h"
#include "container/VElfBuffer.h"
#include "dwarf/VAbrTab.h"

#include <cstdint>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The section and its tables. A table is read once and serves all units that name its offset.
class VAbrSectionBuffer : public VElfBuffer {
public:
    /// @param forms those of the manner of reading
    VAbrSectionBuffer(VElfInput& input, const Elf64_Shdr& section, const DieForms& forms);

    /// Loads the section; one that is missing gives an empty buffer. Errors: those of loading.
    bool Load();

    /// The table at an offset of the section, empty where there is none. Tables that overlap beyond
    /// all measure count as empty, so that a damaged file costs no more than one of its size.
    VAbrTab& GetTable(std::uint32_t offset);

private:
    Elf64_Shdr mSection;
    const DieForms& mForms;
    bool mIsDsPicTarget;
    std::unordered_map<std::uint32_t, VAbrTab, SeededHash> mTables;
    /// Bytes that were read for tables, those of overlapping tables each time.
    std::uint64_t mBytesRead = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
