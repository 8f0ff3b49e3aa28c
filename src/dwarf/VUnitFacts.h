// What the first entry of a unit says about all its entries.
#pragma once

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Facts of one unit for reading its entries. If the unit doesn't give a base, the base is absent,
/// and so are the values that count from it.
struct VUnitFacts {
    /// Section offset in `.debug_str_offsets`.
    std::optional<std::uint64_t> mTextOffsetsBase;
    /// Section offset in `.debug_addr`.
    std::optional<std::uint64_t> mAddressesBase;
    /// Section offset in `.debug_loclists`.
    std::optional<std::uint64_t> mLocationListsBase;
    /// The entries of the unit are in another file.
    bool mIsSplit = false;
    /// Source language (DWARF 5, 7.12); 0 if the unit has none.
    std::uint32_t mLanguage = 0;
    /// Lower bound of arrays that don't have one.
    std::uint32_t mDefaultLowerBound = 0;
    /// Unless an array says otherwise, its first index runs fastest in memory.
    bool mIsColumnMajor = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
