// The factory through which the reader reaches the data model of its host: the model that was
// current when the factory was made.
#pragma once

namespace Tessel::Norn::Brindle::DataModel::Factory {

class HostDataModel;

/// Keeps the data model of one read: a host that makes another one current during the read changes
/// nothing for it.
class FactoryForCliClient final {
public:
    FactoryForCliClient();

    /// False if no data model was current when the factory was made.
    [[nodiscard]] bool HasDataModel() const { return mDataModel != nullptr; }
    /// The data model. Call it only if `HasDataModel`.
    [[nodiscard]] HostDataModel& GetDataModel() const { return *mDataModel; }

private:
    HostDataModel* mDataModel;
};

} // namespace Tessel::Norn::Brindle::DataModel::Factory
