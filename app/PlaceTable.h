// The rows that `leaves` prints: one for each place within a variable.
#pragma once

#include "model/LeafWalk.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct Column;
struct ListChoice;
class NameFilter;
class TableWriter;

/// address, size, type, name, bitOffset, bitSize, compileUnit, and section and those of values
/// where they are asked for
std::vector<Column> PlaceColumns(const ListChoice& choice);

/// The leaves that were wanted, and what was left out of them.
struct LeafList {
    /// False if there are none.
    bool hasMatch = false;
    DataModel::LeafCuts cuts;
};

/// Adds the rows of the leaves that are wanted. By name those are whose path the pattern fits, with
/// or without the scopes in front, and all of a variable whose name it fits. The caller finishes
/// the table.
/// @param table has `PlaceColumns`
LeafList WriteLeaves(const DataModel::Model& model, const ListChoice& choice,
                     const DataModel::LeafLimits& limits, TableWriter& table);

/// True if a filter takes a leaf, or a variable, of a model.
bool HasMatch(const DataModel::Model& model, const NameFilter& names,
              const DataModel::LeafLimits& limits);

/// What was left out of an expansion, for a person, one text for each cause.
std::vector<std::string> DescribeCuts(const DataModel::LeafCuts& cuts,
                                      const DataModel::LeafLimits& limits);

} // namespace Tessel::Norn::Brindle::Program
