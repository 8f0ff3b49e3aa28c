// The commands on A2L files, the descriptions that measurement and calibration tools read.
#include "CommandLine.h"
#include "Commands.h"

namespace Tessel::Norn::Brindle::Program {

void AddA2lCommands(CommandLine& commandLine) {
    CLI::App& group =
        commandLine.AddGroup("a2l", "Keep the addresses of A2L files in step with an image");
    AddA2lUpdateCommand(commandLine, group);
    AddA2lExportCommand(commandLine, group);
}

} // namespace Tessel::Norn::Brindle::Program
