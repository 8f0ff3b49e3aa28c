// The command `vars`: one row for each global variable of a file.
#include "CommandLine.h"
#include "Commands.h"
#include "ListArguments.h"
#include "Message.h"
#include "NearObjects.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"
#include "VariableTable.h"

#include "model/DataModel.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct VarsArguments {
    ReadArguments read;
    ListArguments list;
    std::string file;
    std::string format = "table";
};

ExitStatus RunVars(const VarsArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    std::optional<ListChoice> choice = MakeListChoice(arguments.list, arguments.file, model);
    if (!choice) {
        return ExitStatus::Failed;
    }
    const std::vector<Column> columns = VariableColumns(*choice);
    const auto table =
        MakeTableWriter(TableFormatOf(arguments.format), columns, output, StandardOutputStyle());
    const PatternArguments& names = arguments.list.names;
    const bool hasMatch = ListByPattern(names, arguments.file, sVariableTexts.partMatch,
                                        [&](const NameFilter& filter) {
                                            choice->names = filter;
                                            return WriteVariables(model, *choice, *table);
                                        });
    table->Finish();
    TellMissingValues(arguments.file, model, *choice);
    if (hasMatch || !HasDelivered(result, model)) {
        return status;
    }
    Tell(arguments.file,
         EmptyListText(sVariableTexts, arguments.list) + NearVariables(model, names.pattern));
    return EmptyListStatus(names, status);
}

} // namespace

void AddVarsCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<VarsArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"vars",
         "List the variables of a file, with address, size and type",
         "brindle vars --format csv firmware.elf 'motor*'",
         {}},
        [arguments](ResultOutput& output) { return RunVars(*arguments, output); });
    AddFileArgument(command, arguments->file);
    AddListArguments(command, "variables", arguments->list);
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
