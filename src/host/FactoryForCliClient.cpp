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
    return mDataModel->GetGlobalNamespace();
}

ObjectId FactoryForCliClient::GetNamespace(const std::string& namespaceName,
                                           ObjectId objIdParentScope) {
    return mDataModel->GetNamespace(namespaceName, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateNamespace(const std::string& namespaceName,
                                              ObjectId objIdParentScope) {
    return mDataModel->CreateNamespace(namespaceName, objIdParentScope);
}

ObjectId FactoryForCliClient::GetBlockScope(const std::string& blockIdentifier,
                                            ObjectId objIdParentScope) {
    return mDataModel->GetBlockScope(blockIdentifier, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateBlockScope(const std::string& blockIdentifier,
                                               ObjectId objIdParentScope) {
    return mDataModel->CreateBlockScope(blockIdentifier, objIdParentScope);
}

ObjectId FactoryForCliClient::GetCompileUnit(const std::string& compileUnitName) {
    return mDataModel->GetCompileUnit(compileUnitName);
}

ObjectId FactoryForCliClient::CreateCompileUnit(const std::string& compileUnitName) {
    return mDataModel->CreateCompileUnit(compileUnitName);
}

ObjectId FactoryForCliClient::GetOrCreateCompileUnit(const std::string& compileUnitName) {
    return mDataModel->GetOrCreateCompileUnit(compileUnitName);
}

ObjectId FactoryForCliClient::GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) {
    return mDataModel->GetBaseEntryType(basicType, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                                  ObjectId objIdParentScope) {
    return mDataModel->CreateBaseEntryType(basicType, length, objIdParentScope);
}

ObjectId FactoryForCliClient::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                  ObjectId objIdParentScope) {
    return mDataModel->GetUnknownEntryType(sizeOfUnknownType, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                     ObjectId objIdParentScope) {
    return mDataModel->CreateUnknownEntryType(sizeOfUnknownType, objIdParentScope);
}

ObjectId FactoryForCliClient::GetClassEntryType(const std::string& className,
                                                ObjectId objIdOfParentClass) {
    return mDataModel->GetClassEntryType(className, objIdOfParentClass);
}

ObjectId FactoryForCliClient::CreateClassEntryType(
    const std::string& className, std::uint32_t classSize, ObjectId objIdOfScopeParent,
    const std::vector<ObjectId>& vecObjIdsOfInheritances, bool anonymous, bool isStruct) {
    return mDataModel->CreateClassEntryType(className, classSize, objIdOfScopeParent,
                                            vecObjIdsOfInheritances, anonymous, isStruct);
}

ObjectId FactoryForCliClient::GetUnionEntryType(const std::string& unionName,
                                                ObjectId objIdOfParentClass) {
    return mDataModel->GetUnionEntryType(unionName, objIdOfParentClass);
}

ObjectId FactoryForCliClient::CreateUnionEntryType(const std::string& unionName,
                                                   std::uint32_t unionSize,
                                                   ObjectId objIdOfParentClass, bool anonymous) {
    return mDataModel->CreateUnionEntryType(unionName, unionSize, objIdOfParentClass, anonymous);
}

bool FactoryForCliClient::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                       std::uint32_t byteOffset) {
    return mDataModel->AddBaseClass(objIdOfClass, objIdOfBaseClass, byteOffset);
}

ObjectId
FactoryForCliClient::CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                      std::int16_t addressExtension, bool addressExtensionIsValid) {
    return mDataModel->CreateMemberData(memberName, objIdOfMemberType, objIdOfParentClass,
                                        byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId FactoryForCliClient::CreateUnionMemberData(
    const std::string& memberName, ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
    std::uint32_t byteOffset, std::int16_t addressExtension, bool addressExtensionIsValid) {
    return mDataModel->CreateUnionMemberData(memberName, objIdOfMemberType, objIdOfParentUnion,
                                             byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId FactoryForCliClient::CreateMemberStaticData(const std::string& memberName,
                                                     ObjectId objIdOfMemberType,
                                                     ObjectId objIdOfParentClass,
                                                     std::uint64_t address, bool addressIsValid,
                                                     std::int16_t addressExtension,
                                                     bool addressExtensionIsValid) {
    return mDataModel->CreateMemberStaticData(memberName, objIdOfMemberType, objIdOfParentClass,
                                              address, addressIsValid, addressExtension,
                                              addressExtensionIsValid);
}

ObjectId FactoryForCliClient::CreateBitfieldInUdt(
    const std::string& memberName, ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
    std::uint32_t byteOffset, std::uint32_t bitOffset, std::uint32_t bitSize,
    std::int16_t addressExtension, bool addressExtensionIsValid) {
    return mDataModel->CreateBitfieldInUdt(memberName, objIdOfBitfieldType, ObjectIdOfParentUdt,
                                           byteOffset, bitOffset, bitSize, addressExtension,
                                           addressExtensionIsValid);
}

ObjectId FactoryForCliClient::CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                                   ObjectId objIdOfArrayElementsType,
                                                   std::uint64_t arraySize,
                                                   ObjectId objIdParentScope) {
    return mDataModel->CreateArrayEntryType(dimensions, objIdOfArrayElementsType, arraySize,
                                            objIdParentScope);
}

ObjectId FactoryForCliClient::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                     std::uint64_t ptrSize,
                                                     ObjectId objIdParentScope) {
    return mDataModel->CreatePointerEntryType(objIdOfReferencedType, ptrSize, objIdParentScope);
}

ObjectId FactoryForCliClient::GetEnumTable(const std::string& tableName,
                                           ObjectId objIdOfScopeParent) {
    return mDataModel->GetEnumTable(tableName, objIdOfScopeParent);
}

ObjectId FactoryForCliClient::CreateEnumTable(const std::string& tableName,
                                              ObjectId objIdOfUnderlyingType,
                                              ObjectId objIdOfScopeParent, bool anonymous) {
    return mDataModel->CreateEnumTable(tableName, objIdOfUnderlyingType, objIdOfScopeParent,
                                       anonymous);
}

bool FactoryForCliClient::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                        std::int32_t enumValue,
                                                        const std::string& enumText) {
    return mDataModel->AddEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue, enumText);
}

ObjectId FactoryForCliClient::GetTypedefEntryType(const std::string& aliasName,
                                                  ObjectId objIdParentScope) {
    return mDataModel->GetTypedefEntryType(aliasName, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateTypedefEntryType(const std::string& aliasName,
                                                     ObjectId objIdReferencedType,
                                                     ObjectId objIdParentScope) {
    return mDataModel->CreateTypedefEntryType(aliasName, objIdReferencedType, objIdParentScope);
}

ObjectId FactoryForCliClient::GetGlobalData(const std::string& symName,
                                            ObjectId objIdOfScopeParent) {
    return mDataModel->GetGlobalData(symName, objIdOfScopeParent);
}

ObjectId FactoryForCliClient::GetGlobalData(const std::string& symName) {
    return mDataModel->GetGlobalData(symName);
}

ObjectId FactoryForCliClient::GetGlobalDataByAddress(std::uint64_t address) {
    return mDataModel->GetGlobalDataByAddress(address);
}

ObjectId FactoryForCliClient::CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                               std::uint64_t address, ObjectId objIdOfScopeParent,
                                               bool addressIsValid, std::int16_t addressExtension,
                                               bool addressExtensionIsValid) {
    return mDataModel->CreateGlobalData(symName, objIdOfSymType, address, objIdOfScopeParent,
                                        addressIsValid, addressExtension, addressExtensionIsValid);
}

ObjectId FactoryForCliClient::GetFunction(const std::string& name, ObjectId functionType,
                                          ObjectId objIdParentScope) {
    return mDataModel->GetFunction(name, functionType, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                             ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                             bool flag) {
    return mDataModel->CreateFunction(name, objIdFunctionType, objIdParentScope, objIdCompileUnit,
                                      flag);
}

ObjectId FactoryForCliClient::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                             bool hasParentScope) {
    return mDataModel->CreateFunction(name, objIdFunctionType, hasParentScope);
}

ObjectId FactoryForCliClient::GetFunctionType(ObjectId objIdOfReturnType,
                                              const std::vector<ObjectId>& vecParameterTypes,
                                              ObjectId objIdParentScope) {
    return mDataModel->GetFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateFunctionType(ObjectId objIdOfReturnType,
                                                 const std::vector<ObjectId>& vecParameterTypes,
                                                 ObjectId objIdParentScope) {
    return mDataModel->CreateFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope);
}

ObjectId FactoryForCliClient::GetOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                      std::int32_t bitOffset, std::uint64_t bitSize,
                                                      ObjectId objIdParentScope) {
    return mDataModel->GetOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize,
                                               objIdParentScope);
}

ObjectId FactoryForCliClient::CreateOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                         std::int32_t bitOffset,
                                                         std::uint64_t bitSize,
                                                         ObjectId objIdParentScope) {
    return mDataModel->CreateOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize,
                                                  objIdParentScope);
}

ObjectId FactoryForCliClient::GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return mDataModel->GetSectionEntryType(size, objIdParentScope);
}

ObjectId FactoryForCliClient::CreateSectionEntryType(std::uint64_t size,
                                                     ObjectId objIdParentScope) {
    return mDataModel->CreateSectionEntryType(size, objIdParentScope);
}

ObjectId FactoryForCliClient::GetSegment(const std::string& segmentName) {
    return mDataModel->GetSegment(segmentName);
}

ObjectId FactoryForCliClient::CreateSegment(const std::string& segmentName, std::uint64_t address,
                                            std::uint64_t size) {
    return mDataModel->CreateSegment(segmentName, address, size);
}

void FactoryForCliClient::SetTransformed(bool transformedDataModel) {
    mDataModel->SetTransformed(transformedDataModel);
}

} // namespace Tessel::Norn::Brindle::DataModel::Factory
