// Where the program's output goes: screens, their width and colours, and the encoding of text.
#pragma once

#include <cstddef>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// True if standard error goes to a person's screen.
bool IsStandardErrorTerminal();

enum class ColourChoice {
    /// On screens that support it, unless the environment has `NO_COLOR`.
    Auto,
    Always,
    Never,
};

/// The choice for a name: "auto", "always" or "never".
ColourChoice ColourChoiceOf(std::string_view name);

/// Decides for the rest of the process where there are colours; `Auto` until then.
void ChooseColours(ColourChoice choice);

/// @name True if text of this stream is coloured
/// @{
bool IsStandardErrorColoured();
bool IsStandardOutputColoured();
/// @}

/// @name Columns of the screen that a stream goes to, 0 if it goes to none
/// @{
std::size_t StandardErrorWidth();
std::size_t StandardOutputWidth();
/// @}

/// Marks a part of a text that is left out: one character if the user's locale is UTF-8, else three
/// points.
std::string_view Ellipsis();

} // namespace Tessel::Norn::Brindle::Program
