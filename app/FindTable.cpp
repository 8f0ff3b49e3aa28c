#include "FindTable.h"

#include "AddressText.h"
#include "ChosenColumns.h"
#include "NearObjects.h"
#include "Phrases.h"
#include "TableWriter.h"
#include "TypeTexts.h"
#include "UnitPaths.h"
#include "ValueCells.h"

#include "model/AddressLookup.h"
#include "model/DataModel.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::AddressHit;
using DataModel::ImageSection;
using DataModel::ModelObject;
using DataModel::ObjectKind;
using Model = DataModel::Model;

constexpr std::array sFindColumns = {Column{"query", false, true},
                                     Column{"address", true},
                                     Column{"size", true},
                                     Column{"type"},
                                     Column{"name", false, false, sLeastNameWidth},
                                     Column{"offset", true, true},
                                     Column{"bitOffset", true, true},
                                     Column{"bitSize", true, true},
                                     Column{.name = "compileUnit", .isSideNote = true}};

/// How far before an address a variable ends.
std::string EndText(std::string_view variable, std::uint64_t distance) {
    if (distance > 1) {
        return Phrased("; '{}' ends {} bytes before", variable, std::to_string(distance));
    }
    return Phrased(distance == 0 ? Phrase("; '{}' ends just before")
                                 : Phrase("; '{}' ends 1 byte before"),
                   variable);
}

/// The type of the last member of a structure; 0 if there is none.
DataModel::ObjectId LastMemberType(const Model& model, DataModel::ObjectId structure) {
    DataModel::ObjectId last = 0;
    for (DataModel::ObjectId id = model.FirstIn(structure); id != 0; id = model.NextIn(id)) {
        if (model.Object(id).kind == ObjectKind::Member) {
            last = model.Object(id).type;
        }
    }
    return last;
}

/// Whether the file leaves open where a variable ends: it states no size, or the variable ends with
/// an array of unknown length, as flexible arrays do.
bool HasOpenEnd(const Model& model, const ModelObject& variable) {
    if (model.SizeOf(variable.id) == 0) {
        return true;
    }
    // Structures of files that lie may be nested in a circle.
    constexpr int sMostNested = 32;
    DataModel::ObjectId type = variable.type;
    for (int depth = 0; depth < sMostNested; ++depth) {
        const ModelObject object = model.Object(model.WithoutTypedefs(type));
        if (object.id != 0 && object.kind == ObjectKind::Array) {
            const std::span<const std::uint32_t> dimensions = model.Dimensions(object.id);
            return dimensions.empty() || dimensions.front() == 0;
        }
        if (object.id == 0 ||
            (object.kind != ObjectKind::Struct && object.kind != ObjectKind::Class)) {
            return false;
        }
        type = LastMemberType(model, object.id);
    }
    return false;
}

/// That an address may belong to a variable before it whose end is unknown.
std::string OpenEndText(std::string_view variable, std::uint64_t distance) {
    return Phrased("may belong to '{}', which begins {} before: the file doesn't state where it "
                   "ends",
                   variable, PhrasedCount(distance, "{} byte", "{} bytes"));
}

class FindRows {
public:
    FindRows(const Model& model, const ChosenColumns& chosen, TableWriter& table)
        : mModel(model)
        , mTable(table)
        , mHasSections(chosen.hasSections)
        , mTypeTexts(model) {
        if (chosen.hasValues) {
            mValues.emplace(model);
        }
    }

    void AddQuery(const std::string& query) {
        if (IsAddress(query)) {
            AddAddress(query);
        } else {
            AddExpression(query);
        }
    }

    std::vector<std::string> TakeProblems() { return std::move(mProblems); }

private:
    void AddExpression(const std::string& expression) {
        const auto results = ResolveUnitPaths(mModel, expression);
        for (const auto& result : results) {
            if (result.found && results.size() == 1 && IsNamed(result, expression)) {
                AddRow({}, expression, result.place, std::monostate());
            } else if (result.found) {
                AddRow(expression,
                       mModel.QualifiedName(result.place.global) +
                           expression.substr(result.headLength),
                       result.place, std::monostate());
            } else {
                mProblems.push_back("'" + expression + "': " + ProblemOf(expression, result));
            }
        }
    }

