// To which unit a variable belongs.
#pragma once

#include "emit/OfLastScope.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Finds the units of variables. Those that follow each other in scopes side by side share all but
/// the first steps of the way.
class UnitsOfVariables {
public:
    /// The unit's node, which the tree owns; null if the variable has none.
    const VDebugInfoNode* UnitOf(const VDebugInfoNode& variable) {
        const VDebugInfoNode* scope = variable.GetParent();
        if (scope == nullptr || scope->GetParent() == nullptr) {
            return variable.FindUnit();
        }
        return mUnits.Get(scope->GetParent(),
                          [](const VDebugInfoNode* outer) { return outer->FindUnit(); });
    }

private:
    OfLastScope<const VDebugInfoNode*> mUnits;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
