// The sections of an input file that lie in the target's memory, as its container lists them.
#pragma once

#include "container/ElfRecords.h"
#include "host/ImageDescription.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Collects the sections of one file, at most 65536: no linked image has more, and overlapping
/// headers can claim any number.
class VImageSections {
public:
    /// Adds a section of an ELF file if it is allocated (System V ABI, `SHF_ALLOC`).
    /// @param bytesPerAddress bytes at one target address; sizes are in bytes all the same
    void AddElfSection(std::string_view name, const Elf64_Shdr& section,
                       std::uint32_t bytesPerAddress);
    /// Adds a section of a TI COFF file if it is loaded. Address and size are in bytes.
    /// @param flags `s_flags` of its header
    void AddCoffSection(std::string_view name, const Elf64_Shdr& section, std::uint32_t flags);
    /// Adds a section of a Windows image unless it is discarded after loading.
    /// @param characteristics those of its header
    void AddPeSection(std::string_view name, const DataModel::ImageSection& section,
                      std::uint32_t characteristics);

    /// The sections with content, ascending by address.
    [[nodiscard]] std::vector<DataModel::ImageSection> Sorted() const;

    /// True if a section holds the byte at an address.
    [[nodiscard]] bool Hold(std::uint64_t byteAddress) const;

private:
    void Add(std::string_view name, DataModel::ImageSection section, DataModel::SectionKind kind);

    std::vector<DataModel::ImageSection> mSections;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
