#include "allocations/CountedAllocation.h"

#include <cstdlib>
#ifdef _WIN32
#include <malloc.h>
#endif
#include <new>

namespace Tessel::Norn::Brindle::Tests {

namespace {

std::size_t gCount = 0;
std::size_t gLiveCount = 0;
/// Allocations until one fails; 0 if none is to fail.
std::size_t gUntilFailure = 0;
bool gHasFailed = false;

// Windows has neither the standard's function for aligned memory nor one free for all memory.
void* AllocateAligned(std::size_t alignment, std::size_t size) {
#ifdef _WIN32
    return _aligned_malloc(size, alignment);
#else
    return std::aligned_alloc(alignment, size);
#endif
}

void FreeAligned(void* memory) {
#ifdef _WIN32
    _aligned_free(memory);
#else
    std::free(memory);
#endif
}

bool IsDue() {
    if (gUntilFailure == 0 || --gUntilFailure != 0) {
        return false;
    }
    gHasFailed = true;
    return true;
}

void* Allocate(std::size_t size, std::size_t alignment) {
    if (IsDue()) {
        return nullptr;
    }
    const std::size_t rounded = (size + alignment) / alignment * alignment;
    void* memory = AllocateAligned(alignment, rounded);
    ++gCount;
    gLiveCount += memory != nullptr ? 1 : 0;
    return memory;
}

} // namespace

std::size_t Allocations() {
    return gCount;
}

std::size_t LiveAllocations() {
    return gLiveCount;
}

FailingAllocation::FailingAllocation(std::size_t number) {
    gHasFailed = false;
    gUntilFailure = number;
}

FailingAllocation::~FailingAllocation() {
    gUntilFailure = 0;
}

bool FailingAllocation::HasFailed() {
    return gHasFailed;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
    void* memory = Allocate(size, alignment);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* AllocateOrNull(std::size_t size, std::size_t alignment) noexcept {
    return Allocate(size, alignment);
}

void Release(void* memory) noexcept {
    gLiveCount -= memory != nullptr ? 1 : 0;
    FreeAligned(memory);
}

} // namespace Tessel::Norn::Brindle::Tests

using namespace Tessel::Norn::Brindle::Tests;

namespace {

constexpr std::size_t sUsual = alignof(std::max_align_t);

constexpr std::size_t Of(std::align_val_t alignment) {
    return static_cast<std::size_t>(alignment);
}

} // namespace

// All forms are replaced, for one object and for many: sanitizers distinguish blocks of their own
// forms from others.
// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are a signature and a call
#define REPLACE_NEW(parameters, allocate)                                                          \
    void* operator new parameters {                                                                \
        return allocate;                                                                           \
    }                                                                                              \
    void* operator new[] parameters {                                                              \
        return allocate;                                                                           \
    }
#define REPLACE_DELETE(parameters)                                                                 \
    void operator delete parameters {                                                              \
        Release(memory);                                                                           \
    }                                                                                              \
    void operator delete[] parameters {                                                            \
        Release(memory);                                                                           \
    }
// NOLINTEND(bugprone-macro-parentheses)

// NOLINTBEGIN(misc-new-delete-overloads): each form has its counterpart, of which there are fewer
REPLACE_NEW((std::size_t size), AllocateOrThrow(size, sUsual))
REPLACE_NEW((std::size_t size, std::align_val_t alignment), AllocateOrThrow(size, Of(alignment)))
REPLACE_NEW((std::size_t size, const std::nothrow_t&) noexcept, AllocateOrNull(size, sUsual))
REPLACE_NEW((std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept,
            AllocateOrNull(size, Of(alignment)))
REPLACE_DELETE((void* memory) noexcept)
REPLACE_DELETE((void* memory, std::size_t) noexcept)
REPLACE_DELETE((void* memory, std::align_val_t) noexcept)
REPLACE_DELETE((void* memory, std::size_t, std::align_val_t) noexcept)
REPLACE_DELETE((void* memory, const std::nothrow_t&) noexcept)
REPLACE_DELETE((void* memory, std::align_val_t, const std::nothrow_t&) noexcept)
// NOLINTEND(misc-new-delete-overloads)
