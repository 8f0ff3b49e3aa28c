#include "ModelComparison.h"

#include "VariableMatching.h"

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
    , typeTexts(sideModel) {}

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
            ComparePair(pair.oldGlobal, pair.newGlobal);
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

bool ModelComparison::BeginVariable(const Side& side, const ComparedPlace& variable) {
    mOwnName = OwnNameStart(variable.name, side.model.Object(variable.place.global).name);
    mUnit = side.model.Object(side.model.CompileUnitOf(variable.place.global)).name;
    mIsWholeWanted = mScope.filter.Takes(variable.name, mOwnName, mUnit);
    return mIsWholeWanted || mScope.filter.MayTakeBehind(variable.name, mOwnName, mUnit);
}

void ModelComparison::ComparePair(ObjectId oldGlobal, ObjectId newGlobal) {
    const ComparedPlace oldVariable = VariableOf(mOld, oldGlobal);
    const ComparedPlace newVariable = VariableOf(mNew, newGlobal);
    if (!BeginVariable(mOld, oldVariable)) {
        return;
    }
    PassChanged(oldVariable, newVariable, false);
    const bool haveSameLeaves = mOld.fingerprints.Of(oldVariable.place.type) ==
                                mNew.fingerprints.Of(newVariable.place.type);
    if (mScope.hasLeaves && !haveSameLeaves && !IsExhausted()) {
        const Places oldLeaves = LeavesOf(mOld, oldGlobal);
        const Places newLeaves = LeavesOf(mNew, newGlobal);
        // Half of the leaves would look like changes.
        if (!IsExhausted()) {
            CompareLeaves(oldLeaves, newLeaves);
        }
    }
}

void ModelComparison::CompareLeaves(const Places& oldLeaves, const Places& newLeaves) {
    // The leaves of a name, last first; a name recurs only in odd unions.
    std::unordered_map<std::string_view, std::vector<const ComparedPlace*>> unmatched;
    for (std::size_t leaf = newLeaves.size(); leaf-- > 0;) {
        unmatched[newLeaves[leaf].name].push_back(&newLeaves[leaf]);
    }
    for (const ComparedPlace& oldLeaf : oldLeaves) {
        const auto known = unmatched.find(oldLeaf.name);
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
        const auto known = unmatched.find(newLeaf.name);
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
    if (mIsWholeWanted || mScope.filter.Takes(difference.Latest().name, mOwnName, mUnit)) {
        (*mSink)(difference);
    }
}

bool ModelComparison::IsExhausted() const {
    return OldCuts().isExhausted || NewCuts().isExhausted;
}

ComparedPlace ModelComparison::VariableOf(Side& side, ObjectId global) {
    const DataModel::ModelObject variable = side.model.Object(global);
    ComparedPlace result;
    result.name = side.model.QualifiedName(global);
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
                              side.fingerprints.MeaningOf(place.type), place,
                              place.address - start});
        }
    });
    return leaves;
}

} // namespace Tessel::Norn::Brindle::Program
