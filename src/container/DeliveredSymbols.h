// Which symbols of a file the data model has already, as variables with debug information or as
// symbols. A symbol counts by its address and its name together: a static variable of one file
// hides no symbol of the same name, and a variable hides no other name of its place.
#pragma once

#include "core/HashSlots.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VElfBuffer;

/// A set of symbols. It keeps offsets of the string table, not the names.
class DeliveredSymbols {
public:
    /// Adds a symbol.
    /// @param nameOffset where its name begins in `names`, the string table
    /// @param name the name itself, which may be cut
    /// @return false if it was there
    bool Insert(std::uint64_t address, std::uint32_t nameOffset, std::string_view name,
                const VElfBuffer& names);

private:
    struct Symbol {
        std::uint64_t address = 0;
        std::uint32_t nameOffset = 0;
    };

    HashSlots mPositions;
    std::vector<Symbol> mSymbols;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
