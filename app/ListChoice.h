// The request to a command that lists variables or leaves, once the file is read: which ones and in
// which order. The tables of `vars` and `leaves` use it.
#pragma once

#include "ChosenColumns.h"
#include "NamePattern.h"
#include "RowOrder.h"
#include "SharedNames.h"

#include "model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct ListChoice : ChosenColumns {
    NameFilter names;
    /// Identifiers of the wanted compile units, ascending; all units without a value.
    std::optional<std::vector<DataModel::ObjectId>> units;
    /// Smallest size in bytes.
    std::uint64_t leastSize = 0;
    RowOrder order = RowOrder::Address;
};

/// Decides what is wanted, variable by variable. A name also selects the variables that have a
/// number since they share it.
class VariableFilter {
public:
    /// @param model, choice borrowed
    VariableFilter(const DataModel::Model& model, const ListChoice& choice)
        : mModel(model)
        , mChoice(choice)
        , mSharedNames(model) {}

    /// Moves to the next variable.
    /// @return true if it, or a leaf of it, may be wanted
    bool Begin(const DataModel::ModelObject& variable);

    /// @name About the current variable
    /// @{

    /// Its qualified name.
    [[nodiscard]] const std::string& Name() const { return mName; }
    /// The name of its compile unit; empty without one.
    [[nodiscard]] std::string_view Unit() const { return mUnit; }
    /// True if the variable itself is wanted by its name.
    [[nodiscard]] bool IsWhole() const { return mIsWhole; }
    /// True if a leaf of this path is wanted by its name.
    [[nodiscard]] bool TakesLeaf(std::string_view path) const {
        return mIsWhole || mChoice.names.Takes(path, mOwnName, mUnit) ||
               (!mPlainName.empty() &&
                mChoice.names.Takes(mPlainName + std::string(path.substr(mName.size())), mOwnName,
                                    mUnit));
    }
    /// @}

    [[nodiscard]] bool TakesSize(std::uint64_t size) const { return size >= mChoice.leastSize; }

private:
    const DataModel::Model& mModel;
    const ListChoice& mChoice;
    SharedNames mSharedNames;
    std::string mName;
    /// The name without the number that it has since others share it; otherwise empty.
    std::string mPlainName;
    std::string_view mUnit;
    std::size_t mOwnName = 0;
    bool mIsWhole = false;
};

} // namespace Tessel::Norn::Brindle::Program
