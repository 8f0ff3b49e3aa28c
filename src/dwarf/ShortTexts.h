// Tells of the texts of `.debug_str` that they are short without looking at them: almost all are,
// and entries name them by the million.
#pragma once

#include "core/LongTextAllowance.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Which blocks of a section of terminated texts hold a terminator.
class ShortTexts {
public:
    ShortTexts() = default;
    /// Looks at a few bytes of each block. Keeps nothing of the texts.
    explicit ShortTexts(std::string_view texts);

    /// True only if the text at an offset of the section has at most
    /// `LongTextAllowance::kShortTextLength` characters.
    [[nodiscard]] bool Contains(std::size_t offset) const {
        return mAreAll || mIsTerminated[offset / sBlockSize + 1];
    }

private:
    /// A text that begins in one block and ends in the next has at most the short length.
    static constexpr std::size_t sBlockSize = (LongTextAllowance::kShortTextLength + 1) / 2;

    /// For each block, and one behind the last, whether it holds a terminator.
    std::vector<bool> mIsTerminated;
    bool mAreAll = true;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
