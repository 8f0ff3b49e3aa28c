// What every function of the C interface does at its border: catch exceptions, copy structures of
// any version, and hand out text.
#pragma once

#include "brindle.h"

#include <cstddef>
#include <new>
#include <string_view>

namespace Tessel::Norn::Brindle::CInterface {

/// The result of `work`, which returns a status, or the status of its exception.
template <typename Work>
brindle_status Guarded(Work&& work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return BRINDLE_OUT_OF_MEMORY;
    } catch (...) {
        return BRINDLE_INTERNAL_ERROR;
    }
}

/// True if a structure of a host states a size that one of its versions can have.
bool HasSize(const void* structure, std::size_t statedSize);

/// Copies the first bytes of two structures that begin with their size, and sets the rest of the
/// target to 0. The target keeps its size.
void CopyStructure(const void* source, std::size_t sourceSize, void* target,
                   std::size_t targetSize);

/// Copies what this version knows of a structure of the host.
/// @return false, with `known` unchanged, if there is none or it states no size
template <typename Structure>
bool TakeStructure(const Structure* given, Structure& known) {
    if (given == nullptr || !HasSize(given, given->struct_size)) {
        return false;
    }
    known.struct_size = sizeof known;
    CopyStructure(given, given->struct_size, &known, sizeof known);
    return true;
}

/// Gives a structure to the host, as far as the host's version knows its members.
/// @return false if the host has none or it states no size
template <typename Structure>
bool GiveStructure(const Structure& known, Structure* wanted) {
    if (wanted == nullptr || !HasSize(wanted, wanted->struct_size)) {
        return false;
    }
    CopyStructure(&known, sizeof known, wanted, wanted->struct_size);
    return true;
}

/// Where a host wants a text: the last arguments of a function that returns one.
struct TextTarget {
    char* buffer;
    std::size_t capacity;
    std::size_t* length;
};

/// Gives a text to the host, cut between characters if the buffer is too small.
brindle_status GiveText(std::string_view text, const TextTarget& target);

/// A view of the library's own text.
constexpr brindle_text TextOf(std::string_view text) {
    return {text.data() == nullptr ? "" : text.data(), text.size()};
}

} // namespace Tessel::Norn::Brindle::CInterface
