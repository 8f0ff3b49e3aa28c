// Brings the process-wide state of the reader to its start values for one test, and back
// afterwards.
#pragma once

#include "core/ELFReadErrorEnum.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

/// Saves options, run state, error state and language of the process and restores them at its end.
/// Tests that change any of them, or read a file, hold one. The error state begins as in a fresh
/// process, the language as English.
class ScopedReaderState {
public:
    ScopedReaderState();
    // NOLINTNEXTLINE(bugprone-exception-escape): tests that can't restore a text may end here
    ~ScopedReaderState();
    ScopedReaderState(const ScopedReaderState&) = delete;
    ScopedReaderState& operator=(const ScopedReaderState&) = delete;
    ScopedReaderState(ScopedReaderState&&) = delete;
    ScopedReaderState& operator=(ScopedReaderState&&) = delete;

private:
    using Value = std::variant<std::int32_t, std::uint64_t, bool, std::string>;

    std::vector<Value> mOptions;
    Reader::DWARF::ELFReadErrorEnum mErrorState;
    std::int32_t mUseCppExtension;
    std::int32_t mIncrementBitFieldAddress;
};

} // namespace Tessel::Norn::Brindle::Tests
