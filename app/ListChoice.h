// What a command that lists variables or leaves was asked for, once the file is read: which ones
// and in which order. The tables of `vars` and `leaves` ask it.
#pragma once

#include "ChosenColumns.h"
#include "NamePattern.h"
#include "RowOrder.h"

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
    /// Identifiers of the compile units that are wanted, ascending; all without a value.
    std::optional<std::vector<DataModel::ObjectId>> units;
    /// In bytes.
    std::uint64_t leastSize = 0;
    RowOrder order = RowOrder::Address;
};

/// Picks what is wanted, variable by variable.
class VariableFilter {
public:
    /// @param model, choice borrowed
    VariableFilter(const DataModel::Model& model, const ListChoice& choice)
        : mModel(model)
        , mChoice(choice) {}

    /// Turns to the next variable.
    /// @return true if it, or a leaf of it, may be wanted
    bool Begin(const DataModel::ModelObject& variable);

    /// @name About the present variable
    /// @{

    /// Its qualified name.
    [[nodiscard]] const std::string& Name() const { return mName; }
    /// The name of its compile unit; empty without one.
    [[nodiscard]] std::string_view Unit() const { return mUnit; }
    /// True if it is wanted by its name.
    [[nodiscard]] bool IsWhole() const { return mIsWhole; }
    /// True if a leaf of this path is wanted by its name.
    [[nodiscard]] bool TakesLeaf(std::string_view path) const {
        return mIsWhole || mChoice.names.Takes(path, mOwnName, mUnit);
    }
    /// @}

    [[nodiscard]] bool TakesSize(std::uint64_t size) const { return size >= mChoice.leastSize; }

private:
    const DataModel::Model& mModel;
    const ListChoice& mChoice;
    std::string mName;
    std::string_view mUnit;
    std::size_t mOwnName = 0;
    bool mIsWhole = false;
};

} // namespace Tessel::Norn::Brindle::Program
