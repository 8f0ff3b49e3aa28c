#include "DifferenceTable.h"

#include "ModelComparison.h"
#include "TableWriter.h"

#include <array>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::array sColumns = {Column{"change"},
                                 Column{"kind"},
                                 Column{"name"},
                                 Column{"oldAddress", true},
                                 Column{"newAddress", true},
                                 Column{"oldSize", true},
                                 Column{"newSize", true},
                                 Column{"oldType"},
                                 Column{"newType"},
                                 Column{"oldBitOffset", true, true},
                                 Column{"newBitOffset", true, true},
                                 Column{"oldBitSize", true, true},
                                 Column{"newBitSize", true, true},
                                 Column{"compileUnit"}};

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

/// The cells of one build, empty for one that does not have the place.
struct PlaceCells {
    explicit PlaceCells(const ComparedPlace* compared) {
        if (compared == nullptr) {
            return;
        }
        address = Address{compared->place.address};
        size = compared->place.size;
        type = compared->type;
        if (compared->place.isBitField) {
            bitSize = compared->place.bitSize;
            if (compared->place.bitOffset >= 0) {
                bitOffset = static_cast<std::uint64_t>(compared->place.bitOffset);
            }
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

DifferenceCount WriteDifferences(const DataModel::DataModel& oldModel,
                                 const DataModel::DataModel& newModel, const ComparisonScope& scope,
                                 TableWriter& table) {
    ModelComparison comparison(oldModel, newModel, scope);
    DifferenceCount count;
    comparison.Run([&](const Difference& difference) {
        ++count.rows;
        const bool isNew = difference.newPlace != nullptr;
        const ComparedPlace& latest = isNew ? *difference.newPlace : *difference.oldPlace;
        const DataModel::DataModel& model = isNew ? newModel : oldModel;
        const std::string change = ChangeText(difference);
        const PlaceCells before(difference.oldPlace);
        const PlaceCells after(difference.newPlace);
        table.AddRow(
            std::array<Cell, sColumns.size()>{
                change, difference.isLeaf ? "leaf" : "variable", latest.name, before.address,
                after.address, before.size, after.size, before.type, after.type, before.bitOffset,
                after.bitOffset, before.bitSize, after.bitSize,
                model.Object(model.CompileUnitOf(latest.place.global)).name},
            ColourOf(difference));
    });
    table.Finish();
    count.cuts = {comparison.OldCuts(), comparison.NewCuts()};
    return count;
}

} // namespace Tessel::Norn::Brindle::Program
