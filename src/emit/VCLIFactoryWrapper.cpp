#include "emit/VCLIFactoryWrapper.h"

#include "core/HostText.h"
#include "host/FactoryForCliClient.h"
#include "host/HostDataModel.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::Factory::FactoryForCliClient;

namespace {

/// Operations of the host that share their name with another one.
/// @{
constexpr ObjectId (HostDataModel::*sGetGlobalData)(const std::string&) =
    &HostDataModel::GetGlobalData;
constexpr ObjectId (HostDataModel::*sGetGlobalDataInScope)(const std::string&, ObjectId) =
    &HostDataModel::GetGlobalData;
constexpr ObjectId (HostDataModel::*sCreateFunction)(const std::string&, ObjectId, ObjectId,
                                                     ObjectId,
                                                     bool) = &HostDataModel::CreateFunction;
constexpr ObjectId (HostDataModel::*sCreateFunctionWithoutUnit)(
    const std::string&, ObjectId, bool) = &HostDataModel::CreateFunction;
/// @}

} // namespace

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

const std::string& VCLIFactoryWrapper::AsHostTakes(std::string_view narrowText) {
    AssignHostText(mHostText, narrowText);
    return mHostText;
}

template <typename Result, typename... Parameters, typename... Arguments>
Result VCLIFactoryWrapper::Forward(Result (HostDataModel::*operation)(Parameters...),
                                   const Arguments&... arguments) {
    if (!PreCondition()) {
        return Result();
    }
    return (mPrivate->mFactory.GetDataModel().*operation)(AsHostTakes(arguments)...);
}

void VCLIFactoryWrapper::DescribeImage(const DataModel::ImageDescription& image) {
    Forward(&HostDataModel::DescribeImage, image);
}

ObjectId VCLIFactoryWrapper::GetGlobalNamespace() {
    return Forward(&HostDataModel::GetGlobalNamespace);
}

