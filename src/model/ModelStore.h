// The memory of the default data model: a record for each object, and beside the records the names,
// lists and the lookup index. `Model` fills it; it knows no operation of the host contract.
#pragma once

#include "model/ImageBytes.h"
#include "model/LookupIndex.h"
#include "model/ModelObject.h"
#include "model/NamePool.h"
#include "model/RecordList.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Scopes, types and base classes are followed over this many links; what lies farther counts as
/// missing. It ends every walk along a chain that leads back into itself.
inline constexpr std::size_t kLongestChain = 1000;

/// Texts made of names end about here, in bytes, with an ellipsis.
inline constexpr std::size_t kLongestText = 64 * 1024;
/// Texts of types are for reading and end sooner: a model may have any number of variables of one
/// type.
inline constexpr std::size_t kLongestTypeText = 4 * 1024;

/// Records by identifier, which counts from 1, and all that belongs to them. A view into a list is
/// valid until something is added to a list of that sort.
class ModelStore {
public:
    ModelStore();

    /// The file that was read last.
    [[nodiscard]] ImageBytes& Image() { return mImage; }

    /// Stores an object and chains it into its scope if that exists.
    /// @throws std::length_error beyond 2^32 - 1 objects
    ObjectId Add(const Record& record) { return mRecords.Add(record); }

    /// Stores an object with a name, under no key.
    ObjectId AddUnfiled(std::string_view name, Record record);

    /// Stores an object under its name, to be found by `FindNamed`.
    ObjectId AddNamed(LookupKind kind, std::string_view name, Record record);
    /// The first object that `AddNamed` stored under this key; 0 if there is none.
    [[nodiscard]] ObjectId FindNamed(LookupKind kind, std::string_view name, ObjectId scope) const;

    /// Stores a global, which `FindNamed` finds by name and scope, and by name only.
    ObjectId AddGlobal(std::string_view name, Record record);

    [[nodiscard]] std::size_t Count() const { return mRecords.Size() - 1; }
    [[nodiscard]] bool Has(ObjectId id) const { return id != 0 && id < mRecords.Size(); }
    /// The record of an identifier; all zeros for an unknown identifier.
    [[nodiscard]] Record At(ObjectId id) const {
        return mRecords.At(id < mRecords.Size() ? id : 0);
    }
    [[nodiscard]] std::string_view NameOf(ObjectId id) const {
        return mNames.Text(mRecords.NameAt(id < mRecords.Size() ? id : 0));
    }
    [[nodiscard]] std::string_view Text(NameId name) const { return mNames.Text(name); }
    /// The kind of an object; `Namespace` for an unknown identifier.
    [[nodiscard]] ObjectKind KindOf(ObjectId id) const {
        return mRecords.KindAt(id < mRecords.Size() ? id : 0);
    }
    [[nodiscard]] bool IsOfKind(ObjectId id, ObjectKind kind) const {
        return Has(id) && mRecords.KindAt(id) == kind;
    }
    /// The first object in a scope, and the next object after one in its scope; 0 if none.
    [[nodiscard]] ObjectId FirstIn(ObjectId scope) const {
        return Has(scope) ? mRecords.FirstIn(scope) : 0;
    }
    [[nodiscard]] ObjectId NextIn(ObjectId id) const { return Has(id) ? mRecords.NextIn(id) : 0; }

    /// @name Lists. Where an object has none, the list is empty.
    /// @{
    std::uint32_t KeepDimensions(std::span<const std::uint32_t> dimensions);
    std::uint32_t KeepParameters(std::span<const ObjectId> parameters);
    void AddBaseClass(ObjectId classType, BaseClass base);
    /// Keeps a copy of the description's text.
    void AddEnumerator(ObjectId enumTable, Enumerator description);
    [[nodiscard]] std::span<const std::uint32_t> Dimensions(ObjectId arrayType) const;
    /// As `Model::ElementCount`, in the same time however many dimensions there are.
    [[nodiscard]] std::uint64_t ElementCount(ObjectId arrayType) const;
    [[nodiscard]] std::span<const ObjectId> Parameters(ObjectId functionType) const;
    [[nodiscard]] std::span<const BaseClass> BaseClasses(ObjectId classType) const;
    [[nodiscard]] std::span<const Enumerator> Enumerators(ObjectId enumTable) const;
    /// @}

    LookupIndex& Index() { return mIndex; }
    [[nodiscard]] const LookupIndex& Index() const { return mIndex; }

private:
    ImageBytes mImage;
    RecordList mRecords;
    NamePool mNames;
    LookupIndex mIndex;
    /// Lists of fixed length in a row, each after its length. The first is empty. The dimensions of
    /// each array are followed by their product, lower half first.
    std::vector<std::uint32_t> mDimensions;
    std::vector<ObjectId> mParameters;
    /// Growing lists. The first is empty.
    std::vector<std::vector<BaseClass>> mBaseClasses;
    std::vector<std::vector<Enumerator>> mEnumerators;
};

/// True for a class or a structure.
constexpr bool IsClass(ObjectKind kind) {
    return kind == ObjectKind::Class || kind == ObjectKind::Struct;
}

} // namespace Tessel::Norn::Brindle::DataModel
