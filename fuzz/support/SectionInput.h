// An image from a fuzz input: the contents of the sections that the reader uses. Whatever they are,
// the container around them is well-formed.
#pragma once

#include "host/DWARFContainerType.h"
#include "support/InputBytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Tessel::Norn::Brindle::Fuzzing {

enum class SectionKind : std::uint8_t {
    DebugInfo,
    DebugAbbrev,
    DebugStr,
    DebugLoc,
    Symtab,
    Strtab,
    DebugTypes,
    DebugLineStr,
    DebugStrOffsets,
    DebugAddr,
    DebugLoclists,
};
constexpr std::size_t sSectionKinds = 11;

/// The sections and properties of the target. In bytes: one for container, class,
/// byte order and machine, one for the alignment of `.debug_info`, then for each
/// section its length in three bytes and its contents. An empty section is
/// missing.
struct SectionInput {
    std::uint8_t target = 0;
    std::uint8_t alignment = 0;
    std::array<std::string, sSectionKinds> contents;

    /// Accepts any bytes; missing ones count as zero.
    static SectionInput Parse(InputBytes& input);
    [[nodiscard]] std::string Bytes() const;

    [[nodiscard]] bool IsBigEndian() const { return (target & 0x02U) != 0; }
    [[nodiscard]] std::string& At(SectionKind kind) {
        return contents[static_cast<std::size_t>(kind)];
    }
    [[nodiscard]] Reader::DWARF::DWARFContainerType Container() const;
    /// The file. In a Windows image `.symtab` isn't used, and `.strtab` gives a symbol for each of
    /// its names; a COFF file has neither.
    [[nodiscard]] std::string Image() const;

private:
    template <typename AnyImage>
    void AddDebugSections(AnyImage& image) const;
    [[nodiscard]] std::string ElfFile() const;
    [[nodiscard]] std::string CoffFile() const;
    [[nodiscard]] std::string PeFile() const;
};

} // namespace Tessel::Norn::Brindle::Fuzzing
