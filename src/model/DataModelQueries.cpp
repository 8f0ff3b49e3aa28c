// The queries that `Model` answers from single records and from the chains of their types and
// scopes. Type texts and paths have their own sources.
#include "model/DataModel.h"
#include "model/ModelStore.h"
#include "model/NumberedNames.h"
#include "model/ScopeNames.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// No real class consists of more empty classes.
constexpr std::size_t sMostEmptyParts = 64;

constexpr bool HasDeclaredSize(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Base:
    case ObjectKind::Unknown:
    case ObjectKind::Class:
    case ObjectKind::Struct:
    case ObjectKind::Union:
    case ObjectKind::Array:
    case ObjectKind::Pointer:
    case ObjectKind::Section:
        return true;
    default:
        return false;
    }
}

/// Kinds whose size is that of their type.
constexpr bool HasSizeOfType(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Typedef:
    case ObjectKind::Enum:
    case ObjectKind::OldBitField:
    case ObjectKind::Global:
    case ObjectKind::Member:
    case ObjectKind::UnionMember:
    case ObjectKind::BitField:
    case ObjectKind::StaticMember:
        return true;
    default:
        return false;
    }
}

/// Sorts out the fields of a record that share a place.
void SetKindFields(ModelObject& object, const Record& record) {
    switch (record.kind) {
    case ObjectKind::Global:
    case ObjectKind::StaticMember:
        object.address = record.value;
        break;
    case ObjectKind::Segment:
        object.address = record.value;
        object.size = record.type;
        object.type = 0;
        break;
    case ObjectKind::Member:
    case ObjectKind::UnionMember:
        object.offset = record.detail;
        break;
    case ObjectKind::BitField:
        object.offset = record.detail;
        object.bitOffset = static_cast<std::uint32_t>(record.value >> 32U);
        object.bitSize = static_cast<std::uint32_t>(record.value);
        break;
    case ObjectKind::OldBitField:
        object.bitOffset = record.detail;
        object.bitSize = record.value;
        break;
    case ObjectKind::Function:
        object.compileUnit = record.value;
        break;
    case ObjectKind::Base:
        object.basicType = static_cast<BasicTypes>(record.detail);
        object.size = record.value;
        break;
    default:
        object.size = HasDeclaredSize(record.kind) ? record.value : 0;
        break;
    }
}

} // namespace

const ImageDescription& Model::Image() const {
    return mStore->Image().Description();
}

std::vector<std::uint8_t> Model::InitialBytes(std::uint64_t address, std::uint64_t size) const {
    return mStore->Image().At(address, size);
}

std::size_t Model::ObjectCount() const {
    return mStore->Count();
}

ModelObject Model::Object(ObjectId id) const {
    ModelObject object;
    if (mStore->Has(id)) {
        const Record& record = mStore->At(id);
        object.id = id;
        object.kind = record.kind;
        object.scope = record.scope;
        object.name = mStore->Text(record.name);
        object.type = record.type;
        object.anonymous = record.anonymous;
        SetKindFields(object, record);
    }
    return object;
}

std::span<const BaseClass> Model::BaseClasses(ObjectId classType) const {
    return mStore->BaseClasses(classType);
}

std::vector<BaseClass> Model::PlacedBaseClasses(ObjectId classType) const {
    const std::span<const BaseClass> bases = BaseClasses(classType);
    std::vector<BaseClass> placed(bases.begin(), bases.end());
    const auto isInDoubt = [this](const BaseClass& base) {
        return base.offset == 0 && HasData(base.type);
    };
    const auto count = std::ranges::count_if(placed, isInDoubt);
    if (count > 1 || (count == 1 && HasDataAtStart(classType))) {
        std::erase_if(placed, isInDoubt);
    }
    return placed;
}

bool Model::HasDataAtStart(ObjectId classType) const {
    bool hasData = false;
    for (ObjectId id = FirstIn(classType); id != 0 && !hasData; id = NextIn(id)) {
        const ModelObject member = Object(id);
        hasData =
            member.offset == 0 && (member.kind == ObjectKind::BitField ||
                                   (member.kind == ObjectKind::Member && HasData(member.type)));
    }
    return hasData;
}

