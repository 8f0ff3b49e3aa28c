// The command `diff`: what has changed for each variable and each leaf from one build to the next.
#include "CommandLine.h"
#include "Commands.h"
#include "DecisionGuard.h"
#include "DifferenceTable.h"
#include "Message.h"
#include "ModelComparison.h"
#include "NearObjects.h"
#include "PlaceTable.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TableWriter.h"
#include "Terminal.h"

#include "model/DataModel.h"

#include <memory>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct DiffArguments {
    ReadArguments read;
    DataModel::LeafLimits limits;
    std::string oldFile;
    std::string newFile;
    std::string pattern;
    std::string format = "table";
};

void TellCuts(const std::string& file, const DataModel::LeafCuts& cuts,
              const DataModel::LeafLimits& limits) {
    for (const std::string& cut : DescribeCuts(cuts, limits)) {
        Tell(file, cut);
    }
}

void TellMissing(const std::string& file, const ReadResult& result, const std::string& change) {
    if (!result.isOk) {
        Tell(file, "not read to its end, so nothing is told of variables that " + change);
    }
}

void TellNothingFound(const DiffArguments& arguments, const DataModel::DataModel& oldModel,
                      const DataModel::DataModel& newModel) {
    if (HasMatch(oldModel, arguments.pattern, arguments.limits) ||
        HasMatch(newModel, arguments.pattern, arguments.limits)) {
        Tell("nothing that matches '" + arguments.pattern + "' has changed");
    } else {
        Tell("no variable or leaf of the two files matches '" + arguments.pattern + "'" +
             NearVariables(newModel, arguments.pattern));
    }
}

ReadResult ReadBuild(ReadSession& session, const std::string& file, DataModel::DataModel& model) {
    const DecisionGuard guard;
    return session.Read(file, model);
}

ExitStatus RunDiff(const DiffArguments& arguments, ResultOutput& output) {
    DataModel::DataModel oldModel;
    DataModel::DataModel newModel;
    ReadSession session(arguments.read);
    const ReadResult oldResult = ReadBuild(session, arguments.oldFile, oldModel);
    const ReadResult newResult = ReadBuild(session, arguments.newFile, newModel);
    ReportResult(arguments.oldFile, oldResult);
    ReportResult(arguments.newFile, newResult);
    // What a read that failed did not deliver would look as if it had vanished or appeared.
    const ComparisonScope scope{arguments.limits, NameFilter(arguments.pattern), oldResult.isOk,
                                newResult.isOk};
    TellMissing(arguments.oldFile, oldResult, "appeared");
    TellMissing(arguments.newFile, newResult, "vanished");
    const auto table = MakeTableWriter(TableFormatOf(arguments.format), DifferenceColumns(), output,
                                       IsStandardOutputColoured());
    const DifferenceCount count = WriteDifferences(oldModel, newModel, scope, *table);
    TellCuts(arguments.oldFile, count.cuts.front(), arguments.limits);
    TellCuts(arguments.newFile, count.cuts.back(), arguments.limits);
    const bool isComplete = oldResult.isOk && newResult.isOk;
    if (count.rows == 0 && !arguments.pattern.empty() && isComplete) {
        TellNothingFound(arguments, oldModel, newModel);
    }
    return isComplete ? ExitStatus::Success : ExitStatus::Failed;
}

} // namespace

void AddDiffCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"diff", "Tell what has changed from one build to the next, variable by variable",
         "brindle diff --format csv old.elf new.elf 'motor*'",
         "A row for each variable and each leaf that appeared, vanished, moved, was resized or "
         "retyped.\nThe exit status is 0 with differences too."},
        [arguments](ResultOutput& output) { return RunDiff(*arguments, output); });
    command.add_option("OLD", arguments->oldFile, "The file of the earlier build")
        ->required()
        ->type_name("");
    command.add_option("NEW", arguments->newFile, "The file of the later build")
        ->required()
        ->type_name("");
    AddPatternArgument(command, "variables and leaves", arguments->pattern);
    AddReadArguments(command, arguments->read);
    AddLeafLimitArguments(command, arguments->limits);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
