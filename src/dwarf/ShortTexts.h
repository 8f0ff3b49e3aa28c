// Knows which texts of `.debug_str` are short, without reading them: almost all are, and entries
// refer to them by the million.
#pragma once

#include "core/LongTextAllowance.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Which blocks of a section of terminated texts hold a terminator.
class ShortTexts {
public:
    ShortTexts() = default;
    /// Keeps no reference to the texts.
    explicit ShortTexts(std::string_view texts);

    /// True only if the text at an offset of the section has at most `kShortTextLength` characters,
    /// see `LongTextAllowance`. May be false for a text of nearly that length.
    [[nodiscard]] bool Contains(std::size_t offset) const {
        const std::size_t block = offset / sBlockSize + 1;
        const std::size_t word = block / sWordBits;
        const std::size_t bit = block % sWordBits;
        const std::uint64_t blocks = (mHasTerminator[word] >> bit) |
                                     (mHasTerminator[word + 1] << 1U << (sWordBits - 1 - bit));
        return (blocks & sBlocksOfShortText) != 0;
    }

private:
    static constexpr std::size_t sBlockSize = 16;
    static constexpr std::size_t sWordBits = 64;
    /// The blocks after the one where a text begins that end within the short length.
    static constexpr std::size_t sBlockCount =
        (LongTextAllowance::kShortTextLength + 1) / sBlockSize - 1;
    static constexpr std::uint64_t sBlocksOfShortText = (std::uint64_t{1} << sBlockCount) - 1;

    void NoteTerminator(std::size_t block);

    /// One bit for each block. One word more than needed, for the blocks after the last.
    std::vector<std::uint64_t> mHasTerminator;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
