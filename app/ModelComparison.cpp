#include "ModelComparison.h"

#include "SymbolScope.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Program {

using DataModel::ObjectId;
using Place = DataModel::Model::Place;

bool Difference::IsMoved() const {
    return isLeaf ? oldPlace->offset != newPlace->offset ||
                        oldPlace->place.bitOffset != newPlace->place.bitOffset
                  : oldPlace->place.address != newPlace->place.address;
}

bool Difference::IsResized() const {
    return oldPlace->place.size != newPlace->place.size ||
           oldPlace->place.bitSize != newPlace->place.bitSize;
}

bool Difference::IsRetyped() const {
    return oldPlace->meaning != newPlace->meaning;
}

ModelComparison::Side::Side(const DataModel::Model& sideModel, const DataModel::LeafLimits& limits)
    : model(sideModel)
    , walk(sideModel, limits)
    , fingerprints(sideModel)
    , typeTexts(sideModel)
    , sharedNames(sideModel) {}

ModelComparison::ModelComparison(const DataModel::Model& oldModel, const DataModel::Model& newModel,
                                 const ComparisonScope& scope)
    : mScope(scope)
    , mOld(oldModel, scope.limits)
    , mNew(newModel, scope.limits) {}

void ModelComparison::Run(const Sink& sink) {
    mSink = &sink;
    const VariableMatching matching = MatchVariables(mOld.model, mNew.model);
    for (const VariableMatching::Pair& pair : matching.pairs) {
        if (pair.newGlobal != 0) {
            ComparePair(pair);
        } else if (mScope.hasAllOfNew) {
            PassVanished(pair.oldGlobal);
        }
    }
    if (mScope.hasAllOfOld) {
        for (const ObjectId global : matching.appeared) {
            PassAppeared(global);
        }
    }
}

bool ModelComparison::BeginVariable(const Side& side, const ComparedPlace& variable,
                                    const std::string& otherName) {
    const ObjectId global = variable.place.global;
    mOwnName = OwnNameStart(variable.name, side.model.Object(global).name);
    mUnit = side.model.Object(side.model.CompileUnitOf(global)).name;
    mOtherNames.clear();
    const auto addName = [&](const std::string& name) {
        if (!name.empty() && name != variable.name) {
            mOtherNames.push_back(name);
        }
    };
    addName(side.sharedNames.WithoutNumber(global, variable.name));
    addName(otherName);
    const auto isWanted = [this](const std::string& name) {
        return mScope.filter.Takes(name, mOwnName, mUnit);
    };
    const auto mayBeBehind = [this](const std::string& name) {
        return mScope.filter.MayTakeBehind(name, mOwnName, mUnit);
    };
    mIsWholeWanted = isWanted(variable.name) || std::ranges::any_of(mOtherNames, isWanted);
    return mIsWholeWanted || mayBeBehind(variable.name) ||
           std::ranges::any_of(mOtherNames, mayBeBehind);
}

void ModelComparison::Remark(const VariableMatching::Pair& pair, const std::string& oldName,
                             const std::string& newName) {
    // Symbols without debug information are only looked at on request.
    const bool isInDoubt = pair.isByOrder && !IsInSymbolScope(newName);
    if (isInDoubt && mRemarks.byOrder++ == 0) {
        mRemarks.firstByOrder = newName;
    }
    if (oldName != newName && mRemarks.renumbered++ == 0) {
        mRemarks.firstOldName = oldName;
        mRemarks.firstNewName = newName;
    }
}

void ModelComparison::ComparePair(const VariableMatching::Pair& pair) {
    const ComparedPlace oldVariable = VariableOf(mOld, pair.oldGlobal);
    const ComparedPlace newVariable = VariableOf(mNew, pair.newGlobal);
    if (!BeginVariable(mOld, oldVariable, newVariable.name)) {
        return;
    }
    Remark(pair, oldVariable.name, newVariable.name);
    PassChanged(oldVariable, newVariable, false);
    const bool haveSameLeaves = mOld.fingerprints.Of(oldVariable.place.type) ==
                                mNew.fingerprints.Of(newVariable.place.type);
    if (mScope.hasLeaves && !haveSameLeaves && !IsExhausted()) {
        const Places oldLeaves = LeavesOf(mOld, pair.oldGlobal);
        const Places newLeaves = LeavesOf(mNew, pair.newGlobal);
        // Half of the leaves would look like changes.
        if (!IsExhausted()) {
            CompareLeaves(oldLeaves, newLeaves);
        }
    }
}

