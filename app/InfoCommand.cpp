// The command `info`: what kind of file each one is, and how much of it is read.
#include "CommandLine.h"
#include "Commands.h"
#include "FileInfo.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "ResultOutput.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct InfoArguments {
    ReadArguments read;
    std::vector<std::string> files;
    std::string format = "table";
};

ExitStatus RunInfo(const InfoArguments& arguments, ResultOutput& output) {
    ReadSession session(arguments.read);
    // The remarks are part of the results.
    session.KeepRemarks();
    const bool isDocument = arguments.format == "json";
    ExitStatus status = ExitStatus::Success;
    std::vector<FileInfo> infos;
    for (const std::string& file : arguments.files) {
        FileInfo info = ReadFileInfo(session, file);
        ReportResult(file, info.result);
        if (!info.HasContents()) {
            status = ExitStatus::Failed;
        }
        if (isDocument) {
            infos.push_back(std::move(info));
        } else {
            WriteInfoText(info, output);
        }
    }
    if (isDocument) {
        WriteInfoDocument(infos, output);
    }
    return status;
}

} // namespace

void AddInfoCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<InfoArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"info", "Describe files: container, machine, debug information, sections",
         "brindle info firmware.elf",
         "Container, byte order, machine, debug information by version, language and producer, "
         "numbers of entries, symbols and variables, what isn't read and what to do about it, and "
         "the sections in the target's memory."},
        [arguments](ResultOutput& output) { return RunInfo(*arguments, output); });
    command.add_option("FILE", arguments->files, "The files to read")->required()->type_name("");
    AddReadArguments(command, arguments->read);
    AddChoiceArgument(command, "--format", arguments->format, {"table", "json"},
                      "Form of the result");
}

} // namespace Tessel::Norn::Brindle::Program
