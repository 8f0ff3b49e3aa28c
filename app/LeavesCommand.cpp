// The command `leaves`: the variables of a file, expanded to scalars.
#include "CommandLine.h"
#include "Commands.h"
#include "ListArguments.h"
#include "Message.h"
#include "NearObjects.h"
#include "PlaceTable.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"

#include "model/DataModel.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct LeavesArguments {
    ReadArguments read;
    DataModel::LeafLimits limits;
    ListArguments list;
    std::string file;
    std::string format = "table";
};

ExitStatus RunLeaves(const LeavesArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    std::optional<ListChoice> choice = MakeListChoice(arguments.list, arguments.file, model);
    if (!choice) {
        return ExitStatus::Failed;
    }
    const std::vector<Column> columns = PlaceColumns(*choice);
    const auto table =
        MakeTableWriter(TableFormatOf(arguments.format), columns, output, StandardOutputStyle());
    const PatternArguments& names = arguments.list.names;
    DataModel::LeafCuts cuts;
    const bool hasMatch =
        ListByPattern(names, arguments.file, sLeafTexts.partMatch, [&](const NameFilter& filter) {
            choice->names = filter;
            const LeafList list = WriteLeaves(model, *choice, arguments.limits, *table);
            cuts = list.cuts;
            return list.hasMatch;
        });
    table->Finish();
    TellMissingValues(arguments.file, model, *choice);
    for (const std::string& cut : DescribeCuts(cuts, arguments.limits)) {
        Tell(arguments.file, cut);
    }
    if (hasMatch || !HasDelivered(result, model)) {
        return status;
    }
    Tell(arguments.file,
         EmptyListText(sLeafTexts, arguments.list) + NearVariables(model, names.pattern));
    return EmptyListStatus(names, status);
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
    AddListArguments(command, "variables and leaves", arguments->list);
    AddReadArguments(command, arguments->read);
    AddLeafLimitArguments(command, arguments->limits);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
