#include "emit/DeliveredVariables.h"

#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "emit/VariableNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this many variables of one name in a scope on, their numbers are no longer tried one by
/// one: of a million variables, each would take up to a million host calls.
constexpr std::uint32_t sManyVariables = 100;

} // namespace

bool DeliveredVariables::MakeUniqueName(ObjectId scope, const std::string& name,
                                        std::string& newName, std::uint64_t address) {
    TakenNames& taken = mTakenNames[scope][name];
    const bool areMany = taken.nextNumber > sManyVariables;
    if (areMany && taken.addresses.contains(address)) {
        return false;
    }
    for (std::uint32_t number = areMany ? taken.nextNumber : 1;; ++number) {
        newName = number == 1 ? name : name + '.' + std::to_string(number);
        const ObjectId existing = mFactory.GetGlobalData(newName, scope);
        if (existing == 0) {
            return true;
        }
        taken.nextNumber = std::max(taken.nextNumber, number + 1);
        const auto known = mSection.mObjectNodes.find(existing);
        if (known == mSection.mObjectNodes.end()) {
            continue;
        }
        const std::uint64_t takenAddress = known->second->GetLocationAddress();
        taken.addresses.insert(takenAddress);
        if (takenAddress == address) {
            return false;
        }
    }
}

void DeliveredVariables::Register(ObjectId object, VDebugInfoNode& variable) {
    mSection.mObjectNodes.try_emplace(object, &variable);
    if (mSection.mElfFile->mManner == ReadingManner::Full) {
        const VariableNames names(variable);
        DeliveredSymbols& delivered = mSection.mElfFile->mDeliveredSymbols;
        delivered.AddVariable(variable.GetLocationAddress(), names.name);
        delivered.AddVariable(variable.GetLocationAddress(), names.linkageName);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
