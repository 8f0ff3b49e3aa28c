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

/// address, size, type, name, bitOffset, bitSize, compileUnit; on request also section and the
/// columns of values
std::vector<Column> PlaceColumns(const ListChoice& choice);

/// Whether there were wanted leaves, and what was left out of them.
struct LeafList {
    /// False if there are none.
    bool hasMatch = false;
    DataModel::LeafCuts cuts;
};

/// Adds the rows of the wanted leaves: by name, those whose path the pattern matches, with or
/// without the scopes before it, and all leaves of a variable whose name it matches. The caller
/// finishes the table.
/// @param table has `PlaceColumns`
LeafList WriteLeaves(const DataModel::Model& model, const ListChoice& choice,
                     const DataModel::LeafLimits& limits, TableWriter& table);

/// True if a filter accepts a leaf, or a variable, of a model.
bool HasMatch(const DataModel::Model& model, const NameFilter& names,
              const DataModel::LeafLimits& limits);

/// What was left out of an expansion, for a person, one text for each cause.
std::vector<std::string> DescribeCuts(const DataModel::LeafCuts& cuts,
                                      const DataModel::LeafLimits& limits);

} // namespace Tessel::Norn::Brindle::Program
