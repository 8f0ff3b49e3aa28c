// A scope may hold several variables of one name: statics of sibling blocks, of a source that is
// compiled twice, or of several modules of one file. The reader delivers the second as "name.2",
// the third as "name.3" and so on, in the order of the file, which may change from build to build.
// So the numbers tell nobody which variable is meant, and whoever asks for one gets all.
#pragma once

#include "model/ModelStore.h"

#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Appends "name.2", "name.3" and so on, up to the last one without a gap, if `variable` is the
/// first of its name in its scope. Takes time in proportion to what is appended.
void AppendNumbered(const ModelStore& store, ObjectId variable, std::vector<ObjectId>& found);

/// All variables that share the name of one in its scope, itself included, by their numbers.
std::vector<ObjectId> VariablesSharingName(const ModelStore& store, ObjectId variable);

} // namespace Tessel::Norn::Brindle::DataModel
