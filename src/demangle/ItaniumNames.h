// Parser for names in the style of the Itanium C++ ABI: nested names and virtual tables. The
// demangler calls it for the units of one producer. It reads no parameters, template arguments or
// substitutions: the first thing that is not a length ends the name.
#pragma once

#include "core/VDemanglingOptions.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Writes the components of a nested name, or of the class of a virtual table, with the scope
/// separator between them (Itanium C++ ABI, section 5.1).
/// @param out       receives the text, terminated; at least `outSize` + 1 bytes
/// @param outSize   most characters that `out` takes before its terminator; not negative
/// @param demangled set if the name was read; left as it is otherwise
/// @return false if the name has another form or more than 16 components; `out` is then not to be
///         used
bool DemangleItaniumName(char* out, int outSize, std::string_view name, bool& demangled,
                         const VDemanglingOptions& options);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
