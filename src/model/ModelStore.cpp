#include "model/ModelStore.h"

#include "model/Numbers.h"

#include <limits>
#include <utility>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

template <typename Item>
std::uint32_t AppendList(std::vector<Item>& lists, std::span<const Item> list) {
    const std::uint32_t position = AsPosition(lists.size());
    lists.push_back(AsPosition(list.size()));
    lists.insert(lists.end(), list.begin(), list.end());
    return position;
}

template <typename Item>
std::span<const Item> ListAt(const std::vector<Item>& lists, std::uint32_t position) {
    return std::span(lists).subspan(position + std::size_t{1}, lists[position]);
}

template <typename Item>
std::vector<Item>& GrowingList(std::vector<std::vector<Item>>& lists, std::uint32_t& position) {
    if (position == 0) {
        const std::uint32_t added = AsPosition(lists.size());
        lists.emplace_back();
        position = added;
    }
    return lists[position];
}

/// The product, or the largest number if the product overflows.
constexpr std::uint64_t SaturatedProduct(std::uint64_t left, std::uint64_t right) {
    const bool fits = left == 0 || right <= std::numeric_limits<std::uint64_t>::max() / left;
    return fits ? left * right : std::numeric_limits<std::uint64_t>::max();
}

} // namespace

ModelStore::ModelStore()
    : mDimensions(1)
    , mParameters(1)
    , mBaseClasses(1)
    , mEnumerators(1) {
    Add({.kind = ObjectKind::Namespace});
}

ObjectId ModelStore::AddUnfiled(std::string_view name, Record record) {
    record.name = mNames.Intern(name);
    return Add(record);
}

ObjectId ModelStore::AddNamed(LookupKind kind, std::string_view name, Record record) {
    record.name = mNames.Intern(name);
    const ObjectId id = Add(record);
    mIndex.FindOrAdd({kind, record.name, record.scope}, static_cast<std::uint32_t>(id));
    return id;
}

ObjectId ModelStore::FindNamed(LookupKind kind, std::string_view name, ObjectId scope) const {
    const std::optional<NameId> known = mNames.Find(name);
    return known ? mIndex.Find({kind, *known, scope}) : 0;
}

ObjectId ModelStore::AddGlobal(std::string_view name, Record record) {
    record.name = mNames.Intern(name);
    const std::uint32_t id = mRecords.Add(record);
    mIndex.FindOrAdd({LookupKind::GlobalInScope, record.name, record.scope}, id);
    const std::uint32_t first = mIndex.FindOrAdd({LookupKind::GlobalByName, record.name, 0}, id);
    if (first != id) {
        mRecords.Detail(id) = std::exchange(mRecords.Detail(first), id);
    }
    return id;
}

std::uint32_t ModelStore::KeepDimensions(std::span<const std::uint32_t> dimensions) {
    std::uint64_t count = dimensions.empty() ? 0 : 1;
    for (const std::uint32_t dimension : dimensions) {
        count = SaturatedProduct(count, dimension);
    }
    const std::uint32_t position = AppendList(mDimensions, dimensions);
    mDimensions.insert(mDimensions.end(), {LowerHalf(count), UpperHalf(count)});
    return position;
}

std::uint64_t ModelStore::ElementCount(ObjectId arrayType) const {
    const std::span<const std::uint32_t> dimensions = Dimensions(arrayType);
    if (dimensions.empty()) {
        return 0;
    }
    const std::span<const std::uint32_t> count =
        std::span(mDimensions).subspan(At(arrayType).detail + dimensions.size() + 1);
    return Joined(count[1], count[0]);
}

std::uint32_t ModelStore::KeepParameters(std::span<const ObjectId> parameters) {
    return parameters.empty() ? 0 : AppendList(mParameters, parameters);
}

void ModelStore::AddBaseClass(ObjectId classType, BaseClass base) {
    GrowingList(mBaseClasses, mRecords.Detail(classType)).push_back(base);
}

void ModelStore::AddEnumerator(ObjectId enumTable, Enumerator description) {
    description.name = mNames.Text(mNames.Intern(description.name));
    GrowingList(mEnumerators, mRecords.Detail(enumTable)).push_back(description);
}

std::span<const std::uint32_t> ModelStore::Dimensions(ObjectId arrayType) const {
    return ListAt(mDimensions, IsOfKind(arrayType, ObjectKind::Array) ? At(arrayType).detail : 0);
}

std::span<const ObjectId> ModelStore::Parameters(ObjectId functionType) const {
    return ListAt(mParameters,
                  IsOfKind(functionType, ObjectKind::FunctionType) ? At(functionType).detail : 0);
}

std::span<const BaseClass> ModelStore::BaseClasses(ObjectId classType) const {
    return mBaseClasses[IsClass(KindOf(classType)) ? At(classType).detail : 0];
}

std::span<const Enumerator> ModelStore::Enumerators(ObjectId enumTable) const {
    return mEnumerators[IsOfKind(enumTable, ObjectKind::Enum) ? At(enumTable).detail : 0];
}

} // namespace Tessel::Norn::Brindle::DataModel
