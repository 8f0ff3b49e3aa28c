// Counts what a benchmark allocates. It replaces the allocation functions of the program that it is
// linked into, which makes each call some instructions slower.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Benchmarks {

/// Number of allocations of the whole process so far.
std::uint64_t HeapAllocations();

/// The peak of heap use since the object was made. One at a time, for one thread.
class HeapPeak {
public:
    HeapPeak();

    /// In bytes, without what was in use before.
    [[nodiscard]] std::uint64_t Bytes() const;

private:
    std::uint64_t mBytesBefore;
};

} // namespace Tessel::Norn::Brindle::Benchmarks
