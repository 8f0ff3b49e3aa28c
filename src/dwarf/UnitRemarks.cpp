// Remarks of the section reader: units that it skipped, and debug information in other files.
#include "container/VElfFile.h"
#include "core/CutText.h"
#include "core/HostText.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VCompileUnitHeader.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Bytes before the file name in `.debug_sup` (DWARF 5, 7.3.6): a version and a flag, which is set
/// in the supplementary file itself.
constexpr std::uint32_t sSupplementHeaderSize = 3;
constexpr std::int32_t sSupplementFlag = 2;

/// Versions that are counted separately. A sound file has one or two.
constexpr std::size_t sMostVersions = 8;

constexpr std::size_t sLongestName = 1023;

} // namespace

void VDwarf2Section::AddRemarks() {
    ReadRemarks& remarks = mElfFile->mRemarks;
    auto total = static_cast<std::uint32_t>(mCompileUnits.size());
    for (const auto& [version, count] : mUnitsNotRead) {
        total += count;
    }
    std::size_t versions = 0;
    for (const auto& [version, count] : mUnitsNotRead) {
        if (++versions > sMostVersions) {
            break;
        }
        remarks.AddUnitsNotRead(version, count, total);
    }
    if (mSplitUnitCount != 0) {
        remarks.AddSplitUnits(mSplitUnitCount, total);
    }
    RemarkOnSupplement(mElfFile->mSecGnuDebugAltLink, 0);
    RemarkOnSupplement(mElfFile->mSecDebugSup, sSupplementHeaderSize);
}

void VDwarf2Section::RemarkOnSupplement(const Elf64_Shdr& section, std::uint32_t nameOffset) const {
    if (!section.IsPresent()) {
        return;
    }
    VElfBuffer buffer(*mElfFile);
    const bool isLoaded = buffer.LoadFromFile(section.sh_offset, section.sh_size);
    const char* name = isLoaded ? buffer.GetTextAt(nameOffset) : nullptr;
    const bool isItself = nameOffset != 0 && buffer[sSupplementFlag] != 0;
    if (name != nullptr && !isItself) {
        mElfFile->mRemarks.AddSupplementaryFile(ToHostText(CutText(name, sLongestName)));
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
