// Finds the address of a symbol by its name, under the demangled name where there is one. Filled on
// the first query of a read.
#pragma once

#include "container/IElfSymbolMap.h"
#include "container/VMapStringToPtr.h"
#include "core/AddressWidth.h"
#include "core/LongTextAllowance.h"

#include <cstdint>
#include <deque>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// How far a symbol is visible; the widest reach wins.
enum class SymbolReach : std::uint8_t {
    /// To its own file only.
    File,
    /// To the files of its link.
    Link,
    All,
};

/// Where the symbol of a name lies: the bits of its value that count.
struct VElfSymbolAddress {
    std::uint64_t mAddress = 0;
    /// Always `All` in the classic manner, which doesn't ask.
    SymbolReach mReach = SymbolReach::All;
    /// Several symbols of this name and reach lie at different addresses.
    bool mIsAmbiguous = false;
    /// Source file of a symbol that only its own file knows; null if the table doesn't name it.
    /// Points into the string table buffer.
    const char* mSourceFile = nullptr;
};

/// Symbol addresses by name. In the classic manner the last symbol of a name wins. In the full one
/// the widest reach wins, unless its symbols lie at several addresses.
class VElfSymbolNamesMap final : public IElfSymbolMap {
public:
    explicit VElfSymbolNamesMap(ReadingManner manner = ReadingManner::Classic)
        : mManner(manner) {}

    /// Classic manner: files the symbol under its demangled name, or its raw name where there is
    /// none. Full manner: under its name without version, and under the demangled one as well.
    void AddSymbol(const Elf32_Sym& symbol) override;
    /// Sets the file's size in bytes, which limits the long names together; 0 at the start.
    void SetFileSize(std::int64_t fileSize) { mLongNames = LongTextAllowance(fileSize); }
    /// Releases all entries; the initialised flag stays.
    void Clear() override;
    void DeleteAll() { Clear(); }
    /// Releases all entries; the next lookup of a name fills the map again.
    void Restart() {
        Clear();
        mIsInitialized = false;
    }

    /// The address record of exactly this name, null if there is none. Valid until `Clear`.
    const VElfSymbolAddress* FindByName(const char* name) const;

    /// Whether the map has been filled, or filling it has been tried, for this file.
    [[nodiscard]] bool IsInitialized() const { return mIsInitialized; }
    void SetInitialized() { mIsInitialized = true; }

private:
    void AddLatest(const Elf32_Sym& symbol);
    void AddFarthestKnown(const Elf32_Sym& symbol);
    void FileFarthestKnown(const char* name, const VElfSymbolAddress& address);

    ReadingManner mManner;
    VMapStringToPtr mAddressesByName{10};
    LongTextAllowance mLongNames;
    bool mIsInitialized = false;
    // When a name comes again, its old record stays here, unreachable, until the map is emptied.
    std::deque<VElfSymbolAddress> mAddresses;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
