// Which symbols of a file the data model already has, as variables with debug information or as
// symbols. Address and name together identify a symbol: a static variable of one file hides no
// symbol of the same name, and a variable hides no other name at its address.
#pragma once

#include "core/HashSlots.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Names by their addresses. It keeps a hash of 64 bits for each name, not its text.
class DeliveredSymbols {
public:
    /// Adds a name or linkage name of a variable; an empty name is ignored.
    void AddVariable(std::uint64_t address, std::string_view name);

    /// Adds a name or linkage name of a static variable whose debug entry computes its value
    /// instead of naming its place: `static int mode` of the values 5 and 9 may be one byte that is
    /// 0 or 1. Its symbol would show the byte as the variable. An empty name is ignored.
    /// @param unit name of its unit, as delivered
    void AddValue(std::string_view name, std::string_view unit);

    /// Adds a symbol, unless a variable at its address has its name. The symbol's name may be the
    /// plain or mangled name of the variable, or have what compilers put before and after it:
    /// `_calls`, `calls.0`, `calls$1`, `main.calls`, `calls@VERSION_1`, `_ZZ4mainE5calls`.
    /// @param unit of a local symbol, by `SourceUnits`; only such symbols are hidden by values
    /// @return false if the symbol or its variable was already known, or is a value's
    bool AddSymbol(std::uint64_t address, std::string_view name,
                   std::optional<std::string_view> unit = std::nullopt);

private:
    class KeySet {
    public:
        bool Insert(std::uint64_t key);
        [[nodiscard]] bool IsEmpty() const { return mKeys.empty(); }
        [[nodiscard]] bool Contains(std::uint64_t key) const;

    private:
        HashSlots mPositions;
        std::vector<std::uint64_t> mKeys;
    };

    [[nodiscard]] bool IsValue(std::string_view name, std::string_view unit) const;
    [[nodiscard]] bool HasVariable(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool IsVariable(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool HasVariableInWholeName(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool HasVariableInParts(std::uint64_t address, std::string_view name) const;
    [[nodiscard]] bool HasVariableInMangledName(std::uint64_t address, std::string_view name) const;

    KeySet mVariables;
    KeySet mValues;
    KeySet mSymbols;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
