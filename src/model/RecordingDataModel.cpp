#include "model/RecordingDataModel.h"

#include <utility>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

void SetValue(RecordedValue& value, std::uint64_t number) {
    value.emplace<std::uint64_t>(number);
}
void SetValue(RecordedValue& value, std::uint32_t number) {
    value.emplace<std::uint64_t>(number);
}
void SetValue(RecordedValue& value, std::int64_t number) {
    value.emplace<std::int64_t>(number);
}
void SetValue(RecordedValue& value, std::int32_t number) {
    value.emplace<std::int64_t>(number);
}
void SetValue(RecordedValue& value, std::int16_t number) {
    value.emplace<std::int64_t>(number);
}
void SetValue(RecordedValue& value, BasicTypes basicType) {
    value.emplace<std::int64_t>(static_cast<std::int32_t>(basicType));
}
void SetValue(RecordedValue& value, bool flag) {
    value.emplace<bool>(flag);
}
void SetValue(RecordedValue& value, const std::string& text) {
    value.emplace<std::string>(text);
}
template <typename Number>
void SetValue(RecordedValue& value, const std::vector<Number>& list) {
    value.emplace<std::vector<std::uint64_t>>(list.begin(), list.end());
}

void AppendArguments(std::vector<RecordedArgument>& /*arguments*/) {}

template <typename First, typename... Others>
void AppendArguments(std::vector<RecordedArgument>& arguments, std::string_view name,
                     const First& value, const Others&... others) {
    RecordedArgument& added = arguments.emplace_back();
    added.name = name;
    SetValue(added.value, value);
    AppendArguments(arguments, others...);
}

/// Arguments from alternating names and values.
template <typename... NamesAndValues>
std::vector<RecordedArgument> Arguments(const NamesAndValues&... namesAndValues) {
    std::vector<RecordedArgument> arguments;
    arguments.reserve(sizeof...(namesAndValues) / 2);
    AppendArguments(arguments, namesAndValues...);
    return arguments;
}

} // namespace

RecordingDataModel::RecordingDataModel(Factory::HostDataModel& next)
    : mNext(next) {}

RecordingDataModel::RecordingDataModel(Factory::HostDataModel& next, Sink sink)
    : mNext(next)
    , mSink(std::move(sink)) {}

void RecordingDataModel::Record(RecordedCall call) {
    if (mSink) {
        mSink(call);
    } else {
        mCalls.push_back(std::move(call));
    }
}

template <typename Result>
Result RecordingDataModel::Recorded(std::string_view operation, Result result,
                                    std::vector<RecordedArgument> arguments) {
    Record({operation, std::move(arguments), result});
    return result;
}

ObjectId RecordingDataModel::GetGlobalNamespace() {
    return Recorded("GetGlobalNamespace", mNext.GetGlobalNamespace(), Arguments());
}

