// Debug sections that stay in memory for the whole read, and tables of numbers among them.
#pragma once

#include "container/ElfRecords.h"
#include "container/VElfBuffer.h"

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The bytes of a section.
class VWholeSection : public VElfBuffer {
public:
    explicit VWholeSection(VElfInput& input)
        : VElfBuffer(input)
        , mIsDsPicTarget(input.mIsDsPicTarget) {}

    /// Loads the section. One that is missing or can't be read gives an empty buffer.
    /// @return false with `ELFERR_NO_MEMORY`
    bool LoadOrLeaveEmpty(const Elf64_Shdr& section);

private:
    bool mIsDsPicTarget;
};

/// `.debug_str_offsets`, `.debug_addr` and similar sections (DWARF 5, 7.26 and 7.27): each unit has
/// its part, whose base is a section offset, and refers to numbers by their index in it.
class VNumberTable : public VWholeSection {
public:
    using VWholeSection::VWholeSection;

    /// The number at an index, none if it lies outside the section.
    /// @param width bytes of each number: 1, 2, 4 or 8; for any other width there are none
    std::optional<std::uint64_t> NumberAt(std::uint64_t base, std::uint64_t index,
                                          std::uint8_t width);
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
