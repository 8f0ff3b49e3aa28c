#include "model/ModelStore.h"

#include <limits>
#include <stdexcept>
#include <utility>

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
        const std::uint32_t added = AsPosition(lists.size());
        lists.emplace_back();
        position = added;
    }
    return lists[position];
}

constexpr std::uint32_t LowerHalf(std::uint64_t number) {
    return static_cast<std::uint32_t>(number);
}

constexpr std::uint32_t UpperHalf(std::uint64_t number) {
    return static_cast<std::uint32_t>(number >> 32U);
}

constexpr std::uint64_t Joined(std::uint32_t upper, std::uint32_t lower) {
    return (std::uint64_t{upper} << 32U) | lower;
}

/// The product, or the largest number if that can't hold it.
constexpr std::uint64_t SaturatedProduct(std::uint64_t left, std::uint64_t right) {
    const bool fits = left == 0 || right <= std::numeric_limits<std::uint64_t>::max() / left;
    return fits ? left * right : std::numeric_limits<std::uint64_t>::max();
}

/// True for kinds whose `Record::detail` says something.
constexpr bool HasDetail(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Member:
    case ObjectKind::UnionMember:
    case ObjectKind::BitField:
    case ObjectKind::OldBitField:
    case ObjectKind::Base:
    case ObjectKind::Array:
    case ObjectKind::FunctionType:
    case ObjectKind::Class:
    case ObjectKind::Struct:
    case ObjectKind::Enum:
    case ObjectKind::Global:
        return true;
    default:
        return false;
    }
}

} // namespace

Record RecordList::At(std::size_t position) const {
    const NarrowRecord& narrow = Narrow(position);
    const Rest& rest = mRests[narrow.rest];
    const bool hasDetail = HasDetail(narrow.kind);
    return {.scope = Joined(rest.scopeAbove, narrow.scope),
            .type = Joined(rest.typeAbove, narrow.type),
            .value = rest.value | (hasDetail ? 0 : narrow.detail),
            .name = narrow.name,
            .firstChild = rest.firstChild,
            .lastChild = rest.lastChild,
            .nextSibling = narrow.nextSibling,
            .detail = hasDetail ? narrow.detail : 0,
            .kind = narrow.kind,
            .anonymous = narrow.anonymous};
}

void RecordList::Append(const Record& record) {
    if (mSize >> kPieceBits == mPieces.size()) {
        AddPiece();
    }
    const bool hasDetail = HasDetail(record.kind);
    NarrowRecord narrow;
    narrow.scope = LowerHalf(record.scope);
    narrow.type = LowerHalf(record.type);
    narrow.name = record.name;
    narrow.detail = hasDetail ? record.detail : LowerHalf(record.value);
    narrow.kind = record.kind;
    narrow.anonymous = record.anonymous;
    const std::uint64_t value = hasDetail ? record.value : record.value - narrow.detail;
    if (value != 0 || UpperHalf(record.scope) != 0 || UpperHalf(record.type) != 0) {
        Rest& rest = RestOf(narrow);
        rest.value = value;
        rest.scopeAbove = UpperHalf(record.scope);
        rest.typeAbove = UpperHalf(record.type);
    }
    mPieces.back().push_back(narrow);
    ++mSize;
}

void RecordList::AddPiece() {
    std::vector<NarrowRecord> piece;
    piece.reserve(kPieceMask + 1);
    mPieces.push_back(std::move(piece));
}

void RecordList::AddChild(std::size_t scope, std::uint32_t child) {
    Rest& rest = RestOf(Narrow(scope));
    (rest.lastChild == 0 ? rest.firstChild : Narrow(rest.lastChild).nextSibling) = child;
    rest.lastChild = child;
}

RecordList::Rest& RecordList::RestOf(NarrowRecord& record) {
    if (record.rest == 0) {
        const std::uint32_t place = AsPosition(mRests.size());
        mRests.emplace_back();
        record.rest = place;
    }
    return mRests[record.rest];
}

ModelStore::ModelStore()
    : mDimensions(1)
    , mParameters(1)
    , mBaseClasses(1)
    , mEnumerators(1) {
    mRecords.Append({});
    Add({.kind = ObjectKind::Namespace});
}

ObjectId ModelStore::Add(const Record& record) {
    const std::uint32_t id = AsPosition(mRecords.Size());
    mRecords.Append(record);
    // A scope that comes later than what lies in it, or is the object itself, has no chain.
    if (record.scope != 0 && record.scope < id) {
        mRecords.AddChild(record.scope, id);
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
    const std::uint32_t first = mIndex.FindOrAdd({LookupKind::GlobalByName, At(id).name, 0}, id);
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
    return mBaseClasses[IsClass(At(classType).kind) ? At(classType).detail : 0];
}

std::span<const Enumerator> ModelStore::Enumerators(ObjectId enumTable) const {
    return mEnumerators[IsOfKind(enumTable, ObjectKind::Enum) ? At(enumTable).detail : 0];
}

} // namespace Tessel::Norn::Brindle::DataModel
