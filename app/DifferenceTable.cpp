#include "DifferenceTable.h"

#include "ModelComparison.h"
#include "Phrases.h"
#include "SymbolScope.h"
#include "TableWriter.h"

#include <array>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::array sColumns = {Column{"change"},
                                 Column{"kind"},
                                 Column{"name", false, false, sLeastNameWidth},
                                 Column{"oldAddress", true},
                                 Column{"newAddress", true},
                                 Column{"oldSize", true},
                                 Column{"newSize", true, false, sLeastWidth, true},
                                 Column{"oldType"},
                                 Column{"newType", false, false, sLeastWidth, true},
                                 Column{"oldBitOffset", true, true},
                                 Column{"newBitOffset", true, true},
                                 Column{"oldBitSize", true, true},
                                 Column{"newBitSize", true, true},
                                 Column{.name = "compileUnit", .isSideNote = true}};

/// What happened, as words joined by "+".
std::string ChangeText(const Difference& difference) {
    if (difference.oldPlace == nullptr) {
        return "appeared";
    }
    if (difference.newPlace == nullptr) {
        return "vanished";
    }
    std::string text;
    const auto add = [&text](bool applies, std::string_view word) {
        if (applies) {
            text.append(text.empty() ? "" : "+").append(word);
        }
    };
    add(difference.IsMoved(), "moved");
    add(difference.IsResized(), "resized");
    add(difference.IsRetyped(), "retyped");
    return text;
}

RowColour ColourOf(const Difference& difference) {
    if (difference.oldPlace == nullptr) {
        return RowColour::Added;
    }
    return difference.newPlace == nullptr ? RowColour::Removed : RowColour::Changed;
}

/// The text of the type in each build. Where a name now stands for another type, that type is named
/// instead.
struct TypeNames {
    TypeNames(const Difference& difference, const DataModel::Model& oldModel,
              const DataModel::Model& newModel)
        : before(difference.oldPlace != nullptr ? difference.oldPlace->type : std::string())
        , after(difference.newPlace != nullptr ? difference.newPlace->type : std::string()) {
        if (before == after && difference.IsRetyped()) {
            before = BehindTypedefs(oldModel, difference.oldPlace->place.type);
            after = BehindTypedefs(newModel, difference.newPlace->place.type);
        }
    }

    std::string before;
    std::string after;

private:
    static std::string BehindTypedefs(const DataModel::Model& model, DataModel::ObjectId type) {
        return model.TypeText(model.WithoutTypedefs(type));
    }
};

void Count(const Difference& difference, bool isSymbol, DifferenceSummary& summary) {
    if (isSymbol) {
        ++summary.symbols;
    } else if (difference.isLeaf) {
        ++summary.leaves;
    } else if (difference.oldPlace == nullptr) {
        ++summary.appeared;
    } else if (difference.newPlace == nullptr) {
        ++summary.vanished;
    } else if (difference.IsResized() || difference.IsRetyped()) {
        ++summary.changed;
    } else {
        ++summary.moved;
    }
}

/// The cells of one build, empty if it does not have the place.
struct PlaceCells {
    PlaceCells(const ComparedPlace* compared, std::string_view typeName) {
        if (compared == nullptr) {
            return;
        }
        address = Address{compared->place.address};
        size = compared->place.size;
        type = typeName;
        if (compared->place.isBitField) {
            bitSize = compared->place.bitSize;
            bitOffset = std::uint64_t{compared->place.bitOffset};
        }
    }

    Cell address;
    Cell size;
    Cell type;
    Cell bitOffset;
    Cell bitSize;
};

} // namespace

std::span<const Column> DifferenceColumns() {
    return sColumns;
}

DifferenceResult WriteDifferences(const DataModel::Model& oldModel,
                                  const DataModel::Model& newModel, const ComparisonScope& scope,
                                  bool hasSymbols, TableWriter& table) {
    ModelComparison comparison(oldModel, newModel, scope);
    DifferenceResult result;
    comparison.Run([&](const Difference& difference) {
        const bool isNew = difference.newPlace != nullptr;
        const ComparedPlace& latest = difference.Latest();
        const DataModel::Model& model = isNew ? newModel : oldModel;
        const bool isSymbol = IsInSymbolScope(latest.name);
        Count(difference, isSymbol, result.summary);
        if (isSymbol && !hasSymbols) {
            return;
        }
        const std::string change = ChangeText(difference);
        const TypeNames types(difference, oldModel, newModel);
        const PlaceCells before(difference.oldPlace, types.before);
        const PlaceCells after(difference.newPlace, types.after);
        const std::string_view kind = difference.isLeaf ? "leaf" : "variable";
        table.AddRow(
            std::array<Cell, sColumns.size()>{
                change, isSymbol ? "symbol" : kind, latest.name, before.address, after.address,
                before.size, after.size, before.type, after.type, before.bitOffset, after.bitOffset,
                before.bitSize, after.bitSize,
                model.Object(model.CompileUnitOf(latest.place.global)).name},
            ColourOf(difference));
    });
    result.summary.sharedNames = comparison.Remarks();
    result.cuts = {comparison.OldCuts(), comparison.NewCuts()};
    return result;
}

std::string SummaryText(const DifferenceSummary& summary, bool hasSymbols) {
    std::string text;
    const auto add = [&text](std::uint64_t count, Phrase one, Phrase several) {
        if (count != 0) {
            text.append(text.empty() ? "" : ", ").append(PhrasedCount(count, one, several));
        }
    };
    add(summary.appeared, "{} variable appeared", "{} variables appeared");
    add(summary.vanished, "{} variable vanished", "{} variables vanished");
    add(summary.moved, "{} variable moved", "{} variables moved");
    add(summary.changed, "{} variable changed", "{} variables changed");
    add(summary.leaves, "{} leaf changed", "{} leaves changed");
    add(summary.symbols, "{} symbol without debug information changed",
        "{} symbols without debug information changed");
    if (summary.symbols != 0 && !hasSymbols) {
        text = Phrased("{} (--symbols lists them)", text);
    }
    const auto& names = summary.sharedNames;
    if (text.empty()) {
        text = names.byOrder == 0 ? Phrased("no differences")
                                  : Phrased("no differences that are certain");
    }
    if (names.renumbered != 0) {
        text += "; " + PhrasedCount(names.renumbered,
                                    "{} variable has another number now: '{}' is '{}'",
                                    "{} variables have another number now: '{}' is '{}', ...",
                                    names.firstOldName, names.firstNewName);
    }
    if (names.byOrder != 0) {
        text += "; " + PhrasedCount(names.byOrder,
                                    "{} variable shares its name with others and is compared by "
                                    "its order, which may have changed: '{}'",
                                    "{} variables share their names with others and are compared "
                                    "by their order, which may have changed: '{}', ...",
                                    names.firstByOrder);
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::Program
