// What the program tells its caller when it ends. Every command returns one.
#pragma once

namespace Tessel::Norn::Brindle::Program {

/// Exit status of the program.
enum class ExitStatus : int {
    Success = 0,
    /// A read failed, or the results could not be written.
    Failed = 1,
    WrongUsage = 2,
};

} // namespace Tessel::Norn::Brindle::Program
