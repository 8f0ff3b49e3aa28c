// Variables that share a name and a scope, so that the reader numbers them. Commands that compare
// many variables with names look them up here.
#pragma once

#include "model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// The answers of `Model::SharersOfName` for all variables of a model, from one pass over them.
class SharedNames {
public:
    /// @param model borrowed; must not change during the life of the object
    explicit SharedNames(const DataModel::Model& model);

    /// All variables that share the name of one, itself included, by their numbers; none if no
    /// other shares it.
    [[nodiscard]] std::span<const DataModel::ObjectId>
    SharersOf(DataModel::ObjectId variable) const;

    /// The qualified name of a variable as the source has it: "f::count" for "f::count.2", which
    /// shares its name. Empty if the variable has no number.
    [[nodiscard]] std::string WithoutNumber(DataModel::ObjectId variable,
                                            std::string_view qualifiedName) const;

private:
    std::vector<std::vector<DataModel::ObjectId>> mSharers;
    /// Positions in `mSharers`.
    std::unordered_map<DataModel::ObjectId, std::size_t> mPositions;
};

} // namespace Tessel::Norn::Brindle::Program
