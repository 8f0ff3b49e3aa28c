// The rows that `find` prints: what expressions lead to, and what lies at addresses.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

struct ChosenColumns;
struct Column;
class TableWriter;

/// query, address, size, type, name, offset, bitOffset, bitSize, compileUnit, and the chosen ones.
/// `query` is there where it isn't the name; `offset` says where in the place an address lies.
std::vector<Column> FindColumns(const ChosenColumns& chosen);

/// Writes a whole table of what queries lead to, in their order. A query that begins with a digit
/// is an address, in hexadecimal with 0x in front: it gives a row for each place that holds the
/// byte. Any other is an expression: it gives a row for each variable of the name, with the
/// qualified name of the variable where there are several. What leads nowhere gives no row.
/// @param table has `FindColumns` of `chosen`
/// @return for each query that leads nowhere, why
std::vector<std::string> WriteFound(const DataModel::Model& model,
                                    std::span<const std::string> queries,
                                    const ChosenColumns& chosen, TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
