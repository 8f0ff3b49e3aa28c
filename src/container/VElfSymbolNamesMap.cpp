#include "container/VElfSymbolNamesMap.h"

#include "container/SymbolName.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VElfSymbolNamesMap::AddSymbol(const Elf32_Sym& symbol) {
    VElfSymbolAddress& address = mAddresses.emplace_back();
    address.mAddress = symbol.st_value & mAddressBits;
    const DemangledSymbolName name(CutSymbolName(symbol.name, mLongNames));
    mAddressesByName[name.GetName()] = &address;
}

void VElfSymbolNamesMap::Clear() {
    mAddressesByName.RemoveAll();
    mAddresses.clear();
}

const VElfSymbolAddress* VElfSymbolNamesMap::FindByName(const char* name) const {
    void* address = nullptr;
    return mAddressesByName.Lookup(name, address) ? static_cast<VElfSymbolAddress*>(address)
                                                  : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
