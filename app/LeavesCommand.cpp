// The command `leaves`: the variables of a file, expanded to scalars.
#include "CommandLine.h"
#include "Commands.h"
#include "Message.h"
#include "NearObjects.h"
#include "PlaceTable.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"
#include "Terminal.h"

#include "model/DataModel.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct LeavesArguments {
    ReadArguments read;
    DataModel::LeafLimits limits;
    std::string file;
    std::string pattern;
    std::string format = "table";
};

ExitStatus RunLeaves(const LeavesArguments& arguments, ResultOutput& output) {
    DataModel::DataModel model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const auto table = MakeTableWriter(TableFormatOf(arguments.format), PlaceColumns(), output,
                                       IsStandardOutputColoured());
    const LeafList list = WriteLeaves(model, arguments.pattern, arguments.limits, *table);
    for (const std::string& cut : DescribeCuts(list.cuts, arguments.limits)) {
        Tell(arguments.file, cut);
    }
    if (!list.hasMatch && HasDelivered(result, model)) {
        Tell(arguments.file, "no leaf matches '" + arguments.pattern + "'" +
                                 NearVariables(model, arguments.pattern));
    }
    return status;
}

} // namespace

void AddLeavesCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<LeavesArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"leaves",
         "List the variables of a file, expanded to scalars",
         "brindle leaves --max-elements 16 firmware.elf 'motors[*].loops[0].gain'",
         {}},
        [arguments](ResultOutput& output) { return RunLeaves(*arguments, output); });
    AddFileArgument(command, arguments->file);
    AddPatternArgument(command, "variables and leaves", arguments->pattern);
    AddReadArguments(command, arguments->read);
    AddLeafLimitArguments(command, arguments->limits);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
