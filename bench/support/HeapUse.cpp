#include "support/HeapUse.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::uint64_t gAllocations = 0;
std::uint64_t gBytes = 0;
std::uint64_t gPeakBytes = 0;

void* Counted(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++gAllocations;
    gBytes += malloc_usable_size(memory);
    gPeakBytes = std::max(gPeakBytes, gBytes);
    return memory;
}

void Release(void* memory) {
    gBytes -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) {
    return Counted(std::malloc(size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    return Counted(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void operator delete(void* memory) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    Release(memory);
}

namespace Tessel::Norn::Brindle::Benchmarks {

std::uint64_t HeapAllocations() {
    return gAllocations;
}

HeapPeak::HeapPeak()
    : mBytesBefore(gBytes) {
    gPeakBytes = gBytes;
}

std::uint64_t HeapPeak::Bytes() const {
    return gPeakBytes - std::min(gPeakBytes, mBytesBefore);
}

} // namespace Tessel::Norn::Brindle::Benchmarks
