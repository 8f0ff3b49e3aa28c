// Which variable of a new build is which of an old one. The comparison of two builds asks first.
#pragma once

#include "model/DataModel.h"

#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// The globals of two models, side by side, each in the order of delivery.
struct VariableMatching {
    struct Pair {
        DataModel::ObjectId oldGlobal = 0;
        /// 0 if the variable has vanished.
        DataModel::ObjectId newGlobal = 0;
    };

    /// Every old variable.
    std::vector<Pair> pairs;
    /// Those of the new model that no old one became.
    std::vector<DataModel::ObjectId> appeared;
};

/// Variables belong together that have the same qualified name and lie in compile units of the same
/// name, or else of the same file name in different folders, since builds run in different folders.
/// Several of one name and unit belong together in the order of their delivery.
VariableMatching MatchVariables(const DataModel::Model& oldModel, const DataModel::Model& newModel);

} // namespace Tessel::Norn::Brindle::Program
