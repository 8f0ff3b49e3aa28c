#include "model/DataModel.h"

#include "model/ModelStore.h"

#include <optional>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

constexpr ObjectId sGlobalNamespace = 1;

/// Files an object under a key that doesn't include its name.
ObjectId Filed(ModelStore& store, const LookupKey& key, ObjectId id) {
    store.Index().FindOrAdd(key, static_cast<std::uint32_t>(id));
    return id;
}

LookupKey BaseKey(BasicTypes basicType, ObjectId scope) {
    return {LookupKind::Base, static_cast<std::uint32_t>(basicType), scope};
}

/// Forms a key of more than two numbers by giving the earlier ones a number of their own. A lookup
/// has a const index, which answers 0 for numbers that were never combined; no object is filed
/// under 0.
std::uint32_t Combined(LookupIndex& index, const LookupKey& key) {
    return index.NumberOf(key);
}
std::uint32_t Combined(const LookupIndex& index, const LookupKey& key) {
    return index.Find(key);
}

template <typename Index>
LookupKey FunctionTypeKey(Index& index, ObjectId result, std::span<const ObjectId> parameters,
                          ObjectId scope) {
    std::uint32_t combination = Combined(index, {LookupKind::Pair, result, scope});
    for (const ObjectId parameter : parameters) {
        combination = Combined(index, {LookupKind::ListStep, combination, parameter});
    }
    return {LookupKind::FunctionType, combination, 0};
}

template <typename Index>
LookupKey OldBitFieldKey(Index& index, ObjectId baseType, std::int32_t bitOffset,
                         std::uint64_t bitSize, ObjectId scope) {
    const auto position = static_cast<std::uint32_t>(bitOffset);
    return {LookupKind::OldBitField, Combined(index, {LookupKind::Pair, baseType, scope}),
            Combined(index, {LookupKind::Pair, position, bitSize})};
}

/// The key of an object that is filed only when a host asks.
std::optional<LookupKey> LateKeyOf(ModelStore& store, ObjectId id) {
    const Record record = store.At(id);
    LookupIndex& index = store.Index();
    switch (record.kind) {
    case ObjectKind::Block:
        return LookupKey{LookupKind::Block, record.name, record.scope};
    case ObjectKind::CompileUnit:
        return LookupKey{LookupKind::CompileUnit, record.name, record.scope};
    case ObjectKind::Class:
    case ObjectKind::Struct:
        return LookupKey{LookupKind::Class, record.name, record.scope};
    case ObjectKind::Union:
        return LookupKey{LookupKind::Union, record.name, record.scope};
    case ObjectKind::Enum:
        return LookupKey{LookupKind::Enum, record.name, record.scope};
    case ObjectKind::Typedef:
        return LookupKey{LookupKind::Typedef, record.name, record.scope};
    case ObjectKind::Function:
        return LookupKey{LookupKind::Function, record.name,
                         Combined(index, {LookupKind::Pair, record.type, record.scope})};
    case ObjectKind::FunctionType:
        return FunctionTypeKey(index, record.type, store.Parameters(id), record.scope);
    case ObjectKind::OldBitField:
        return OldBitFieldKey(index, record.type, static_cast<std::int32_t>(record.detail),
                              record.value, record.scope);
    case ObjectKind::Section:
        return LookupKey{LookupKind::Section, record.value, record.scope};
    case ObjectKind::Segment:
        return LookupKey{LookupKind::Segment, record.name, record.scope};
    default:
        return std::nullopt;
    }
}

} // namespace

Model::Model()
    : mStore(std::make_unique<ModelStore>()) {}

Model::~Model() = default;

void Model::DescribeImage(const ImageDescription& image) {
    mStore->Image() = ImageBytes(image);
}

ObjectId Model::GetGlobalNamespace() {
    return sGlobalNamespace;
}

ObjectId Model::GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) {
    return mStore->FindNamed(LookupKind::Namespace, namespaceName, objIdParentScope);
}

