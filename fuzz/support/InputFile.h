// The one file that the inputs of a process are written to, since the reader reads files.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Replaces the contents of the process's input file. It lies in a temporary folder of its own;
/// where the system keeps such folders in memory, no disk is touched.
/// @return its path
const std::string& WriteInputFile(std::string_view content);

/// Keeps what the library writes to standard output from a terminal or log. Called once.
void SilenceStandardOutput();

} // namespace Tessel::Norn::Brindle::Fuzzing
