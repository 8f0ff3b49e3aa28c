// The identifier that reader and data model share for an object.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// Names one object of a data model. Made by the model, passed back unchanged; 0 means none.
using ObjectId = std::uint64_t;

} // namespace Tessel::Norn::Brindle::DataModel
