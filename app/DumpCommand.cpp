// The command `dump`: the whole data model of a file as one JSON document.
#include "CommandLine.h"
#include "Commands.h"
#include "ModelDocument.h"
#include "ReadArguments.h"
#include "ReadSession.h"

#include "model/DataModel.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct DumpArguments {
    ReadArguments read;
    std::string file;
};

ExitStatus RunDump(const DumpArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    WriteModelDocument(arguments.file, result, model, output);
    return status;
}

} // namespace

void AddDumpCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<DumpArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"dump",
         "Write the whole data model of a file as one JSON document",
         "brindle dump --all-types firmware.elf > firmware.json",
         {}},
        [arguments](ResultOutput& output) { return RunDump(*arguments, output); });
    AddFileArgument(command, arguments->file);
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
