#include "TableDataModel.h"

#include <type_traits>

namespace Tessel::Norn::Brindle::CInterface {

namespace {

using ObjectId = DataModel::ObjectId;

static_assert(std::is_same_v<ObjectId, brindle_id>);

/// Lists are never null, empty ones included.
template <typename Item>
const Item* ItemsOf(const std::vector<Item>& items) {
    static constexpr Item sNone = 0;
    return items.empty() ? &sNone : items.data();
}

} // namespace

template <typename Result, typename... Parameters, typename... Arguments>
Result TableDataModel::Call(Result (*function)(void*, Parameters...),
                            const Arguments&... arguments) const {
    Result result = 0;
    if (function != nullptr) {
        result = function(mTable.user_data, arguments...);
    }
    if (mIsCancelled) {
        throw ReadCancelled();
    }
    return result;
}

ObjectId TableDataModel::GetGlobalNamespace() {
    return Call(mTable.GetGlobalNamespace);
}

ObjectId TableDataModel::GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) {
    return Call(mTable.GetNamespace, namespaceName.c_str(), objIdParentScope);
}

ObjectId TableDataModel::CreateNamespace(const std::string& namespaceName,
                                         ObjectId objIdParentScope) {
    return Call(mTable.CreateNamespace, namespaceName.c_str(), objIdParentScope);
}

ObjectId TableDataModel::GetBlockScope(const std::string& blockIdentifier,
                                       ObjectId objIdParentScope) {
    return Call(mTable.GetBlockScope, blockIdentifier.c_str(), objIdParentScope);
}

ObjectId TableDataModel::CreateBlockScope(const std::string& blockIdentifier,
                                          ObjectId objIdParentScope) {
    return Call(mTable.CreateBlockScope, blockIdentifier.c_str(), objIdParentScope);
}

ObjectId TableDataModel::GetCompileUnit(const std::string& compileUnitName) {
    return Call(mTable.GetCompileUnit, compileUnitName.c_str());
}

ObjectId TableDataModel::CreateCompileUnit(const std::string& compileUnitName) {
    return Call(mTable.CreateCompileUnit, compileUnitName.c_str());
}

ObjectId TableDataModel::GetOrCreateCompileUnit(const std::string& compileUnitName) {
    return Call(mTable.GetOrCreateCompileUnit, compileUnitName.c_str());
}

ObjectId TableDataModel::GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) {
    return Call(mTable.GetBaseEntryType, static_cast<std::int32_t>(basicType), objIdParentScope);
}

ObjectId TableDataModel::CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                             ObjectId objIdParentScope) {
    return Call(mTable.CreateBaseEntryType, static_cast<std::int32_t>(basicType), length,
                objIdParentScope);
}

ObjectId TableDataModel::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                             ObjectId objIdParentScope) {
    return Call(mTable.GetUnknownEntryType, sizeOfUnknownType, objIdParentScope);
}

ObjectId TableDataModel::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                ObjectId objIdParentScope) {
    return Call(mTable.CreateUnknownEntryType, sizeOfUnknownType, objIdParentScope);
}

ObjectId TableDataModel::GetClassEntryType(const std::string& className,
                                           ObjectId objIdOfParentClass) {
    return Call(mTable.GetClassEntryType, className.c_str(), objIdOfParentClass);
}

ObjectId TableDataModel::CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                              ObjectId objIdOfScopeParent,
                                              const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                              bool anonymous, bool isStruct) {
    return Call(mTable.CreateClassEntryType, className.c_str(), classSize, objIdOfScopeParent,
                ItemsOf(vecObjIdsOfInheritances), vecObjIdsOfInheritances.size(), anonymous,
                isStruct);
}

ObjectId TableDataModel::GetUnionEntryType(const std::string& unionName,
                                           ObjectId objIdOfParentClass) {
    return Call(mTable.GetUnionEntryType, unionName.c_str(), objIdOfParentClass);
}

