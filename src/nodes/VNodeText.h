// The texts of nodes: names and linkage names. Nearly all are in `.debug_str` and stay there; the
// rest is in the arena of the tree.
#pragma once

#include "nodes/VNodeArena.h"

#include <cstdint>
#include <new>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A terminated text of a tree in 32 bits.
class VNodeText {
public:
    /// The empty text.
    VNodeText() = default;

    /// A text of `.debug_str`, which has at most 2^31 - 1 bytes.
    static VNodeText AtOffset(std::uint32_t offsetInDebugStr) {
        return VNodeText(offsetInDebugStr + 1);
    }
    /// A text from `VNodeArena::KeepText`.
    /// @throws std::bad_alloc if the arenas of the process have grown too large for it
    static VNodeText InArena(const char* text) {
        const std::uint32_t number = VNodeArena::NumberOf(text);
        if ((number & kIsInArena) != 0) {
            throw std::bad_alloc();
        }
        return VNodeText(number | kIsInArena);
    }

    /// @param debugStr start of the `.debug_str` of the tree
    [[nodiscard]] const char* Get(const char* debugStr) const {
        if ((mNumber & kIsInArena) != 0) {
            return reinterpret_cast<const char*>(VNodeArena::ObjectOf(mNumber & ~kIsInArena));
        }
        return mNumber != 0 ? debugStr + (mNumber - 1) : "";
    }

private:
    static constexpr std::uint32_t kIsInArena = std::uint32_t{1} << 31U;

    explicit VNodeText(std::uint32_t number)
        : mNumber(number) {}

    /// Number of an object of the arena, or an offset and 1; 0 for the empty text.
    std::uint32_t mNumber = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
