#include "container/VElfSymbolMap.h"

#include "core/VElfOptions.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Names of one address that are compared at most, and characters of them; else a file with many
/// symbols and many variables at one place would take a time of their product.
constexpr std::size_t sMaximumComparisons = 1000;
constexpr std::size_t sMaximumComparedCharacters = 64 * sMaximumComparisons;

std::uint32_t Address(const Elf32_Sym& symbol) {
    return static_cast<std::uint32_t>(symbol.st_value);
}

bool NameBeginsWith(const Elf32_Sym& symbol, std::string_view name) {
    return symbol.name != nullptr && std::strncmp(symbol.name, name.data(), name.size()) == 0;
}

} // namespace

void VElfSymbolMap::AddSymbol(const Elf32_Sym& symbol) {
    mIsSorted = mSymbols.empty() || (mIsSorted && Address(mSymbols.back()) <= Address(symbol));
    mSymbols.push_back(symbol);
}

void VElfSymbolMap::Clear() {
    std::vector<Elf32_Sym>().swap(mSymbols);
    mIsSorted = true;
}

Elf32_Sym* VElfSymbolMap::FindByAddress(std::uint32_t address, std::string_view name) {
    SortByAddress();
    const auto first = std::ranges::lower_bound(mSymbols, address, {}, Address);
    if (first == mSymbols.end() || Address(*first) != address) {
        return nullptr;
    }
    if (VElfOptions::mSymTabSearchMode != 0) {
        const std::size_t comparisons =
            std::min(sMaximumComparisons, sMaximumComparedCharacters / (name.size() + 1));
        const auto last =
            first + std::min(static_cast<std::ptrdiff_t>(comparisons), mSymbols.end() - first);
        for (auto symbol = first; symbol != last && Address(*symbol) == address; ++symbol) {
            if (NameBeginsWith(*symbol, name)) {
                return &*symbol;
            }
        }
    }
    return &*first;
}

void VElfSymbolMap::SortByAddress() {
    if (!mIsSorted) {
        std::ranges::stable_sort(mSymbols, {}, Address);
        mIsSorted = true;
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
