// A limit on the long texts of one file together. A file shares texts: any number of entries or
// symbols may name one text, or start at different places in it. Without a limit, a small file
// could make the reader scan, copy and deliver gigabytes.
#pragma once

#include "core/CutText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Characters left for the long texts of a file: at first 16 MiB, and 16 for each byte of the file.
/// The long texts of a file that a linker wrote need far less.
class LongTextAllowance {
public:
    /// Texts up to this length are never cut and use nothing of the allowance.
    static constexpr std::size_t kShortTextLength = 255;

    LongTextAllowance() = default;
    explicit LongTextAllowance(std::int64_t fileSize)
        : mLeft(sAlwaysAllowed +
                sPerFileByte * static_cast<std::size_t>(std::max<std::int64_t>(fileSize, 0))) {}

    /// The first `limit` characters of a terminated text, or all of it; once the allowance is used
    /// up, at most the first 255.
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
