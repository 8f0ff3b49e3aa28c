// The entry to demangling: turns the decorated name of a symbol or of a debug entry into its plain
// qualified name. The symbol maps and the name pass call it, once for each name. It recovers the
// qualified name and nothing else, allocates nothing, and touches no error state.
#pragma once

#include "../core/Export.h"
#include "../core/VDemanglingOptions.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Demangles a name: with `mIsTaskingProducer` one in the style of the Itanium C++ ABI (section
/// 5.1, Mangling), else one in which `__` and a description of its qualifiers follow the name.
/// @param out       receives the text, terminated; at least `outSize` + 1 bytes
/// @param outSize   most characters that `out` takes before its terminator; longer texts are cut
/// @param name      the name, read up to its terminator or `length`, whichever comes first
/// @param length    most characters to read of `name`
/// @param demangled true if the name was read as a mangled name
/// @return true if `out` holds a text: the qualified name if `demangled`, else a copy of the name
///         in which characters that no name may hold are replaced. False if there is nothing to
///         change, or if the name is too deeply qualified to be read; `out` is then not to be used.
BRINDLE_EXPORT bool DemangleName(char* out, int outSize, const char* name, int length,
                                 bool& demangled, const VDemanglingOptions& options);

/// A quick test: false if `DemangleName` certainly finds no mangled name here. It may be true for a
/// name that isn't mangled.
BRINDLE_EXPORT bool MayBeMangled(std::string_view name, const VDemanglingOptions& options);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
