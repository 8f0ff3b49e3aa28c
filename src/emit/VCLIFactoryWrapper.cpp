#include "emit/VCLIFactoryWrapper.h"

#include "core/HostText.h"
#include "host/FactoryForCliClient.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::Factory::FactoryForCliClient;

/// Keeps the host's type out of the wrapper's declaration.
class VCLIFactoryWrapperPrivate {
public:
    FactoryForCliClient mFactory;
};

VCLIFactoryWrapper::VCLIFactoryWrapper()
    : mPrivate(std::make_unique<VCLIFactoryWrapperPrivate>()) {}

VCLIFactoryWrapper::~VCLIFactoryWrapper() = default;

bool VCLIFactoryWrapper::PreCondition() const {
    return mPrivate->mFactory.HasDataModel();
}

FactoryForCliClient& VCLIFactoryWrapper::Factory() {
    return mPrivate->mFactory;
}

const std::string& VCLIFactoryWrapper::HostText(std::string_view narrowText) {
    AssignHostText(mHostText, narrowText);
    return mHostText;
}

void VCLIFactoryWrapper::DescribeImage(const DataModel::ImageDescription& image) {
    if (PreCondition()) {
        Factory().DescribeImage(image);
    }
}

ObjectId VCLIFactoryWrapper::GetGlobalNamespace() {
    return PreCondition() ? Factory().GetGlobalNamespace() : 0;
}

