// The part of a report about one image: variables, types and values in packed columns. Arrays are
// not taken apart; the page derives leaves from the types. `app/report/src/image.ts` reads what is
// written here.
#pragma once

#include "PackedColumns.h"
#include "PackedTable.h"
#include "ValuePack.h"

#include "model/DataModel.h"
#include "model/LeafWalk.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct ReadResult;

/// Packs one model. It must not change during the life of the pack.
class ImagePack {
public:
    /// @param file name of the file, for people
    /// @param result how the read of the file ended
    /// @param valueLimit most bytes of initial values to include
    ImagePack(const DataModel::Model& model, std::string file, const ReadResult& result,
              std::uint64_t valueLimit);

    /// Position of a variable among the variables, from 0.
    [[nodiscard]] std::uint64_t IndexOf(DataModel::ObjectId global) const;
    void Write(PackWriter& json) const;

private:
    /// Number of a type among the types, from 1; 0 for none.
    [[nodiscard]] std::uint64_t TypeNumber(DataModel::ObjectId type) const;
    void NumberTypes();
    void AddType(const DataModel::ModelObject& type);
    std::uint64_t AddLayout(DataModel::ObjectId type);
    std::uint64_t AddFlatMembers(DataModel::ObjectId type);
    std::uint64_t AddDimensions(DataModel::ObjectId array);
    std::uint64_t AddEnumerators(DataModel::ObjectId table);
    void AddVariables();
    /// @return the memory that it occupies
    ValuePack::Stretch AddVariable(const DataModel::ModelObject& variable);
    void AddSections();
    std::uint32_t ScopeText(const DataModel::ModelObject& variable);
    std::uint32_t UnitText(DataModel::ObjectId id);

    const DataModel::Model& mModel;
    std::string mFile;
    const ReadResult& mResult;
    DataModel::LeafWalk mWalk;
    TextTable mTexts;
    std::vector<std::uint32_t> mTypeNumbers;
    /// Identifiers of the variables, in ascending order.
    std::vector<DataModel::ObjectId> mVariableIds;
    /// The last unit that was looked up, with its text: neighbours often share theirs.
    DataModel::ObjectId mLastUnit = 0;
    std::uint32_t mLastUnitText = 0;
    std::unordered_map<DataModel::ObjectId, std::uint32_t> mScopeTexts;
    PackedTable mTypes;
    PackedTable mLayout;
    PackedTable mFlatMembers;
    PackedTable mDimensions;
    PackedTable mEnumerators;
    PackedTable mVariables;
    PackedTable mSections;
    ValuePack mValues;
};

} // namespace Tessel::Norn::Brindle::Program
