// The allocator of a test program: it counts, and lets one chosen allocation fail.
#pragma once

#include <cstddef>

namespace Tessel::Norn::Brindle::Tests {

/// Blocks that `operator new` gave out since the program began.
std::size_t Allocations();

/// Blocks that `operator new` gave out and nobody has given back.
std::size_t LiveAllocations();

/// Lets one allocation fail with `std::bad_alloc`, or null where the caller asked for that, and all
/// others succeed. One object at a time.
class FailingAllocation {
public:
    /// @param number which allocation from now on, from 1
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    FailingAllocation(FailingAllocation&&) = delete;
    FailingAllocation& operator=(FailingAllocation&&) = delete;

    [[nodiscard]] static bool HasFailed();
};

} // namespace Tessel::Norn::Brindle::Tests
