// Which program this is, for bug reports.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Version and commit in a line, such as "brindle 0.1.0 (1a2b3c4)"; only the version if the sources
/// were in no repository.
std::string ProgramVersion();

} // namespace Tessel::Norn::Brindle::Program
