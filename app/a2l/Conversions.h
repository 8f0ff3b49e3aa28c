// The conversions of an export: a table of texts for each enumeration that its objects have.
#pragma once

#include "a2l/Datatypes.h"
#include "a2l/Identifiers.h"
#include "model/DataModel.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

class Conversions {
public:
    /// @param model borrowed; must not change during the life of the object
    explicit Conversions(const DataModel::Model& model);

    /// The name of the conversion of a type; NO_COMPU_METHOD unless it is an enumeration.
    /// @param bitSize 0 unless it is a bit field, from which negative values are read without sign
    std::string Of(DataModel::ObjectId type, std::uint64_t bitSize = 0);

    /// The signs of the model's enumerations.
    [[nodiscard]] const EnumSigns& Signs() const { return mSigns; }

    /// COMPU_METHOD and COMPU_VTAB for each name that was used.
    [[nodiscard]] std::string Text() const;

private:
    struct Table {
        std::string name;
        /// Pairs of value and text as COMPU_VTAB has them.
        std::string pairs;
        std::size_t count = 0;
    };

    [[nodiscard]] Table MakeTable(DataModel::ObjectId enumeration, const SignedBits& field) const;

    const DataModel::Model& mModel;
    EnumSigns mSigns;
    /// How many different tables the enumerations of a name have.
    std::unordered_map<std::string, std::map<std::string, std::size_t>> mTablesOfName;
    /// Names of tables, by the enumeration and the bits of a field with a sign.
    std::map<std::pair<DataModel::ObjectId, std::uint64_t>, std::string> mNames;
    /// The conversions that were used, in order.
    std::map<std::string, Table> mUsed;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
