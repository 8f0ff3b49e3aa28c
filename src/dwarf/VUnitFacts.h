// What the first entry of a unit says of all its entries.
#pragma once

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Facts of one unit that its entries are read with. A base that the unit doesn't tell is absent,
/// and so are the values that count from it.
struct VUnitFacts {
    /// Section offset in `.debug_str_offsets`.
    std::optional<std::uint64_t> mTextOffsetsBase;
    /// Section offset in `.debug_addr`.
    std::optional<std::uint64_t> mAddressesBase;
    /// Section offset in `.debug_loclists`.
    std::optional<std::uint64_t> mLocationListsBase;
    /// The entries of the unit lie in another file.
    bool mIsSplit = false;
    /// Source language (DWARF 5, 7.12); 0 if the unit doesn't tell it.
    std::uint32_t mLanguage = 0;
    /// Lower bound of arrays that tell none.
    std::uint32_t mDefaultLowerBound = 0;
    /// Of arrays that don't say otherwise, the first index runs fastest in memory.
    bool mIsColumnMajor = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