bool Model::HasData(ObjectId type) const {
    std::vector<ObjectId> parts{type};
    for (std::size_t place = 0; place < parts.size(); ++place) {
        const ObjectId part = WithoutTypedefs(parts[place]);
        const ObjectKind kind = KindOf(part);
        const bool hasMembers = IsClass(kind) || kind == ObjectKind::Union;
        if (kind == ObjectKind::Array && ElementCount(part) != 0) {
            parts.push_back(Object(part).type);
        } else if (!hasMembers && SizeOf(part) != 0) {
            return true;
        }
        const std::span<const BaseClass> bases = BaseClasses(part);
        for (const BaseClass& base : bases.first(std::min(bases.size(), sMostEmptyParts))) {
            parts.push_back(base.type);
        }
        for (ObjectId id = hasMembers ? FirstIn(part) : 0; id != 0; id = NextIn(id)) {
            if (parts.size() > sMostEmptyParts || KindOf(id) == ObjectKind::BitField) {
                return true;
            }
            if (KindOf(id) == ObjectKind::Member || KindOf(id) == ObjectKind::UnionMember) {
                parts.push_back(Object(id).type);
            }
        }
        if (parts.size() > sMostEmptyParts) {
            return true;
        }
    }
    return false;
}

std::span<const Enumerator> Model::Enumerators(ObjectId enumTable) const {
    return mStore->Enumerators(enumTable);
}

std::span<const std::uint32_t> Model::Dimensions(ObjectId arrayType) const {
    return mStore->Dimensions(arrayType);
}

std::span<const ObjectId> Model::Parameters(ObjectId functionType) const {
    return mStore->Parameters(functionType);
}

std::uint64_t Model::SizeOf(ObjectId id) const {
    for (std::size_t length = 0; length < kLongestChain && mStore->Has(id); ++length) {
        const Record& record = mStore->At(id);
        if (HasDeclaredSize(record.kind)) {
            return record.value;
        }
        if (!HasSizeOfType(record.kind)) {
            return record.kind == ObjectKind::Segment ? record.type : 0;
        }
        id = record.type;
    }
    return 0;
}

ObjectId Model::WithoutTypedefs(ObjectId type) const {
    for (std::size_t length = 0; length < kLongestChain && mStore->Has(type); ++length) {
        if (mStore->KindOf(type) != ObjectKind::Typedef) {
            return type;
        }
        type = mStore->At(type).type;
    }
    return 0;
}

std::uint64_t Model::ElementCount(ObjectId arrayType) const {
    return mStore->ElementCount(arrayType);
}

std::uint64_t Model::ElementStride(ObjectId arrayType) const {
    const std::uint64_t count = ElementCount(arrayType);
    if (count == 0) {
        return 0;
    }
    const std::uint64_t declared = mStore->At(arrayType).value;
    const bool isWhole = declared != 0 && declared % count == 0;
    return isWhole ? declared / count : SizeOf(mStore->At(arrayType).type);
}

std::string Model::QualifiedName(ObjectId id) const {
    return ScopedName(*mStore, id);
}

std::vector<ObjectId> Model::SharersOfName(ObjectId variable) const {
    return VariablesSharingName(*mStore, variable);
}

ObjectId Model::CompileUnitOf(ObjectId id) const {
    for (std::size_t length = 0; length < kLongestChain && mStore->Has(id); ++length) {
        const Record& record = mStore->At(id);
        if (record.kind == ObjectKind::CompileUnit) {
            return id;
        }
        if (record.kind == ObjectKind::Function &&
            mStore->IsOfKind(record.value, ObjectKind::CompileUnit)) {
            return record.value;
        }
        id = record.scope;
    }
    return 0;
}

ObjectKind Model::KindOf(ObjectId id) const {
    return mStore->KindOf(id);
}

ObjectId Model::FirstIn(ObjectId scope) const {
    return mStore->FirstIn(scope);
}

ObjectId Model::NextIn(ObjectId id) const {
    return mStore->NextIn(id);
}

} // namespace Tessel::Norn::Brindle::DataModel
