// Help that fits the screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

enum class WrappedLines : std::uint8_t {
    All,
    /// Lines of lists, which are indented, stay whole.
    Paragraphs,
};

/// Breaks the lines of a help text between words. The rest of a broken line is indented to the
/// start of the description or, if that leaves too little room, by some columns. Examples, which
/// begin with the program's name, stay whole, so that they can be copied.
/// @param width columns of the screen
std::string Wrapped(std::string_view text, std::size_t width,
                    WrappedLines lines = WrappedLines::All);

} // namespace Tessel::Norn::Brindle::Program
