#include "ListArguments.h"

#include "Message.h"
#include "NearNames.h"
#include "ReadArguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;

/// Identifiers of the compile units that a filter accepts, ascending.
std::vector<ObjectId> UnitsOf(const DataModel::Model& model, const NameFilter& filter) {
    std::vector<ObjectId> units;
    model.ForEach(DataModel::ObjectKind::CompileUnit, [&](const ModelObject& unit) {
        if (filter.Takes(unit.name, 0)) {
            units.push_back(unit.id);
        }
    });
    return units;
}

std::string NearUnits(const DataModel::Model& model, const std::string& wanted) {
    NearNames near(wanted);
    model.ForEach(DataModel::ObjectKind::CompileUnit,
                  [&near](const ModelObject& unit) { near.Offer(unit.name); });
    return near.Text();
}

} // namespace

void AddPatternArguments(CLI::App& command, const std::string& things,
                         PatternArguments& arguments) {
    AddPatternArgument(command, things, arguments.pattern);
    command.add_flag("-i,--ignore-case", arguments.ignoresCase,
                     "Match PATTERN in upper and lower case alike");
}

void AddEmptyArgument(CLI::App& command, PatternArguments& arguments) {
    command.add_flag("--allow-empty", arguments.allowsEmpty,
                     "Exit status 0, not 1, for an empty list");
}

void AddListArguments(CLI::App& command, const std::string& things, ListArguments& arguments) {
    AddPatternArguments(command, things, arguments.names);
    AddChoiceArgument(command, "--sort", arguments.order, {"address", "name", "size", "file"},
                      "Order of the rows; file is the order of the debug information");
    command
        .add_option("--unit", arguments.unit,
                    "Only static variables of compile units whose name matches; global ones "
                    "belong to none")
        ->option_text("PATTERN")
        ->take_last();
    AddNumberArgument(command, "--min-size", arguments.leastSize, 0,
                      "Only what is at least this many bytes long");
    AddColumnArguments(command, arguments.columns);
    AddEmptyArgument(command, arguments.names);
}

std::optional<ListChoice> MakeListChoice(const ListArguments& arguments, const std::string& file,
                                         const DataModel::Model& model) {
    ListChoice choice;
    static_cast<ChosenColumns&>(choice) = arguments.columns;
    choice.leastSize = arguments.leastSize;
    choice.order = RowOrderOf(arguments.order);
    if (!arguments.unit.empty()) {
        const bool hasUnits = ListByPattern(
            {arguments.unit, false, false}, file,
            "no exact match for '{}'; taking the compile units whose names contain it",
            [&](const NameFilter& filter) {
                choice.units = UnitsOf(model, filter);
                return !choice.units->empty();
            });
        if (!hasUnits) {
            Tell(file, Phrased("no compile unit matches '{}'", arguments.unit) +
                           NearUnits(model, arguments.unit));
            return std::nullopt;
        }
    }
    return choice;
}

bool ListByPattern(const PatternArguments& arguments, const std::string& file, Phrase partMatch,
                   const std::function<bool(const NameFilter&)>& list) {
    if (list(NameFilter(arguments.pattern, arguments.ignoresCase))) {
        return true;
    }
    if (arguments.pattern.empty() || !NamePattern::IsPlain(arguments.pattern) ||
        !list(NameFilter::PartOf(arguments.pattern, arguments.ignoresCase))) {
        return false;
    }
    Tell(file, Phrased(partMatch, arguments.pattern));
    return true;
}

std::string EmptyListText(const ListTexts& texts, const PatternArguments& arguments) {
    return arguments.pattern.empty() ? Phrased(texts.nothing)
                                     : Phrased(texts.noMatch, arguments.pattern);
}

std::string EmptyListText(const ListTexts& texts, const ListArguments& arguments) {
    return EmptyListText(texts, arguments.names) +
           (arguments.unit.empty()
                ? std::string()
                : Phrased("; --unit takes no global variables, since they belong to no compile "
                          "unit"));
}

ExitStatus EmptyListStatus(const PatternArguments& arguments, ExitStatus status) {
    return arguments.allowsEmpty ? status : ExitStatus::Failed;
}

} // namespace Tessel::Norn::Brindle::Program
