// The COFF side of `VElfFile`: the file header and the section headers of the TI layout (TI
// application report SPRAAO8, "Common Object File Format"). The symbol entries aren't read; only
// their number counts, since the string table follows them.
#include "container/VElfFile.h"
#include "core/CutText.h"
#include "diagnostics/ErrorState.h"

#include <limits>
#include <span>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sFileHeaderSize = 22;
/// No COFF file with a section is shorter, and the ELF magic lies within.
constexpr std::int32_t sShortestFile = 24;
constexpr std::uint32_t sSectionHeaderSize = 48;
constexpr std::uint32_t sSymbolSize = 18;
constexpr std::int32_t sShortNameSize = 8;
/// Fields of a section header that nothing needs: the physical address, the positions and counts of
/// relocations and line numbers, and what follows the flags.
constexpr std::int32_t sPhysicalAddressSize = 4;
constexpr std::int32_t sRelocationFieldsSize = 16;
constexpr std::int32_t sLastFieldsSize = 4;

constexpr std::uint16_t sExecutableFlag = 0x2;
constexpr std::uint16_t sBigEndianFlag = 0x200;

/// Targets that count memory in words of 16 bits.
constexpr std::uint16_t sTargetC2400 = 0x92;
constexpr std::uint16_t sTargetC5400 = 0x98;
constexpr std::uint16_t sTargetC2800 = 0x9D;

/// Values of `mCoffDwarfAddressMode`.
constexpr std::int32_t sAddressModeByTarget = 0;
constexpr std::int32_t sAddressModeWord = 16;

bool IsWordAddressed(std::uint16_t targetId) {
    switch (VElfOptions::mCoffDwarfAddressMode) {
    case sAddressModeByTarget:
        return targetId == sTargetC2400 || targetId == sTargetC5400 || targetId == sTargetC2800;
    case sAddressModeWord:
        return true;
    default:
        return false;
    }
}

/// Loads the string table, which begins with its own length.
bool LoadStringTable(VElfBuffer& names, const VCoffFileHeader& header) {
    const std::uint64_t filePosition =
        header.mSymbolTableOffset + std::uint64_t{header.mSymbolCount} * sSymbolSize;
    if (filePosition > std::numeric_limits<std::int32_t>::max()) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    const std::uint32_t size = names.ReadULongAtFilePos(static_cast<std::int32_t>(filePosition));
    return names.LoadFromFile(filePosition, size);
}

} // namespace

bool VElfFile::ReadCoffHeader(VCoffFileHeader& header) {
    if (OpenForReading(mPath) != 0) {
        return Fail(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
    }
    VElfBuffer buffer(*this);
    buffer.SetSwapBytes(false);
    if (!buffer.LoadFromFile(0, sShortestFile)) {
        return false;
    }
    if (HasElfMagic(buffer)) {
        return Fail(ELFReadErrorEnum::ELFERR_FILE_IS_ELF);
    }
    header.mVersionId = buffer.GetUShort();
    header.mSectionCount = buffer.GetUShort();
    header.mTimeStamp = buffer.GetULong();
    header.mSymbolTableOffset = buffer.GetULong();
    header.mSymbolCount = buffer.GetULong();
    header.mOptionalHeaderSize = buffer.GetUShort();
    header.mFlags = buffer.GetUShort();
    header.mTargetId = buffer.GetUShort();
    mImage.machine = header.mTargetId;
    mImage.isLinked = (header.mFlags & sExecutableFlag) != 0;
    mIsMSBData = (header.mFlags & sBigEndianFlag) != 0;
    if (IsWordAddressed(header.mTargetId)) {
        mIsWordAddressedTarget = true;
        mIncrementBitFieldAddress = 0;
    }
    return true;
}

bool VElfFile::ReadCoffSectionHeader(const VCoffFileHeader& header) {
    const auto fileSize = static_cast<std::uint32_t>(mFileSize);
    const std::uint32_t symbolsSize = header.mSymbolCount * sSymbolSize;
    const std::uint32_t tableSize = header.mSectionCount * sSectionHeaderSize;
    if (symbolsSize >= fileSize || tableSize >= fileSize) {
        return Fail(ELFReadErrorEnum::ELFERR_CORRUPTED);
    }
    VElfBuffer table(*this);
    VElfBuffer names(*this);
    table.SetSwapBytes(false);
    names.SetSwapBytes(false);
    if (!table.LoadFromFile(sFileHeaderSize + header.mOptionalHeaderSize, tableSize) ||
        !LoadStringTable(names, header)) {
        return false;
    }
    mFacts.SetSymbols(header.mSymbolCount);
    for (std::uint32_t index = 0; index < header.mSectionCount; ++index) {
        if (!ReadCoffSection(table, names)) {
            return false;
        }
    }
    return true;
}

Elf64_Shdr VElfFile::InBytes(const Elf64_Shdr& section) const {
    // Word-addressed targets give the sizes of sections in words, too.
    Elf64_Shdr inBytes = section;
    if (mIsWordAddressedTarget) {
        inBytes.sh_addr *= 2;
        inBytes.sh_size *= 2;
    }
    return inBytes;
}

bool VElfFile::ReadCoffSection(VElfBuffer& table, const VElfBuffer& names) {
    char shortName[sShortNameSize + 1] = {};
    for (char& character : std::span(shortName).first<sShortNameSize>()) {
        character = static_cast<char>(table.GetUByte());
    }
    // The second half of the name field is an offset if the first one is 0.
    table.MoveOffset(-4);
    Elf64_Shdr section;
    section.sh_name = table.GetULong();
    table.MoveOffset(sPhysicalAddressSize);
    section.sh_addr = table.GetULong();
    section.sh_size = table.GetULong();
    section.sh_offset = table.GetULong();
    table.MoveOffset(sRelocationFieldsSize);
    const std::uint32_t flags = table.GetULong();
    table.MoveOffset(sLastFieldsSize);

    if (shortName[0] != '\0') {
        AssignSection(shortName, section);
        mImageSections.AddCoffSection(shortName, InBytes(section), flags);
        return true;
    }
    const auto namesSize = static_cast<std::uint32_t>(names.GetBufferLength());
    if (section.sh_name < 1 || section.sh_name > namesSize) {
        return Fail(ELFReadErrorEnum::ELFERR_WRONG_READER);
    }
    if (const char* longName = names.GetTextAt(section.sh_name)) {
        const std::string_view name = CutText(longName, sMaximumSectionNameLength);
        AssignSection(name, section);
        mImageSections.AddCoffSection(name, InBytes(section), flags);
    }
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
