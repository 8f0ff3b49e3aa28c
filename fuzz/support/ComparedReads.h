// Two reads that must deliver the same.
#pragma once

#include "support/ReadRun.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Reads the bytes as an ELF file, in the manner that the options name.
Tests::ReadRun ReadInput(std::string_view file, bool allTypes);

/// Ends the process with the first difference if the reads ended differently or called the host
/// differently.
void RequireSameDelivery(const Tests::ReadRun& first, const Tests::ReadRun& second,
                         const char* promise);

} // namespace Tessel::Norn::Brindle::Fuzzing
