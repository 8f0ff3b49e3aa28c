#include "PlaceTable.h"

#include "NamePattern.h"
#include "NearObjects.h"
#include "TableWriter.h"
#include "TypeTexts.h"

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;
using Place = DataModel::DataModel::Place;

constexpr std::array sColumns = {Column{"address", true},
                                 Column{"size", true},
                                 Column{"type"},
                                 Column{"name"},
                                 Column{"bitOffset", true, true},
                                 Column{"bitSize", true, true},
                                 Column{"compileUnit"}};

class PlaceRows {
public:
    PlaceRows(const DataModel::DataModel& model, TableWriter& table)
        : mModel(model)
        , mTable(table)
        , mTypeTexts(model) {}

    void Add(std::string_view path, const Place& place) {
        const ModelObject unit = mModel.Object(mModel.CompileUnitOf(place.global));
        std::array<Cell, sColumns.size()> row{
            Address{place.address}, place.size, mTypeTexts.Of(place.type), path, std::monostate(),
            std::monostate(),       unit.name};
        if (place.isBitField) {
            row[4] = std::uint64_t{place.bitOffset};
            row[5] = place.bitSize;
        }
        mTable.AddRow(row);
    }

private:
    const DataModel::DataModel& mModel;
    TableWriter& mTable;
    TypeTexts mTypeTexts;
};

std::string ProblemText(const DataModel::DataModel& model, const std::string& expression,
                        const DataModel::DataModel::PathResult& result) {
    const std::string text = "'" + expression + "': ";
    if (result.resolvedLength == 0) {
        return text + result.problem + NearVariables(model, expression);
    }
    const std::string resolved = expression.substr(0, result.resolvedLength);
    return text + "resolves up to '" + resolved + "', then " + result.problem +
           NearMembers(model, resolved, std::string_view(expression).substr(resolved.size()));
}

/// Visits the leaves that are wanted, as `WriteLeaves` says.
DataModel::LeafCuts VisitLeaves(const DataModel::DataModel& model, std::string_view pattern,
                                const DataModel::LeafLimits& limits,
                                const DataModel::LeafWalk::Visitor& visit) {
    const NameFilter filter(pattern);
    DataModel::LeafWalk walk(model, limits);
    model.ForEach(ObjectKind::Global, [&](const ModelObject& variable) {
        if (walk.Cuts().isExhausted) {
            return;
        }
        const std::string name = model.QualifiedName(variable.id);
        const std::size_t ownName = OwnNameStart(name, variable.name);
        const bool isWhole = filter.Takes(name, ownName);
        if (!isWhole && !filter.MayTakeBehind(name, ownName)) {
            return;
        }
        walk.Walk(variable.id, [&](std::string_view path, const Place& place) {
            if (isWhole || filter.Takes(path, ownName)) {
                visit(path, place);
            }
        });
    });
    return walk.Cuts();
}

std::string Count(std::uint64_t number, std::string_view one, std::string_view several) {
    return std::to_string(number).append(" ").append(number == 1 ? one : several);
}

} // namespace

std::span<const Column> PlaceColumns() {
    return sColumns;
}

LeafList WriteLeaves(const DataModel::DataModel& model, std::string_view pattern,
                     const DataModel::LeafLimits& limits, TableWriter& table) {
    LeafList result;
    result.hasMatch = NameFilter(pattern).TakesAll();
    PlaceRows rows(model, table);
    result.cuts =
        VisitLeaves(model, pattern, limits, [&](std::string_view path, const Place& place) {
            result.hasMatch = true;
            rows.Add(path, place);
        });
    table.Finish();
    return result;
}

bool HasMatch(const DataModel::DataModel& model, std::string_view pattern,
              const DataModel::LeafLimits& limits) {
    bool hasMatch = false;
    VisitLeaves(model, pattern, limits,
                [&hasMatch](std::string_view, const Place&) { hasMatch = true; });
    return hasMatch;
}

std::vector<std::string> WritePlaces(const DataModel::DataModel& model,
                                     std::span<const std::string> expressions, TableWriter& table) {
    std::vector<std::string> problems;
    PlaceRows rows(model, table);
    for (const std::string& expression : expressions) {
        const auto results = model.ResolvePaths(expression);
        for (const auto& result : results) {
            if (result.found && results.size() == 1) {
                rows.Add(expression, result.place);
            } else if (result.found) {
                rows.Add(model.QualifiedName(result.place.global) +
                             expression.substr(result.headLength),
                         result.place);
            } else {
                problems.push_back(ProblemText(model, expression, result));
            }
        }
    }
    table.Finish();
    return problems;
}

std::vector<std::string> DescribeCuts(const DataModel::LeafCuts& cuts,
                                      const DataModel::LeafLimits& limits) {
    std::vector<std::string> texts;
    if (cuts.arrays != 0) {
        texts.push_back(Count(cuts.arrays, "array is", "arrays are") + " expanded to " +
                        Count(limits.arrayElements, "element", "elements") + " only, first '" +
                        cuts.firstArray + "'; --max-elements raises the limit");
    }
    if (cuts.wholes != 0) {
        texts.push_back(Count(cuts.wholes, "place is", "places are") +
                        " not expanded, being nested too deep or part of itself, first '" +
                        cuts.firstWhole + "'");
    }
    if (cuts.isExhausted) {
        texts.push_back("expanded to " + Count(limits.leaves, "leaf", "leaves") +
                        " only; --max-leaves raises the limit");
    }
    return texts;
}

} // namespace Tessel::Norn::Brindle::Program
