// The commands of the program. Each is one file, named after it, that adds its arguments and its
// work to the command line.
#pragma once

namespace Tessel::Norn::Brindle::Program {

class CommandLine;

/// @name Each adds one command. The command line must outlive the call of its action.
/// @{
void AddVarsCommand(CommandLine& commandLine);
void AddLeavesCommand(CommandLine& commandLine);
void AddFindCommand(CommandLine& commandLine);
void AddTypesCommand(CommandLine& commandLine);
void AddDiffCommand(CommandLine& commandLine);
void AddDumpCommand(CommandLine& commandLine);
void AddTraceCommand(CommandLine& commandLine);
void AddDemangleCommand(CommandLine& commandLine);
/// @}

} // namespace Tessel::Norn::Brindle::Program
