// Changes of single places in a text: everything else comes out as it was. The update collects them
// for each source.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Bytes that are replaced.
struct TextEdit {
    std::size_t position = 0;
    std::size_t length = 0;
    std::string text;
};

class TextEdits {
public:
    void Add(TextEdit edit) { mEdits.push_back(std::move(edit)); }
    [[nodiscard]] bool IsEmpty() const { return mEdits.empty(); }

    /// Puts the edits in order. Of those that overlap the first in the text counts, of those in one
    /// place the longest: a number within a block that is removed has nothing left to change.
    void Sort();

    /// Gives the changed text piece by piece. `Sort` was called.
    void Write(std::string_view text, const std::function<void(std::string_view)>& sink) const;

    /// In order after `Sort`.
    [[nodiscard]] const std::vector<TextEdit>& All() const { return mEdits; }

private:
    std::vector<TextEdit> mEdits;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
