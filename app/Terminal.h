// What the program asks its platform: the one place that may use operations outside standard C++.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

/// True if standard error goes to a person's screen.
bool IsStandardErrorTerminal();

/// @name True if text of this stream may be coloured: it goes to a screen that can do it, and the
/// environment has no `NO_COLOR`.
/// @{
bool IsStandardErrorColoured();
bool IsStandardOutputColoured();
/// @}

/// Waits until all bytes of a file have reached the disk. False if the system says otherwise, which
/// `errno` then explains.
bool BringToDisk(const std::string& path);

} // namespace Tessel::Norn::Brindle::Program
