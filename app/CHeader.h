// The C declarations that `types --c` writes: valid C, with the layout that the types have in the
// image. The readable form, with C++ words and holes, is in TypeLayouts.
#pragma once

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

class NameFilter;
class ResultOutput;

/// Writes the wanted types and everything that they are made of: structures and unions packed, with
/// padding members, members of fixed-width types, and assertions of sizes and offsets. Pointers are
/// unsigned integers, since they point into the target. Bit fields are in the order in which a
/// compiler for the image's byte order lays them out. An array without length at the end of a
/// structure is a flexible array; a comment names each member that C can't express. Names that C
/// doesn't allow are changed, and so are names that stand for several things.
/// @param names accepts the names of the wanted types
/// @return false if there are none; then nothing is written
bool WriteCHeader(const DataModel::Model& model, const NameFilter& names, ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
