// Paths that begin with a compile unit, which distinguishes static variables of one name.
#pragma once

#include "model/DataModel.h"

#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// As `Model::ResolvePaths`. A path that doesn't resolve as it is may begin with the name of a
/// compile unit, such as "motor_c::counter": it then means the variables of that unit.
std::vector<DataModel::Model::PathResult> ResolveUnitPaths(const DataModel::Model& model,
                                                           std::string_view path);

} // namespace Tessel::Norn::Brindle::Program
