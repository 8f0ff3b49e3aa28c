// The records of the ELF format in memory, in one layout for all containers and both classes
// (System V ABI, chapters "ELF Header", "Sections" and "Symbol Table"). ELF 32 values are widened.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// File header. The identification bytes are tested where they are read and not kept.
struct Elf64_Ehdr {
    std::uint8_t e_ident[16] = {};
    std::uint16_t e_type = 0;
    std::uint16_t e_machine = 0;
    std::uint32_t e_version = 0;
    std::uint64_t e_entry = 0;
    std::uint64_t e_phoff = 0;
    std::uint64_t e_shoff = 0;
    std::uint32_t e_flags = 0;
    std::uint16_t e_ehsize = 0;
    std::uint16_t e_phentsize = 0;
    std::uint16_t e_phnum = 0;
    std::uint16_t e_shentsize = 0;
    std::uint16_t e_shnum = 0;
    std::uint16_t e_shstrndx = 0;
};

/// Section record. An all-zero record means that the section was not found.
struct Elf64_Shdr {
    std::uint32_t sh_name = 0;
    std::uint32_t sh_type = 0;
    std::uint64_t sh_flags = 0;
    std::uint64_t sh_addr = 0;
    /// File position of the contents.
    std::uint64_t sh_offset = 0;
    std::uint64_t sh_size = 0;
    std::uint32_t sh_link = 0;
    std::uint32_t sh_info = 0;
    std::uint64_t sh_addralign = 0;
    std::uint64_t sh_entsize = 0;

    [[nodiscard]] bool IsPresent() const { return sh_name != 0; }
};

/// Longer section names are cut; all names that the reader looks for are far shorter.
constexpr std::size_t sMaximumSectionNameLength = 1023;

/// Symbol record.
struct Elf32_Sym {
    /// Points into the string table buffer, or into the image of a PE file, and is valid
    /// while that lives. May be null.
    const char* name = nullptr;
    /// Last part of the path of the source file of a local symbol, which ELF tables name before it;
    /// null if they don't. Points into the string table buffer.
    const char* sourceFile = nullptr;
    std::uint64_t st_value = 0;
    std::uint64_t st_size = 0;
    std::uint32_t st_name = 0;
    std::uint8_t st_info = 0;
    std::uint8_t st_other = 0;
    std::uint16_t st_shndx = 0;

    [[nodiscard]] std::uint8_t Type() const { return st_info & 0x0FU; }
    [[nodiscard]] bool IsLocal() const { return (st_info >> 4U) == 0; }
    /// True if other files of the same link may refer to a symbol that the link made local
    /// (`STV_INTERNAL`, `STV_HIDDEN`, `STV_PROTECTED`).
    [[nodiscard]] bool HasOwnVisibility() const { return (st_other & 3U) != 0; }
    /// True if the symbol has a place in the image.
    [[nodiscard]] bool IsDefined() const {
        return (st_shndx != kUndefined || st_value != 0) && st_shndx != kCommon;
    }

    /// Values of `st_shndx` (`SHN_UNDEF`, `SHN_COMMON`).
    static constexpr std::uint16_t kUndefined = 0;
    static constexpr std::uint16_t kCommon = 0xFFF2;
};

/// Symbol types (`STT_NOTYPE`, `STT_OBJECT`, `STT_FILE`).
constexpr std::uint8_t sSymbolTypeNone = 0;
constexpr std::uint8_t sSymbolTypeObject = 1;
constexpr std::uint8_t sSymbolTypeFile = 4;

/// Type of files that aren't linked yet (`ET_REL`).
constexpr std::uint16_t sElfTypeRelocatable = 1;

/// Flags of sections (`SHF_GROUP`, `SHF_COMPRESSED`).
constexpr std::uint64_t sSectionInGroup = 0x200;
constexpr std::uint64_t sSectionCompressed = 0x800;

/// Machines that the reader treats specially.
constexpr std::uint16_t sMachineDsPic30F = 118;
constexpr std::uint16_t sMachineTiC2000 = 141;

} // namespace Tessel::Norn::Brindle::Reader::DWARF
