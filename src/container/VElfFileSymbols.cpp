// The symbol side of `VElfFile`: the string table, the two walks over the symbol table (System V
// ABI, chapter "Symbol Table") and the lookups of the debug phase. The delivery of symbols is in
// emit/VElfFileDelivery.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/CutText.h"
#include "core/UnitName.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"

#include <algorithm>
#include <cinttypes>
#include <cstddef>
#include <limits>
#include <new>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint64_t sLargestClassicSymbol = std::numeric_limits<std::uint32_t>::max();

bool IsDataByOption(const Elf32_Sym& symbol) {
    return symbol.Type() == sSymbolTypeObject ||
           (symbol.Type() == sSymbolTypeNone && VElfOptions::mSymTabSearchMode != 0);
}

/// Which symbols of an ELF file a manner of reading uses, and for what.
struct SymbolRules {
    bool (*read)(Elf32_Sym&, VElfBuffer&, bool is64Bit);
    /// Symbols that may show what lies at an address.
    bool (*isWantedByAddress)(const Elf32_Sym&);
    /// Symbols that may show where a variable lies.
    bool (*isWantedByName)(const Elf32_Sym&);
    /// Symbols that are delivered, if they have a name.
    bool (*isDeliverable)(const Elf32_Sym&);

    static const SymbolRules& Of(ReadingManner manner);
};

bool IsClassicMapSymbol(const Elf32_Sym& symbol) {
    return IsDataByOption(symbol) && symbol.st_value != 0;
}

bool IsClassicDeliverable(const Elf32_Sym& symbol) {
    return symbol.Type() == sSymbolTypeObject && symbol.st_value != 0;
}

constexpr SymbolRules sClassicRules = {sReadSymbolFromBuffer, IsClassicMapSymbol,
                                       IsClassicMapSymbol, IsClassicDeliverable};

/// An address of 0 is one like any other: vectors and ports lie there.
bool IsFullAddressMapSymbol(const Elf32_Sym& symbol) {
    return IsDataByOption(symbol) && symbol.IsDefined();
}

/// Symbols of linker scripts and assembler files often have no type.
bool IsFullNamesMapSymbol(const Elf32_Sym& symbol) {
    const bool isUntyped = symbol.Type() == sSymbolTypeNone && !symbol.IsLocal();
    return (IsDataByOption(symbol) || isUntyped) && symbol.IsDefined();
}

bool IsFullDeliverable(const Elf32_Sym& symbol) {
    return symbol.Type() == sSymbolTypeObject && symbol.IsDefined();
}

constexpr SymbolRules sFullRules = {sReadLargeSymbolFromBuffer, IsFullAddressMapSymbol,
                                    IsFullNamesMapSymbol, IsFullDeliverable};

const SymbolRules& SymbolRules::Of(ReadingManner manner) {
    return manner == ReadingManner::Full ? sFullRules : sClassicRules;
}

/// The symbol of a source file says where the local symbols after it belong.
class SourceFiles {
public:
    void Take(Elf32_Sym& symbol) {
        if (symbol.Type() == sSymbolTypeFile) {
            mCurrent = symbol.name != nullptr ? NameIn(symbol.name) : nullptr;
        } else if (symbol.IsLocal()) {
            symbol.sourceFile = mCurrent;
        }
    }

private:
    /// The end of a path that its unit's name keeps: each of the symbols asks for it. Null for a
    /// path that no compiler writes, since a table may have a source for every other symbol.
    static const char* NameIn(const char* path) {
        const std::string_view whole = CutText(path, sMaximumPathLength + 1);
        return whole.size() <= sMaximumPathLength ? LastPartOfPath(whole).data() : nullptr;
    }

    static constexpr std::size_t sMaximumPathLength = 1024;

    const char* mCurrent = nullptr;
};

bool HasName(const Elf32_Sym& symbol) {
    return symbol.name != nullptr && *symbol.name != '\0';
}

/// Loads the symbol table. In the classic manner one that can't be loaded counts as empty; the full
/// one reads no file of which a part is missing.
bool LoadTable(VElfBuffer& buffer, const Elf64_Shdr& section, ReadingManner manner) {
    const bool countsAsEmpty = manner == ReadingManner::Classic || section.sh_size == 0;
    return buffer.LoadFromFile(section.sh_offset, section.sh_size) ||
           (countsAsEmpty && !IsOutOfMemory());
}

void WarnOfTrimmedAddress(const Elf32_Sym& symbol, ReadingManner manner) {
    if ((symbol.st_value & ~AddressBits(manner)) != 0 && VElfOptions::mIsLogFile != 0) {
        elflog(
            "Warning: Symbol '%s' has 64-bit address 0x%16.16" PRIx64
            " overriding 32-bit address limitation of current ELF-Reader version. The address is "
            "trimmed to 32 bit size!!\n",
            std::string(CutSymbolName(symbol.name)).c_str(), symbol.st_value);
    }
}

} // namespace

bool sReadLargeSymbolFromBuffer(Elf32_Sym& symbol, VElfBuffer& buffer, bool is64Bit) {
    symbol.st_name = buffer.GetULong();
    if (is64Bit) {
        symbol.st_info = buffer.GetUByte();
        symbol.st_other = buffer.GetUByte();
        symbol.st_shndx = buffer.GetUShort();
        symbol.st_value = buffer.GetUInt64();
        symbol.st_size = buffer.GetUInt64();
    } else {
        symbol.st_value = buffer.GetULong();
        symbol.st_size = buffer.GetULong();
        symbol.st_info = buffer.GetUByte();
        symbol.st_other = buffer.GetUByte();
        symbol.st_shndx = buffer.GetUShort();
    }
    return true;
}

