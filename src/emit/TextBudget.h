// Limits the total length of the type texts of one tree. Template arguments can name a template
// many times, so that a small damaged file could ask for endless texts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The budget of one tree, in proportion to its section. Texts that are kept count in full, texts
/// that are only built count up to their length. When the budget is used up, texts get a short
/// limit: types with short texts are still distinguished.
class TextBudget {
public:
    static constexpr std::size_t kLongestText = std::size_t{64} * 1024;

    /// @param sectionSize of `.debug_info` in bytes
    explicit TextBudget(std::uint64_t sectionSize)
        : mLeft(kAlwaysAllowed + kTextsPerSectionByte * static_cast<std::size_t>(sectionSize)) {}

    /// Characters that the next text may have.
    [[nodiscard]] std::size_t LimitOfText() const {
        return std::clamp(mLeft, kScarceLength, kLongestText);
    }

    void SpendOnKept(std::size_t length) { mLeft -= std::min(mLeft, length); }
    void SpendOnBuilt(std::size_t length) { SpendOnKept(length - std::min(length, kScarceLength)); }

private:
    static constexpr std::size_t kScarceLength = 256;
    static constexpr std::size_t kTextsPerSectionByte = 16;
    static constexpr std::size_t kAlwaysAllowed = std::size_t{16} * 1024 * 1024;

    std::size_t mLeft;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
