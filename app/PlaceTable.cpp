#include "PlaceTable.h"

#include "ListChoice.h"
#include "Phrases.h"
#include "TableWriter.h"
#include "TypeTexts.h"
#include "ValueCells.h"

#include <optional>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;
using Place = DataModel::Model::Place;

class PlaceRows {
public:
    PlaceRows(const DataModel::Model& model, const ListChoice& choice, TableWriter& table)
        : mModel(model)
        , mTable(table)
        , mHasSections(choice.hasSections)
        , mTypeTexts(model) {
        if (choice.hasValues) {
            mValues.emplace(model);
        }
    }

    void Add(std::string_view path, const Place& place) {
        const ModelObject unit = mModel.Object(mModel.CompileUnitOf(place.global));
        mRow = {Address{place.address},
                place.size,
                mTypeTexts.Of(place.type),
                path,
                Cell(),
                Cell(),
                unit.name};
        if (place.isBitField) {
            mRow[4] = std::uint64_t{place.bitOffset};
            mRow[5] = place.bitSize;
        }
        if (mHasSections) {
            mRow.push_back(SectionCell(mModel, place.address));
        }
        if (mValues) {
            const auto cells = mValues->OfLeaf(path, place);
            mRow.insert(mRow.end(), cells.begin(), cells.end());
        }
        mTable.AddRow(mRow);
    }

private:
    const DataModel::Model& mModel;
    TableWriter& mTable;
    bool mHasSections;
    TypeTexts mTypeTexts;
    std::optional<ValueCells> mValues;
    std::vector<Cell> mRow;
};

/// Leaves that are kept until all are known.
class KeptLeaves {
public:
    void Keep(std::string_view path, const Place& place) {
        mLeaves.push_back({mPaths.size(), path.size(), place});
        mPaths += path;
    }

    void WriteTo(PlaceRows& rows, RowOrder order) const {
        std::vector<RowKey> keys;
        keys.reserve(mLeaves.size());
        for (const Leaf& leaf : mLeaves) {
            keys.push_back({leaf.place.address, leaf.place.size, PathOf(leaf)});
        }
        for (const std::size_t row : SortedRows(keys, order)) {
            rows.Add(PathOf(mLeaves[row]), mLeaves[row].place);
        }
    }

private:
    struct Leaf {
        std::size_t pathStart = 0;
        std::size_t pathLength = 0;
        Place place;
    };

    [[nodiscard]] std::string_view PathOf(const Leaf& leaf) const {
        return std::string_view(mPaths).substr(leaf.pathStart, leaf.pathLength);
    }

    /// The paths of all leaves, one after the other.
    std::string mPaths;
    std::vector<Leaf> mLeaves;
};

/// Visits the wanted leaves, as `WriteLeaves` says.
DataModel::LeafCuts VisitLeaves(const DataModel::Model& model, const ListChoice& choice,
                                const DataModel::LeafLimits& limits,
                                const DataModel::LeafWalk::Visitor& visit) {
    VariableFilter filter(model, choice);
    DataModel::LeafWalk walk(model, limits);
    model.ForEach(ObjectKind::Global, [&](const ModelObject& variable) {
        if (walk.Cuts().isExhausted || !filter.Begin(variable)) {
            return;
        }
        walk.Walk(variable.id, [&](std::string_view path, const Place& place) {
            if (filter.TakesSize(place.size) && filter.TakesLeaf(path)) {
                visit(path, place);
            }
        });
    });
    return walk.Cuts();
}

} // namespace

std::vector<Column> PlaceColumns(const ListChoice& choice) {
    std::vector<Column> columns = {Column{"address", true},
                                   Column{"size", true},
                                   Column{"type"},
                                   Column{"name", false, false, sLeastNameWidth},
                                   Column{"bitOffset", true, true},
                                   Column{"bitSize", true, true},
                                   Column{.name = "compileUnit", .isSideNote = true}};
    AddChosenColumns(choice, columns);
    return columns;
}

LeafList WriteLeaves(const DataModel::Model& model, const ListChoice& choice,
                     const DataModel::LeafLimits& limits, TableWriter& table) {
    LeafList result;
    PlaceRows rows(model, choice, table);
    KeptLeaves kept;
    const bool isKept = choice.order != RowOrder::File;
    result.cuts =
        VisitLeaves(model, choice, limits, [&](std::string_view path, const Place& place) {
            result.hasMatch = true;
            if (isKept) {
                kept.Keep(path, place);
            } else {
                rows.Add(path, place);
            }
        });
    kept.WriteTo(rows, choice.order);
    return result;
}

bool HasMatch(const DataModel::Model& model, const NameFilter& names,
              const DataModel::LeafLimits& limits) {
    bool hasMatch = false;
    ListChoice choice;
    choice.names = names;
    VisitLeaves(model, choice, limits,
                [&hasMatch](std::string_view, const Place&) { hasMatch = true; });
    return hasMatch;
}

std::vector<std::string> DescribeCuts(const DataModel::LeafCuts& cuts,
                                      const DataModel::LeafLimits& limits) {
    std::vector<std::string> texts;
    if (cuts.arrays != 0) {
        texts.push_back(PhrasedCount(
            cuts.arrays, "{} array is expanded only up to --max-elements {}, first '{}'",
            "{} arrays are expanded only up to --max-elements {}, first '{}'",
            std::to_string(limits.arrayElements), cuts.firstArray));
    }
    if (cuts.wholes != 0) {
        texts.push_back(PhrasedCount(
            cuts.wholes, "{} place is not expanded: nested too deep, or part of itself, first '{}'",
            "{} places are not expanded: nested too deep, or part of themselves, first '{}'",
            cuts.firstWhole));
    }
    if (cuts.isExhausted) {
        texts.push_back(Phrased("the list ends at --max-leaves {}", std::to_string(limits.leaves)));
    }
    return texts;
}

} // namespace Tessel::Norn::Brindle::Program