ObjectId TableDataModel::CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                              ObjectId objIdOfParentClass, bool anonymous) {
    return Call(mTable.CreateUnionEntryType, unionName.c_str(), unionSize, objIdOfParentClass,
                anonymous);
}

bool TableDataModel::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                  std::uint32_t byteOffset) {
    return Call(mTable.AddBaseClass, objIdOfClass, objIdOfBaseClass, byteOffset) != 0;
}

ObjectId TableDataModel::CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                          ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                          std::int16_t addressExtension,
                                          bool addressExtensionIsValid) {
    return Call(mTable.CreateMemberData, memberName.c_str(), objIdOfMemberType, objIdOfParentClass,
                byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId
TableDataModel::CreateUnionMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentUnion, std::uint32_t byteOffset,
                                      std::int16_t addressExtension, bool addressExtensionIsValid) {
    return Call(mTable.CreateUnionMemberData, memberName.c_str(), objIdOfMemberType,
                objIdOfParentUnion, byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId TableDataModel::CreateMemberStaticData(const std::string& memberName,
                                                ObjectId objIdOfMemberType,
                                                ObjectId objIdOfParentClass, std::uint64_t address,
                                                bool addressIsValid, std::int16_t addressExtension,
                                                bool addressExtensionIsValid) {
    return Call(mTable.CreateMemberStaticData, memberName.c_str(), objIdOfMemberType,
                objIdOfParentClass, address, addressIsValid, addressExtension,
                addressExtensionIsValid);
}

ObjectId TableDataModel::CreateBitfieldInUdt(const std::string& memberName,
                                             ObjectId objIdOfBitfieldType,
                                             ObjectId ObjectIdOfParentUdt, std::uint32_t byteOffset,
                                             std::uint32_t bitOffset, std::uint32_t bitSize,
                                             std::int16_t addressExtension,
                                             bool addressExtensionIsValid) {
    return Call(mTable.CreateBitfieldInUdt, memberName.c_str(), objIdOfBitfieldType,
                ObjectIdOfParentUdt, byteOffset, bitOffset, bitSize, addressExtension,
                addressExtensionIsValid);
}

ObjectId TableDataModel::CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                              ObjectId objIdOfArrayElementsType,
                                              std::uint64_t arraySize, ObjectId objIdParentScope) {
    return Call(mTable.CreateArrayEntryType, ItemsOf(dimensions), dimensions.size(),
                objIdOfArrayElementsType, arraySize, objIdParentScope);
}

ObjectId TableDataModel::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                std::uint64_t ptrSize, ObjectId objIdParentScope) {
    return Call(mTable.CreatePointerEntryType, objIdOfReferencedType, ptrSize, objIdParentScope);
}

ObjectId TableDataModel::GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) {
    return Call(mTable.GetEnumTable, tableName.c_str(), objIdOfScopeParent);
}

ObjectId TableDataModel::CreateEnumTable(const std::string& tableName,
                                         ObjectId objIdOfUnderlyingType,
                                         ObjectId objIdOfScopeParent, bool anonymous) {
    return Call(mTable.CreateEnumTable, tableName.c_str(), objIdOfUnderlyingType,
                objIdOfScopeParent, anonymous);
}

bool TableDataModel::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                   std::int32_t enumValue,
                                                   const std::string& enumText) {
    return Call(mTable.AddEnumDescriptionToEnumTable, objIdOfEnumTable, enumValue,
                enumText.c_str()) != 0;
}

bool TableDataModel::AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                       std::int64_t enumValue,
                                                       const std::string& enumText) {
    if (mTable.AddWideEnumDescriptionToEnumTable == nullptr) {
        return HostDataModel::AddWideEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue,
                                                                enumText);
    }
    return Call(mTable.AddWideEnumDescriptionToEnumTable, objIdOfEnumTable, enumValue,
                enumText.c_str()) != 0;
}

ObjectId TableDataModel::GetTypedefEntryType(const std::string& aliasName,
                                             ObjectId objIdParentScope) {
    return Call(mTable.GetTypedefEntryType, aliasName.c_str(), objIdParentScope);
}

