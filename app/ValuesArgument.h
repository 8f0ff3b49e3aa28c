// The option of the commands that tell initial values.
#pragma once

namespace CLI {
class App;
}

namespace Tessel::Norn::Brindle::Program {

/// Adds `--values`.
void AddValuesArgument(CLI::App& command, bool& hasValues);

} // namespace Tessel::Norn::Brindle::Program
