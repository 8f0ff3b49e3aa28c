// The ELF side of `VElfFile`: its header and its section table (System V ABI, chapters "ELF Header"
// and "Sections").
#include "container/VElfFile.h"
#include "core/ConsoleOutput.h"
#include "core/CutText.h"
#include "diagnostics/ErrorState.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <ostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sHeaderSize32 = 52;
constexpr std::int32_t sHeaderSize64 = 64;
constexpr std::int32_t sIdentificationSize = 16;
/// Size of a symbol (System V ABI, "Symbol Table").
constexpr std::uint64_t sSymbolSize32 = 16;
constexpr std::uint64_t sSymbolSize64 = 24;

/// Value of `e_type`.
constexpr std::uint16_t sTypeRelocatable = 1;

/// Positions in the identification bytes.
constexpr std::int32_t sClassIndex = 4;
constexpr std::int32_t sDataIndex = 5;
constexpr std::int32_t sVersionIndex = 6;

/// A field of 4 bytes in class 32 and 8 bytes in class 64.
std::uint64_t GetWord(VElfBuffer& buffer, bool is64Bit) {
    return is64Bit ? buffer.GetUInt64() : buffer.GetULong();
}

} // namespace

bool VElfFile::ReadElfHeader() {
    if (const int systemError = OpenForReading(mPath); systemError != 0) {
        SetErrorState(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
        ConsoleOutput() << "Failed to open " << mPath << ": Error Code " << systemError;
        return false;
    }
    VElfBuffer buffer(*this);
    buffer.SetSwapBytes(false);
    if (!buffer.LoadFromFile(0, sHeaderSize32) || !CheckIdentification(buffer)) {
        return false;
    }
    if (mIs64Bit && !buffer.LoadFromFile(0, sHeaderSize64)) {
        return false;
    }
    ReadHeaderFields(buffer);
    mImage.machine = mElfHeader.e_machine;
    mImage.isLinked = mElfHeader.e_type != sTypeRelocatable;
    mImage.is64Bit = mIs64Bit;
    mIsWordAddressedTarget = mElfHeader.e_machine == sMachineTiC2000;
    mIsDsPicTarget = mElfHeader.e_machine == sMachineDsPic30F;
    if (IsUnlinked()) {
        mRemarks.AddRelocatableObject();
    }
    return true;
}

bool VElfFile::HasElfMagic(const VElfBuffer& buffer) {
    return buffer[0] == 0x7F && buffer[1] == 'E' && buffer[2] == 'L' && buffer[3] == 'F';
}

bool VElfFile::CheckIdentification(VElfBuffer& buffer) {
    if (!HasElfMagic(buffer)) {
        return Fail(ELFReadErrorEnum::ELFERR_NOT_ELF);
    }
    const std::int8_t elfClass = buffer[sClassIndex];
    if (elfClass != 1 && elfClass != 2) {
        return Fail(ELFReadErrorEnum::ELFERR_ELF_CLASS);
    }
    mIs64Bit = elfClass == 2;
    if (buffer[sDataIndex] == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_BYTE_ENCODING);
    }
    mIsMSBData = buffer[sDataIndex] == 2;
    buffer.SetSwapBytes(mIsMSBData);
    if (static_cast<std::uint8_t>(buffer[sVersionIndex]) >= 2) {
        return Fail(ELFReadErrorEnum::ELFERR_ELF_VERSION);
    }
    return true;
}

void VElfFile::ReadHeaderFields(VElfBuffer& buffer) {
    buffer.SetOffset(sIdentificationSize);
    mElfHeader.e_type = buffer.GetUShort();
    mElfHeader.e_machine = buffer.GetUShort();
    mElfHeader.e_version = buffer.GetULong();
    mElfHeader.e_entry = GetWord(buffer, mIs64Bit);
    mElfHeader.e_phoff = GetWord(buffer, mIs64Bit);
    mElfHeader.e_shoff = GetWord(buffer, mIs64Bit);
    mElfHeader.e_flags = buffer.GetULong();
    mElfHeader.e_ehsize = buffer.GetUShort();
    mElfHeader.e_phentsize = buffer.GetUShort();
    mElfHeader.e_phnum = buffer.GetUShort();
    mElfHeader.e_shentsize = buffer.GetUShort();
    mElfHeader.e_shnum = buffer.GetUShort();
    mElfHeader.e_shstrndx = buffer.GetUShort();
}

