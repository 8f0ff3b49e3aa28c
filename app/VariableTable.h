// The rows that `vars` prints: one for each global variable of a model.
#pragma once

#include <vector>

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

struct Column;
struct ListChoice;
class TableWriter;

/// address, size, type, name, compileUnit, and section if the choice has it
std::vector<Column> VariableColumns(const ListChoice& choice);

/// Adds the rows of the wanted variables. The caller finishes the table.
/// @param table has `VariableColumns`
/// @return false if there are none
bool WriteVariables(const DataModel::Model& model, const ListChoice& choice, TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
