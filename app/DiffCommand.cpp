// The command `diff`: what has changed from one build to the next, for each variable and within it.
#include "CommandLine.h"
#include "Commands.h"
#include "DecisionGuard.h"
#include "DiffDocument.h"
#include "DifferenceTable.h"
#include "ListArguments.h"
#include "Message.h"
#include "ModelComparison.h"
#include "NearObjects.h"
#include "Phrases.h"
#include "PlaceTable.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "ResultOutput.h"
#include "TableWriter.h"

#include "model/DataModel.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct DiffArguments {
    ReadArguments read;
    DataModel::LeafLimits limits;
    std::string oldFile;
    std::string newFile;
    PatternArguments names;
    std::string format = "table";
    bool hasVariablesOnly = false;
    bool hasSymbols = false;
    bool hasExitCode = false;
};

/// Both builds, read.
struct Builds {
    explicit Builds(const DiffArguments& arguments)
        : session(arguments.read)
        , oldResult(Read(arguments.oldFile, oldModel))
        , newResult(Read(arguments.newFile, newModel)) {}

    [[nodiscard]] bool AreComplete() const { return oldResult.isOk && newResult.isOk; }

    ReadSession session;
    DataModel::Model oldModel;
    DataModel::Model newModel;
    ReadResult oldResult;
    ReadResult newResult;

private:
    ReadResult Read(const std::string& file, DataModel::Model& model) {
        const DecisionGuard guard;
        ReadResult result = session.Read(file, model);
        ReportResult(file, result);
        return result;
    }
};

void TellCuts(const std::string& file, const DataModel::LeafCuts& cuts,
              const DataModel::LeafLimits& limits) {
    for (const std::string& cut : DescribeCuts(cuts, limits)) {
        Tell(file, cut);
    }
}

void TellMissing(const std::string& file, const ReadResult& result, Phrase consequence) {
    if (!result.isOk) {
        Tell(file, Phrased(consequence));
    }
}

/// The filter for the pattern; without a value, after a message, if it matches nothing in either
/// build.
std::optional<NameFilter> ChooseFilter(const DiffArguments& arguments, const Builds& builds) {
    NameFilter chosen;
    const PatternArguments& names = arguments.names;
    const bool hasMatch = ListByPattern(
        names, arguments.newFile,
        "no exact match for '{}'; listing the variables and leaves whose names contain it",
        [&](const NameFilter& filter) {
            chosen = filter;
            return filter.TakesAll() || HasMatch(builds.oldModel, filter, arguments.limits) ||
                   HasMatch(builds.newModel, filter, arguments.limits);
        });
    if (!hasMatch && builds.AreComplete()) {
        Tell(Phrased("no variable or leaf of the two files matches '{}'", names.pattern) +
             NearVariables(builds.newModel, names.pattern));
    }
    return hasMatch ? std::optional(chosen) : std::nullopt;
}

/// Standard output gets the rows, standard error the summary; a JSON document contains both.
void WriteResult(const DiffArguments& arguments, const Builds& builds,
                 const DifferenceResult& result, ResultOutput& output) {
    if (TableFormatOf(arguments.format) != TableFormat::Json) {
        output.Sync();
        std::string summary = SummaryText(result.summary, arguments.hasSymbols);
        if (arguments.hasVariablesOnly) {
            summary = Phrased("{}; only variables were compared, not their members and elements",
                              summary);
        }
        Tell(builds.AreComplete() ? summary
                                  : Phrased("{}, as far as the files were read", summary));
        return;
    }
    WriteDiffEnd(builds.AreComplete(), result.summary, output);
}

ExitStatus DiffStatus(const DiffArguments& arguments, const Builds& builds,
                      const DifferenceSummary& summary) {
    if (!arguments.hasExitCode) {
        return builds.AreComplete() ? ExitStatus::Success : ExitStatus::Failed;
    }
    if (!builds.AreComplete()) {
        return ExitStatus::Trouble;
    }
    return summary.IsAny(arguments.hasSymbols) ? ExitStatus::Different : ExitStatus::Success;
}

