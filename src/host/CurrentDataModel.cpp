#include "host/CurrentDataModel.h"

namespace Tessel::Norn::Brindle::DataModel::Factory {

namespace {

HostDataModel* gCurrent = nullptr;

} // namespace

CurrentDataModel::CurrentDataModel(HostDataModel& dataModel)
    : mPrevious(gCurrent) {
    gCurrent = &dataModel;
}

CurrentDataModel::~CurrentDataModel() {
    gCurrent = mPrevious;
}

HostDataModel* CurrentDataModel::Get() {
    return gCurrent;
}

} // namespace Tessel::Norn::Brindle::DataModel::Factory
