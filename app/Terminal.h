// What the program asks its platform: the one place that may use operations outside standard C++.
#pragma once

namespace Tessel::Norn::Brindle::Program {

/// True if standard error goes to a person's screen.
bool IsStandardErrorTerminal();

/// @name True if text of this stream may be coloured: it goes to a screen that can do it, and the
/// environment has no `NO_COLOR`.
/// @{
bool IsStandardErrorColoured();
bool IsStandardOutputColoured();
/// @}

} // namespace Tessel::Norn::Brindle::Program
