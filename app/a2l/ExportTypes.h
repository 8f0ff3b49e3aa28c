// The types of an export: the A2L type of a value, and structures as named types.
#pragma once

#include "a2l/BitMask.h"
#include "a2l/Conversions.h"
#include "a2l/ExportText.h"
#include "a2l/Identifiers.h"
#include "a2l/SymbolIndex.h"
#include "a2l/Version.h"
#include "model/DataModel.h"
#include "model/PlaceBytes.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// A bit field as a number with a mask.
struct ExportedBits {
    std::string_view datatype;
    MaskedPlace place;
};

/// What numbers may hold a bit field.
struct BitsChoices {
    DataModel::ByteOrder order = DataModel::ByteOrder::Little;
    /// Masks may have 64 bits.
    bool hasLongMasks = true;
    /// Bytes between one address of the file and the next.
    std::uint64_t addressUnit = 1;
    /// The bytes of the variable or structure; a number within them is preferred.
    DataModel::ByteSpan whole;
};

/// @param size bytes of the storage unit; @param address where it lies
/// @return nothing if no number of A2L holds the field
std::optional<ExportedBits> BitsOf(const Member& member, std::uint64_t size, std::uint64_t address,
                                   const BitsChoices& choices);

/// Dimensions of an array and of arrays within it, innermost first; empty for any other type.
std::vector<std::uint64_t> DimensionsOf(const DataModel::Model& model, DataModel::ObjectId type);

class ExportTypes {
public:
    /// All borrowed; model and index must not change during the life of the object.
    ExportTypes(const DataModel::Model& model, const SymbolIndex& index, Conversions& conversions)
        : mModel(model)
        , mIndex(index)
        , mConversions(conversions) {}

    /// A scalar or an array of scalars; a type of which only the size is known, as its bytes.
    /// Nothing for any other type, and for scalars without a datatype in the version.
    [[nodiscard]] std::optional<ExportedValues> ValuesOf(DataModel::ObjectId type, Version version);

    /// The name of the type for a structure, which `Text` then defines.
    /// @param isCalibrated whether its members are characteristics
    std::string NameOfStructure(DataModel::ObjectId structure, bool isCalibrated);

    /// Definitions of all types that were named, and of the types of their members.
    std::string Text();
    /// Datatypes whose record layouts the definitions refer to. Call it after `Text`.
    [[nodiscard]] const std::set<std::string_view>& LayoutDatatypes() const { return mDatatypes; }
    /// Members for which A2L has no datatype.
    [[nodiscard]] std::size_t LeftOut() const { return mLeftOut; }

private:
    using Key = std::pair<DataModel::ObjectId, bool>;

    [[nodiscard]] std::string BaseNameOf(DataModel::ObjectId structure) const;
    [[nodiscard]] std::string StructureText(const Key& key);
    void AppendComponent(std::string& text, const Member& member, std::uint64_t structureSize,
                         bool isCalibrated);
    [[nodiscard]] std::string NameOfValues(const ExportedValues& values, bool isCalibrated);

    const DataModel::Model& mModel;
    const SymbolIndex& mIndex;
    Conversions& mConversions;
    IdentifierSet mNames;
    std::map<Key, std::string> mStructures;
    /// Structures that have a name but no definition yet, in order.
    std::vector<Key> mPending;
    /// Names of definitions of scalars, by their text.
    std::map<std::string, std::string> mValueNames;
    std::string mValueText;
    std::set<std::string_view> mDatatypes;
    std::size_t mLeftOut = 0;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
