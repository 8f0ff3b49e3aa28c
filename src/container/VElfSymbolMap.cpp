#include "container/VElfSymbolMap.h"

#include "core/VElfOptions.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Most names of one address, and most characters of them, that a lookup compares. Without a limit,
/// many symbols and many variables at one address would take a time of their product.
constexpr std::size_t sMaximumComparisons = 1000;
constexpr std::size_t sMaximumComparedCharacters = 64 * sMaximumComparisons;

bool NameBeginsWith(const Elf32_Sym& symbol, std::string_view name) {
    return symbol.name != nullptr && std::strncmp(symbol.name, name.data(), name.size()) == 0;
}

} // namespace

void VElfSymbolMap::AddSymbol(const Elf32_Sym& symbol) {
    mIsSorted = mSymbols.empty() || (mIsSorted && AddressOf(mSymbols.back()) <= AddressOf(symbol));
    mSymbols.push_back(symbol);
}

void VElfSymbolMap::Clear() {
    std::vector<Elf32_Sym>().swap(mSymbols);
    mIsSorted = true;
}

Elf32_Sym* VElfSymbolMap::FindByAddress(std::uint64_t address, std::string_view name) {
    SortByAddress();
    const auto first = std::ranges::lower_bound(
        mSymbols, address, {}, [this](const Elf32_Sym& symbol) { return AddressOf(symbol); });
    if (first == mSymbols.end() || AddressOf(*first) != address) {
        return nullptr;
    }
    if (VElfOptions::mSymTabSearchMode != 0) {
        const std::size_t comparisons =
            std::min(sMaximumComparisons, sMaximumComparedCharacters / (name.size() + 1));
        const auto last =
            first + std::min(static_cast<std::ptrdiff_t>(comparisons), mSymbols.end() - first);
        for (auto symbol = first; symbol != last && AddressOf(*symbol) == address; ++symbol) {
            if (NameBeginsWith(*symbol, name)) {
                return &*symbol;
            }
        }
    }
    return &*first;
}

std::span<const Elf32_Sym> VElfSymbolMap::AllAt(std::uint64_t address) {
    SortByAddress();
    const auto addressOf = [this](const Elf32_Sym& symbol) { return AddressOf(symbol); };
    return {std::ranges::lower_bound(mSymbols, address, {}, addressOf),
            std::ranges::upper_bound(mSymbols, address, {}, addressOf)};
}

void VElfSymbolMap::SortByAddress() {
    if (!mIsSorted) {
        std::ranges::stable_sort(mSymbols, {},
                                 [this](const Elf32_Sym& symbol) { return AddressOf(symbol); });
        mIsSorted = true;
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
