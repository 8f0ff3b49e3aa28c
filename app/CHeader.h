// The C declarations that `types --c` writes: what a C compiler takes, with the layout that the
// types have in the image. The readable form, with C++ words and holes, is in TypeLayouts.
#pragma once

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

class NameFilter;
class ResultOutput;

/// Writes the types that are wanted and all that they are made of: structures and unions packed,
/// with padding members, members of fixed-width types, and assertions of sizes and offsets.
/// Pointers are unsigned integers, since they point into the target. Bit fields stand in the order
/// in which a compiler for the byte order of the image lays them out. Names that C doesn't take are
/// changed, and so are those that stand for several things.
/// @param names takes the names of the types that are wanted
/// @return false if there are none; nothing is written then
bool WriteCHeader(const DataModel::Model& model, const NameFilter& names, ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