void ModelComparison::CompareLeaves(const Places& oldLeaves, const Places& newLeaves) {
    // The variable may have another number now.
    const auto stepsOf = [](const ComparedPlace& leaf) {
        return std::string_view(leaf.name).substr(leaf.variableLength);
    };
    // The leaves of a name, last first; a name recurs only in odd unions.
    std::unordered_map<std::string_view, std::vector<const ComparedPlace*>> unmatched;
    for (std::size_t leaf = newLeaves.size(); leaf-- > 0;) {
        unmatched[stepsOf(newLeaves[leaf])].push_back(&newLeaves[leaf]);
    }
    for (const ComparedPlace& oldLeaf : oldLeaves) {
        const auto known = unmatched.find(stepsOf(oldLeaf));
        if (known == unmatched.end()) {
            Pass({&oldLeaf, nullptr, true});
            continue;
        }
        PassChanged(oldLeaf, *known->second.back(), true);
        known->second.pop_back();
        if (known->second.empty()) {
            unmatched.erase(known);
        }
    }
    for (const ComparedPlace& newLeaf : newLeaves) {
        const auto known = unmatched.find(stepsOf(newLeaf));
        if (known != unmatched.end()) {
            Pass({nullptr, &newLeaf, true});
        }
    }
}

void ModelComparison::PassVanished(ObjectId oldGlobal) {
    const ComparedPlace variable = VariableOf(mOld, oldGlobal);
    if (!BeginVariable(mOld, variable)) {
        return;
    }
    Pass({&variable, nullptr, false});
    if (AreWholeLeavesWanted()) {
        for (const ComparedPlace& leaf : LeavesOf(mOld, oldGlobal)) {
            Pass({&leaf, nullptr, true});
        }
    }
}

void ModelComparison::PassAppeared(ObjectId newGlobal) {
    const ComparedPlace variable = VariableOf(mNew, newGlobal);
    if (!BeginVariable(mNew, variable)) {
        return;
    }
    Pass({nullptr, &variable, false});
    if (AreWholeLeavesWanted()) {
        for (const ComparedPlace& leaf : LeavesOf(mNew, newGlobal)) {
            Pass({nullptr, &leaf, true});
        }
    }
}

bool ModelComparison::AreWholeLeavesWanted() const {
    return mScope.hasLeaves && (mScope.hasLeavesOfWhole || !mIsWholeWanted);
}

void ModelComparison::PassChanged(const ComparedPlace& oldPlace, const ComparedPlace& newPlace,
                                  bool isLeaf) {
    const Difference difference{&oldPlace, &newPlace, isLeaf};
    if (difference.IsMoved() || difference.IsResized() || difference.IsRetyped()) {
        Pass(difference);
    }
}

void ModelComparison::Pass(const Difference& difference) const {
    if (mIsWholeWanted || IsWanted(difference)) {
        (*mSink)(difference);
    }
}

bool ModelComparison::IsWanted(const Difference& difference) const {
    const ComparedPlace& latest = difference.Latest();
    const auto isWanted = [this](const std::string& name) {
        return mScope.filter.Takes(name, mOwnName, mUnit);
    };
    return isWanted(latest.name) ||
           std::ranges::any_of(mOtherNames, [&](const std::string& variable) {
               return isWanted(variable + latest.name.substr(latest.variableLength));
           });
}

bool ModelComparison::IsExhausted() const {
    return OldCuts().isExhausted || NewCuts().isExhausted;
}

ComparedPlace ModelComparison::VariableOf(Side& side, ObjectId global) {
    const DataModel::ModelObject variable = side.model.Object(global);
    ComparedPlace result;
    result.name = side.model.QualifiedName(global);
    result.variableLength = result.name.size();
    result.type = side.typeTexts.Of(variable.type);
    result.meaning = side.fingerprints.MeaningOf(variable.type);
    result.place.global = global;
    result.place.type = variable.type;
    result.place.address = variable.address;
    result.place.size = side.model.SizeOf(global);
    return result;
}

ModelComparison::Places ModelComparison::LeavesOf(Side& side, ObjectId global) {
    Places leaves;
    if (side.walk.Cuts().isExhausted) {
        return leaves;
    }
    const std::size_t nameLength = side.model.QualifiedName(global).size();
    const std::uint64_t start = side.model.Object(global).address;
    side.walk.Walk(global, [&](std::string_view path, const Place& place) {
        if (path.size() > nameLength) {
            leaves.push_back({std::string(path), side.typeTexts.Of(place.type),
                              side.fingerprints.MeaningOf(place.type), place, nameLength,
                              place.address - start});
        }
    });
    return leaves;
}

} // namespace Tessel::Norn::Brindle::Program