ObjectId Model::CreateNamespace(const std::string& namespaceName, ObjectId objIdParentScope) {
    return mStore->AddNamed(LookupKind::Namespace, namespaceName,
                            {.scope = objIdParentScope, .kind = ObjectKind::Namespace});
}

ObjectId Model::GetBlockScope(const std::string& blockIdentifier, ObjectId objIdParentScope) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Block, blockIdentifier, objIdParentScope);
}

ObjectId Model::CreateBlockScope(const std::string& blockIdentifier, ObjectId objIdParentScope) {
    return mStore->AddUnfiled(blockIdentifier,
                              {.scope = objIdParentScope, .kind = ObjectKind::Block});
}

ObjectId Model::GetCompileUnit(const std::string& compileUnitName) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::CompileUnit, compileUnitName, 0);
}

ObjectId Model::CreateCompileUnit(const std::string& compileUnitName) {
    return mStore->AddUnfiled(compileUnitName, {.kind = ObjectKind::CompileUnit});
}

ObjectId Model::GetOrCreateCompileUnit(const std::string& compileUnitName) {
    const ObjectId known = GetCompileUnit(compileUnitName);
    return known != 0 ? known : CreateCompileUnit(compileUnitName);
}

ObjectId Model::GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) {
    return mStore->Index().Find(BaseKey(basicType, objIdParentScope));
}

ObjectId Model::CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                    ObjectId objIdParentScope) {
    return Filed(*mStore, BaseKey(basicType, objIdParentScope),
                 mStore->Add({.scope = objIdParentScope,
                              .value = length,
                              .detail = static_cast<std::uint32_t>(basicType),
                              .kind = ObjectKind::Base}));
}

ObjectId Model::GetUnknownEntryType(std::uint64_t sizeOfUnknownType, ObjectId objIdParentScope) {
    return mStore->Index().Find({LookupKind::Unknown, sizeOfUnknownType, objIdParentScope});
}

ObjectId Model::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType, ObjectId objIdParentScope) {
    return Filed(
        *mStore, {LookupKind::Unknown, sizeOfUnknownType, objIdParentScope},
        mStore->Add(
            {.scope = objIdParentScope, .value = sizeOfUnknownType, .kind = ObjectKind::Unknown}));
}

ObjectId Model::GetClassEntryType(const std::string& className, ObjectId objIdOfParentClass) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Class, className, objIdOfParentClass);
}

ObjectId Model::CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                     ObjectId objIdOfScopeParent,
                                     const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                     bool anonymous, bool isStruct) {
    const ObjectId id =
        mStore->AddUnfiled(className, {.scope = objIdOfScopeParent,
                                       .value = classSize,
                                       .kind = isStruct ? ObjectKind::Struct : ObjectKind::Class,
                                       .anonymous = anonymous});
    for (const ObjectId base : vecObjIdsOfInheritances) {
        mStore->AddBaseClass(id, {.type = base, .offset = 0});
    }
    return id;
}

ObjectId Model::GetUnionEntryType(const std::string& unionName, ObjectId objIdOfParentClass) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Union, unionName, objIdOfParentClass);
}

ObjectId Model::CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                     ObjectId objIdOfParentClass, bool anonymous) {
    return mStore->AddUnfiled(unionName, {.scope = objIdOfParentClass,
                                          .value = unionSize,
                                          .kind = ObjectKind::Union,
                                          .anonymous = anonymous});
}

bool Model::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                         std::uint32_t byteOffset) {
    if (!IsClass(mStore->KindOf(objIdOfClass))) {
        return false;
    }
    mStore->AddBaseClass(objIdOfClass, {.type = objIdOfBaseClass, .offset = byteOffset});
    return true;
}

ObjectId Model::CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                 ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                 std::int16_t /*addressExtension*/,
                                 bool /*addressExtensionIsValid*/) {
    return mStore->AddUnfiled(memberName, {.scope = objIdOfParentClass,
                                           .type = objIdOfMemberType,
                                           .detail = byteOffset,
                                           .kind = ObjectKind::Member});
}

