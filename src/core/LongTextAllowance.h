// A bound on the long texts that one file may have together. Texts are shared in a file: any number
// of entries or symbols may name the same one, or ends of the same one, and each would be looked
// through, copied and delivered.
#pragma once

#include "core/CutText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Characters that the long texts of a file may still have: 16 MiB, and 16 for each byte of the
/// file. In a file that a linker wrote, long texts have far less.
class LongTextAllowance {
public:
    /// Texts up to this length are never cut, and cost nothing of the allowance.
    static constexpr std::size_t kShortTextLength = 255;

    LongTextAllowance() = default;
    explicit LongTextAllowance(std::int64_t fileSize)
        : mLeft(sAlwaysAllowed +
                sPerFileByte * static_cast<std::size_t>(std::max<std::int64_t>(fileSize, 0))) {}

    /// The first `limit` characters of a terminated text, or all of it; when the allowance is used
    /// up, the first 255.
    std::string_view Cut(const char* text, std::size_t limit) {
        const std::string_view cut =
            CutText(text, std::min(limit, std::max(kShortTextLength, mLeft)));
        mLeft -= cut.size() > kShortTextLength ? cut.size() : 0;
        return cut;
    }

private:
    static constexpr std::size_t sAlwaysAllowed = std::size_t{16} * 1024 * 1024;
    static constexpr std::size_t sPerFileByte = 16;

    std::size_t mLeft = sAlwaysAllowed;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
