// The commands of the program. Each is one file, named after it, that adds its arguments and its
// work to the command line.
#pragma once

namespace CLI {
class App;
}

namespace Tessel::Norn::Brindle::Program {

class CommandLine;

/// @name Each adds one command. The command line must outlive the call of its action.
/// @{
void AddVarsCommand(CommandLine& commandLine);
void AddLeavesCommand(CommandLine& commandLine);
void AddFindCommand(CommandLine& commandLine);
void AddInfoCommand(CommandLine& commandLine);
void AddTypesCommand(CommandLine& commandLine);
void AddDiffCommand(CommandLine& commandLine);
void AddReportCommand(CommandLine& commandLine);
void AddDumpCommand(CommandLine& commandLine);
void AddTraceCommand(CommandLine& commandLine);
void AddA2lCommands(CommandLine& commandLine);
void AddDemangleCommand(CommandLine& commandLine);
/// @}

/// @name Each adds one command to the group `a2l`.
/// @{
void AddA2lUpdateCommand(CommandLine& commandLine, CLI::App& group);
void AddA2lExportCommand(CommandLine& commandLine, CLI::App& group);
/// @}

} // namespace Tessel::Norn::Brindle::Program
