// Asks for memory ahead of its use. A walk over many objects that lie apart from each other waits
// for each of them else.
#pragma once

namespace Tessel::Norn::Brindle {

/// Without effect where the compiler has no way to ask. Any address will do.
inline void Prefetch([[maybe_unused]] const void* address) {
#ifdef __GNUC__
    __builtin_prefetch(address);
#endif
}

} // namespace Tessel::Norn::Brindle
