// The program's command line: which command was asked for, with which arguments. The files of the
// commands add theirs; `main` runs the one that was chosen.
#pragma once

#include "ExitStatus.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <string>

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

/// Owns the parser. Wrong usage is told on standard error; help and version are results.
class CommandLine {
public:
    /// What a command does once its arguments are known.
    using Action = std::function<ExitStatus(ResultOutput& output)>;

    CommandLine();

    /// Adds a command, to whose parser the caller adds the arguments.
    /// @param example one call of the command, shown by its help
    /// @return the parser of the command, owned by this object
    CLI::App& AddCommand(const std::string& name, const std::string& purpose,
                         const std::string& example, Action action);

    /// Reads the arguments and runs the command that they name.
    ExitStatus Run(int argumentCount, const char* const* arguments, ResultOutput& output);

private:
    CLI::App mProgram;
    Action mChosenAction;
};

} // namespace Tessel::Norn::Brindle::Program
