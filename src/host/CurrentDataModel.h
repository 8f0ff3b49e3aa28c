// Which data model the next read delivers into. The host owns the model and keeps it current for
// the length of the read; the factory picks it up when the read begins.
#pragma once

#include "../core/Export.h"

namespace Tessel::Norn::Brindle::DataModel::Factory {

class HostDataModel;

/// Makes a data model current from construction to destruction. Scopes may nest: the model that was
/// current before becomes current again. The model is borrowed and must outlive the scope.
class BRINDLE_EXPORT CurrentDataModel {
public:
    /// Makes the model current. Reads that are running keep theirs.
    explicit CurrentDataModel(HostDataModel& dataModel);
    /// Makes the previous model current again, or none.
    ~CurrentDataModel();
    CurrentDataModel(const CurrentDataModel&) = delete;
    CurrentDataModel& operator=(const CurrentDataModel&) = delete;
    CurrentDataModel(CurrentDataModel&&) = delete;
    CurrentDataModel& operator=(CurrentDataModel&&) = delete;

    /// The current model, or null if there is none.
    static HostDataModel* Get();

private:
    HostDataModel* mPrevious;
};

} // namespace Tessel::Norn::Brindle::DataModel::Factory
