#include "VariableMatching.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using Model = DataModel::Model;

using KeyOf = std::string (*)(const Model& model, ObjectId global);

std::string_view UnitName(const Model& model, ObjectId global) {
    return model.Object(model.CompileUnitOf(global)).name;
}

/// Separated by a character that no name contains.
std::string JoinedKey(const Model& model, ObjectId global, std::string_view unit) {
    return model.QualifiedName(global).append(1, '\0').append(unit);
}

std::string ByUnit(const Model& model, ObjectId global) {
    return JoinedKey(model, global, UnitName(model, global));
}

std::string ByFileOfUnit(const Model& model, ObjectId global) {
    const std::string_view unit = UnitName(model, global);
    const std::size_t folders = unit.find_last_of("/\\");
    return JoinedKey(model, global,
                     folders == std::string_view::npos ? unit : unit.substr(folders + 1));
}

std::vector<ObjectId> Globals(const Model& model) {
    std::vector<ObjectId> globals;
    model.ForEach(ObjectKind::Global,
                  [&globals](const ModelObject& global) { globals.push_back(global.id); });
    return globals;
}

/// Matches each unmatched old variable with the next new one of the same key.
void MatchRest(const Model& oldModel, const Model& newModel, KeyOf keyOf,
               VariableMatching& matching) {
    struct Candidates {
        std::vector<ObjectId> globals;
        std::size_t taken = 0;
    };
    std::unordered_map<std::string, Candidates> byKey;
    for (const ObjectId global : matching.appeared) {
        byKey[keyOf(newModel, global)].globals.push_back(global);
    }
    std::vector<bool> isTaken(newModel.ObjectCount() + 1);
    for (VariableMatching::Pair& pair : matching.pairs) {
        if (byKey.empty() || pair.newGlobal != 0) {
            continue;
        }
        const auto known = byKey.find(keyOf(oldModel, pair.oldGlobal));
        if (known != byKey.end() && known->second.taken < known->second.globals.size()) {
            pair.newGlobal = known->second.globals[known->second.taken++];
            isTaken[pair.newGlobal] = true;
        }
    }
    std::erase_if(matching.appeared, [&isTaken](ObjectId global) { return isTaken[global]; });
}

} // namespace

VariableMatching MatchVariables(const Model& oldModel, const Model& newModel) {
    VariableMatching matching;
    for (const ObjectId global : Globals(oldModel)) {
        matching.pairs.push_back({global, 0});
    }
    matching.appeared = Globals(newModel);
    MatchRest(oldModel, newModel, ByUnit, matching);
    MatchRest(oldModel, newModel, ByFileOfUnit, matching);
    return matching;
}

} // namespace Tessel::Norn::Brindle::Program
