// Finds the symbol at an address. Filled once before the debug section is decoded; pointers to
// symbols are valid until the next change.
#pragma once

#include "container/IElfSymbolMap.h"
#include "core/AddressWidth.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Symbols by the bits of their values that count. Symbols of one address keep the order of
/// insertion.
class VElfSymbolMap final : public IElfSymbolMap {
public:
    explicit VElfSymbolMap(ReadingManner manner = ReadingManner::Classic)
        : mAddressBits(AddressBits(manner)) {}

    void AddSymbol(const Elf32_Sym& symbol) override;
    void Clear() override;
    void DeleteAll() { Clear(); }
    [[nodiscard]] bool IsEmpty() const { return mSymbols.empty(); }

    /// The symbol at an address, null if there is none. Of several, the first; with
    /// `mSymTabSearchMode` the first whose name begins with `name`, or else the first. Compares at
    /// most 1000 names, and fewer if `name` is long.
    Elf32_Sym* FindByAddress(std::uint64_t address, std::string_view name);
    /// The symbols at an address in the order of insertion.
    [[nodiscard]] std::span<const Elf32_Sym> AllAt(std::uint64_t address);

private:
    [[nodiscard]] std::uint64_t AddressOf(const Elf32_Sym& symbol) const {
        return symbol.st_value & mAddressBits;
    }
    void SortByAddress();

    std::uint64_t mAddressBits;
    std::vector<Elf32_Sym> mSymbols;
    bool mIsSorted = true;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