ExitStatus CompareBuilds(const DiffArguments& arguments, ResultOutput& output) {
    const Builds builds(arguments);
    TellMissing(arguments.oldFile, builds.oldResult,
                "not read to its end: variables that appeared are not listed");
    TellMissing(arguments.newFile, builds.newResult,
                "not read to its end: variables that vanished are not listed");
    const std::optional<NameFilter> filter = ChooseFilter(arguments, builds);
    ComparisonScope scope;
    scope.limits = arguments.limits;
    scope.filter = filter.value_or(NameFilter());
    // What a failed read did not deliver would look as if it had vanished or appeared.
    scope.hasAllOfOld = builds.oldResult.isOk;
    scope.hasAllOfNew = builds.newResult.isOk;
    scope.hasLeavesOfWhole = false;
    scope.hasLeaves = !arguments.hasVariablesOnly;
    const TableFormat format = TableFormatOf(arguments.format);
    if (format == TableFormat::Json) {
        WriteDiffStart(arguments.oldFile, arguments.newFile, output);
    }
    const auto table = MakeTableWriter(format == TableFormat::Json ? TableFormat::JsonRows : format,
                                       DifferenceColumns(), output, StandardOutputStyle());
    DifferenceResult result;
    if (filter) {
        result =
            WriteDifferences(builds.oldModel, builds.newModel, scope, arguments.hasSymbols, *table);
        TellCuts(arguments.oldFile, result.cuts.front(), arguments.limits);
        TellCuts(arguments.newFile, result.cuts.back(), arguments.limits);
    }
    table->Finish();
    if (filter || format == TableFormat::Json) {
        WriteResult(arguments, builds, result, output);
    }
    if (!filter) {
        return arguments.hasExitCode ? ExitStatus::Trouble : ExitStatus::Failed;
    }
    return DiffStatus(arguments, builds, result.summary);
}

/// With `--exit-code` a failure must not look like a difference.
ExitStatus RunDiff(const DiffArguments& arguments, ResultOutput& output) {
    if (!arguments.hasExitCode) {
        return CompareBuilds(arguments, output);
    }
    try {
        const ExitStatus status = CompareBuilds(arguments, output);
        output.Sync();
        return status;
    } catch (const OutputError& error) {
        if (!error.IsReaderGone()) {
            Tell(error);
        }
    } catch (const std::exception& error) {
        Tell(error.what());
    }
    return ExitStatus::Trouble;
}

} // namespace

void AddDiffCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"diff", "Show what changed between two builds, variable by variable",
         "brindle diff --format csv old.elf new.elf 'motor*'",
         "One row for each variable that appeared, vanished, moved, was resized or retyped, and "
         "for "
         "each leaf that changed within its variable: a variable that only moved is one row. A "
         "summary goes to standard error. Differences leave the exit status at 0, unless "
         "--exit-code is given."},
        [arguments](ResultOutput& output) { return RunDiff(*arguments, output); });
    command.add_option("OLD", arguments->oldFile, "The file of the earlier build")
        ->required()
        ->type_name("");
    command.add_option("NEW", arguments->newFile, "The file of the later build")
        ->required()
        ->type_name("");
    AddPatternArguments(command, "variables and leaves", arguments->names);
    command.add_flag(
        "--variables-only", arguments->hasVariablesOnly,
        "Compare variables only; a member that moved in its variable is no difference");
    command.add_flag("--symbols", arguments->hasSymbols,
                     "Add rows for symbols without debug information");
    command.add_flag("--exit-code", arguments->hasExitCode,
                     "Exit status 0 for no difference, 1 for some, 2 for trouble");
    AddReadArguments(command, arguments->read);
    AddLeafLimitArguments(command, arguments->limits);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
