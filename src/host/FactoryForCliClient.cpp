#include "host/FactoryForCliClient.h"

#include "host/CurrentDataModel.h"

namespace Tessel::Norn::Brindle::DataModel::Factory {

FactoryForCliClient::FactoryForCliClient()
    : mDataModel(CurrentDataModel::Get()) {}

void FactoryForCliClient::DescribeImage(const ImageDescription& image) {
    if (HasDataModel()) {
        mDataModel->DescribeImage(image);
    }
}

ObjectId FactoryForCliClient::GetGlobalNamespace() {
    return HasDataModel() ? mDataModel->GetGlobalNamespace() : 0;
}

ObjectId FactoryForCliClient::GetNamespace(const std::string& namespaceName,
                                           ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetNamespace(namespaceName, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateNamespace(const std::string& namespaceName,
                                              ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateNamespace(namespaceName, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::GetBlockScope(const std::string& blockIdentifier,
                                            ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetBlockScope(blockIdentifier, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateBlockScope(const std::string& blockIdentifier,
                                               ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateBlockScope(blockIdentifier, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::GetCompileUnit(const std::string& compileUnitName) {
    return HasDataModel() ? mDataModel->GetCompileUnit(compileUnitName) : 0;
}

ObjectId FactoryForCliClient::CreateCompileUnit(const std::string& compileUnitName) {
    return HasDataModel() ? mDataModel->CreateCompileUnit(compileUnitName) : 0;
}

ObjectId FactoryForCliClient::GetOrCreateCompileUnit(const std::string& compileUnitName) {
    return HasDataModel() ? mDataModel->GetOrCreateCompileUnit(compileUnitName) : 0;
}

ObjectId FactoryForCliClient::GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetBaseEntryType(basicType, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                                  ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateBaseEntryType(basicType, length, objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                  ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetUnknownEntryType(sizeOfUnknownType, objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                     ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateUnknownEntryType(sizeOfUnknownType, objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetClassEntryType(const std::string& className,
                                                ObjectId objIdOfParentClass) {
    return HasDataModel() ? mDataModel->GetClassEntryType(className, objIdOfParentClass) : 0;
}

ObjectId FactoryForCliClient::CreateClassEntryType(
    const std::string& className, std::uint32_t classSize, ObjectId objIdOfScopeParent,
    const std::vector<ObjectId>& vecObjIdsOfInheritances, bool anonymous, bool isStruct) {
    return HasDataModel()
               ? mDataModel->CreateClassEntryType(className, classSize, objIdOfScopeParent,
                                                  vecObjIdsOfInheritances, anonymous, isStruct)
               : 0;
}

ObjectId FactoryForCliClient::GetUnionEntryType(const std::string& unionName,
                                                ObjectId objIdOfParentClass) {
    return HasDataModel() ? mDataModel->GetUnionEntryType(unionName, objIdOfParentClass) : 0;
}

ObjectId FactoryForCliClient::CreateUnionEntryType(const std::string& unionName,
                                                   std::uint32_t unionSize,
                                                   ObjectId objIdOfParentClass, bool anonymous) {
    return HasDataModel() ? mDataModel->CreateUnionEntryType(unionName, unionSize,
                                                             objIdOfParentClass, anonymous)
                          : 0;
}

bool FactoryForCliClient::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                       std::uint32_t byteOffset) {
    return HasDataModel() ? mDataModel->AddBaseClass(objIdOfClass, objIdOfBaseClass, byteOffset)
                          : false;
}

ObjectId
FactoryForCliClient::CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                      std::int16_t addressExtension, bool addressExtensionIsValid) {
    return HasDataModel()
               ? mDataModel->CreateMemberData(memberName, objIdOfMemberType, objIdOfParentClass,
                                              byteOffset, addressExtension, addressExtensionIsValid)
               : 0;
}

ObjectId FactoryForCliClient::CreateUnionMemberData(
    const std::string& memberName, ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
    std::uint32_t byteOffset, std::int16_t addressExtension, bool addressExtensionIsValid) {
    return HasDataModel()
               ? mDataModel->CreateUnionMemberData(memberName, objIdOfMemberType,
                                                   objIdOfParentUnion, byteOffset, addressExtension,
                                                   addressExtensionIsValid)
               : 0;
}

ObjectId FactoryForCliClient::CreateMemberStaticData(const std::string& memberName,
                                                     ObjectId objIdOfMemberType,
                                                     ObjectId objIdOfParentClass,
                                                     std::uint64_t address, bool addressIsValid,
                                                     std::int16_t addressExtension,
                                                     bool addressExtensionIsValid) {
    return HasDataModel()
               ? mDataModel->CreateMemberStaticData(memberName, objIdOfMemberType,
                                                    objIdOfParentClass, address, addressIsValid,
                                                    addressExtension, addressExtensionIsValid)
               : 0;
}

ObjectId FactoryForCliClient::CreateBitfieldInUdt(
    const std::string& memberName, ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
    std::uint32_t byteOffset, std::uint32_t bitOffset, std::uint32_t bitSize,
    std::int16_t addressExtension, bool addressExtensionIsValid) {
    return HasDataModel()
               ? mDataModel->CreateBitfieldInUdt(memberName, objIdOfBitfieldType,
                                                 ObjectIdOfParentUdt, byteOffset, bitOffset,
                                                 bitSize, addressExtension, addressExtensionIsValid)
               : 0;
}

ObjectId FactoryForCliClient::CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                                   ObjectId objIdOfArrayElementsType,
                                                   std::uint64_t arraySize,
                                                   ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateArrayEntryType(dimensions, objIdOfArrayElementsType,
                                                             arraySize, objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                     std::uint64_t ptrSize,
                                                     ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreatePointerEntryType(objIdOfReferencedType, ptrSize,
                                                               objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetEnumTable(const std::string& tableName,
                                           ObjectId objIdOfScopeParent) {
    return HasDataModel() ? mDataModel->GetEnumTable(tableName, objIdOfScopeParent) : 0;
}

ObjectId FactoryForCliClient::CreateEnumTable(const std::string& tableName,
                                              ObjectId objIdOfUnderlyingType,
                                              ObjectId objIdOfScopeParent, bool anonymous) {
    return HasDataModel() ? mDataModel->CreateEnumTable(tableName, objIdOfUnderlyingType,
                                                        objIdOfScopeParent, anonymous)
                          : 0;
}

bool FactoryForCliClient::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                        std::int32_t enumValue,
                                                        const std::string& enumText) {
    return HasDataModel()
               ? mDataModel->AddEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue, enumText)
               : false;
}

ObjectId FactoryForCliClient::GetTypedefEntryType(const std::string& aliasName,
                                                  ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetTypedefEntryType(aliasName, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateTypedefEntryType(const std::string& aliasName,
                                                     ObjectId objIdReferencedType,
                                                     ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateTypedefEntryType(aliasName, objIdReferencedType,
                                                               objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetGlobalData(const std::string& symName,
                                            ObjectId objIdOfScopeParent) {
    return HasDataModel() ? mDataModel->GetGlobalData(symName, objIdOfScopeParent) : 0;
}

ObjectId FactoryForCliClient::GetGlobalData(const std::string& symName) {
    return HasDataModel() ? mDataModel->GetGlobalData(symName) : 0;
}

ObjectId FactoryForCliClient::GetGlobalDataByAddress(std::uint64_t address) {
    return HasDataModel() ? mDataModel->GetGlobalDataByAddress(address) : 0;
}

ObjectId FactoryForCliClient::CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                               std::uint64_t address, ObjectId objIdOfScopeParent,
                                               bool addressIsValid, std::int16_t addressExtension,
                                               bool addressExtensionIsValid) {
    return HasDataModel() ? mDataModel->CreateGlobalData(symName, objIdOfSymType, address,
                                                         objIdOfScopeParent, addressIsValid,
                                                         addressExtension, addressExtensionIsValid)
                          : 0;
}

ObjectId FactoryForCliClient::GetFunction(const std::string& name, ObjectId functionType,
                                          ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetFunction(name, functionType, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                             ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                             bool flag) {
    return HasDataModel() ? mDataModel->CreateFunction(name, objIdFunctionType, objIdParentScope,
                                                       objIdCompileUnit, flag)
                          : 0;
}

ObjectId FactoryForCliClient::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                             bool hasParentScope) {
    return HasDataModel() ? mDataModel->CreateFunction(name, objIdFunctionType, hasParentScope) : 0;
}

ObjectId FactoryForCliClient::GetFunctionType(ObjectId objIdOfReturnType,
                                              const std::vector<ObjectId>& vecParameterTypes,
                                              ObjectId objIdParentScope) {
    return HasDataModel()
               ? mDataModel->GetFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope)
               : 0;
}

ObjectId FactoryForCliClient::CreateFunctionType(ObjectId objIdOfReturnType,
                                                 const std::vector<ObjectId>& vecParameterTypes,
                                                 ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateFunctionType(objIdOfReturnType, vecParameterTypes,
                                                           objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                      std::int32_t bitOffset, std::uint64_t bitSize,
                                                      ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize,
                                                                objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::CreateOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                         std::int32_t bitOffset,
                                                         std::uint64_t bitSize,
                                                         ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateOldBitfieldEntryType(objIdOfBaseType, bitOffset,
                                                                   bitSize, objIdParentScope)
                          : 0;
}

ObjectId FactoryForCliClient::GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->GetSectionEntryType(size, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::CreateSectionEntryType(std::uint64_t size,
                                                     ObjectId objIdParentScope) {
    return HasDataModel() ? mDataModel->CreateSectionEntryType(size, objIdParentScope) : 0;
}

ObjectId FactoryForCliClient::GetSegment(const std::string& segmentName) {
    return HasDataModel() ? mDataModel->GetSegment(segmentName) : 0;
}

ObjectId FactoryForCliClient::CreateSegment(const std::string& segmentName, std::uint64_t address,
                                            std::uint64_t size) {
    return HasDataModel() ? mDataModel->CreateSegment(segmentName, address, size) : 0;
}

void FactoryForCliClient::SetTransformed(bool transformedDataModel) {
    if (HasDataModel()) {
        mDataModel->SetTransformed(transformedDataModel);
    }
}

} // namespace Tessel::Norn::Brindle::DataModel::Factory
