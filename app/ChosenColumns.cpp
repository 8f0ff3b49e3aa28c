#include "ChosenColumns.h"

#include "FileInfo.h"
#include "Message.h"
#include "ValueCells.h"

#include <CLI/App.hpp>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

void AddColumnArguments(CLI::App& command, ChosenColumns& chosen) {
    command.add_flag("--section", chosen.hasSections,
                     "Add a column for the section that holds the address");
    command.add_flag("--values", chosen.hasValues,
                     "Add the initial values that the image holds: numbers, enumerators and texts");
}

void AddChosenColumns(const ChosenColumns& chosen, std::vector<Column>& columns) {
    if (chosen.hasSections) {
        columns.push_back(Column{"section"});
    }
    if (chosen.hasValues) {
        columns.insert(columns.end(), sValueColumns.begin(), sValueColumns.end());
    }
}

void TellMissingValues(const std::string& file, const DataModel::Model& model,
                       const ChosenColumns& chosen) {
    if (chosen.hasValues && !model.Image().hasContents) {
        Tell(file, WithoutContentsText());
    }
}

Cell SectionCell(const DataModel::Model& model, std::uint64_t address) {
    const DataModel::ImageSection* const section = model.Image().SectionAt(address);
    return section == nullptr || model.Image().IsOverlaid(address, 1)
               ? Cell()
               : Cell(std::string_view(section->name));
}

} // namespace Tessel::Norn::Brindle::Program
