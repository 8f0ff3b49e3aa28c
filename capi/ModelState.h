// A model behind a handle of the C interface.
#pragma once

#include "HandleTable.h"
#include "brindle.h"

#include "model/DataModel.h"
#include "model/QualifiedNameIndex.h"

#include <mutex>
#include <optional>

namespace Tessel::Norn::Brindle::CInterface {

/// A model and what is asked of it again and again. It is filled by one read before its handle is
/// given out, and only asked from then on.
class ModelState {
public:
    DataModel::DataModel& Model() { return mModel; }
    [[nodiscard]] const DataModel::DataModel& Model() const { return mModel; }

    /// The index of the finished model, made with the first call.
    const DataModel::QualifiedNameIndex& Names() {
        std::call_once(mIsIndexed, [this] { mNames.emplace(mModel); });
        return *mNames;
    }

private:
    DataModel::DataModel mModel;
    std::once_flag mIsIndexed;
    std::optional<DataModel::QualifiedNameIndex> mNames;
};

using ModelTable = HandleTable<brindle_model, ModelState>;

} // namespace Tessel::Norn::Brindle::CInterface
