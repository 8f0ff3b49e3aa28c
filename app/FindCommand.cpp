// The command `find`: address, size and type of the places of expressions, and what lies at
// addresses.
#include "ChosenColumns.h"
#include "CommandLine.h"
#include "Commands.h"
#include "FindTable.h"
#include "InputLines.h"
#include "Message.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"

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
    ChosenColumns columns;
    std::string format = "table";
};

ExitStatus RunFind(const FindArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const std::vector<Column> columns = FindColumns(arguments.columns);
    const auto table =
        MakeTableWriter(TableFormatOf(arguments.format), columns, output, StandardOutputStyle());
    const std::vector<std::string> problems =
        WriteFound(model, WithInputLines(arguments.queries, std::cin), arguments.columns, *table);
    TellMissingValues(arguments.file, model, arguments.columns);
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
        {"find", "Find where an expression leads, or what lies at an address",
         "brindle find firmware.elf 'motors[1].loops[0].gain' 0x20000058",
         "An address gives a row for each place that holds the byte, with the byte's offset in it; "
         "several members of a union may hold it. For an expression or address that leads nowhere, "
         "standard error says how far it got, and the exit status is 1."},
        [arguments](ResultOutput& output) { return RunFind(*arguments, output); });
    AddFileArgument(command, arguments->file);
    command
        .add_option("EXPR", arguments->queries,
                    "Variables with members and elements, such as motor.pid[2].gain, or "
                    "hexadecimal addresses, such as 0x20000058; - reads them from standard input, "
                    "one per line")
        ->required()
        ->type_name("");
    AddColumnArguments(command, arguments->columns);
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
