// What the program returns to its caller when it ends. Every command returns one.
#pragma once

namespace Tessel::Norn::Brindle::Program {

/// Exit status of the program.
enum class ExitStatus : int {
    Success = 0,
    /// A read failed, nothing matches, or the results could not be written.
    Failed = 1,
    WrongUsage = 2,

    /// @name With `diff --exit-code`
    /// @{
    Different = 1,
    /// Any other failure.
    Trouble = 2,
    /// @}
};

} // namespace Tessel::Norn::Brindle::Program