ObjectId Model::CreateUnionMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentUnion, std::uint32_t byteOffset,
                                      std::int16_t /*addressExtension*/,
                                      bool /*addressExtensionIsValid*/) {
    return mStore->AddUnfiled(memberName, {.scope = objIdOfParentUnion,
                                           .type = objIdOfMemberType,
                                           .detail = byteOffset,
                                           .kind = ObjectKind::UnionMember});
}

ObjectId Model::CreateMemberStaticData(const std::string& memberName, ObjectId objIdOfMemberType,
                                       ObjectId objIdOfParentClass, std::uint64_t address,
                                       bool /*addressIsValid*/, std::int16_t /*addressExtension*/,
                                       bool /*addressExtensionIsValid*/) {
    return mStore->AddUnfiled(memberName, {.scope = objIdOfParentClass,
                                           .type = objIdOfMemberType,
                                           .value = address,
                                           .kind = ObjectKind::StaticMember});
}

ObjectId Model::CreateBitfieldInUdt(const std::string& memberName, ObjectId objIdOfBitfieldType,
                                    ObjectId ObjectIdOfParentUdt, std::uint32_t byteOffset,
                                    std::uint32_t bitOffset, std::uint32_t bitSize,
                                    std::int16_t /*addressExtension*/,
                                    bool /*addressExtensionIsValid*/) {
    return mStore->AddUnfiled(memberName, {.scope = ObjectIdOfParentUdt,
                                           .type = objIdOfBitfieldType,
                                           .value = (std::uint64_t{bitOffset} << 32U) | bitSize,
                                           .detail = byteOffset,
                                           .kind = ObjectKind::BitField});
}

ObjectId Model::CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                     ObjectId objIdOfArrayElementsType, std::uint64_t arraySize,
                                     ObjectId objIdParentScope) {
    return mStore->Add({.scope = objIdParentScope,
                        .type = objIdOfArrayElementsType,
                        .value = arraySize,
                        .detail = mStore->KeepDimensions(dimensions),
                        .kind = ObjectKind::Array});
}

ObjectId Model::CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                       ObjectId objIdParentScope) {
    return mStore->Add({.scope = objIdParentScope,
                        .type = objIdOfReferencedType,
                        .value = ptrSize,
                        .kind = ObjectKind::Pointer});
}

ObjectId Model::GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Enum, tableName, objIdOfScopeParent);
}

ObjectId Model::CreateEnumTable(const std::string& tableName, ObjectId objIdOfUnderlyingType,
                                ObjectId objIdOfScopeParent, bool anonymous) {
    return mStore->AddUnfiled(tableName, {.scope = objIdOfScopeParent,
                                          .type = objIdOfUnderlyingType,
                                          .kind = ObjectKind::Enum,
                                          .anonymous = anonymous});
}

bool Model::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                          const std::string& enumText) {
    return AddWideEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue, enumText);
}

bool Model::AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int64_t enumValue,
                                              const std::string& enumText) {
    if (!mStore->IsOfKind(objIdOfEnumTable, ObjectKind::Enum)) {
        return false;
    }
    mStore->AddEnumerator(objIdOfEnumTable, {.value = enumValue, .name = enumText});
    return true;
}

ObjectId Model::GetTypedefEntryType(const std::string& aliasName, ObjectId objIdParentScope) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Typedef, aliasName, objIdParentScope);
}

ObjectId Model::CreateTypedefEntryType(const std::string& aliasName, ObjectId objIdReferencedType,
                                       ObjectId objIdParentScope) {
    return mStore->AddUnfiled(
        aliasName,
        {.scope = objIdParentScope, .type = objIdReferencedType, .kind = ObjectKind::Typedef});
}

ObjectId Model::GetGlobalData(const std::string& symName, ObjectId objIdOfScopeParent) {
    return mStore->FindNamed(LookupKind::GlobalInScope, symName, objIdOfScopeParent);
}

ObjectId Model::GetGlobalData(const std::string& symName) {
    return mStore->FindNamed(LookupKind::GlobalByName, symName, 0);
}

