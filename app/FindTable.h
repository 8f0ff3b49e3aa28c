// The rows that `find` prints: the places of expressions, and what lies at addresses.
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
/// `query` is empty if it equals the name; `offset` is the address's position in the place.
std::vector<Column> FindColumns(const ChosenColumns& chosen);

/// Writes a whole table of the results of queries, in their order. A query that begins with a digit
/// is an address, in hexadecimal after 0x: it gives a row for each place that holds the byte. Any
/// other is an expression: it gives a row for each variable of the name, with the qualified name of
/// the variable if there are several, or if it has a number that the expression lacks. A query
/// without result gives no row.
/// @param table has `FindColumns` of `chosen`
/// @return the reason for each query without result
std::vector<std::string> WriteFound(const DataModel::Model& model,
                                    std::span<const std::string> queries,
                                    const ChosenColumns& chosen, TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
