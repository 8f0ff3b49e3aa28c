// The sections with values that entries refer to by index or offset. Only the full manner of
// reading has them.
#pragma once

#include "dwarf/VWholeSection.h"

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VCompileUnitReader;
class VElfFile;

/// `.debug_line_str`, `.debug_str_offsets` and `.debug_addr` in memory (DWARF 5, 7.26 and 7.27). A
/// unit says where its part of them begins; a value outside a section, or one that counts from a
/// base that the unit doesn't give, is absent.
class VUnitTables {
public:
    explicit VUnitTables(VElfFile& file);

    /// Loads the sections. One that can't be read counts as missing.
    /// @return false with `ELFERR_NO_MEMORY`
    bool Load(const VElfFile& file);

    /// The terminated text at an offset of `.debug_line_str`, null if there is none. It lives as
    /// long as this object.
    [[nodiscard]] const char* LineTextAt(std::uint32_t offset) const {
        return mLineTexts.GetTextAt(offset);
    }
    /// Offset in `.debug_str` of the unit's text with an index.
    std::optional<std::uint64_t> TextOffsetAt(const VCompileUnitReader& unit, std::uint64_t index);
    /// The unit's address with an index.
    std::optional<std::uint64_t> AddressAt(const VCompileUnitReader& unit, std::uint64_t index);

private:
    VWholeSection mLineTexts;
    VNumberTable mTextOffsets;
    VNumberTable mAddresses;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
