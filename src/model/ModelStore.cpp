#include "model/ModelStore.h"

#include <limits>
#include <stdexcept>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

std::uint32_t AsPosition(std::size_t position) {
    if (position > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("data model is full");
    }
    return static_cast<std::uint32_t>(position);
}

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
        position = AsPosition(lists.size());
        lists.emplace_back();
    }
    return lists[position];
}

} // namespace

ModelStore::ModelStore()
    : mRecords(1)
    , mDimensions(1)
    , mParameters(1)
    , mBaseClasses(1)
    , mEnumerators(1) {
    Add({.kind = ObjectKind::Namespace});
}

ObjectId ModelStore::Add(const Record& record) {
    const std::uint32_t id = AsPosition(mRecords.size());
    mRecords.push_back(record);
    // A scope that comes later than what lies in it, or is the object itself, has no chain.
    if (record.scope != 0 && record.scope < id) {
        Record& scope = mRecords[record.scope];
        (scope.lastChild == 0 ? scope.firstChild : mRecords[scope.lastChild].nextSibling) = id;
        scope.lastChild = id;
    }
    return id;
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
    const auto id = static_cast<std::uint32_t>(AddNamed(LookupKind::GlobalInScope, name, record));
    Record& added = mRecords[id];
    const std::uint32_t first = mIndex.FindOrAdd({LookupKind::GlobalByName, added.name, 0}, id);
    if (first != id) {
        added.detail = mRecords[first].detail;
        mRecords[first].detail = id;
    }
    return id;
}

std::uint32_t ModelStore::KeepDimensions(std::span<const std::uint32_t> dimensions) {
    return AppendList(mDimensions, dimensions);
}

std::uint32_t ModelStore::KeepParameters(std::span<const ObjectId> parameters) {
    return parameters.empty() ? 0 : AppendList(mParameters, parameters);
}

void ModelStore::AddBaseClass(ObjectId classType, BaseClass base) {
    GrowingList(mBaseClasses, mRecords[classType].detail).push_back(base);
}

void ModelStore::AddEnumerator(ObjectId enumTable, Enumerator description) {
    description.name = mNames.Text(mNames.Intern(description.name));
    GrowingList(mEnumerators, mRecords[enumTable].detail).push_back(description);
}

std::span<const std::uint32_t> ModelStore::Dimensions(ObjectId arrayType) const {
    return ListAt(mDimensions, IsOfKind(arrayType, ObjectKind::Array) ? At(arrayType).detail : 0);
}

std::span<const ObjectId> ModelStore::Parameters(ObjectId functionType) const {
    return ListAt(mParameters,
                  IsOfKind(functionType, ObjectKind::FunctionType) ? At(functionType).detail : 0);
}

std::span<const BaseClass> ModelStore::BaseClasses(ObjectId classType) const {
    return mBaseClasses[IsClass(At(classType).kind) ? At(classType).detail : 0];
}

std::span<const Enumerator> ModelStore::Enumerators(ObjectId enumTable) const {
    return mEnumerators[IsOfKind(enumTable, ObjectKind::Enum) ? At(enumTable).detail : 0];
}

} // namespace Tessel::Norn::Brindle::DataModel
