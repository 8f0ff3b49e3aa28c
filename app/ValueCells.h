// The cells of a row that tell the initial value of a place. The tables with `--values` have them.
#pragma once

#include "TableWriter.h"

#include "model/ValueDecoder.h"

#include <array>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// `value` is a number or truth value; what memory that is cleared at the start holds is 0, and
/// nothing stands where the image doesn't tell the value. `valueText` is the enumerator, or the
/// text of an array of characters.
inline constexpr std::array kValueColumns = {Column{"value", true},
                                             Column{"valueText", false, true}};

/// Decodes the values of one model.
class ValueCells {
public:
    /// @param model borrowed; must not change during the life of this object
    explicit ValueCells(const DataModel::DataModel& model)
        : mDecoder(model) {}

    /// The cells of `kValueColumns`. Valid until the next call.
    std::array<Cell, 2> Of(const DataModel::DataModel::Place& place);

private:
    DataModel::ValueDecoder mDecoder;
    DataModel::PlaceValue mValue;
    std::string mNumber;
};

} // namespace Tessel::Norn::Brindle::Program
