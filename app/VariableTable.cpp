#include "VariableTable.h"

#include "ListChoice.h"
#include "TableWriter.h"
#include "ValueCells.h"

#include "model/DataModel.h"

#include <optional>
#include <string>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;

/// One variable, kept until all are known.
struct VariableRow {
    ObjectId id = 0;
    std::uint64_t address = 0;
    std::uint64_t size = 0;
    std::string name;
};

class VariableRows {
public:
    VariableRows(const DataModel::Model& model, const ListChoice& choice, TableWriter& table)
        : mModel(model)
        , mChoice(choice)
        , mTable(table) {
        if (choice.hasValues) {
            mValues.emplace(model);
        }
    }

    void Take(VariableRow row) {
        if (mChoice.order == RowOrder::File) {
            Write(row);
        } else {
            mRows.push_back(std::move(row));
        }
    }

    void WriteKept() {
        std::vector<RowKey> keys;
        keys.reserve(mRows.size());
        for (const VariableRow& row : mRows) {
            keys.push_back({row.address, row.size, row.name});
        }
        for (const std::size_t row : SortedRows(keys, mChoice.order)) {
            Write(mRows[row]);
        }
    }

private:
    void Write(const VariableRow& row) {
        const std::string type = mModel.TypeText(mModel.Object(row.id).type);
        const ModelObject unit = mModel.Object(mModel.CompileUnitOf(row.id));
        std::vector<Cell> cells = {Address{row.address}, row.size, type, row.name, unit.name};
        if (mChoice.hasSections) {
            cells.push_back(SectionCell(mModel, row.address));
        }
        if (mValues) {
            const auto values =
                mValues->Of({row.id, mModel.Object(row.id).type, row.address, row.size});
            cells.insert(cells.end(), values.begin(), values.end());
        }
        mTable.AddRow(cells);
    }

    const DataModel::Model& mModel;
    const ListChoice& mChoice;
    TableWriter& mTable;
    std::optional<ValueCells> mValues;
    std::vector<VariableRow> mRows;
};

} // namespace

std::vector<Column> VariableColumns(const ListChoice& choice) {
    std::vector<Column> columns = {Column{"address", true}, Column{"size", true}, Column{"type"},
                                   Column{"name", false, false, sLeastNameWidth},
                                   Column{.name = "compileUnit", .isSideNote = true}};
    AddChosenColumns(choice, columns);
    return columns;
}

bool WriteVariables(const DataModel::Model& model, const ListChoice& choice, TableWriter& table) {
    VariableFilter filter(model, choice);
    VariableRows rows(model, choice, table);
    bool hasMatch = false;
    model.ForEach(DataModel::ObjectKind::Global, [&](const ModelObject& variable) {
        const std::uint64_t size = model.SizeOf(variable.id);
        if (filter.TakesSize(size) && filter.Begin(variable) && filter.IsWhole()) {
            hasMatch = true;
            rows.Take({variable.id, variable.address, size, filter.Name()});
        }
    });
    rows.WriteKept();
    return hasMatch;
}

} // namespace Tessel::Norn::Brindle::Program
