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
/// with equal texts are written once, with the first of their compile units and the number of the
/// others. A nameless type is written within the first typedef or member that holds it. Offsets
/// within a type count from its start.
/// @param names accepts the names of the wanted types
/// @param isColoured colours the comments
/// @return false if there are none; then nothing is written
bool WriteTypeLayouts(const DataModel::Model& model, const NameFilter& names, ResultOutput& output,
                      bool isColoured = false);

} // namespace Tessel::Norn::Brindle::Program
