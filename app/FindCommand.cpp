// The command `find`: address, size and type of what expressions lead to.
#include "CommandLine.h"
#include "Commands.h"
#include "Message.h"
#include "PlaceTable.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"

#include "model/DataModel.h"

#include <memory>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct FindArguments {
    ReadArguments read;
    std::string file;
    std::vector<std::string> expressions;
    std::string format = "table";
};

ExitStatus RunFind(const FindArguments& arguments, ResultOutput& output) {
    DataModel::DataModel model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const std::vector<Column> columns = PlaceColumns();
    const auto table =
        MakeTableWriter(TableFormatOf(arguments.format), columns, output, StandardOutputStyle());
    const std::vector<std::string> problems = WritePlaces(model, arguments.expressions, *table);
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
        {"find", "Tell address, size and type of each expression",
         "brindle find firmware.elf 'motors[1].loops[0].gain' motor_step::stops",
         "An expression that does not resolve is told on standard error, with how far it got; the "
         "exit\nstatus is then 1."},
        [arguments](ResultOutput& output) { return RunFind(*arguments, output); });
    AddFileArgument(command, arguments->file);
    command
        .add_option("EXPR", arguments->expressions,
                    "Variables by name, with members and elements: motor.pid[2].gain")
        ->required()
        ->type_name("");
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