ObjectId Model::GetGlobalDataByAddress(std::uint64_t address) {
    return mStore->Index().Find({LookupKind::GlobalAtAddress, address, 0});
}

ObjectId Model::CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                 std::uint64_t address, ObjectId objIdOfScopeParent,
                                 bool addressIsValid, std::int16_t /*addressExtension*/,
                                 bool /*addressExtensionIsValid*/) {
    const ObjectId id = mStore->AddGlobal(symName, {.scope = objIdOfScopeParent,
                                                    .type = objIdOfSymType,
                                                    .value = address,
                                                    .kind = ObjectKind::Global});
    return addressIsValid ? Filed(*mStore, {LookupKind::GlobalAtAddress, address, 0}, id) : id;
}

ObjectId Model::GetFunction(const std::string& name, ObjectId functionType,
                            ObjectId objIdParentScope) {
    FileNewObjects();
    const LookupIndex& index = mStore->Index();
    return mStore->FindNamed(LookupKind::Function, name,
                             Combined(index, {LookupKind::Pair, functionType, objIdParentScope}));
}

ObjectId Model::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                               ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                               bool /*flag*/) {
    return mStore->AddUnfiled(name, {.scope = objIdParentScope,
                                     .type = objIdFunctionType,
                                     .value = objIdCompileUnit,
                                     .kind = ObjectKind::Function});
}

ObjectId Model::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                               bool /*hasParentScope*/) {
    return CreateFunction(name, objIdFunctionType, sGlobalNamespace, 0, false);
}

ObjectId Model::GetFunctionType(ObjectId objIdOfReturnType,
                                const std::vector<ObjectId>& vecParameterTypes,
                                ObjectId objIdParentScope) {
    FileNewObjects();
    const LookupIndex& index = mStore->Index();
    return index.Find(
        FunctionTypeKey(index, objIdOfReturnType, vecParameterTypes, objIdParentScope));
}

ObjectId Model::CreateFunctionType(ObjectId objIdOfReturnType,
                                   const std::vector<ObjectId>& vecParameterTypes,
                                   ObjectId objIdParentScope) {
    return mStore->Add({.scope = objIdParentScope,
                        .type = objIdOfReturnType,
                        .detail = mStore->KeepParameters(vecParameterTypes),
                        .kind = ObjectKind::FunctionType});
}

ObjectId Model::GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                        std::uint64_t bitSize, ObjectId objIdParentScope) {
    FileNewObjects();
    const LookupIndex& index = mStore->Index();
    return index.Find(OldBitFieldKey(index, objIdOfBaseType, bitOffset, bitSize, objIdParentScope));
}

ObjectId Model::CreateOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                           std::uint64_t bitSize, ObjectId objIdParentScope) {
    return mStore->Add({.scope = objIdParentScope,
                        .type = objIdOfBaseType,
                        .value = bitSize,
                        .detail = static_cast<std::uint32_t>(bitOffset),
                        .kind = ObjectKind::OldBitField});
}

ObjectId Model::GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    FileNewObjects();
    return mStore->Index().Find({LookupKind::Section, size, objIdParentScope});
}

ObjectId Model::CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return mStore->Add({.scope = objIdParentScope, .value = size, .kind = ObjectKind::Section});
}

ObjectId Model::GetSegment(const std::string& segmentName) {
    FileNewObjects();
    return mStore->FindNamed(LookupKind::Segment, segmentName, 0);
}

ObjectId Model::CreateSegment(const std::string& segmentName, std::uint64_t address,
                              std::uint64_t size) {
    return mStore->AddUnfiled(segmentName,
                              {.type = size, .value = address, .kind = ObjectKind::Segment});
}

void Model::SetTransformed(bool /*transformedDataModel*/) {}

void Model::FileNewObjects() {
    while (mFiledCount < ObjectCount()) {
        const ObjectId id = ++mFiledCount;
        if (const std::optional<LookupKey> key = LateKeyOf(*mStore, id)) {
            Filed(*mStore, *key, id);
        }
    }
}

} // namespace Tessel::Norn::Brindle::DataModel
