// Which program this is, for those who report what it does.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Version and commit in a line, such as "brindle 0.1.0 (1a2b3c4)"; the version alone where the
/// sources lay in no repository.
std::string ProgramVersion();

} // namespace Tessel::Norn::Brindle::Program