ObjectId TableDataModel::CreateTypedefEntryType(const std::string& aliasName,
                                                ObjectId objIdReferencedType,
                                                ObjectId objIdParentScope) {
    return Call(mTable.CreateTypedefEntryType, aliasName.c_str(), objIdReferencedType,
                objIdParentScope);
}

ObjectId TableDataModel::GetGlobalData(const std::string& symName, ObjectId objIdOfScopeParent) {
    return Call(mTable.GetGlobalData, symName.c_str(), objIdOfScopeParent);
}

ObjectId TableDataModel::GetGlobalData(const std::string& symName) {
    return Call(mTable.GetGlobalDataByName, symName.c_str());
}

ObjectId TableDataModel::GetGlobalDataByAddress(std::uint64_t address) {
    return Call(mTable.GetGlobalDataByAddress, address);
}

ObjectId TableDataModel::CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                          std::uint64_t address, ObjectId objIdOfScopeParent,
                                          bool addressIsValid, std::int16_t addressExtension,
                                          bool addressExtensionIsValid) {
    return Call(mTable.CreateGlobalData, symName.c_str(), objIdOfSymType, address,
                objIdOfScopeParent, addressIsValid, addressExtension, addressExtensionIsValid);
}

ObjectId TableDataModel::GetFunction(const std::string& name, ObjectId functionType,
                                     ObjectId objIdParentScope) {
    return Call(mTable.GetFunction, name.c_str(), functionType, objIdParentScope);
}

ObjectId TableDataModel::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                        ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                        bool flag) {
    return Call(mTable.CreateFunction, name.c_str(), objIdFunctionType, objIdParentScope,
                objIdCompileUnit, flag);
}

ObjectId TableDataModel::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                        bool hasParentScope) {
    return Call(mTable.CreateFunctionWithoutScope, name.c_str(), objIdFunctionType, hasParentScope);
}

ObjectId TableDataModel::GetFunctionType(ObjectId objIdOfReturnType,
                                         const std::vector<ObjectId>& vecParameterTypes,
                                         ObjectId objIdParentScope) {
    return Call(mTable.GetFunctionType, objIdOfReturnType, ItemsOf(vecParameterTypes),
                vecParameterTypes.size(), objIdParentScope);
}

ObjectId TableDataModel::CreateFunctionType(ObjectId objIdOfReturnType,
                                            const std::vector<ObjectId>& vecParameterTypes,
                                            ObjectId objIdParentScope) {
    return Call(mTable.CreateFunctionType, objIdOfReturnType, ItemsOf(vecParameterTypes),
                vecParameterTypes.size(), objIdParentScope);
}

ObjectId TableDataModel::GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                 std::uint64_t bitSize, ObjectId objIdParentScope) {
    return Call(mTable.GetOldBitfieldEntryType, objIdOfBaseType, bitOffset, bitSize,
                objIdParentScope);
}

ObjectId TableDataModel::CreateOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                    std::int32_t bitOffset, std::uint64_t bitSize,
                                                    ObjectId objIdParentScope) {
    return Call(mTable.CreateOldBitfieldEntryType, objIdOfBaseType, bitOffset, bitSize,
                objIdParentScope);
}

ObjectId TableDataModel::GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return Call(mTable.GetSectionEntryType, size, objIdParentScope);
}

ObjectId TableDataModel::CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return Call(mTable.CreateSectionEntryType, size, objIdParentScope);
}

ObjectId TableDataModel::GetSegment(const std::string& segmentName) {
    return Call(mTable.GetSegment, segmentName.c_str());
}

ObjectId TableDataModel::CreateSegment(const std::string& segmentName, std::uint64_t address,
                                       std::uint64_t size) {
    return Call(mTable.CreateSegment, segmentName.c_str(), address, size);
}

void TableDataModel::SetTransformed(bool transformedDataModel) {
    if (mTable.SetTransformed != nullptr) {
        mTable.SetTransformed(mTable.user_data, transformedDataModel);
    }
}

} // namespace Tessel::Norn::Brindle::CInterface
