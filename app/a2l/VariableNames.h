// What each variable of an image is called in an export, and which symbol leads back to it.
#pragma once

#include "a2l/SymbolIndex.h"
#include "model/DataModel.h"

#include <string>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Program::A2l {

struct VariableName {
    /// An identifier of A2L.
    std::string identifier;
    /// A symbol that `SymbolIndex` finds the variable by.
    std::string symbol;
};

/// A name depends on nothing but the names of the image: not on addresses, nor on the order of the
/// units. A variable whose name others have as well has its unit in front.
class VariableNames {
public:
    /// @param model, index borrowed; must not change during the life of the object
    VariableNames(const DataModel::Model& model, const SymbolIndex& index);

    [[nodiscard]] VariableName Of(DataModel::ObjectId global) const;

private:
    const DataModel::Model& mModel;
    const SymbolIndex& mIndex;
    /// How many variables have an identifier.
    std::unordered_map<std::string, std::size_t> mCounts;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
