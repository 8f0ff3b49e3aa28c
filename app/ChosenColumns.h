// Columns that a table of variables or places has only on request.
#pragma once

#include "TableWriter.h"

#include "model/DataModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tessel::Norn::Brindle::Program {

struct ChosenColumns {
    /// The section that holds the address.
    bool hasSections = false;
    /// The initial value.
    bool hasValues = false;
};

/// Adds `--section` and `--values`.
void AddColumnArguments(CLI::App& command, ChosenColumns& chosen);

/// Adds the chosen columns: the section, then `sValueColumns`.
void AddChosenColumns(const ChosenColumns& chosen, std::vector<Column>& columns);

/// Says why the column of values is empty if the file has no contents at all.
void TellMissingValues(const std::string& file, const DataModel::Model& model,
                       const ChosenColumns& chosen);

/// The name of the section that holds an address, or nothing. Valid as long as the model.
Cell SectionCell(const DataModel::Model& model, std::uint64_t address);

} // namespace Tessel::Norn::Brindle::Program
