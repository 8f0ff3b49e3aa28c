#include "ListArguments.h"

#include "Message.h"
#include "NearNames.h"
#include "ReadArguments.h"
#include "ValuesArgument.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;

/// Identifiers of the compile units that a filter takes, ascending.
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
                     "Upper and lower case of PATTERN count as alike");
}

void AddEmptyArgument(CLI::App& command, PatternArguments& arguments) {
    command.add_flag("--allow-empty", arguments.allowsEmpty,
                     "Exit status 0 for an empty list too, instead of 1");
}

void AddListArguments(CLI::App& command, const std::string& things, ListArguments& arguments) {
    AddPatternArguments(command, things, arguments.names);
    AddChoiceArgument(command, "--sort", arguments.order, {"address", "name", "size", "file"},
                      "Order of the rows; file is that of the debug information");
    command
        .add_option("--unit", arguments.unit,
                    "Only what belongs to the compile units whose name fits")
        ->option_text("PATTERN")
        ->take_last();
    AddNumberArgument(command, "--min-size", arguments.leastSize, 0,
                      "Only what has at least this many bytes");
    command.add_flag("--section", arguments.hasSections,
                     "Add a column for the section that holds the address");
    AddValuesArgument(command, arguments.hasValues);
    AddEmptyArgument(command, arguments.names);
}

std::optional<ListChoice> MakeListChoice(const ListArguments& arguments, const std::string& file,
                                         const DataModel::Model& model) {
    ListChoice choice;
    choice.leastSize = arguments.leastSize;
    choice.order = RowOrderOf(arguments.order);
    choice.hasSections = arguments.hasSections;
    choice.hasValues = arguments.hasValues;
    if (!arguments.unit.empty()) {
        const bool hasUnits = ListByPattern({arguments.unit, false, false}, file, "compile units",
                                            [&](const NameFilter& filter) {
                                                choice.units = UnitsOf(model, filter);
                                                return !choice.units->empty();
                                            });
        if (!hasUnits) {
            Tell(file, "no compile unit matches '" + arguments.unit + "'" +
                           NearUnits(model, arguments.unit));
            return std::nullopt;
        }
    }
    return choice;
}

bool ListByPattern(const PatternArguments& arguments, const std::string& file,
                   std::string_view things, const std::function<bool(const NameFilter&)>& list) {
    if (list(NameFilter(arguments.pattern, arguments.ignoresCase))) {
        return true;
    }
    if (arguments.pattern.empty() || !NamePattern::IsPlain(arguments.pattern) ||
        !list(NameFilter::PartOf(arguments.pattern, arguments.ignoresCase))) {
        return false;
    }
    Tell(file, std::string("no exact match for '")
                   .append(arguments.pattern)
                   .append("'; listing the ")
                   .append(things)
                   .append(" whose names contain it"));
    return true;
}

std::string EmptyListText(const std::string& thing, const PatternArguments& arguments) {
    const std::string text = "no " + thing;
    return arguments.pattern.empty() ? text : text + " matches '" + arguments.pattern + "'";
}

ExitStatus EmptyListStatus(const PatternArguments& arguments, ExitStatus status) {
    return arguments.allowsEmpty ? status : ExitStatus::Failed;
}

} // namespace Tessel::Norn::Brindle::Program
