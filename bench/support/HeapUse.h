// Counts what a benchmark takes from the heap. It replaces the allocation functions of the program
// that it is linked into, and slows each of them down by a few instructions.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Benchmarks {

/// Allocations of the whole process so far.
std::uint64_t HeapAllocations();

/// The most that was in use of the heap since the object was made. One at a time, for one thread.
class HeapPeak {
public:
    HeapPeak();

    /// In bytes, without what was in use before.
    [[nodiscard]] std::uint64_t Bytes() const;

private:
    std::uint64_t mBytesBefore;
};

} // namespace Tessel::Norn::Brindle::Benchmarks
