// The picture of one input file for one read: the open stream, the target's properties, one record
// for each section that the reader cares about, the string table, the symbol maps, and the handles
// to the factory and the reader. All three containers fill the same records; everything later asks
// only these.
#pragma once

#include "container/DeliveredSymbols.h"
#include "container/ElfRecords.h"
#include "container/IElfSymbolMap.h"
#include "container/SourceUnits.h"
#include "container/VCoffFileHeader.h"
#include "container/VElfBuffer.h"
#include "container/VElfInput.h"
#include "container/VElfNamesObjectMap.h"
#include "container/VElfSymbolMap.h"
#include "container/VElfSymbolNamesMap.h"
#include "container/VImageSections.h"
#include "container/VPEImage.h"
#include "core/ReadFacts.h"
#include "core/ReadRemarks.h"
#include "core/ReadingManner.h"
#include "core/VElfOptions.h"
#include "host/ImageDescription.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VCLIFactoryWrapper;
class VDWARFReaderWrapper;

/// One input file.
/// Operations that return false have set the error state unless noted otherwise. The file stays
/// open to the end of the object, after a failure too.
/// to the end of the object, after a failure too.
class VElfFile : public VElfOptions, public VElfInput {
public:
    /// Makes the factory of the file, in emit/VElfFileDelivery. The reader is borrowed and may be
    /// null.
    /// @param content the file in memory, which the path then only names; null to open the path
    VElfFile(const std::string& path, VDWARFReaderWrapper* reader, FileContent content = nullptr);
    ~VElfFile();
    VElfFile(const VElfFile&) = delete;
    VElfFile& operator=(const VElfFile&) = delete;
    VElfFile(VElfFile&&) = delete;
    VElfFile& operator=(VElfFile&&) = delete;

    /// Path of the input as the host gave it.
    [[nodiscard]] const std::string& GetInputPath() const { return mPath; }
    /// Path of the input, cut to 260 characters.
    [[nodiscard]] const std::string& GetInputFileName() const { return mFileName; }

    /// @name ELF header and sections
    /// Implemented in VElfFileHeaders.
    /// @{

    /// Opens the file and fills the header and the target flags (ELF header, e_ident). A file that
    /// can't be opened is also reported on standard output. Errors: `ELFERR_OPEN_FAILED`,
    /// `ELFERR_READ_FAILED`, `ELFERR_SEEK_FAILED`, `ELFERR_NOT_ELF`, `ELFERR_ELF_CLASS`,
    /// `ELFERR_BYTE_ENCODING`, `ELFERR_ELF_VERSION`.
    bool ReadElfHeader();
    /// Fills the section records. Errors: those of loading, `ELFERR_NO_SYMTAB`, `ELFERR_NO_STRTAB`.
    bool LoadSectionInfos();
    /// Loads the raw section header table.
    /// @return the number of sections, or -1
    static std::int32_t LoadSectionHeaderTable(VElfBuffer& buffer, const Elf64_Ehdr& header,
                                               bool is64Bit);
    /// The index of the section with the names of sections, which the first header of the table may
    /// hold.
    std::int32_t SectionNamesIndex(VElfBuffer& table) const;
    /// Decodes the section header at an offset of the table.
    static void ReadSectionHeader(Elf64_Shdr& section, VElfBuffer& buffer, std::int32_t tableOffset,
                                  bool is64Bit);

    /// @}
    /// @name COFF header and sections, TI layout
    /// Implemented in VElfFileCoff.
    /// @{

    /// Opens the file and fills the header and the target flags; `mCoffDwarfAddressMode` and the
    /// target id decide on word addressing. Errors: `ELFERR_OPEN_FAILED`, `ELFERR_READ_FAILED`,
    /// `ELFERR_SEEK_FAILED`, `ELFERR_FILE_IS_ELF`. A file that isn't COFF passes, and fails later
    /// on its sizes.
    bool ReadCoffHeader(VCoffFileHeader& header);
    /// Fills the section records. Errors: those of loading; `ELFERR_CORRUPTED` (more symbols or
    /// sections than the file can hold); `ELFERR_WRONG_READER` (the name of a section lies outside
    /// of the string table).
    bool ReadCoffSectionHeader(const VCoffFileHeader& header);

    /// @}
    /// @name PE image
    /// Implemented in VElfFilePe.
    /// @{

    /// Maps the image, fills the section records and opens the file. After any failure the error
    /// state is `ELFERR_OPEN_FAILED`.
    bool ReadPEFileDwarfSections();
    /// Fills `mSymbolMap` with the symbols of the image. False without error state if the map isn't
    /// empty or no image is in memory.
    bool ReadPEFileSymbolTable();

    /// @}
    /// True in the full manner for an object that isn't linked yet: its addresses mean nothing.
    [[nodiscard]] bool IsUnlinked() const;
    /// Stores a section of the container in the record of its name, in place of an earlier one of
    /// that name. The full manner skips, with a remark, a section whose contents can't be used as
    /// they lie in the file.
    /// @return false if the reader has no use for the name
    bool AssignSection(std::string_view name, const Elf64_Shdr& section);

    /// @name Symbols
    /// Implemented in VElfFileSymbols; the delivery in emit/VElfFileDelivery.
    /// @{

