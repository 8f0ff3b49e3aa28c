#include "dwarf/VAbrSectionBuffer.h"

#include "container/VElfFileCache.h"
#include "diagnostics/ElfLog.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The bytes read for tables are limited to this multiple of the section's size and a little more.
/// Tables of a sound file don't overlap.
constexpr std::uint64_t sReadingsOfSection = 16;
constexpr std::uint64_t sFreeBytes = 0x10000;

} // namespace

VAbrSectionBuffer::VAbrSectionBuffer(VElfInput& input, const Elf64_Shdr& section,
                                     const DieForms& forms)
    : VElfBuffer(input)
    , mSection(section)
    , mForms(forms)
    , mIsDsPicTarget(input.mIsDsPicTarget) {}

bool VAbrSectionBuffer::Load() {
    if (!LoadFromFile(mSection.sh_offset, mSection.sh_size)) {
        return false;
    }
    if (mIsDsPicTarget) {
        CompressDsPicData(GetLoadedBytes(), GetBufferLength());
    }
    return true;
}

VAbrTab& VAbrSectionBuffer::GetTable(std::uint32_t offset) {
    const auto [place, isNew] = mTables.try_emplace(offset, mForms);
    VAbrTab& table = place->second;
    const auto length = static_cast<std::uint64_t>(GetBufferLength());
    if (!isNew || offset >= length) {
        return table;
    }
    if (mBytesRead > sReadingsOfSection * length + sFreeBytes) {
        elflog("Error: Too many overlapping abbreviation tables, table at offset %u is left out.",
               offset);
        return table;
    }
    table.Read(*this, offset);
    mBytesRead += static_cast<std::uint64_t>(std::max(GetOffset(), 0)) - offset;
    return table;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
