// A Windows image as it lies in its file: the section headers and the COFF symbols (Microsoft PE
// and COFF Specification). `VElfFile` holds one and takes the section records and the symbols from
// it. The image doesn't look at the contents of sections.
#pragma once

#include "container/ElfRecords.h"
#include "container/IElfSymbolMap.h"
#include "container/VWholeFile.h"
#include "host/ImageDescription.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VElfFile;

/// An image in memory. It is little-endian, whatever the machine that reads it.
class VPEImage {
public:
    /// Reads the file and lists its sections; once in the life of the object. Errors:
    /// `ELFERR_OPEN_FAILED`; `ELFERR_FILE_TYPE` (no "MZ" at the start); `ELFERR_CORRUPTED` (the
    /// headers, or the name of a section, lie outside of the file).
    /// @param content the file in memory, in place of the one of the path; may be null
    bool MapPEImage(const std::string& path, const FileContent& content = nullptr);

    /// Stores the sections that the reader knows in their fields of the file, and the image base if
    /// the image is a DLL. Always true.
    bool CopySectionRecords(VElfFile& file) const;

    /// Adds the symbols that have a name and an address and lie in a section: `st_value` is
    /// relative to the image base, all other fields are 0. The names live as long as this object. A
    /// symbol table that is cut off ends with the file. Errors: `ELFERR_OPEN_FAILED` if the file
    /// isn't an image; none if no file was read.
    bool ReadImageSymbols(IElfSymbolMap& map);

    /// True if a file was read.
    [[nodiscard]] bool IsMapped() const { return !mFile.Bytes().empty(); }
    /// Adds the symbols of data by name, with binding, at the addresses that variables of the image
    /// have: relative to the image base in a DLL. Always true.
    bool ReadSymbolNames(IElfSymbolMap& map);

private:
    /// A name that fits in its symbol entry, which has room for eight bytes; terminated.
    using ShortName = std::array<char, 9>;

    [[nodiscard]] bool Is64Bit() const;
    [[nodiscard]] DataModel::ImageSection PlacedSection(std::size_t index) const;
    [[nodiscard]] bool HasMark() const;
    [[nodiscard]] bool Holds(std::uint64_t filePosition, std::uint64_t size) const;
    template <typename Integer>
    [[nodiscard]] Integer Get(std::uint64_t filePosition) const;
    [[nodiscard]] const char* CharactersAt(std::uint64_t filePosition) const;
    [[nodiscard]] const char* GetStringTableText(std::uint32_t offset) const;
    void ReadFileHeader();
    bool ReadSectionHeader(std::uint64_t filePosition);
    const char* KeepSymbolName(std::uint64_t entryPosition);
    [[nodiscard]] std::uint64_t CountSymbolsInFile() const;
    /// False for an entry without a name or without a place in a section.
    bool ReadSymbol(std::uint64_t entryPosition, Elf32_Sym& symbol);

    VWholeFile mFile;
    /// File position of the PE signature.
    std::uint64_t mSignature = 0;
    /// File position of the symbol entries; 0: there is neither symbol nor string table.
    std::uint64_t mSymbolTable = 0;
    std::uint32_t mSymbolCount = 0;
    /// Bytes of the file up to the last one that terminates a text.
    std::uint64_t mTextsEnd = 0;
    std::uint64_t mHeaderImageBase = 0;
    bool mIsDll = false;
    std::uint16_t mMachine = 0;
    std::vector<Elf64_Shdr> mSections;
    /// Names of `mSections`, each in the file.
    std::vector<std::string_view> mSectionNames;
    /// What else the headers of `mSections` say.
    struct SectionFacts {
        std::uint32_t fileSize = 0;
        std::uint32_t characteristics = 0;
    };
    std::vector<SectionFacts> mSectionFacts;
    std::deque<ShortName> mShortNames;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
