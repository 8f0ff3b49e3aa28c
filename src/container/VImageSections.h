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
    /// Adds a section of an ELF file if it takes up addresses (System V ABI, `SHF_ALLOC`, but
    /// not `SHT_NOBITS` with `SHF_TLS`).
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
    /// The same, each of the kind that its flags name, even if the file has no bytes for it.
    [[nodiscard]] std::vector<DataModel::ImageSection> SortedByFlags() const;

    /// True if the file has no bytes for any section, although there are some with code or
    /// constants, which are never cleared at the start: whoever split the debug information off
    /// (`objcopy --only-keep-debug`) kept the headers and dropped the bytes.
    [[nodiscard]] bool AreEmptied() const { return mHasEmptied && !mHasContents; }

    /// True if a section holds the byte at an address.
    [[nodiscard]] bool Hold(std::uint64_t byteAddress) const;

private:
    /// A section with its kind as the flags name it.
    struct Collected {
        DataModel::ImageSection section;
        DataModel::SectionKind flagged = DataModel::SectionKind::Data;
    };

    /// Counts a section for `AreEmptied`.
    /// @param kind the kind by the flags of its header
    void NoteContents(DataModel::SectionKind kind, bool hasBytes);
    /// @param flagged the kind by the flags of its header
    void Add(std::string_view name, DataModel::ImageSection section, DataModel::SectionKind flagged,
             bool hasBytes);

    std::vector<Collected> mSections;
    bool mHasContents = false;
    bool mHasEmptied = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
