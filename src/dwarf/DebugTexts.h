// The texts of entries: names, linkage names, producers. Nearly all are in `.debug_str`, where
// linkers keep each text once, and stay there; the few that are in the bytes of their unit are
// copied before the bytes are released.
#pragma once

#include "container/VElfFileCache.h"
#include "core/LongTextAllowance.h"
#include "dwarf/ShortTexts.h"
#include "dwarf/codes/VAttributeValue.h"
#include "nodes/VNodeText.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VNodeArena;

/// `.debug_str`, and the limits on its texts. On its way from the file to its node a text is found
/// (`At`), allowed (`Allow`) and kept (`Keep`).
class DebugTexts {
public:
    /// Copies lie in the arena, which is borrowed.
    explicit DebugTexts(VNodeArena& arena)
        : mArena(arena) {}

    /// Takes over the bytes of `.debug_str`, null if the file has none. The allowance for long
    /// texts depends on the size of the file, in bytes.
    void Take(VElfFileCachePtr debugStr, std::int64_t fileSize);
    /// Forgets which long texts were allowed: the entries will be read again.
    void Restart() { mLongTexts = LongTextAllowance(mFileSize); }

    /// @name Finding
    /// @{

    /// Null if there is no `.debug_str`.
    [[nodiscard]] const char* Start() const { return mDebugStr.data(); }
    /// Bytes of `.debug_str`.
    [[nodiscard]] std::size_t Size() const { return mDebugStr.size(); }
    /// The terminated text at an offset of `.debug_str`, null if there is none.
    [[nodiscard]] const char* At(std::uint64_t offset) const {
        return offset < mDebugStr.size() ? mDebugStr.data() + offset : nullptr;
    }
    /// True if a text lies in `.debug_str`. Such texts live as long as the tree.
    [[nodiscard]] bool Contains(const char* text) const { return OffsetOf(text) < Size(); }
    /// The offset of a text in `.debug_str`; for any other text a number from `Size` on.
    [[nodiscard]] std::size_t OffsetOf(const char* text) const {
        return reinterpret_cast<std::uintptr_t>(text) -
               reinterpret_cast<std::uintptr_t>(mDebugStr.data());
    }

    /// @}
    /// @name Allowing
    /// Few texts are long. Without a limit, a million references to one would fill the memory.
    /// @{

    /// The first `limit` characters of a terminated text, or fewer of a long text once the file has
    /// used up its allowance of long texts.
    VDieText Allow(const char* text, std::uint32_t limit);
    /// All of a terminated text, measured; long texts are cut as in `Allow`.
    std::string_view Measure(const char* text);

    /// @}
    /// @name Keeping
    /// As long as the tree lives.
    /// @{

    /// The text itself if it lies in `.debug_str` and isn't cut, otherwise a copy.
    VNodeText Keep(const VDieText& text);
    /// The same for a text of known length. A copy is terminated.
    std::string_view Keep(std::string_view text);
    VNodeText Copy(std::string_view text);

    /// @}

private:
    /// True only for a text of `.debug_str` that is known to be short.
    [[nodiscard]] bool IsShort(const char* text) const {
        return Contains(text) && mShortTexts.Contains(OffsetOf(text));
    }

    VNodeArena& mArena;
    VElfFileCachePtr mCache;
    /// The bytes of the cache; a terminator follows the last one.
    std::string_view mDebugStr;
    ShortTexts mShortTexts;
    LongTextAllowance mLongTexts;
    std::int64_t mFileSize = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
