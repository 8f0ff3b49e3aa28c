// What the program asks its platform: the one place that may use operations outside standard C++.
#pragma once

namespace Tessel::Norn::Brindle::Program {

/// True if standard error goes to a person's screen.
bool IsStandardErrorTerminal();

} // namespace Tessel::Norn::Brindle::Program
