#include "host/FactoryForCliClient.h"

#include "host/CurrentDataModel.h"

namespace Tessel::Norn::Brindle::DataModel::Factory {

FactoryForCliClient::FactoryForCliClient()
    : mDataModel(CurrentDataModel::Get()) {}

} // namespace Tessel::Norn::Brindle::DataModel::Factory
