// Shared by the functions that query a model: finding the model of a handle, and returning what was
// found in it.
#pragma once

#include "Calls.h"
#include "ModelState.h"

#include "model/LeafWalk.h"

#include <memory>
#include <optional>
#include <utility>

namespace Tessel::Norn::Brindle::CInterface {

/// Runs `work`, which takes the state of the model and returns a status.
template <typename Work>
brindle_status ForModel(brindle_model model, Work&& work) {
    return Guarded([&]() -> brindle_status {
        const std::shared_ptr<ModelState> state = ModelTable::Instance().Find(model);
        return state == nullptr ? BRINDLE_INVALID_HANDLE : work(*state);
    });
}

/// Returns what `find` finds in the model: a number, or nothing.
template <typename Value, typename Find>
brindle_status GiveValue(brindle_model model, Value* value, Find&& find) {
    if (value == nullptr) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    *value = 0;
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        const std::optional<Value> found = find(std::as_const(state).Model());
        *value = found.value_or(0);
        return found ? BRINDLE_OK : BRINDLE_NOT_FOUND;
    });
}

/// Returns what `find` finds in the model: a structure, or nothing.
template <typename Structure, typename Find>
brindle_status GiveFound(brindle_model model, Structure* structure, Find&& find) {
    if (!GiveStructure(Structure{}, structure)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        const std::optional<Structure> found = find(std::as_const(state).Model());
        if (found) {
            GiveStructure(*found, structure);
        }
        return found ? BRINDLE_OK : BRINDLE_NOT_FOUND;
    });
}

/// The limits of a walk over leaves as a host states them; 0 becomes the default.
inline DataModel::LeafLimits LimitsOf(std::uint64_t arrayElements, std::uint64_t leaves) {
    DataModel::LeafLimits limits;
    limits.arrayElements = arrayElements == 0 ? limits.arrayElements : arrayElements;
    limits.leaves = leaves == 0 ? limits.leaves : leaves;
    return limits;
}

} // namespace Tessel::Norn::Brindle::CInterface
