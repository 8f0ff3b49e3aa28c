// The name of each variable of an image in an export, and the symbol that leads back to it.
#pragma once

#include "a2l/SymbolIndex.h"
#include "model/DataModel.h"

#include <string>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Program::A2l {

struct VariableName {
    /// An identifier of A2L.
    std::string identifier;
    /// A symbol with which `SymbolIndex` finds the variable.
    std::string symbol;
};

/// A name depends only on the names of the image, not on addresses or on the order of units. A
/// variable whose name others have as well gets its unit in front.
class VariableNames {
public:
    /// @param model, index borrowed; must not change during the life of the object
    VariableNames(const DataModel::Model& model, const SymbolIndex& index);

    [[nodiscard]] VariableName Of(DataModel::ObjectId global) const;

private:
    const DataModel::Model& mModel;
    const SymbolIndex& mIndex;
    /// How many variables have each identifier.
    std::unordered_map<std::string, std::size_t> mCounts;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
