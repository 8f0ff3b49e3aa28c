// The differences of two images for a report, in packed columns, without those that follow from
// another one. `app/report/src/differences.ts` reads what is written here.
#pragma once

#include "ImagePack.h"
#include "PackedColumns.h"

#include "model/DataModel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct ComparisonScope;
struct Difference;

/// Packs the differences of two models, one row each: variables, and within variables of both
/// builds the leaves that changed, unless they only moved along with their variable. Leaves that
/// changed in the same way in all elements of an array are one row.
class DifferencePack {
public:
    DifferencePack(const DataModel::Model& oldModel, const DataModel::Model& newModel,
                   const ComparisonScope& scope, const ImagePack& oldPack,
                   const ImagePack& newPack);

    void Write(PackWriter& json) const;

private:
    static constexpr std::size_t sColumnCount = 16;
    using Row = std::array<std::uint64_t, sColumnCount>;
    /// Leaves of a variable with equal keys share a row: path without indices, and all changes.
    using AlikeKey = std::pair<std::string, std::array<std::uint64_t, 6>>;

    void Add(const Difference& difference);
    void AddLeaf(const Difference& difference);
    [[nodiscard]] Row RowOf(const Difference& difference, std::uint64_t changes,
                            std::string_view path);
    std::array<std::uint64_t, 2> TypeTexts(const Difference& difference);

    const DataModel::Model& mOldModel;
    const DataModel::Model& mNewModel;
    const ImagePack& mOldPack;
    const ImagePack& mNewPack;
    TextTable mTexts;
    std::vector<Row> mRows;
    /// Positions of the rows of the leaves of `mGlobal`.
    std::map<AlikeKey, std::size_t> mAlike;
    DataModel::ObjectId mGlobal = 0;
};

} // namespace Tessel::Norn::Brindle::Program
