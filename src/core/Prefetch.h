// A hint to the processor, for walks over memory that it can't foresee.
#pragma once

/// Stands before functions that do nothing but prefetch: compilers leave calls of them out, since
/// they see no effect.
#if defined(__GNUC__)
#define BRINDLE_FETCHES __attribute__((always_inline)) inline
#else
#define BRINDLE_FETCHES inline
#endif

namespace Tessel::Norn::Brindle {

/// Has the memory at any address brought near, while the program goes on. Changes nothing else.
BRINDLE_FETCHES void Prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#endif
}

} // namespace Tessel::Norn::Brindle
