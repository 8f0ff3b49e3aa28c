// The layouts that `types` prints: each type of a model as a C declaration with its offsets, sizes,
// holes and bit fields in comments.
#pragma once

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

class NameFilter;
class ResultOutput;

/// Writes classes, structures, unions, enums and typedefs in the order of delivery. Declarations
/// that read alike are written once, with the first of their compile units and the number of the
/// others. A type without a name of its own stands within the first typedef or member that holds
/// it. Offsets within a type count from its start.
/// @param names takes the names of the types that are wanted
/// @param isColoured the comments have a colour
/// @return false if there are none; nothing is written then
bool WriteTypeLayouts(const DataModel::Model& model, const NameFilter& names, ResultOutput& output,
                      bool isColoured = false);

} // namespace Tessel::Norn::Brindle::Program
