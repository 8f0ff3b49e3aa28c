// Location lists in the full manner of reading: all entries of a list count, and only a list with
// the same place throughout gives a static address.
#pragma once

#include "dwarf/VWholeSection.h"

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VCompileUnitReader;
class VElfFile;
class VUnitTables;

/// `.debug_loc` (DWARF 4, 2.6.2 and 7.7.3) and `.debug_loclists` (DWARF 5, 2.6.2 and 7.7.3) in
/// memory. The version of a unit decides in which of them its lists are.
class VLocationLists {
public:
    /// Borrows the tables, in which expressions find addresses by index.
    VLocationLists(VElfFile& file, VUnitTables& tables);

    /// Loads the sections. One that can't be read counts as missing.
    /// @return false with `ELFERR_NO_MEMORY`
    bool Load(const VElfFile& file);

    /// The address that a list gives for its whole range, or as its default.
    ///
    /// For a variable within a function only the default counts. Each other entry holds for some
    /// instructions only, and the place may be that of another variable: after `old = end;` a
    /// compiler says that `old` is where `end` is until `end` changes.
    /// @param offset section offset of the list
    std::optional<std::uint64_t> AddressOf(const VCompileUnitReader& unit, std::uint64_t offset,
                                           bool isInFunction);
    /// The same for a list that the unit refers to by index.
    std::optional<std::uint64_t> AddressOfIndexed(const VCompileUnitReader& unit,
                                                  std::uint64_t index, bool isInFunction);

private:
    class ListReading;

    VUnitTables& mTables;
    VNumberTable mLists;
    VNumberTable mIndexedLists;
    /// Bytes that may still be read for lists. Lists of a sound file don't overlap.
    std::int64_t mBytesLeft = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
