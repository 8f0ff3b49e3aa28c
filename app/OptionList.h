// The list of the reader's options that the program prints on request, instead of running a
// command.
#pragma once

#include "ExitStatus.h"

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

/// Writes a table of the options with type, start value and meaning. The values are those at the
/// time of the call.
ExitStatus ListReaderOptions(ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
