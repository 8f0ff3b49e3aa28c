// The command `find`: address, size and type of what expressions lead to, and what lies at
// addresses.
#include "CommandLine.h"
#include "Commands.h"
#include "FindTable.h"
#include "InputLines.h"
#include "Message.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"
#include "ValuesArgument.h"

#include "model/DataModel.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct FindArguments {
    ReadArguments read;
    std::string file;
    std::vector<std::string> queries;
    bool hasValues = false;
    std::string format = "table";
};

ExitStatus RunFind(const FindArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const std::vector<Column> columns = FindColumns(arguments.hasValues);
    const auto table =
        MakeTableWriter(TableFormatOf(arguments.format), columns, output, StandardOutputStyle());
    const std::vector<std::string> problems =
        WriteFound(model, WithInputLines(arguments.queries, std::cin), arguments.hasValues, *table);
    if (HasDelivered(result, model)) {
        for (const std::string& problem : problems) {
            Tell(arguments.file, problem);
        }
    }
    return problems.empty() ? status : ExitStatus::Failed;
}

} // namespace

void AddFindCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<FindArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"find", "Tell what expressions lead to and what lies at addresses",
         "brindle find firmware.elf 'motors[1].loops[0].gain' 0x20000058",
         "An address gives a row for each place that holds the byte; offset tells where in it. "
         "Several\nmembers of a union may hold it. What leads nowhere is told on standard error, "
         "with how far it got;\nthe exit status is then 1."},
        [arguments](ResultOutput& output) { return RunFind(*arguments, output); });
    AddFileArgument(command, arguments->file);
    command
        .add_option("EXPR", arguments->queries,
                    "Variables by name, with members and elements: motor.pid[2].gain; or addresses "
                    "with 0x in front; '-' stands for the lines of standard input")
        ->required()
        ->type_name("");
    AddValuesArgument(command, arguments->hasValues);
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
