#include "a2l/VariableNames.h"

#include "a2l/Identifiers.h"

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

} // namespace

VariableNames::VariableNames(const DataModel::Model& model, const SymbolIndex& index)
    : mModel(model)
    , mIndex(index) {
    model.ForEach(ObjectKind::Global, [this](const ModelObject& global) {
        ++mCounts[MakeIdentifier(mIndex.PlainName(global.id))];
    });
}

VariableName VariableNames::Of(ObjectId global) const {
    const std::string plain = mIndex.PlainName(global);
    const std::string_view unit = mModel.Object(mModel.CompileUnitOf(global)).name;
    VariableName name{MakeIdentifier(plain), plain};
    if (mCounts.at(name.identifier) > 1 && !unit.empty()) {
        name.identifier = MakeIdentifier(std::string(unit) + "." + plain);
    }
    const auto leadsBack = [&](const std::string& symbol) {
        const SymbolIndex::Answer answer = mIndex.Find(symbol);
        return answer.outcome == SymbolIndex::Outcome::Found &&
               answer.place.address == mModel.Object(global).address;
    };
    if (!leadsBack(plain)) {
        for (const std::string& symbol :
             {std::string(unit) + "::" + plain, mModel.QualifiedName(global)}) {
            if (leadsBack(symbol)) {
                name.symbol = symbol;
                break;
            }
        }
    }
    return name;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
