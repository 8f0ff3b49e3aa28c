// The cells of a row with the initial value of a place, for tables with `--values`.
#pragma once

#include "TableWriter.h"

#include "model/ValueDecoder.h"

#include <array>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// `value` is a number or truth value; 0 for memory that is cleared at the start; empty if the
/// image doesn't have the value. `valueText` is the enumerator, or the text of an array of
/// characters.
inline constexpr std::array sValueColumns = {Column{"value", true},
                                             Column{"valueText", false, true}};

/// Decodes the values of one model.
class ValueCells {
public:
    /// @param model borrowed; must not change during the life of this object
    explicit ValueCells(const DataModel::Model& model)
        : mModel(model)
        , mDecoder(model) {}

    /// The cells of `sValueColumns`. Valid until the next call.
    std::array<Cell, 2> Of(const DataModel::Model::Place& place);
    /// The cells for a leaf. The first element of an array of characters has the text of all.
    std::array<Cell, 2> OfLeaf(std::string_view path, const DataModel::Model::Place& place);

private:
    [[nodiscard]] std::string TextOfArray(std::string_view path, DataModel::ObjectId global);

    const DataModel::Model& mModel;
    DataModel::ValueDecoder mDecoder;
    DataModel::PlaceValue mValue;
    std::string mNumber;
    std::string mText;
};

} // namespace Tessel::Norn::Brindle::Program
