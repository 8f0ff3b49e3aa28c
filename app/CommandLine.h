// The program's command line: the requested command and its arguments. The files of the commands
// add theirs; `main` runs the chosen one.
#pragma once

#include "ExitStatus.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

/// What the help says about a command.
struct CommandDescription {
    std::string name;
    /// One sentence without its full stop, short enough for the list of commands.
    std::string purpose;
    /// An example call of the command.
    std::string example;
    /// What else a user should know; may be empty.
    std::string details;
};

/// Owns the parser. Wrong usage is reported on standard error; help and version are results.
class CommandLine {
public:
    /// What a command does once its arguments are known.
    using Action = std::function<ExitStatus(ResultOutput& output)>;

    CommandLine();

    /// Adds a command, to whose parser the caller adds the arguments.
    /// @return the parser of the command, owned by this object
    CLI::App& AddCommand(const CommandDescription& description, Action action);

    /// Adds a command that only groups others, which are added to it.
    CLI::App& AddGroup(const std::string& name, const std::string& purpose);

    /// As `AddCommand`, within a group.
    CLI::App& AddCommandTo(CLI::App& group, const CommandDescription& description, Action action);

    /// Adds the command `help`, which prints what `--help` of another command does.
    void AddHelpCommand();

    using Arguments = std::vector<std::string>;

    /// Reads the arguments, the program's own name first, and runs the command that they name.
    ExitStatus Run(Arguments arguments, ResultOutput& output);

private:
    ExitStatus WriteHelp(const Arguments& names, ResultOutput& output) const;
    void MoveOptionsBehindCommand(Arguments& arguments) const;
    ExitStatus EndParsing(const CLI::ParseError& error, ResultOutput& output) const;
    /// @param command whose help the message refers to; null or the program for the general help
    static ExitStatus EndWrongUsage(const std::string& problem, const CLI::App* command);
    [[nodiscard]] std::string UsageProblem(const CLI::ParseError& error) const;
    [[nodiscard]] const CLI::App* ChosenCommand() const;

    CLI::App mProgram;
    std::string mColours = "auto";
    Action mChosenAction;
};

} // namespace Tessel::Norn::Brindle::Program
