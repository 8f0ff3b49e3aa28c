// Parser for names in which `__` and a description of the qualifiers follow the name itself, and
// the cleaning of names that hold characters no name may hold. The demangler calls it for every
// producer but one. It never reads parameter lists or template arguments: they stay text.
#pragma once

#include "core/VDemanglingOptions.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Writes the qualifiers of a name in their order, and then the base name, with the scope separator
/// between them. A name that can't be read is copied unchanged, with an underscore for each
/// character that no name may hold.
/// @param out       receives the text, terminated; at least `outSize` + 1 bytes
/// @param outSize   most characters that `out` takes before its terminator; not negative
/// @param demangled set if the name was read as a mangled name; left as it is otherwise
/// @return false if nothing had to be changed, or if the name has more than 15 levels and lists of
///         qualifiers; `out` is then not to be used
bool DemangleDoubleUnderscoreName(char* out, int outSize, std::string_view name, bool& demangled,
                                  const VDemanglingOptions& options);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