std::int32_t VElfFile::LoadSectionHeaderTable(VElfBuffer& buffer, const Elf64_Ehdr& header,
                                              bool is64Bit) {
    std::uint64_t count = header.e_shnum;
    if (count == 0) {
        // Extended numbering: the first entry holds the number of sections.
        if (!buffer.LoadFromFile(header.e_shoff, std::uint32_t{header.e_shentsize})) {
            return -1;
        }
        Elf64_Shdr firstSection;
        ReadSectionHeader(firstSection, buffer, 0, is64Bit);
        count = firstSection.sh_size;
    }
    constexpr std::uint64_t maximumCount = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t tableSize =
        count <= maximumCount ? count * header.e_shentsize : std::uint64_t{maximumCount};
    return buffer.LoadFromFile(header.e_shoff, tableSize) ? static_cast<std::int32_t>(count) : -1;
}

void VElfFile::ReadSectionHeader(Elf64_Shdr& section, VElfBuffer& buffer, std::int32_t tableOffset,
                                 bool is64Bit) {
    buffer.SetOffset(tableOffset);
    section.sh_name = buffer.GetULong();
    section.sh_type = buffer.GetULong();
    section.sh_flags = GetWord(buffer, is64Bit);
    section.sh_addr = GetWord(buffer, is64Bit);
    section.sh_offset = GetWord(buffer, is64Bit);
    section.sh_size = GetWord(buffer, is64Bit);
    section.sh_link = buffer.GetULong();
    section.sh_info = buffer.GetULong();
    section.sh_addralign = GetWord(buffer, is64Bit);
    section.sh_entsize = GetWord(buffer, is64Bit);
}

std::int32_t VElfFile::SectionNamesIndex(VElfBuffer& table) const {
    // `SHN_XINDEX`: the index doesn't fit, and the first entry holds it.
    constexpr std::uint16_t extendedIndex = 0xFFFF;
    if (mManner == ReadingManner::Classic || mElfHeader.e_shstrndx != extendedIndex) {
        return mElfHeader.e_shstrndx;
    }
    Elf64_Shdr firstSection;
    ReadSectionHeader(firstSection, table, 0, mIs64Bit);
    constexpr std::uint32_t maximumIndex = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(firstSection.sh_link, maximumIndex));
}

bool VElfFile::LoadSectionInfos() {
    VElfBuffer table(*this);
    VElfBuffer names(*this);
    const std::int32_t count = LoadSectionHeaderTable(table, mElfHeader, mIs64Bit);
    if (count < 0) {
        return false;
    }
    const std::int32_t namesIndex = SectionNamesIndex(table);
    if (namesIndex >= count) {
        return CheckFoundSections();
    }
    ReadSectionHeader(mSecShstrtab, table, namesIndex * mElfHeader.e_shentsize, mIs64Bit);
    if (!names.LoadFromFile(mSecShstrtab.sh_offset, mSecShstrtab.sh_size)) {
        return false;
    }
    // Some files keep section names and symbol names in one table.
    const char* ownName = names.GetTextAt(mSecShstrtab.sh_name);
    if (ownName != nullptr && std::strncmp(ownName, ".strtab", 7) == 0) {
        mSecStrtab = mSecShstrtab;
    }
    for (std::int32_t index = 0; index < count; ++index) {
        if (index == namesIndex) {
            continue;
        }
        Elf64_Shdr section;
        ReadSectionHeader(section, table, index * mElfHeader.e_shentsize, mIs64Bit);
        const char* text = names.GetTextAt(section.sh_name);
        const std::string_view name =
            text != nullptr ? CutText(text, sMaximumSectionNameLength) : std::string_view();
        mImageSections.AddElfSection(name, section, mIsWordAddressedTarget ? 2 : 1);
        if (text == nullptr) {
            continue;
        }
        if (!AssignSection(name, section)) {
            AssignNecSection(name, section);
        }
    }
    TellSymbolCount();
    return CheckFoundSections();
}

void VElfFile::TellSymbolCount() {
    const std::uint64_t entrySize = mIs64Bit ? sSymbolSize64 : sSymbolSize32;
    const std::uint64_t size = std::min(mSecSymtab.sh_size, static_cast<std::uint64_t>(mFileSize));
    // The first entry is a placeholder.
    mFacts.SetSymbols(std::max<std::uint64_t>(size / entrySize, 1) - 1);
}

void VElfFile::AssignNecSection(std::string_view name, const Elf64_Shdr& section) {
    if (name == ".vdebug") {
        mSecVdebug = section;
    } else if (name == ".vdbstrtab") {
        mSecVdbstrtab = section;
    }
}

bool VElfFile::CheckFoundSections() const {
    const bool hasDebugSection =
        mSecDebug.sh_offset != 0 || mSecDebugInfo.sh_offset != 0 || mSecVdebug.sh_offset != 0;
    if (hasDebugSection) {
        return true;
    }
    if (mSecSymtab.sh_offset == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_SYMTAB);
    }
    return mSecStrtab.sh_offset != 0 || Fail(ELFReadErrorEnum::ELFERR_NO_STRTAB);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
