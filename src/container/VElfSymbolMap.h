// Tells which symbol lies at an address. Filled once before the debug section is decoded; the
// pointers it gives out end with the next change.
#pragma once

#include "container/IElfSymbolMap.h"
#include "core/AddressWidth.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Symbols by those bits of their values that count. Symbols of one address keep the order of
/// insertion.
class VElfSymbolMap final : public IElfSymbolMap {
public:
    explicit VElfSymbolMap(ReadingManner manner = ReadingManner::Classic)
        : mAddressBits(AddressBits(manner)) {}

    void AddSymbol(const Elf32_Sym& symbol) override;
    void Clear() override;
    void DeleteAll() { Clear(); }
    [[nodiscard]] bool IsEmpty() const { return mSymbols.empty(); }

    /// The symbol at an address, null if there is none. Of several it is the first; with
    /// `mSymTabSearchMode` it is the first whose name begins with `name`, else the first. Of very
    /// many the first 1000 are looked at, and fewer of those whose names are long.
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