ObjectId RecordingDataModel::GetNamespace(const std::string& namespaceName,
                                          ObjectId objIdParentScope) {
    return Recorded(
        "GetNamespace", mNext.GetNamespace(namespaceName, objIdParentScope),
        Arguments("namespaceName", namespaceName, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateNamespace(const std::string& namespaceName,
                                             ObjectId objIdParentScope) {
    return Recorded(
        "CreateNamespace", mNext.CreateNamespace(namespaceName, objIdParentScope),
        Arguments("namespaceName", namespaceName, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetBlockScope(const std::string& blockIdentifier,
                                           ObjectId objIdParentScope) {
    return Recorded(
        "GetBlockScope", mNext.GetBlockScope(blockIdentifier, objIdParentScope),
        Arguments("blockIdentifier", blockIdentifier, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateBlockScope(const std::string& blockIdentifier,
                                              ObjectId objIdParentScope) {
    return Recorded(
        "CreateBlockScope", mNext.CreateBlockScope(blockIdentifier, objIdParentScope),
        Arguments("blockIdentifier", blockIdentifier, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetCompileUnit(const std::string& compileUnitName) {
    return Recorded("GetCompileUnit", mNext.GetCompileUnit(compileUnitName),
                    Arguments("compileUnitName", compileUnitName));
}

ObjectId RecordingDataModel::CreateCompileUnit(const std::string& compileUnitName) {
    return Recorded("CreateCompileUnit", mNext.CreateCompileUnit(compileUnitName),
                    Arguments("compileUnitName", compileUnitName));
}

ObjectId RecordingDataModel::GetOrCreateCompileUnit(const std::string& compileUnitName) {
    return Recorded("GetOrCreateCompileUnit", mNext.GetOrCreateCompileUnit(compileUnitName),
                    Arguments("compileUnitName", compileUnitName));
}

ObjectId RecordingDataModel::GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) {
    return Recorded("GetBaseEntryType", mNext.GetBaseEntryType(basicType, objIdParentScope),
                    Arguments("basicType", basicType, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                                 ObjectId objIdParentScope) {
    return Recorded(
        "CreateBaseEntryType", mNext.CreateBaseEntryType(basicType, length, objIdParentScope),
        Arguments("basicType", basicType, "length", length, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                 ObjectId objIdParentScope) {
    return Recorded(
        "GetUnknownEntryType", mNext.GetUnknownEntryType(sizeOfUnknownType, objIdParentScope),
        Arguments("sizeOfUnknownType", sizeOfUnknownType, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                                    ObjectId objIdParentScope) {
    return Recorded(
        "CreateUnknownEntryType", mNext.CreateUnknownEntryType(sizeOfUnknownType, objIdParentScope),
        Arguments("sizeOfUnknownType", sizeOfUnknownType, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetClassEntryType(const std::string& className,
                                               ObjectId objIdOfParentClass) {
    return Recorded("GetClassEntryType", mNext.GetClassEntryType(className, objIdOfParentClass),
                    Arguments("className", className, "objIdOfParentClass", objIdOfParentClass));
}

ObjectId RecordingDataModel::CreateClassEntryType(
    const std::string& className, std::uint32_t classSize, ObjectId objIdOfScopeParent,
    const std::vector<ObjectId>& vecObjIdsOfInheritances, bool anonymous, bool isStruct) {
    return Recorded("CreateClassEntryType",
                    mNext.CreateClassEntryType(className, classSize, objIdOfScopeParent,
                                               vecObjIdsOfInheritances, anonymous, isStruct),
                    Arguments("className", className, "classSize", classSize, "objIdOfScopeParent",
                              objIdOfScopeParent, "vecObjIdsOfInheritances",
                              vecObjIdsOfInheritances, "anonymous", anonymous, "isStruct",
                              isStruct));
}

ObjectId RecordingDataModel::GetUnionEntryType(const std::string& unionName,
                                               ObjectId objIdOfParentClass) {
    return Recorded("GetUnionEntryType", mNext.GetUnionEntryType(unionName, objIdOfParentClass),
                    Arguments("unionName", unionName, "objIdOfParentClass", objIdOfParentClass));
}

ObjectId RecordingDataModel::CreateUnionEntryType(const std::string& unionName,
                                                  std::uint32_t unionSize,
                                                  ObjectId objIdOfParentClass, bool anonymous) {
    return Recorded("CreateUnionEntryType",
                    mNext.CreateUnionEntryType(unionName, unionSize, objIdOfParentClass, anonymous),
                    Arguments("unionName", unionName, "unionSize", unionSize, "objIdOfParentClass",
                              objIdOfParentClass, "anonymous", anonymous));
}

bool RecordingDataModel::AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                                      std::uint32_t byteOffset) {
    return Recorded("AddBaseClass", mNext.AddBaseClass(objIdOfClass, objIdOfBaseClass, byteOffset),
                    Arguments("objIdOfClass", objIdOfClass, "objIdOfBaseClass", objIdOfBaseClass,
                              "byteOffset", byteOffset));
}

ObjectId RecordingDataModel::CreateMemberData(const std::string& memberName,
                                              ObjectId objIdOfMemberType,
                                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                              std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return Recorded("CreateMemberData",
                    mNext.CreateMemberData(memberName, objIdOfMemberType, objIdOfParentClass,
                                           byteOffset, addressExtension, addressExtensionIsValid),
                    Arguments("memberName", memberName, "objIdOfMemberType", objIdOfMemberType,
                              "objIdOfParentClass", objIdOfParentClass, "byteOffset", byteOffset,
                              "addressExtension", addressExtension, "addressExtensionIsValid",
                              addressExtensionIsValid));
}

ObjectId RecordingDataModel::CreateUnionMemberData(
    const std::string& memberName, ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
    std::uint32_t byteOffset, std::int16_t addressExtension, bool addressExtensionIsValid) {
    return Recorded("CreateUnionMemberData",
                    mNext.CreateUnionMemberData(memberName, objIdOfMemberType, objIdOfParentUnion,
                                                byteOffset, addressExtension,
                                                addressExtensionIsValid),
                    Arguments("memberName", memberName, "objIdOfMemberType", objIdOfMemberType,
                              "objIdOfParentUnion", objIdOfParentUnion, "byteOffset", byteOffset,
                              "addressExtension", addressExtension, "addressExtensionIsValid",
                              addressExtensionIsValid));
}

ObjectId RecordingDataModel::CreateMemberStaticData(const std::string& memberName,
                                                    ObjectId objIdOfMemberType,
                                                    ObjectId objIdOfParentClass,
                                                    std::uint64_t address, bool addressIsValid,
                                                    std::int16_t addressExtension,
                                                    bool addressExtensionIsValid) {
    return Recorded(
        "CreateMemberStaticData",
        mNext.CreateMemberStaticData(memberName, objIdOfMemberType, objIdOfParentClass, address,
                                     addressIsValid, addressExtension, addressExtensionIsValid),
        Arguments("memberName", memberName, "objIdOfMemberType", objIdOfMemberType,
                  "objIdOfParentClass", objIdOfParentClass, "address", address, "addressIsValid",
                  addressIsValid, "addressExtension", addressExtension, "addressExtensionIsValid",
                  addressExtensionIsValid));
}

ObjectId RecordingDataModel::CreateBitfieldInUdt(
    const std::string& memberName, ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
    std::uint32_t byteOffset, std::uint32_t bitOffset, std::uint32_t bitSize,
    std::int16_t addressExtension, bool addressExtensionIsValid) {
    return Recorded(
        "CreateBitfieldInUdt",
        mNext.CreateBitfieldInUdt(memberName, objIdOfBitfieldType, ObjectIdOfParentUdt, byteOffset,
                                  bitOffset, bitSize, addressExtension, addressExtensionIsValid),
        Arguments("memberName", memberName, "objIdOfBitfieldType", objIdOfBitfieldType,
                  "ObjectIdOfParentUdt", ObjectIdOfParentUdt, "byteOffset", byteOffset, "bitOffset",
                  bitOffset, "bitSize", bitSize, "addressExtension", addressExtension,
                  "addressExtensionIsValid", addressExtensionIsValid));
}

ObjectId RecordingDataModel::CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                                  ObjectId objIdOfArrayElementsType,
                                                  std::uint64_t arraySize,
                                                  ObjectId objIdParentScope) {
    return Recorded("CreateArrayEntryType",
                    mNext.CreateArrayEntryType(dimensions, objIdOfArrayElementsType, arraySize,
                                               objIdParentScope),
                    Arguments("dimensions", dimensions, "objIdOfArrayElementsType",
                              objIdOfArrayElementsType, "arraySize", arraySize, "objIdParentScope",
                              objIdParentScope));
}

ObjectId RecordingDataModel::CreatePointerEntryType(ObjectId objIdOfReferencedType,
                                                    std::uint64_t ptrSize,
                                                    ObjectId objIdParentScope) {
    return Recorded("CreatePointerEntryType",
                    mNext.CreatePointerEntryType(objIdOfReferencedType, ptrSize, objIdParentScope),
                    Arguments("objIdOfReferencedType", objIdOfReferencedType, "ptrSize", ptrSize,
                              "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetEnumTable(const std::string& tableName,
                                          ObjectId objIdOfScopeParent) {
    return Recorded("GetEnumTable", mNext.GetEnumTable(tableName, objIdOfScopeParent),
                    Arguments("tableName", tableName, "objIdOfScopeParent", objIdOfScopeParent));
}

ObjectId RecordingDataModel::CreateEnumTable(const std::string& tableName,
                                             ObjectId objIdOfUnderlyingType,
                                             ObjectId objIdOfScopeParent, bool anonymous) {
    return Recorded(
        "CreateEnumTable",
        mNext.CreateEnumTable(tableName, objIdOfUnderlyingType, objIdOfScopeParent, anonymous),
        Arguments("tableName", tableName, "objIdOfUnderlyingType", objIdOfUnderlyingType,
                  "objIdOfScopeParent", objIdOfScopeParent, "anonymous", anonymous));
}

bool RecordingDataModel::AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                       std::int32_t enumValue,
                                                       const std::string& enumText) {
    return Recorded("AddEnumDescriptionToEnumTable",
                    mNext.AddEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue, enumText),
                    Arguments("objIdOfEnumTable", objIdOfEnumTable, "enumValue", enumValue,
                              "enumText", enumText));
}

bool RecordingDataModel::AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                           std::int64_t enumValue,
                                                           const std::string& enumText) {
    return Recorded("AddWideEnumDescriptionToEnumTable",
                    mNext.AddWideEnumDescriptionToEnumTable(objIdOfEnumTable, enumValue, enumText),
                    Arguments("objIdOfEnumTable", objIdOfEnumTable, "enumValue", enumValue,
                              "enumText", enumText));
}

ObjectId RecordingDataModel::GetTypedefEntryType(const std::string& aliasName,
                                                 ObjectId objIdParentScope) {
    return Recorded("GetTypedefEntryType", mNext.GetTypedefEntryType(aliasName, objIdParentScope),
                    Arguments("aliasName", aliasName, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateTypedefEntryType(const std::string& aliasName,
                                                    ObjectId objIdReferencedType,
                                                    ObjectId objIdParentScope) {
    return Recorded("CreateTypedefEntryType",
                    mNext.CreateTypedefEntryType(aliasName, objIdReferencedType, objIdParentScope),
                    Arguments("aliasName", aliasName, "objIdReferencedType", objIdReferencedType,
                              "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetGlobalData(const std::string& symName,
                                           ObjectId objIdOfScopeParent) {
    return Recorded("GetGlobalData", mNext.GetGlobalData(symName, objIdOfScopeParent),
                    Arguments("symName", symName, "objIdOfScopeParent", objIdOfScopeParent));
}

ObjectId RecordingDataModel::GetGlobalData(const std::string& symName) {
    return Recorded("GetGlobalData", mNext.GetGlobalData(symName), Arguments("symName", symName));
}

ObjectId RecordingDataModel::GetGlobalDataByAddress(std::uint64_t address) {
    return Recorded("GetGlobalDataByAddress", mNext.GetGlobalDataByAddress(address),
                    Arguments("address", address));
}

ObjectId RecordingDataModel::CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                              std::uint64_t address, ObjectId objIdOfScopeParent,
                                              bool addressIsValid, std::int16_t addressExtension,
                                              bool addressExtensionIsValid) {
    return Recorded("CreateGlobalData",
                    mNext.CreateGlobalData(symName, objIdOfSymType, address, objIdOfScopeParent,
                                           addressIsValid, addressExtension,
                                           addressExtensionIsValid),
                    Arguments("symName", symName, "objIdOfSymType", objIdOfSymType, "address",
                              address, "objIdOfScopeParent", objIdOfScopeParent, "addressIsValid",
                              addressIsValid, "addressExtension", addressExtension,
                              "addressExtensionIsValid", addressExtensionIsValid));
}

ObjectId RecordingDataModel::GetFunction(const std::string& name, ObjectId functionType,
                                         ObjectId objIdParentScope) {
    return Recorded("GetFunction", mNext.GetFunction(name, functionType, objIdParentScope),
                    Arguments("name", name, "functionType", functionType, "objIdParentScope",
                              objIdParentScope));
}

ObjectId RecordingDataModel::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                            ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                            bool flag) {
    return Recorded(
        "CreateFunction",
        mNext.CreateFunction(name, objIdFunctionType, objIdParentScope, objIdCompileUnit, flag),
        Arguments("name", name, "objIdFunctionType", objIdFunctionType, "objIdParentScope",
                  objIdParentScope, "objIdCompileUnit", objIdCompileUnit, "flag", flag));
}

ObjectId RecordingDataModel::CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                            bool hasParentScope) {
    return Recorded("CreateFunction", mNext.CreateFunction(name, objIdFunctionType, hasParentScope),
                    Arguments("name", name, "objIdFunctionType", objIdFunctionType,
                              "hasParentScope", hasParentScope));
}

ObjectId RecordingDataModel::GetFunctionType(ObjectId objIdOfReturnType,
                                             const std::vector<ObjectId>& vecParameterTypes,
                                             ObjectId objIdParentScope) {
    return Recorded("GetFunctionType",
                    mNext.GetFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope),
                    Arguments("objIdOfReturnType", objIdOfReturnType, "vecParameterTypes",
                              vecParameterTypes, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateFunctionType(ObjectId objIdOfReturnType,
                                                const std::vector<ObjectId>& vecParameterTypes,
                                                ObjectId objIdParentScope) {
    return Recorded(
        "CreateFunctionType",
        mNext.CreateFunctionType(objIdOfReturnType, vecParameterTypes, objIdParentScope),
        Arguments("objIdOfReturnType", objIdOfReturnType, "vecParameterTypes", vecParameterTypes,
                  "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                     std::int32_t bitOffset, std::uint64_t bitSize,
                                                     ObjectId objIdParentScope) {
    return Recorded(
        "GetOldBitfieldEntryType",
        mNext.GetOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize, objIdParentScope),
        Arguments("objIdOfBaseType", objIdOfBaseType, "bitOffset", bitOffset, "bitSize", bitSize,
                  "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateOldBitfieldEntryType(ObjectId objIdOfBaseType,
                                                        std::int32_t bitOffset,
                                                        std::uint64_t bitSize,
                                                        ObjectId objIdParentScope) {
    return Recorded(
        "CreateOldBitfieldEntryType",
        mNext.CreateOldBitfieldEntryType(objIdOfBaseType, bitOffset, bitSize, objIdParentScope),
        Arguments("objIdOfBaseType", objIdOfBaseType, "bitOffset", bitOffset, "bitSize", bitSize,
                  "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return Recorded("GetSectionEntryType", mNext.GetSectionEntryType(size, objIdParentScope),
                    Arguments("size", size, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) {
    return Recorded("CreateSectionEntryType", mNext.CreateSectionEntryType(size, objIdParentScope),
                    Arguments("size", size, "objIdParentScope", objIdParentScope));
}

ObjectId RecordingDataModel::GetSegment(const std::string& segmentName) {
    return Recorded("GetSegment", mNext.GetSegment(segmentName),
                    Arguments("segmentName", segmentName));
}

ObjectId RecordingDataModel::CreateSegment(const std::string& segmentName, std::uint64_t address,
                                           std::uint64_t size) {
    return Recorded("CreateSegment", mNext.CreateSegment(segmentName, address, size),
                    Arguments("segmentName", segmentName, "address", address, "size", size));
}

void RecordingDataModel::SetTransformed(bool transformedDataModel) {
    mNext.SetTransformed(transformedDataModel);
    Record({"SetTransformed", Arguments("transformedDataModel", transformedDataModel), {}});
}

} // namespace Tessel::Norn::Brindle::DataModel
