// The entry of the program: runs the command that the arguments name, and turns what can't be
// handled elsewhere into a message and an exit status.
#include "CommandLine.h"
#include "Commands.h"
#include "ExitStatus.h"
#include "Message.h"
#include "Platform.h"
#include "ReaderOptions.h"
#include "ResultOutput.h"

#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace Program = Tessel::Norn::Brindle::Program;
using Program::ExitStatus;

ExitStatus RunCommand(std::vector<std::string> arguments) {
    Program::ResultOutput output(*std::cout.rdbuf());
    Program::SetProgramDefaults();
    Program::CommandLine commandLine;
    AddVarsCommand(commandLine);
    AddLeavesCommand(commandLine);
    AddFindCommand(commandLine);
    AddInfoCommand(commandLine);
    AddTypesCommand(commandLine);
    AddDiffCommand(commandLine);
    AddReportCommand(commandLine);
    AddDumpCommand(commandLine);
    AddTraceCommand(commandLine);
    AddA2lCommands(commandLine);
    AddDemangleCommand(commandLine);
    commandLine.AddHelpCommand();
    const ExitStatus status = commandLine.Run(std::move(arguments), output);
    output.Sync();
    return status;
}

ExitStatus RunProgram(int argumentCount, const char* const* arguments) {
    const Program::StandardStreams streams;
    try {
        return RunCommand(Program::ProgramArguments(argumentCount, arguments));
    } catch (const Program::OutputError& error) {
        if (!error.IsReaderGone()) {
            Program::Tell(error);
        }
    } catch (const std::exception& error) {
        Program::Tell(error.what());
    }
    return ExitStatus::Failed;
}

} // namespace

int main(int argumentCount, char** arguments) {
    return static_cast<int>(RunProgram(argumentCount, arguments));
}
