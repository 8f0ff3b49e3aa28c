// Paths with a compile unit in front, which tells static variables of one name apart.
#pragma once

#include "model/DataModel.h"

#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// As `Model::ResolvePaths`. A path that does not resolve as it is may begin with the name of a
/// compile unit, as in "motor_c::counter": then those variables are meant that belong to it.
std::vector<DataModel::Model::PathResult> ResolveUnitPaths(const DataModel::Model& model,
                                                           std::string_view path);

} // namespace Tessel::Norn::Brindle::Program
