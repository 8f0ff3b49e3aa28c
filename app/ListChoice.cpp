#include "ListChoice.h"

#include "ValueCells.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program {

bool VariableFilter::Begin(const DataModel::ModelObject& variable) {
    const DataModel::ObjectId unit = mModel.CompileUnitOf(variable.id);
    if (mChoice.units && !std::ranges::binary_search(*mChoice.units, unit)) {
        return false;
    }
    mUnit = mModel.Object(unit).name;
    mName = mModel.QualifiedName(variable.id);
    mOwnName = OwnNameStart(mName, variable.name);
    mIsWhole = mChoice.names.Takes(mName, mOwnName, mUnit);
    return mIsWhole || mChoice.names.MayTakeBehind(mName, mOwnName, mUnit);
}

Cell SectionCell(const DataModel::Model& model, std::uint64_t address) {
    const DataModel::ImageSection* const section = model.Image().SectionAt(address);
    return section == nullptr ? Cell() : Cell(std::string_view(section->name));
}

void AddChosenColumns(const ListChoice& choice, std::vector<Column>& columns) {
    if (choice.hasSections) {
        columns.push_back(Column{"section"});
    }
    if (choice.hasValues) {
        columns.insert(columns.end(), sValueColumns.begin(), sValueColumns.end());
    }
}

} // namespace Tessel::Norn::Brindle::Program
