#include "container/VElfSymbolNamesMap.h"

#include "container/SymbolName.h"

#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

SymbolReach ReachOf(const Elf32_Sym& symbol) {
    if (!symbol.IsLocal()) {
        return SymbolReach::All;
    }
    return symbol.HasOwnVisibility() ? SymbolReach::Link : SymbolReach::File;
}

} // namespace

void VElfSymbolNamesMap::AddSymbol(const Elf32_Sym& symbol) {
    if (mManner == ReadingManner::Full) {
        AddFarthestKnown(symbol);
    } else {
        AddLatest(symbol);
    }
}

void VElfSymbolNamesMap::AddFarthestKnown(const Elf32_Sym& symbol) {
    const std::string name(WithoutVersion(CutSymbolName(symbol.name, mLongNames)));
    VElfSymbolAddress address{symbol.st_value & AddressBits(mManner), ReachOf(symbol)};
    if (address.mReach == SymbolReach::File) {
        address.mSourceFile = symbol.sourceFile;
    }
    FileFarthestKnown(name.c_str(), address);
    if (const DemangledSymbolName readable(name); readable.IsModified()) {
        FileFarthestKnown(readable.GetName(), address);
    }
}

void VElfSymbolNamesMap::FileFarthestKnown(const char* name, const VElfSymbolAddress& address) {
    void*& filed = mAddressesByName[name];
    auto* known = static_cast<VElfSymbolAddress*>(filed);
    if (known == nullptr) {
        filed = &mAddresses.emplace_back(address);
    } else if (address.mReach > known->mReach) {
        *known = address;
    } else if (address.mReach == known->mReach && address.mAddress != known->mAddress) {
        known->mIsAmbiguous = true;
    }
}

void VElfSymbolNamesMap::AddLatest(const Elf32_Sym& symbol) {
    VElfSymbolAddress& address = mAddresses.emplace_back();
    address.mAddress = symbol.st_value & AddressBits(mManner);
    const DemangledSymbolName name(CutSymbolName(symbol.name, mLongNames));
    mAddressesByName[name.GetName()] = &address;
}

void VElfSymbolNamesMap::Clear() {
    mAddressesByName.RemoveAll();
    mAddresses.clear();
}

const VElfSymbolAddress* VElfSymbolNamesMap::FindByName(const char* name) const {
    void* address = nullptr;
    if (!mAddressesByName.Lookup(name, address)) {
        return nullptr;
    }
    const auto* found = static_cast<const VElfSymbolAddress*>(address);
    return found != nullptr && !found->mIsAmbiguous ? found : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
