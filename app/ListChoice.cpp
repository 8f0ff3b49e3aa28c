#include "ListChoice.h"

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
    mPlainName = mSharedNames.WithoutNumber(variable.id, mName);
    mIsWhole = mChoice.names.Takes(mName, mOwnName, mUnit) ||
               (!mPlainName.empty() && mChoice.names.Takes(mPlainName, mOwnName, mUnit));
    return mIsWhole || mChoice.names.MayTakeBehind(mName, mOwnName, mUnit) ||
           (!mPlainName.empty() && mChoice.names.MayTakeBehind(mPlainName, mOwnName, mUnit));
}

} // namespace Tessel::Norn::Brindle::Program
