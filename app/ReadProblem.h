// Why a file can't be read at all. A read session adds it to the reader's message.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

/// What keeps the system from reading a file, without a full stop; empty if nothing does.
std::string SystemProblem(const std::string& file);

} // namespace Tessel::Norn::Brindle::Program
