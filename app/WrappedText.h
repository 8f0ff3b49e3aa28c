// Help that fits the screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

enum class WrappedLines : std::uint8_t {
    All,
    /// Those of lists, which are indented, stay whole.
    Paragraphs,
};

/// Breaks the lines of a help text between words. What follows a break stands below the start of
/// the description, or, where that leaves too little room, a few columns in from the left.
/// Examples, which begin with the program's name, stay whole, to be copied.
/// @param width columns of the screen
std::string Wrapped(std::string_view text, std::size_t width,
                    WrappedLines lines = WrappedLines::All);

} // namespace Tessel::Norn::Brindle::Program