    /// False if the variable has a number that the expression lacks.
    [[nodiscard]] bool IsNamed(const Model::PathResult& result, std::string_view expression) const {
        return expression.substr(0, result.headLength)
            .ends_with(mModel.Object(result.place.global).name);
    }

    [[nodiscard]] std::string ProblemOf(const std::string& expression,
                                        const Model::PathResult& result) const {
        if (result.resolvedLength == 0) {
            return Translated(result.problem) + NearVariables(mModel, expression);
        }
        const std::string resolved = expression.substr(0, result.resolvedLength);
        return Phrased("resolves up to '{}', then {}", resolved, Translated(result.problem)) +
               NearMembers(mModel, resolved, std::string_view(expression).substr(resolved.size()));
    }

    void AddAddress(const std::string& query) {
        const std::optional<std::uint64_t> address = ParseAddress(query);
        if (!address) {
            mProblems.push_back("'" + query + "': " +
                                Phrased("an address is a hexadecimal number that begins with 0x"));
            return;
        }
        if (!mLookup) {
            mLookup.emplace(mModel);
        }
        const std::vector<AddressHit> hits = mLookup->Find(*address);
        for (const AddressHit& hit : hits) {
            AddRow(query, hit.path, hit.place, hit.offset);
        }
        if (hits.empty()) {
            mProblems.push_back("'" + query + "': " + Surroundings(*address));
        }
    }

    /// Why an address leads to no variable, and which variables are near.
    [[nodiscard]] std::string Surroundings(std::uint64_t address) const {
        const ModelObject before = mModel.Object(mLookup->NearestBefore(address));
        const ImageSection* const section = mModel.Image().SectionAt(address);
        const bool isNear = before.id != 0 && mModel.Image().SectionAt(before.address) == section;
        const bool hasOpenEnd = isNear && HasOpenEnd(mModel, before);
        std::string text =
            hasOpenEnd ? OpenEndText(mModel.QualifiedName(before.id), address - before.address)
                       : Phrased("no variable lies here");
        if (section != nullptr) {
            text += Phrased(", in section {}", section->name);
        }
        if (isNear && !hasOpenEnd) {
            text += EndText(mModel.QualifiedName(before.id),
                            address - before.address - mModel.SizeOf(before.id));
        }
        return text;
    }

    void AddRow(std::string_view query, std::string_view name, const Model::Place& place,
                const Cell& offset) {
        const ModelObject unit = mModel.Object(mModel.CompileUnitOf(place.global));
        mRow = {Cell(),     Address{place.address},
                place.size, mTypeTexts.Of(place.type),
                name,       offset,
                Cell(),     Cell(),
                unit.name};
        if (!query.empty()) {
            mRow[0] = query;
        }
        if (place.isBitField) {
            mRow[6] = std::uint64_t{place.bitOffset};
            mRow[7] = place.bitSize;
        }
        if (mHasSections) {
            mRow.push_back(SectionCell(mModel, place.address));
        }
        if (mValues) {
            const auto cells = mValues->Of(place);
            mRow.insert(mRow.end(), cells.begin(), cells.end());
        }
        mTable.AddRow(mRow);
    }

    const Model& mModel;
    TableWriter& mTable;
    bool mHasSections;
    TypeTexts mTypeTexts;
    std::optional<ValueCells> mValues;
    std::vector<Cell> mRow;
    /// Created for the first address.
    std::optional<DataModel::AddressLookup> mLookup;
    std::vector<std::string> mProblems;
};

} // namespace

std::vector<Column> FindColumns(const ChosenColumns& chosen) {
    std::vector<Column> columns(sFindColumns.begin(), sFindColumns.end());
    AddChosenColumns(chosen, columns);
    return columns;
}

std::vector<std::string> WriteFound(const Model& model, std::span<const std::string> queries,
                                    const ChosenColumns& chosen, TableWriter& table) {
    FindRows rows(model, chosen, table);
    for (const std::string& query : queries) {
        rows.AddQuery(query);
    }
    table.Finish();
    return rows.TakeProblems();
}

} // namespace Tessel::Norn::Brindle::Program
