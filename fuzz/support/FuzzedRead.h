// One whole read of a hostile file, and the queries of a host to its data model
// afterwards.
#pragma once

#include "support/ReadChoices.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Reads the bytes as a file and checks what the host receives: UTF-8 texts, known handles, one
/// message for a failed read and none for a good one. Then every query runs on what was delivered,
/// and on unknown handles.
void ReadAndQuery(const ReadChoices& choices, std::string_view file);

} // namespace Tessel::Norn::Brindle::Fuzzing
