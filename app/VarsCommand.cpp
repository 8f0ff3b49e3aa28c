// The command `vars`: one row for each global variable of a file.
#include "CommandLine.h"
#include "Commands.h"
#include "Message.h"
#include "NearObjects.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"
#include "Terminal.h"
#include "VariableTable.h"

#include "model/DataModel.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct VarsArguments {
    ReadArguments read;
    std::string file;
    std::string pattern;
    std::string format = "table";
};

ExitStatus RunVars(const VarsArguments& arguments, ResultOutput& output) {
    DataModel::DataModel model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const auto table = MakeTableWriter(TableFormatOf(arguments.format), VariableColumns(), output,
                                       IsStandardOutputColoured());
    if (!WriteVariables(model, arguments.pattern, *table) && HasDelivered(result, model)) {
        Tell(arguments.file, "no variable matches '" + arguments.pattern + "'" +
                                 NearVariables(model, arguments.pattern));
    }
    return status;
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
    AddPatternArgument(command, "variables", arguments->pattern);
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