    /// Loads the string table of the symbols, in place of one that was loaded before; the names in
    /// the symbol maps end with it. Errors: those of loading, `ELFERR_NO_STRTAB`.
    bool LoadStrTabSection();
    /// Fills a container with the symbols of data that have an address; with `mSymTabSearchMode`
    /// also those of no type. A symbol table that can't be loaded counts as empty. Errors:
    /// `ELFERR_SECTION_ITEM_SIZE`, `ELFERR_NO_STRTAB`, `ELFERR_64BIT_LIMIT` (classic manner); none
    /// without a loaded string table.
    bool LoadSymbolMap(IElfSymbolMap& map);
    using SymbolVisitor = std::function<void(const Elf32_Sym&)>;
    /// Visits the data symbols with a name and an address, in the order of the table. A symbol
    /// table that can't be loaded counts as empty. Errors: `ELFERR_64BIT_LIMIT` (classic manner).
    /// The string table must be loaded.
    bool ForEachDeliverableSymbol(const SymbolVisitor& visit);
    /// Delivers the data symbols that are not in the data model yet. A symbol table that can't be
    /// loaded counts as empty. Errors: `ELFERR_SECTION_ITEM_SIZE`, `ELFERR_64BIT_LIMIT` (classic
    /// manner); none without a loaded string table or a global namespace.
    /// @param onlyDumpToLog walk without delivery
    bool ProcessSymTabSection(bool onlyDumpToLog);
    /// Turns a symbol's name into the one to deliver, as the options ask.
    /// @param name buffer of `size` bytes with the name, which is replaced
    /// @param nameOffset the name's offset in the string table
    void ProcessSymbolTableEntryName(char* name, std::size_t size, std::uint32_t nameOffset);
    /// True if delivered symbol names are demangled.
    static bool IsUnifyProcessingOfNamesOfSymbolsReadFromSymbolTable();

    /// The symbol at an address, null if there is none; see `VElfSymbolMap::FindByAddress`.
    Elf32_Sym* FindSymbolByAddress(std::uint64_t address, std::string_view name);
    /// The address of the symbol of a name or, unless it begins with "_", of "_" and the name; null
    /// if there is none. The first query of a file loads the names; in the full manner, a Windows
    /// image has names too, and symbols without type count.
    /// @throws std::bad_alloc
    const VElfSymbolAddress* FindSymbolByName(const std::string& name);

    /// @}

    /// What the headers say, for the data model; complete once they are read.
    [[nodiscard]] DataModel::ImageDescription DescribeImage(DWARFContainerType container) const;

    /// Doesn't change during a read.
    const ReadingManner mManner = ChosenManner();
    ReadRemarks mRemarks;
    ReadFacts mFacts;
    VPEImage mPEImage;
    /// Facts of the headers that nothing else keeps; see `DescribeImage`.
    DataModel::ImageDescription mImage;
    /// Sections in the target's memory.
    VImageSections mImageSections;
    /// Image base of a PE file that is a DLL, else 0.
    std::uint64_t mImageBase = 0;
    Elf64_Ehdr mElfHeader;
    Elf64_Shdr mSecDebug;
    Elf64_Shdr mSecSymtab;
    Elf64_Shdr mSecStrtab;
    /// The section that `e_shstrndx` names.
    Elf64_Shdr mSecShstrtab;
    Elf64_Shdr mSecVdebug;
    Elf64_Shdr mSecVdbstrtab;
    Elf64_Shdr mSecDebugInfo;
    Elf64_Shdr mSecDebugStr;
    Elf64_Shdr mSecDebugAbbrev;
    Elf64_Shdr mSecDebugLoc;
    Elf64_Shdr mSecDebugTypes;
    Elf64_Shdr mSecDebugLineStr;
    Elf64_Shdr mSecDebugStrOffsets;
    Elf64_Shdr mSecDebugAddr;
    Elf64_Shdr mSecDebugLoclists;
    Elf64_Shdr mSecDebugSup;
    Elf64_Shdr mSecGnuDebugAltLink;
    /// Relocations of `.debug_info`, with the values that belong at the relocated places.
    Elf64_Shdr mSecRelaDebugInfo;
    Elf64_Shdr mSecPubtypes;
    Elf64_Shdr mSecDebugLine;
    Elf64_Shdr mSecDebugPubnames;
    Elf64_Shdr mSecDebugAranges;
    std::unique_ptr<VElfBuffer> mStrTabBuffer;
    VElfSymbolMap mSymbolMap{mManner};
    VElfSymbolNamesMap mSymbolNamesMap{mManner};
    VElfNamesObjectMap mNamesObjectMap;
    /// Filled in the full manner only; the classic one asks the data model.
    DeliveredSymbols mDeliveredSymbols;
    SourceUnits mSourceUnits;
    std::unique_ptr<VCLIFactoryWrapper> mFactory;
    VDWARFReaderWrapper* mReader;

private:
    using SymbolFilter = bool(const Elf32_Sym&);

    bool LoadSymbols(IElfSymbolMap& map, SymbolFilter* isWanted);
    bool LoadSymbolNames();
    bool ReadSymbol(Elf32_Sym& symbol, VElfBuffer& buffer) const;
    bool IsPassedOver(std::string_view name, const Elf64_Shdr& section);
    bool CheckIdentification(VElfBuffer& buffer);
    void ReadHeaderFields(VElfBuffer& buffer);
    void TellSymbolCount();
    void AssignNecSection(std::string_view name, const Elf64_Shdr& section);
    bool ReadCoffSection(VElfBuffer& table, const VElfBuffer& names);
    [[nodiscard]] Elf64_Shdr InBytes(const Elf64_Shdr& section) const;
    static bool HasElfMagic(const VElfBuffer& buffer);
    bool CheckFoundSections() const;

    std::string mPath;
    std::string mFileName;
};

/// Reads the symbol at the cursor. The name pointer isn't touched.
/// @return false with `ELFERR_64BIT_LIMIT` if the size passes 32 bits
bool sReadSymbolFromBuffer(Elf32_Sym& symbol, VElfBuffer& buffer, bool is64Bit);
/// Reads the symbol at the cursor, whatever its size. Always true.
bool sReadLargeSymbolFromBuffer(Elf32_Sym& symbol, VElfBuffer& buffer, bool is64Bit);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
