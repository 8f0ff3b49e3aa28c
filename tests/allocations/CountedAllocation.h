// The allocator of a test program: it counts, and lets one chosen allocation fail.
#pragma once

#include <cstddef>

namespace Tessel::Norn::Brindle::Tests {

/// Number of blocks that `operator new` returned since the program began.
std::size_t Allocations();

/// Number of blocks that `operator new` returned and that were not freed yet.
std::size_t LiveAllocations();

/// Makes one allocation fail with `std::bad_alloc`, or null if the caller asked for that, while all
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