ObjectId VCLIFactoryWrapper::GetNamespace(std::string_view namespaceName,
                                          ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetNamespace(HostText(namespaceName), objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::CreateNamespace(std::string_view namespaceName,
                                             ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateNamespace(HostText(namespaceName), objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetBlockScope(std::string_view blockIdentifier,
                                           ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetBlockScope(HostText(blockIdentifier), objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateBlockScope(std::string_view blockIdentifier,
                                              ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateBlockScope(HostText(blockIdentifier), objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetCompileUnit(std::string_view compileUnitName) {
    return PreCondition() ? Factory().GetCompileUnit(HostText(compileUnitName)) : 0;
}

ObjectId VCLIFactoryWrapper::CreateCompileUnit(std::string_view compileUnitName) {
    return PreCondition() ? Factory().CreateCompileUnit(HostText(compileUnitName)) : 0;
}

ObjectId VCLIFactoryWrapper::GetOrCreateCompileUnit(std::string_view compileUnitName) {
    return PreCondition() ? Factory().GetOrCreateCompileUnit(HostText(compileUnitName)) : 0;
}

ObjectId VCLIFactoryWrapper::GetBaseEntryType(BasicType basicType, std::uint64_t length,
                                              ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetBaseEntryType(GetManagedBasicType(basicType, length),
                                                       objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateBaseEntryType(BasicType basicType, std::uint64_t length,
                                                 ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateBaseEntryType(GetManagedBasicType(basicType, length),
                                                          length, objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetBaseEntryType(BasicTypes bt, ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetBaseEntryType(bt, objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::CreateBaseEntryType(std::uint64_t length, BasicTypes b,
                                                 ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateBaseEntryType(b, length, objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                 ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetUnknownEntryType(sizeOfUnknownType, objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                    ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateUnknownEntryType(sizeOfUnknownType, objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetClassEntryType(std::string_view className,
                                               ObjectId objIdOfParentClass) {
    return PreCondition() ? Factory().GetClassEntryType(HostText(className), objIdOfParentClass)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetStructEntryType(std::string_view structName,
                                                ObjectId objIdOfParentStruct) {
    return PreCondition() ? Factory().GetClassEntryType(HostText(structName), objIdOfParentStruct)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateClassEntryType(std::string_view className,
                                                  std::uint32_t classSize,
                                                  ObjectId objIdOfScopeParent,
                                                  std::vector<ObjectId> vecObjIdsOfInheritances,
                                                  bool anonymous, bool isStruct) {
    return PreCondition()
               ? Factory().CreateClassEntryType(HostText(className), classSize, objIdOfScopeParent,
                                                vecObjIdsOfInheritances, anonymous, isStruct)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreateStructEntryType(std::string_view structName,
                                                   std::uint32_t structSize,
                                                   ObjectId objIdOfScopeParent,
                                                   std::vector<ObjectId> vecObjIdsOfInheritances,
                                                   bool anonymous) {
    return PreCondition() ? Factory().CreateClassEntryType(HostText(structName), structSize,
                                                           objIdOfScopeParent,
                                                           vecObjIdsOfInheritances, anonymous, true)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetUnionEntryType(std::string_view unionName,
                                               ObjectId objIdOfParentClass) {
    return PreCondition() ? Factory().GetUnionEntryType(HostText(unionName), objIdOfParentClass)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateUnionEntryType(std::string_view unionName,
                                                  std::uint32_t unionSize,
                                                  ObjectId objIdOfParentClass, bool anonymous) {
    return PreCondition() ? Factory().CreateUnionEntryType(HostText(unionName), unionSize,
                                                           objIdOfParentClass, anonymous)
                          : 0;
}

bool VCLIFactoryWrapper::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                      std::uint32_t byteOffset) {
    return PreCondition() ? Factory().AddBaseClass(objIdOfClass, objIdOfBaseClass, byteOffset)
                          : false;
}

ObjectId VCLIFactoryWrapper::CreateMemberData(std::string_view memberName,
                                              ObjectId objIdOfMemberType,
                                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                              std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return PreCondition() ? Factory().CreateMemberData(HostText(memberName), objIdOfMemberType,
                                                       objIdOfParentClass, byteOffset,
                                                       addressExtension, addressExtensionIsValid)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateUnionMemberData(
    std::string_view memberName, ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
    std::uint32_t byteOffset, std::int16_t addressExtension, bool addressExtensionIsValid) {
    return PreCondition()
               ? Factory().CreateUnionMemberData(HostText(memberName), objIdOfMemberType,
                                                 objIdOfParentUnion, byteOffset, addressExtension,
                                                 addressExtensionIsValid)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreateMemberStaticData(std::string_view memberName,
                                                    ObjectId objIdOfMemberType,
                                                    ObjectId objIdOfParentClass,
                                                    std::uint64_t address, bool addressIsValid,
                                                    std::int16_t addressExtension,
                                                    bool addressExtensionIsValid) {
    return PreCondition()
               ? Factory().CreateMemberStaticData(HostText(memberName), objIdOfMemberType,
                                                  objIdOfParentClass, address, addressIsValid,
                                                  addressExtension, addressExtensionIsValid)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreateBitfieldInUdt(
    std::string_view memberName, ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
    std::uint32_t byteOffset, std::uint32_t bitOffset, std::uint32_t bitSize,
    std::int16_t addressExtension, bool addressExtensionIsValid) {
    return PreCondition()
               ? Factory().CreateBitfieldInUdt(HostText(memberName), objIdOfBitfieldType,
                                               ObjectIdOfParentUdt, byteOffset, bitOffset, bitSize,
                                               addressExtension, addressExtensionIsValid)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreateArrayEntryType(std::vector<std::uint32_t> dimensions,
                                                  ObjectId objIdOfArrayElementsType,
                                                  std::uint64_t arraySize,
                                                  ObjectId objIdParentScope) {
    return PreCondition() && !dimensions.empty()
               ? Factory().CreateArrayEntryType(dimensions, objIdOfArrayElementsType, arraySize,
                                                objIdParentScope)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                    std::uint64_t ptrSize,
                                                    ObjectId objIdParentScope) {
    return PreCondition()
               ? Factory().CreatePointerEntryType(objIdOfReferencedType, ptrSize, objIdParentScope)
               : 0;
}

ObjectId VCLIFactoryWrapper::GetEnumTable(std::string_view tableName, ObjectId objIdOfScopeParent) {
    return PreCondition() ? Factory().GetEnumTable(HostText(tableName), objIdOfScopeParent) : 0;
}

ObjectId VCLIFactoryWrapper::CreateEnumTable(std::string_view tableName,
                                             ObjectId objIdOfUnderlyingType,
                                             ObjectId objIdOfScopeParent, bool anonymous) {
    return PreCondition() ? Factory().CreateEnumTable(HostText(tableName), objIdOfUnderlyingType,
                                                      objIdOfScopeParent, anonymous)
                          : 0;
}

bool VCLIFactoryWrapper::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                       std::int32_t enumValue,
                                                       std::string_view enumText) {
    return PreCondition() ? Factory().AddEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue,
                                                                    HostText(enumText))
                          : false;
}

ObjectId VCLIFactoryWrapper::GetTypedefEntryType(std::string_view aliasName,
                                                 ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetTypedefEntryType(HostText(aliasName), objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateTypedefEntryType(std::string_view aliasName,
                                                    ObjectId objIdReferencedType,
                                                    ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateTypedefEntryType(HostText(aliasName),
                                                             objIdReferencedType, objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetGlobalData(std::string_view symName, ObjectId objIdOfScopeParent) {
    return PreCondition() ? Factory().GetGlobalData(HostText(symName), objIdOfScopeParent) : 0;
}

ObjectId VCLIFactoryWrapper::GetGlobalData(std::string_view symName) {
    return PreCondition() ? Factory().GetGlobalData(HostText(symName)) : 0;
}

ObjectId VCLIFactoryWrapper::GetGlobalDataByAddress(std::uint64_t address) {
    return PreCondition() ? Factory().GetGlobalDataByAddress(address) : 0;
}

ObjectId VCLIFactoryWrapper::CreateGlobalData(std::string_view symName, ObjectId objIdOfSymType,
                                              ObjectId objIdOfScopeParent, std::uint64_t address,
                                              bool addressIsValid, std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return PreCondition() ? Factory().CreateGlobalData(HostText(symName), objIdOfSymType, address,
                                                       objIdOfScopeParent, addressIsValid,
                                                       addressExtension, addressExtensionIsValid)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetFunction(std::string_view name, ObjectId functionType,
                                         ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetFunction(HostText(name), functionType, objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                                            ObjectId objIdParentScope, ObjectId objIdCompileUnit) {
    return PreCondition() ? Factory().CreateFunction(HostText(name), objIdFunctionType,
                                                     objIdParentScope, objIdCompileUnit, false)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                                            ObjectId objIdParentScope) {
    return PreCondition()
               ? Factory().CreateFunction(HostText(name), objIdFunctionType, objIdParentScope != 0)
               : 0;
}

ObjectId VCLIFactoryWrapper::GetFunctionType(ObjectId objIdOfReturnType,
                                             std::vector<ObjectId> vecParameterTypes,
                                             ObjectId objIdParentScope) {
    return PreCondition()
               ? Factory().GetFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope)
               : 0;
}

ObjectId VCLIFactoryWrapper::CreateFunctionType(ObjectId objIdOfReturnType,
                                                std::vector<ObjectId> vecParameterTypes,
                                                ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateFunctionType(objIdOfReturnType, vecParameterTypes,
                                                         objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                std::uint32_t bitSize, ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize,
                                                              objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::CreateOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                   std::uint32_t bitSize,
                                                   ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateOldBitfieldEntryType(objIdOfBaseType, bitOffset,
                                                                 bitSize, objIdParentScope)
                          : 0;
}

ObjectId VCLIFactoryWrapper::GetSectionEntryType(std::uint32_t size, ObjectId objIdParentScope) {
    return PreCondition() ? Factory().GetSectionEntryType(size, objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::CreateSectionEntryType(std::uint32_t size, ObjectId objIdParentScope) {
    return PreCondition() ? Factory().CreateSectionEntryType(size, objIdParentScope) : 0;
}

ObjectId VCLIFactoryWrapper::GetSegment(std::string_view segmentName) {
    return PreCondition() ? Factory().GetSegment(HostText(segmentName)) : 0;
}

ObjectId VCLIFactoryWrapper::CreateSegment(std::string_view segmentName, std::uint64_t address,
                                           std::uint64_t size) {
    return PreCondition() ? Factory().CreateSegment(HostText(segmentName), address, size) : 0;
}

void VCLIFactoryWrapper::SetTransformed(bool transformedDataModel) {
    if (PreCondition()) {
        Factory().SetTransformed(transformedDataModel);
    }
}

ObjectId sGetSymbolTableBaseEntryTypeObjId(VCLIFactoryWrapper& factory, ObjectId objIdGlobalScope,
                                           std::uint64_t byteSize) {
    const ObjectId existing = factory.GetUnknownEntryType(byteSize, objIdGlobalScope);
    return existing != 0 ? existing : factory.CreateUnknownEntryType(byteSize, objIdGlobalScope);
}

void __sToManagedFactoryString(std::string_view& out, const std::string& text) {
    out = text.c_str();
}

std::string DNetString(std::string_view narrowText) {
    return ToHostText(narrowText);
}

std::string GetDNetString(const char* narrowText) {
    return ToHostText(narrowText);
}

std::string GetCString(const std::string& hostText) {
    return hostText;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
