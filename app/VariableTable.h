// The rows that `vars` prints: one for each global variable of a model.
#pragma once

#include <span>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {
class DataModel;
}

namespace Tessel::Norn::Brindle::Program {

struct Column;
class TableWriter;

/// address, size, type, name, compileUnit
std::span<const Column> VariableColumns();

/// Writes a whole table of the variables that a pattern fits, all for an empty one, in the order of
/// delivery.
/// @param table has `VariableColumns`
/// @return false if there is a pattern that no variable matches
bool WriteVariables(const DataModel::DataModel& model, std::string_view pattern,
                    TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
