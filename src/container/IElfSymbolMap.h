// What the walk over the symbol table fills.
#pragma once

#include "container/ElfRecords.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A container of symbols.
class IElfSymbolMap {
public:
    IElfSymbolMap() = default;
    IElfSymbolMap(const IElfSymbolMap&) = delete;
    IElfSymbolMap& operator=(const IElfSymbolMap&) = delete;
    IElfSymbolMap(IElfSymbolMap&&) = delete;
    IElfSymbolMap& operator=(IElfSymbolMap&&) = delete;

    /// Takes a copy of the record, but not of the text that its name points to.
    virtual void AddSymbol(const Elf32_Sym& symbol) = 0;
    virtual void Clear() = 0;
    virtual ~IElfSymbolMap() = default;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
