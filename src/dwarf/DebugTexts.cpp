#include "dwarf/DebugTexts.h"

#include "nodes/VNodeArena.h"

#include <limits>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

void DebugTexts::Take(VElfFileCachePtr debugStr, std::int64_t fileSize) {
    mFileSize = fileSize;
    Restart();
    mCache = std::move(debugStr);
    if (mCache != nullptr) {
        mDebugStr = mCache->GetBytes();
        mShortTexts = ShortTexts(mDebugStr);
    }
}

VDieText DebugTexts::Allow(const char* text, std::uint32_t limit) {
    if (IsShort(text)) {
        return {text};
    }
    const std::string_view allowed = mLongTexts.Cut(text, limit);
    const bool isWhole = text[allowed.size()] == '\0';
    return {text, isWhole ? VDieText::kWhole : static_cast<std::uint32_t>(allowed.size())};
}

std::string_view DebugTexts::Measure(const char* text) {
    return mLongTexts.Cut(text, std::numeric_limits<std::uint32_t>::max());
}

VNodeText DebugTexts::Keep(const VDieText& text) {
    if (text.mLength != VDieText::kWhole || !Contains(text.mStart)) {
        return Copy(text.Get());
    }
    return VNodeText::AtOffset(static_cast<std::uint32_t>(OffsetOf(text.mStart)));
}

std::string_view DebugTexts::Keep(std::string_view text) {
    return Contains(text.data()) ? text : std::string_view(mArena.KeepText(text), text.size());
}

VNodeText DebugTexts::Copy(std::string_view text) {
    return text.empty() ? VNodeText() : VNodeText::InArena(mArena.KeepText(text));
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
