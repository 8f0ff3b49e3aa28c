#include "DifferencePack.h"

#include "ModelComparison.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ObjectId;

constexpr std::uint64_t sMoved = 1;
constexpr std::uint64_t sResized = 2;
constexpr std::uint64_t sRetyped = 4;

/// Index of the cell with the number of leaves in a row.
constexpr std::size_t sCountCell = 5;

/// A path without the numbers in its brackets: "[1].loops[0]" as "[].loops[]".
std::string WithoutIndices(std::string_view path) {
    std::string shape;
    bool isIndex = false;
    for (const char character : path) {
        isIndex = isIndex && character >= '0' && character <= '9';
        if (!isIndex) {
            shape += character;
        }
        isIndex = isIndex || character == '[';
    }
    return shape;
}

/// Position and width of a bit field, both 0 for anything else.
struct Bits {
    explicit Bits(const ComparedPlace* compared) {
        if (compared != nullptr && compared->place.isBitField) {
            width = compared->place.bitSize;
            position = std::uint64_t{compared->place.bitOffset} + 1;
        }
    }

    std::uint64_t position = 0;
    std::uint64_t width = 0;
};

} // namespace

DifferencePack::DifferencePack(const DataModel::Model& oldModel, const DataModel::Model& newModel,
                               const ComparisonScope& scope, const ImagePack& oldPack,
                               const ImagePack& newPack)
    : mOldModel(oldModel)
    , mNewModel(newModel)
    , mOldPack(oldPack)
    , mNewPack(newPack) {
    ModelComparison comparison(oldModel, newModel, scope);
    comparison.Run([this](const Difference& difference) { Add(difference); });
}

void DifferencePack::Add(const Difference& difference) {
    const bool isInBoth = difference.oldPlace != nullptr && difference.newPlace != nullptr;
    if (difference.isLeaf) {
        AddLeaf(difference);
        return;
    }
    std::uint64_t changes = 0;
    if (isInBoth) {
        changes = (difference.IsMoved() ? sMoved : 0) | (difference.IsResized() ? sResized : 0) |
                  (difference.IsRetyped() ? sRetyped : 0);
    }
    mRows.push_back(RowOf(difference, changes, {}));
}

void DifferencePack::AddLeaf(const Difference& difference) {
    const ComparedPlace* const before = difference.oldPlace;
    const ComparedPlace* const after = difference.newPlace;
    const ComparedPlace& latest = difference.Latest();
    const DataModel::Model& model = after != nullptr ? mNewModel : mOldModel;
    const ObjectId global = latest.place.global;
    std::uint64_t changes = 0;
    if (before != nullptr && after != nullptr) {
        changes = (difference.IsMoved() ? sMoved : 0) | (difference.IsResized() ? sResized : 0) |
                  (difference.IsRetyped() ? sRetyped : 0);
    }
    const std::uint64_t oldOffset = before == nullptr ? 0 : before->offset;
    const std::uint64_t newOffset = after == nullptr ? 0 : after->offset;
    if (mGlobal != global) {
        mGlobal = global;
        mAlike.clear();
    }
    const std::string_view path =
        std::string_view(latest.name).substr(model.QualifiedName(global).size());
    Row row = RowOf(difference, changes, path);
    const AlikeKey key = {WithoutIndices(path),
                          {row[2], row[8], row[9], row[10], row[11], newOffset - oldOffset}};
    const auto [known, isNew] = mAlike.try_emplace(key, mRows.size());
    if (isNew) {
        mRows.push_back(row);
    } else {
        ++mRows[known->second][sCountCell];
    }
}

DifferencePack::Row DifferencePack::RowOf(const Difference& difference, std::uint64_t changes,
                                          std::string_view path) {
    const ComparedPlace* const before = difference.oldPlace;
    const ComparedPlace* const after = difference.newPlace;
    const Bits oldBits(before);
    const Bits newBits(after);
    const std::array<std::uint64_t, 2> types = TypeTexts(difference);
    return {before == nullptr ? 0 : mOldPack.IndexOf(before->place.global) + 1,
            after == nullptr ? 0 : mNewPack.IndexOf(after->place.global) + 1,
            changes,
            difference.isLeaf ? 1U : 0U,
            mTexts.NumberOfCopy(std::string(path)),
            1,
            before == nullptr ? 0 : before->place.address,
            after == nullptr ? 0 : after->place.address,
            before == nullptr ? 0 : before->place.size,
            after == nullptr ? 0 : after->place.size,
            types.front(),
            types.back(),
            oldBits.position,
            oldBits.width,
            newBits.position,
            newBits.width};
}

/// The text of the type in each build. Where a name now stands for another type, that type is named
/// instead.
std::array<std::uint64_t, 2> DifferencePack::TypeTexts(const Difference& difference) {
    const ComparedPlace* const before = difference.oldPlace;
    const ComparedPlace* const after = difference.newPlace;
    std::string oldText = before == nullptr ? std::string() : before->type;
    std::string newText = after == nullptr ? std::string() : after->type;
    if (before != nullptr && after != nullptr && oldText == newText && difference.IsRetyped()) {
        oldText = mOldModel.TypeText(mOldModel.WithoutTypedefs(before->place.type));
        newText = mNewModel.TypeText(mNewModel.WithoutTypedefs(after->place.type));
    }
    return {mTexts.NumberOfCopy(std::move(oldText)), mTexts.NumberOfCopy(std::move(newText))};
}

void DifferencePack::Write(PackWriter& json) const {
    PackedTable rows({"old", "new", "changes", "isLeaf", "path", "places", "oldAddress",
                      "newAddress", "oldSize", "newSize", "oldType", "newType", "oldBit", "oldBits",
                      "newBit", "newBits"});
    for (const Row& row : mRows) {
        rows.AddRow(row);
    }
    json.StartObject();
    json.Key("texts");
    mTexts.Write(json);
    json.Key("rows");
    rows.Write(json);
    json.EndObject();
}

} // namespace Tessel::Norn::Brindle::Program
