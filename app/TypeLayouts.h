// The layouts that `types` prints: each type of a model as a C declaration with its offsets, sizes,
// holes and bit fields in comments.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {
class DataModel;
}

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

/// Writes classes, structures, unions, enums and typedefs in the order of delivery. Declarations
/// that read alike are written once, with the first of their compile units and the number of the
/// others. A type without a name of its own stands within the first typedef or member that holds
/// it. Offsets within a type count from its start.
/// @param pattern fits the names of the types that are wanted; empty for all
/// @return false if there is a pattern that no type matches
bool WriteTypeLayouts(const DataModel::DataModel& model, std::string_view pattern,
                      ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
