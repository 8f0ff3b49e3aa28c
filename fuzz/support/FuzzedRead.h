// One whole read of a hostile file, and the questions that a host asks of its data model
// afterwards.
#pragma once

#include "support/ReadChoices.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Reads the bytes as a file and checks what the host gets: texts in UTF-8, handles that were given
/// out, one message for a failed read and none for a good one. Then every query is asked of what
/// was delivered, unknown handles included.
void ReadAndQuery(const ReadChoices& choices, std::string_view file);

} // namespace Tessel::Norn::Brindle::Fuzzing
