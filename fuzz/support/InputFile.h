// The one file that the inputs of a process are written to, since the reader reads files. Targets
// that write it keep standard output quiet while libFuzzer searches.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Replaces the contents of the process's input file. It is in a temporary folder of its own; if
/// the system keeps such folders in memory, no disk is touched.
/// @return its path
const std::string& WriteInputFile(std::string_view content);

} // namespace Tessel::Norn::Brindle::Fuzzing
