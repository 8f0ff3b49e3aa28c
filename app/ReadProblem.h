// Why a file can't be read at all. A read session adds it to the reader's message, or gives it
// instead.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

/// What keeps the system from reading a file, without a full stop; empty if nothing does.
std::string SystemProblem(const std::string& file);

/// What a file is that no reader of images can take, and what to read instead, judged by its first
/// bytes; empty for any other file.
std::string ForeignFileProblem(const std::string& file);

} // namespace Tessel::Norn::Brindle::Program
