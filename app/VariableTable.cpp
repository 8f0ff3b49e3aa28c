#include "VariableTable.h"

#include "NamePattern.h"
#include "TableWriter.h"

#include "model/DataModel.h"

#include <array>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::array sColumns = {Column{"address", true}, Column{"size", true}, Column{"type"},
                                 Column{"name"}, Column{"compileUnit"}};

} // namespace

std::span<const Column> VariableColumns() {
    return sColumns;
}

bool WriteVariables(const DataModel::DataModel& model, std::string_view pattern,
                    TableWriter& table) {
    const NameFilter filter(pattern);
    bool hasMatch = filter.TakesAll();
    model.ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        const std::string name = model.QualifiedName(variable.id);
        if (!filter.Takes(name, OwnNameStart(name, variable.name))) {
            return;
        }
        hasMatch = true;
        const std::string type = model.TypeText(variable.type);
        const DataModel::ModelObject unit = model.Object(model.CompileUnitOf(variable.id));
        table.AddRow(std::array<Cell, sColumns.size()>{
            Address{variable.address}, model.SizeOf(variable.id), type, name, unit.name});
    });
    table.Finish();
    return hasMatch;
}

} // namespace Tessel::Norn::Brindle::Program
