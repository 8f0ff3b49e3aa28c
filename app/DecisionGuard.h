// Keeps what the reader decides by the compiler of one file away from the next file. Commands that
// read two builds use it.
#pragma once

#include "core/VElfOptions.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Program {

/// Restores, at the end of a read, the options that the reader decided by the compiler of the file:
/// they must not apply to the other build.
class DecisionGuard {
public:
    DecisionGuard() = default;
    ~DecisionGuard() {
        Options::mHandle_DW_FORM_REF_ADDR_AS_DW3 = mReferenceWidth;
        Options::mFixReferencesWithFileRelativeOffset = mFileRelativeReferences;
    }
    DecisionGuard(const DecisionGuard&) = delete;
    DecisionGuard& operator=(const DecisionGuard&) = delete;
    DecisionGuard(DecisionGuard&&) = delete;
    DecisionGuard& operator=(DecisionGuard&&) = delete;

private:
    using Options = Reader::DWARF::VElfOptions;

    std::int32_t mReferenceWidth = Options::mHandle_DW_FORM_REF_ADDR_AS_DW3;
    std::int32_t mFileRelativeReferences = Options::mFixReferencesWithFileRelativeOffset;
};

} // namespace Tessel::Norn::Brindle::Program
