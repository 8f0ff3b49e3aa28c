// A prefetch hint, for walks over memory that the processor can't predict.
#pragma once

/// Stands before functions that only prefetch. Compilers see no effect in such a function and would
/// drop its calls; inlined, the hint stays.
#if defined(__GNUC__)
#define BRINDLE_FETCHES __attribute__((always_inline)) inline
#else
#define BRINDLE_FETCHES inline
#endif

namespace Tessel::Norn::Brindle {

/// Prefetches the cache line of an address, which need not be valid. Changes nothing else.
BRINDLE_FETCHES void Prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#endif
}

} // namespace Tessel::Norn::Brindle
