#include "dwarf/VWholeSection.h"

#include "container/VElfFileCache.h"
#include "diagnostics/ErrorState.h"

#include <bit>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool IsNumberWidth(std::uint8_t width) {
    return std::has_single_bit(width) && width <= sizeof(std::uint64_t);
}

} // namespace

bool VWholeSection::LoadOrLeaveEmpty(const Elf64_Shdr& section) {
    if (section.sh_size == 0) {
        return true;
    }
    if (!LoadFromFile(section.sh_offset, section.sh_size)) {
        return !IsOutOfMemory();
    }
    if (mIsDsPicTarget) {
        CompressDsPicData(GetLoadedBytes(), GetBufferLength());
    }
    return true;
}

std::optional<std::uint64_t> VNumberTable::NumberAt(std::uint64_t base, std::uint64_t index,
                                                    std::uint8_t width) {
    const auto length = static_cast<std::uint64_t>(GetBufferLength());
    if (!IsNumberWidth(width) || base > length || index >= (length - base) / width) {
        return std::nullopt;
    }
    SetOffset(static_cast<std::int32_t>(base + index * width));
    SetADDRESSsize(width);
    return GetADDRESS();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