bool sReadSymbolFromBuffer(Elf32_Sym& symbol, VElfBuffer& buffer, bool is64Bit) {
    sReadLargeSymbolFromBuffer(symbol, buffer, is64Bit);
    return symbol.st_size <= sLargestClassicSymbol || Fail(ELFReadErrorEnum::ELFERR_64BIT_LIMIT);
}

bool VElfFile::LoadStrTabSection() {
    mStrTabBuffer = std::make_unique<VElfBuffer>(*this);
    if (mSecStrtab.sh_size == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_STRTAB);
    }
    return mStrTabBuffer->LoadFromFile(mSecStrtab.sh_offset, mSecStrtab.sh_size);
}

bool VElfFile::ReadSymbol(Elf32_Sym& symbol, VElfBuffer& buffer) const {
    const bool isRead = SymbolRules::Of(mManner).read(symbol, buffer, mIs64Bit);
    // The debug information counts in bytes, the symbol table in words.
    if (mIsWordAddressedTarget && mManner == ReadingManner::Full) {
        symbol.st_value *= 2;
    }
    return isRead;
}

bool VElfFile::LoadSymbolMap(IElfSymbolMap& map) {
    return LoadSymbols(map, SymbolRules::Of(mManner).isWantedByAddress);
}

bool VElfFile::LoadSymbols(IElfSymbolMap& map, SymbolFilter* isWanted) {
    if (!mStrTabBuffer) {
        return false;
    }
    VElfBuffer buffer(*this);
    if (!LoadTable(buffer, mSecSymtab, mManner)) {
        return false;
    }
    map.Clear();
    if (mSecSymtab.sh_entsize == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_SECTION_ITEM_SIZE);
    }
    if (mSecStrtab.sh_size == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_STRTAB);
    }
    SourceFiles sources;
    const std::uint64_t count = mSecSymtab.sh_size / mSecSymtab.sh_entsize;
    for (std::uint64_t index = 0; index < count && !buffer.IsEOF(); ++index) {
        Elf32_Sym symbol;
        if (!ReadSymbol(symbol, buffer)) {
            return false;
        }
        if (buffer.IsOverrun()) {
            break;
        }
        symbol.name = mStrTabBuffer->GetTextAt(symbol.st_name);
        sources.Take(symbol);
        if (isWanted(symbol) && symbol.name != nullptr) {
            WarnOfTrimmedAddress(symbol, mManner);
            map.AddSymbol(symbol);
        }
    }
    return true;
}

bool VElfFile::ForEachDeliverableSymbol(const SymbolVisitor& visit) {
    VElfBuffer buffer(*this);
    if (!LoadTable(buffer, mSecSymtab, mManner)) {
        return false;
    }
    const SymbolRules& rules = SymbolRules::Of(mManner);
    SourceFiles sources;
    while (!buffer.IsEOF()) {
        Elf32_Sym symbol;
        if (!ReadSymbol(symbol, buffer)) {
            return false;
        }
        if (buffer.IsOverrun()) {
            break;
        }
        symbol.name = mStrTabBuffer->GetTextAt(symbol.st_name);
        sources.Take(symbol);
        if (rules.isDeliverable(symbol) && HasName(symbol)) {
            visit(symbol);
        }
    }
    return true;
}

bool VElfFile::IsUnifyProcessingOfNamesOfSymbolsReadFromSymbolTable() {
    return mDemangleSymTabNames >= 2 || mFixClassNameScopeSepar >= 2;
}

void VElfFile::ProcessSymbolTableEntryName(char* name, std::size_t size, std::uint32_t nameOffset) {
    std::string_view processed = name;
    if (IsUnifyProcessingOfNamesOfSymbolsReadFromSymbolTable() && nameOffset != 0) {
        const VElfNameObject* object = mNamesObjectMap.FindObject(nameOffset);
        if (object == nullptr) {
            object = mNamesObjectMap.AddObject(nameOffset, name);
        }
        if (object->IsModified()) {
            processed = std::string_view(object->GetName()).substr(0, size - 1);
        }
    }
    if (mRemoveLeadingUnderscore != 0 && processed.starts_with('_')) {
        processed.remove_prefix(1);
    }
    // The text may be a part of the buffer itself.
    const std::size_t length = std::min(processed.size(), size - 1);
    std::ranges::copy(processed.substr(0, length), name);
    name[length] = '\0';
}

Elf32_Sym* VElfFile::FindSymbolByAddress(std::uint64_t address, std::string_view name) {
    return mSymbolMap.FindByAddress(address, name);
}

bool VElfFile::LoadSymbolNames() {
    if (mManner == ReadingManner::Full && mPEImage.IsMapped()) {
        return mPEImage.ReadSymbolNames(mSymbolNamesMap);
    }
    return LoadSymbols(mSymbolNamesMap, SymbolRules::Of(mManner).isWantedByName);
}

const VElfSymbolAddress* VElfFile::FindSymbolByName(const std::string& name) {
    if (!mSymbolNamesMap.IsInitialized()) {
        mSymbolNamesMap.SetFileSize(mFileSize);
        const bool isLoaded = LoadSymbolNames();
        mSymbolNamesMap.SetInitialized();
        if (!isLoaded) {
            // Going on would lose variables, as if the file had no symbols for them.
            if (mStrTabBuffer && IsOutOfMemory()) {
                throw std::bad_alloc();
            }
            return nullptr;
        }
    }
    if (const VElfSymbolAddress* address = mSymbolNamesMap.FindByName(name.c_str())) {
        return address;
    }
    if (name.starts_with('_')) {
        return nullptr;
    }
    const std::string underscoredName = ('_' + name).substr(0, sSymbolNameBufferSize);
    return mSymbolNamesMap.FindByName(underscoredName.c_str());
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
