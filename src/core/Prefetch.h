// A prefetch hint, for walks over memory that the processor can't predict.
#pragma once

#include <cstddef>

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

/// Calls `visit` with each index up to a count, and prefetches what it is going to need.
/// @param distance how many indices ahead: too few, and `visit` waits; too many, and the memory has
///     left the cache again
/// @param addressOf returns the address to prefetch for an index; null for none
template <typename AddressOf, typename Visitor>
void ForEachIndexAhead(std::size_t count, std::size_t distance, AddressOf&& addressOf,
                       Visitor&& visit) {
    for (std::size_t index = 0; index < count; ++index) {
        if (index + distance < count) {
            Prefetch(addressOf(index + distance));
        }
        visit(index);
    }
}

/// As `ForEachIndexAhead`, with the elements of a list in place of indices.
template <typename List, typename AddressOf, typename Visitor>
void ForEachAhead(const List& list, std::size_t distance, AddressOf&& addressOf, Visitor&& visit) {
    ForEachIndexAhead(
        list.size(), distance, [&](std::size_t index) { return addressOf(list[index]); },
        [&](std::size_t index) { visit(list[index]); });
}

} // namespace Tessel::Norn::Brindle