ObjectId VCLIFactoryWrapper::GetNamespace(std::string_view namespaceName,
                                          ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetNamespace, namespaceName, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateNamespace(std::string_view namespaceName,
                                             ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateNamespace, namespaceName, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetBlockScope(std::string_view blockIdentifier,
                                           ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetBlockScope, blockIdentifier, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateBlockScope(std::string_view blockIdentifier,
                                              ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateBlockScope, blockIdentifier, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetCompileUnit(std::string_view compileUnitName) {
    return Forward(&HostDataModel::GetCompileUnit, compileUnitName);
}

ObjectId VCLIFactoryWrapper::CreateCompileUnit(std::string_view compileUnitName) {
    return Forward(&HostDataModel::CreateCompileUnit, compileUnitName);
}

ObjectId VCLIFactoryWrapper::GetOrCreateCompileUnit(std::string_view compileUnitName) {
    return Forward(&HostDataModel::GetOrCreateCompileUnit, compileUnitName);
}

ObjectId VCLIFactoryWrapper::GetBaseEntryType(BasicType basicType, std::uint64_t length,
                                              ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetBaseEntryType, GetManagedBasicType(basicType, length),
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateBaseEntryType(BasicType basicType, std::uint64_t length,
                                                 ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateBaseEntryType, GetManagedBasicType(basicType, length),
                   length, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetBaseEntryType(BasicTypes bt, ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetBaseEntryType, bt, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateBaseEntryType(std::uint64_t length, BasicTypes b,
                                                 ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateBaseEntryType, b, length, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                 ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetUnknownEntryType, sizeOfUnknownType, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                    ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateUnknownEntryType, sizeOfUnknownType, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetClassEntryType(std::string_view className,
                                               ObjectId objIdOfParentClass) {
    return Forward(&HostDataModel::GetClassEntryType, className, objIdOfParentClass);
}

ObjectId VCLIFactoryWrapper::GetStructEntryType(std::string_view structName,
                                                ObjectId objIdOfParentStruct) {
    return Forward(&HostDataModel::GetClassEntryType, structName, objIdOfParentStruct);
}

ObjectId VCLIFactoryWrapper::CreateClassEntryType(std::string_view className,
                                                  std::uint32_t classSize,
                                                  ObjectId objIdOfScopeParent,
                                                  std::vector<ObjectId> vecObjIdsOfInheritances,
                                                  bool anonymous, bool isStruct) {
    return Forward(&HostDataModel::CreateClassEntryType, className, classSize, objIdOfScopeParent,
                   vecObjIdsOfInheritances, anonymous, isStruct);
}

ObjectId VCLIFactoryWrapper::CreateStructEntryType(std::string_view structName,
                                                   std::uint32_t structSize,
                                                   ObjectId objIdOfScopeParent,
                                                   std::vector<ObjectId> vecObjIdsOfInheritances,
                                                   bool anonymous) {
    return Forward(&HostDataModel::CreateClassEntryType, structName, structSize, objIdOfScopeParent,
                   vecObjIdsOfInheritances, anonymous, true);
}

ObjectId VCLIFactoryWrapper::GetUnionEntryType(std::string_view unionName,
                                               ObjectId objIdOfParentClass) {
    return Forward(&HostDataModel::GetUnionEntryType, unionName, objIdOfParentClass);
}

ObjectId VCLIFactoryWrapper::CreateUnionEntryType(std::string_view unionName,
                                                  std::uint32_t unionSize,
                                                  ObjectId objIdOfParentClass, bool anonymous) {
    return Forward(&HostDataModel::CreateUnionEntryType, unionName, unionSize, objIdOfParentClass,
                   anonymous);
}

bool VCLIFactoryWrapper::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                      std::uint32_t byteOffset) {
    return Forward(&HostDataModel::AddBaseClass, objIdOfClass, objIdOfBaseClass, byteOffset);
}

ObjectId VCLIFactoryWrapper::CreateMemberData(std::string_view memberName,
                                              ObjectId objIdOfMemberType,
                                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                              std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return Forward(&HostDataModel::CreateMemberData, memberName, objIdOfMemberType,
                   objIdOfParentClass, byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId VCLIFactoryWrapper::CreateUnionMemberData(
    std::string_view memberName, ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
    std::uint32_t byteOffset, std::int16_t addressExtension, bool addressExtensionIsValid) {
    return Forward(&HostDataModel::CreateUnionMemberData, memberName, objIdOfMemberType,
                   objIdOfParentUnion, byteOffset, addressExtension, addressExtensionIsValid);
}

ObjectId VCLIFactoryWrapper::CreateMemberStaticData(std::string_view memberName,
                                                    ObjectId objIdOfMemberType,
                                                    ObjectId objIdOfParentClass,
                                                    std::uint64_t address, bool addressIsValid,
                                                    std::int16_t addressExtension,
                                                    bool addressExtensionIsValid) {
    return Forward(&HostDataModel::CreateMemberStaticData, memberName, objIdOfMemberType,
                   objIdOfParentClass, address, addressIsValid, addressExtension,
                   addressExtensionIsValid);
}

ObjectId VCLIFactoryWrapper::CreateBitfieldInUdt(
    std::string_view memberName, ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
    std::uint32_t byteOffset, std::uint32_t bitOffset, std::uint32_t bitSize,
    std::int16_t addressExtension, bool addressExtensionIsValid) {
    return Forward(&HostDataModel::CreateBitfieldInUdt, memberName, objIdOfBitfieldType,
                   ObjectIdOfParentUdt, byteOffset, bitOffset, bitSize, addressExtension,
                   addressExtensionIsValid);
}

ObjectId VCLIFactoryWrapper::CreateArrayEntryType(std::vector<std::uint32_t> dimensions,
                                                  ObjectId objIdOfArrayElementsType,
                                                  std::uint64_t arraySize,
                                                  ObjectId objIdParentScope) {
    return dimensions.empty() ? 0
                              : Forward(&HostDataModel::CreateArrayEntryType, dimensions,
                                        objIdOfArrayElementsType, arraySize, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                    std::uint64_t ptrSize,
                                                    ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreatePointerEntryType, objIdOfReferencedType, ptrSize,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetEnumTable(std::string_view tableName, ObjectId objIdOfScopeParent) {
    return Forward(&HostDataModel::GetEnumTable, tableName, objIdOfScopeParent);
}

ObjectId VCLIFactoryWrapper::CreateEnumTable(std::string_view tableName,
                                             ObjectId objIdOfUnderlyingType,
                                             ObjectId objIdOfScopeParent, bool anonymous) {
    return Forward(&HostDataModel::CreateEnumTable, tableName, objIdOfUnderlyingType,
                   objIdOfScopeParent, anonymous);
}

bool VCLIFactoryWrapper::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                       std::int32_t enumValue,
                                                       std::string_view enumText) {
    return Forward(&HostDataModel::AddEnumDescriptionToEnumTable, objIdOfEnumTable, enumValue,
                   enumText);
}

bool VCLIFactoryWrapper::AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                           std::int64_t enumValue,
                                                           std::string_view enumText) {
    return Forward(&HostDataModel::AddWideEnumDescriptionToEnumTable, objIdOfEnumTable, enumValue,
                   enumText);
}

ObjectId VCLIFactoryWrapper::GetTypedefEntryType(std::string_view aliasName,
                                                 ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetTypedefEntryType, aliasName, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateTypedefEntryType(std::string_view aliasName,
                                                    ObjectId objIdReferencedType,
                                                    ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateTypedefEntryType, aliasName, objIdReferencedType,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetGlobalData(std::string_view symName, ObjectId objIdOfScopeParent) {
    return Forward(sGetGlobalDataInScope, symName, objIdOfScopeParent);
}

ObjectId VCLIFactoryWrapper::GetGlobalData(std::string_view symName) {
    return Forward(sGetGlobalData, symName);
}

ObjectId VCLIFactoryWrapper::GetGlobalDataByAddress(std::uint64_t address) {
    return Forward(&HostDataModel::GetGlobalDataByAddress, address);
}

ObjectId VCLIFactoryWrapper::CreateGlobalData(std::string_view symName, ObjectId objIdOfSymType,
                                              ObjectId objIdOfScopeParent, std::uint64_t address,
                                              bool addressIsValid, std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return Forward(&HostDataModel::CreateGlobalData, symName, objIdOfSymType, address,
                   objIdOfScopeParent, addressIsValid, addressExtension, addressExtensionIsValid);
}

ObjectId VCLIFactoryWrapper::GetFunction(std::string_view name, ObjectId functionType,
                                         ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetFunction, name, functionType, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                                            ObjectId objIdParentScope, ObjectId objIdCompileUnit) {
    return Forward(sCreateFunction, name, objIdFunctionType, objIdParentScope, objIdCompileUnit,
                   false);
}

ObjectId VCLIFactoryWrapper::CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                                            ObjectId objIdParentScope) {
    return Forward(sCreateFunctionWithoutUnit, name, objIdFunctionType, objIdParentScope != 0);
}

ObjectId VCLIFactoryWrapper::GetFunctionType(ObjectId objIdOfReturnType,
                                             std::vector<ObjectId> vecParameterTypes,
                                             ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetFunctionType, objIdOfReturnType, vecParameterTypes,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateFunctionType(ObjectId objIdOfReturnType,
                                                std::vector<ObjectId> vecParameterTypes,
                                                ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateFunctionType, objIdOfReturnType, vecParameterTypes,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                std::uint32_t bitSize, ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetOldBitfieldEntryType, objIdOfBaseType, bitOffset, bitSize,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                   std::uint32_t bitSize,
                                                   ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateOldBitfieldEntryType, objIdOfBaseType, bitOffset, bitSize,
                   objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetSectionEntryType(std::uint32_t size, ObjectId objIdParentScope) {
    return Forward(&HostDataModel::GetSectionEntryType, size, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::CreateSectionEntryType(std::uint32_t size, ObjectId objIdParentScope) {
    return Forward(&HostDataModel::CreateSectionEntryType, size, objIdParentScope);
}

ObjectId VCLIFactoryWrapper::GetSegment(std::string_view segmentName) {
    return Forward(&HostDataModel::GetSegment, segmentName);
}

ObjectId VCLIFactoryWrapper::CreateSegment(std::string_view segmentName, std::uint64_t address,
                                           std::uint64_t size) {
    return Forward(&HostDataModel::CreateSegment, segmentName, address, size);
}

void VCLIFactoryWrapper::SetTransformed(bool transformedDataModel) {
    Forward(&HostDataModel::SetTransformed, transformedDataModel);
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
