// Finds the addresses that the expressions of a unit name by index.
#pragma once

#include "dwarf/VUnitTables.h"

#include <cstdint>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The unit's part of `.debug_addr`. Borrows both.
class UnitAddresses {
public:
    UnitAddresses(VUnitTables& tables, const VCompileUnitReader& unit)
        : mTables(tables)
        , mUnit(unit) {}

    [[nodiscard]] std::optional<std::uint64_t> At(std::uint64_t index) const {
        return mTables.AddressAt(mUnit, index);
    }

private:
    VUnitTables& mTables;
    const VCompileUnitReader& mUnit;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
