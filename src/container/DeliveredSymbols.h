// Which symbols of a file the data model has already, as variables with debug information or as
// symbols. A symbol counts by its address and its name together: a static variable of one file
// hides no symbol of the same name, and a variable hides no other name of its place.
#pragma once

#include "core/HashSlots.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Names by their addresses. It keeps a hash of 64 bits for each, not the texts.
class DeliveredSymbols {
public:
    /// Adds a name or linkage name of a variable; an empty one is none.
    void AddVariable(std::uint64_t address, std::string_view name);

    /// Adds a symbol, unless it is that of a variable at its address. Such a symbol has the name of
    /// the variable plain, mangled, or with what compilers put before and behind it: `_calls`,
    /// `calls.0`, `main.calls`, `calls@VERSION_1`, `_ZZ4mainE5calls`.
    /// @return false if the symbol or its variable was there
    bool AddSymbol(std::uint64_t address, std::string_view name);

private:
    class KeySet {
    public:
        bool Insert(std::uint64_t key);
        [[nodiscard]] bool Contains(std::uint64_t key) const;

    private:
        HashSlots mPositions;
        std::vector<std::uint64_t> mKeys;
    };

    [[nodiscard]] bool IsVariable(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool HasVariableInParts(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool HasVariableInMangledName(std::uint64_t address, std::string_view name) const;

    KeySet mVariables;
    KeySet mSymbols;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
