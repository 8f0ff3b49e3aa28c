#include "a2l/TextEdits.h"

#include <algorithm>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

void TextEdits::Sort() {
    std::ranges::stable_sort(
        mEdits, {}, [](const TextEdit& edit) { return std::pair(edit.position, ~edit.length); });
    std::size_t end = 0;
    std::erase_if(mEdits, [&end](const TextEdit& edit) {
        const bool isWithin = edit.position < end;
        end = std::max(end, edit.position + edit.length);
        return isWithin;
    });
}

void TextEdits::Write(std::string_view text,
                      const std::function<void(std::string_view)>& sink) const {
    std::size_t written = 0;
    for (const TextEdit& edit : mEdits) {
        sink(text.substr(written, edit.position - written));
        sink(edit.text);
        written = edit.position + edit.length;
    }
    sink(text.substr(written));
}

} // namespace Tessel::Norn::Brindle::Program::A2l
