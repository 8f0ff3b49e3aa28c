#include "container/DeliveredSymbols.h"

#include "container/SymbolName.h"
#include "container/VElfBuffer.h"
#include "core/KeyMixing.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool DeliveredSymbols::Insert(std::uint64_t address, std::uint32_t nameOffset,
                              std::string_view name, const VElfBuffer& names) {
    const std::uint64_t hash = HashOfText(name, Mix(address ^ ProcessSeed()));
    const auto isThisSymbol = [&](std::uint32_t position) {
        const Symbol& known = mSymbols[position - 1];
        if (known.address != address) {
            return false;
        }
        const char* knownName = names.GetTextAt(known.nameOffset);
        return known.nameOffset == nameOffset ||
               (knownName != nullptr && CutSymbolName(knownName) == name);
    };
    if (mPositions.Find(hash, isThisSymbol) != 0) {
        return false;
    }
    mSymbols.push_back({address, nameOffset});
    mPositions.Add(hash, static_cast<std::uint32_t>(mSymbols.size()));
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
