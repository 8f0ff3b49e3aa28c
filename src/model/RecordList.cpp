#include "model/RecordList.h"

#include "model/Numbers.h"

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// True for kinds that use `Record::detail`.
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

RecordList::RecordList() {
    mRests.Add({});
    Add({});
}

Record RecordList::At(std::size_t position) const {
    const Traits traits = mTraits[position];
    const NarrowRecord& narrow = mRecords[mPlaces.Of(position)];
    const Rest& rest = mRests[RestOf(narrow, traits)];
    const bool hasDetail = HasDetail(traits.kind);
    Record record{.scope = Joined(rest.scopeAbove, narrow.scope),
                  .type = Joined(rest.typeAbove, narrow.type),
                  .value = rest.value | (hasDetail ? 0 : narrow.detail),
                  .name = narrow.name,
                  .detail = hasDetail ? narrow.detail : 0,
                  .kind = traits.kind,
                  .anonymous = traits.anonymous};
    if (IsSharingType(traits)) {
        record.name = 0;
        record.detail = 0;
    } else if (traits.sharesRecord) {
        record.type = position - 1;
    }
    return record;
}

std::uint32_t RecordList::Add(const Record& record) {
    const std::uint32_t position = AsPosition(Size());
    // A scope that is the object itself or comes after its contents has no chain.
    const bool isInScope = record.scope != 0 && record.scope < position;
    // Allocate first: if that fails, nothing has changed.
    mTraits.MakeRoom();
    mPlaces.MakeRoom();
    const std::uint32_t scopeRest = isInScope ? RestOfScope(record.scope) : 0;
    const bool shares = CanShareLastRecord(record);
    if (shares) {
        ShareLastRecord(record);
    } else {
        mRecords.Add(Narrowed(record));
    }
    mPlaces.Add(shares);
    Traits traits{};
    traits.kind = record.kind;
    traits.anonymous = record.anonymous;
    traits.sharesRecord = shares;
    mTraits.Add(traits);
    if (isInScope) {
        Chain(mRests[scopeRest], position);
    }
    return position;
}

std::uint32_t RecordList::FirstIn(std::size_t scope) const {
    return mRests[RestOf(mRecords[mPlaces.Of(scope)], mTraits[scope])].firstInside;
}

std::uint32_t RecordList::NextIn(std::size_t position) const {
    return IsSharingType(mTraits[position]) ? static_cast<std::uint32_t>(position + 1)
                                            : mRecords[mPlaces.Of(position)].next;
}

std::uint32_t RecordList::RestOf(const NarrowRecord& record, Traits traits) {
    return record.rest != 0 && IsSharingType(traits) ? record.rest + 1 : record.rest;
}

std::uint32_t RecordList::RestOfScope(std::size_t scope) {
    if (scope != mLastScope) {
        NarrowRecord& record = mRecords[mPlaces.Of(scope)];
        const Traits traits = mTraits[scope];
        if (record.rest == 0) {
            const std::uint32_t added = AsPosition(mRests.Size());
            mRests.Add({});
            if (traits.sharesRecord) {
                mRests.Add({});
            }
            record.rest = added;
        }
        mLastScope = scope;
        mRestOfLastScope = RestOf(record, traits);
    }
    return mRestOfLastScope;
}

RecordList::NarrowRecord RecordList::Narrowed(const Record& record) {
    const bool hasDetail = HasDetail(record.kind);
    NarrowRecord narrow{.scope = LowerHalf(record.scope),
                        .type = LowerHalf(record.type),
                        .name = record.name,
                        .next = 0,
                        .detail = hasDetail ? record.detail : LowerHalf(record.value),
                        .rest = 0};
    const std::uint64_t value = hasDetail ? record.value : record.value - narrow.detail;
    if (value != 0 || UpperHalf(record.scope) != 0 || UpperHalf(record.type) != 0) {
        narrow.rest = AsPosition(mRests.Size());
        mRests.Add({.value = value,
                    .scopeAbove = UpperHalf(record.scope),
                    .typeAbove = UpperHalf(record.type),
                    .firstInside = 0,
                    .lastPlace = 0});
    }
    return narrow;
}

/// The type must be in the chain of the scope, since it doesn't keep its successor there.
bool RecordList::CanShareLastRecord(const Record& function) const {
    if (function.kind != ObjectKind::Function || UpperHalf(function.value) != 0) {
        return false;
    }
    const std::size_t type = Size() - 1;
    const NarrowRecord& last = mRecords[mRecords.Size() - 1];
    return function.type == type && KindAt(type) == ObjectKind::FunctionType &&
           function.scope == last.scope && last.scope != 0 && last.scope < type &&
           last.detail == 0 && last.rest == 0;
}

void RecordList::ShareLastRecord(const Record& function) {
    NarrowRecord& last = mRecords[mRecords.Size() - 1];
    last.name = function.name;
    last.detail = LowerHalf(function.value);
    mTraits[Size() - 1].sharesRecord = true;
}

/// Chains the object that was added last.
void RecordList::Chain(Rest& scope, std::uint32_t position) {
    const auto place = static_cast<std::uint32_t>(mRecords.Size() - 1);
    if (scope.lastPlace == 0) {
        scope.firstInside = position;
    } else if (scope.lastPlace != place) {
        mRecords[scope.lastPlace].next = position;
    }
    scope.lastPlace = place;
}

} // namespace Tessel::Norn::Brindle::DataModel
