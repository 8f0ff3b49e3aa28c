// Changes at single places of a text: everything else stays as it was. The update collects them for
// each source.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Bytes and their replacement.
struct TextEdit {
    std::size_t position = 0;
    std::size_t length = 0;
    std::string text;
};

class TextEdits {
public:
    void Add(TextEdit edit) { mEdits.push_back(std::move(edit)); }
    [[nodiscard]] bool IsEmpty() const { return mEdits.empty(); }

    /// Sorts the edits. Of overlapping edits the first in the text counts, of edits at one place
    /// the longest: a number within a removed block must not change.
    void Sort();

    /// Passes the changed text to `sink` piece by piece. Call `Sort` before.
    void Write(std::string_view text, const std::function<void(std::string_view)>& sink) const;

    /// Sorted after `Sort`.
    [[nodiscard]] const std::vector<TextEdit>& All() const { return mEdits; }

private:
    std::vector<TextEdit> mEdits;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
