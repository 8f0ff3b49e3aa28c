// Which variable of a new build corresponds to which of an old one: the first step of `diff`.
#pragma once

#include "model/DataModel.h"

#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// The globals of two models, side by side, each in the order of delivery.
struct VariableMatching {
    struct Pair {
        DataModel::ObjectId oldGlobal = 0;
        /// 0 if the variable has vanished.
        DataModel::ObjectId newGlobal = 0;
        /// Only the order speaks for this pair, which may have changed.
        bool isByOrder = false;
    };

    /// One for every old variable.
    std::vector<Pair> pairs;
    /// Variables of the new model that match no old one.
    std::vector<DataModel::ObjectId> appeared;
};

/// Variables match if they have the same qualified name and lie in compile units of the same name,
/// or else of the same file name in different folders, since builds run in different folders.
/// Of several variables of one name and unit, whether numbered or not, those match whose type and
/// initial value, or whose type, no other of them has; the rest matches in the order of delivery.
VariableMatching MatchVariables(const DataModel::Model& oldModel, const DataModel::Model& newModel);

} // namespace Tessel::Norn::Brindle::Program
