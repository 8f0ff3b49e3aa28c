// Two reads that must deliver the same.
#pragma once

#include "support/ReadRun.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Which calls of the host are compared.
enum class ComparedCalls {
    All,
    /// Those that create something. What each manner looks up before is its own business.
    Creations,
};

/// Reads the bytes as an ELF file, in the manner that the options name.
Tests::ReadRun ReadInput(std::string_view file, bool allTypes);

/// Ends the process with the first difference if the reads ended differently or called the host
/// differently.
void RequireSameDelivery(const Tests::ReadRun& first, const Tests::ReadRun& second,
                         ComparedCalls calls, const char* promise);

} // namespace Tessel::Norn::Brindle::Fuzzing
