// The one error state of the process: set where a fault is seen, read at the top of a failed run.
// Nobody on the way up adds to it, and nothing clears it between runs.
#pragma once

#include "core/ELFReadErrorEnum.h"

#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The last error of the process; `ELFERR_UNKNOWN` until one is set.
extern ELFReadErrorEnum gElfReaderErrorFlag;

/// Stores the code and, if a log is written, logs its text.
void SetErrorState(ELFReadErrorEnum code);

/// Stores the code for an operation that fails with it. Always false.
bool Fail(ELFReadErrorEnum code);

/// True if the last error is out of memory. A part that a damaged file may lack without harm must
/// not be left out for this reason: the result would look complete and not be.
bool IsOutOfMemory();

/// Gives the text of the current error state in the current language, UTF-8.
void ReportElfError(std::string& text);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
