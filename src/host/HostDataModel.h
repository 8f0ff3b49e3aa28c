// The contract between the reader and the data model of its host: one pure virtual operation for
// each operation of the factory. A host implements it to receive a delivery in its own model, makes
// it current with `CurrentDataModel`, and calls `VDWARFReader::Read`.
#pragma once

#include "../core/Export.h"
#include "../host/BasicTypes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel::Factory {

/// Names one object of a data model. Given out by the model, passed back unchanged; 0 means none.
using ObjectId = std::uint64_t;

/// A data model as the reader sees it.
///
/// Create operations make an object and return its identifier, which is not 0 and stays valid for
/// the whole read; 0 tells the reader that the object could not be made, and the read goes on
/// without it. Get operations return the identifier of an existing object of that key, or 0. The
/// reader calls a Create operation only after the Get operation of the same key, where there is
/// one, gave 0.
///
/// All texts are valid UTF-8. `objIdParentScope` and its like name the enclosing namespace, block
/// scope, class, compile unit or other scope object. All calls come from the thread of
/// `VDWARFReader::Read`. An exception passes through the reader to the caller of `Read`; what was
/// delivered until then stays delivered.
///
/// Order of calls: a scope before what lies in it, a type before the object that uses it, a class
/// before its members (whose order is that of delivery), an enum table before its descriptions, and
/// the data of the symbol table last. The operations marked spare are never called by the reader.
class BRINDLE_EXPORT HostDataModel {
public:
    HostDataModel() = default;
    HostDataModel(const HostDataModel&) = delete;
    HostDataModel& operator=(const HostDataModel&) = delete;
    HostDataModel(HostDataModel&&) = delete;
    HostDataModel& operator=(HostDataModel&&) = delete;
    virtual ~HostDataModel() = default;

    /// @name Scopes
    /// @{

    /// The namespace that encloses everything. Never 0 in a working model.
    virtual ObjectId GetGlobalNamespace() = 0;
    virtual ObjectId GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) = 0;
    virtual ObjectId CreateNamespace(const std::string& namespaceName,
                                     ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId GetBlockScope(const std::string& blockIdentifier,
                                   ObjectId objIdParentScope) = 0;
    virtual ObjectId CreateBlockScope(const std::string& blockIdentifier,
                                      ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId GetCompileUnit(const std::string& compileUnitName) = 0;
    virtual ObjectId CreateCompileUnit(const std::string& compileUnitName) = 0;
    /// Spare.
    virtual ObjectId GetOrCreateCompileUnit(const std::string& compileUnitName) = 0;

    /// @}
    /// @name Scalar and unknown types
    /// @{

    virtual ObjectId GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) = 0;
    /// @param length size in bytes, also where the value doesn't express it
    virtual ObjectId CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                         ObjectId objIdParentScope) = 0;
    /// The type of which nothing is known but its size in bytes; 0 is a size like any other.
    virtual ObjectId GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                         ObjectId objIdParentScope) = 0;
    virtual ObjectId CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                            ObjectId objIdParentScope) = 0;

    /// @}
    /// @name Classes, structures, unions and their members
    /// @{

    /// Spare. Finds classes and structures alike.
    virtual ObjectId GetClassEntryType(const std::string& className,
                                       ObjectId objIdOfParentClass) = 0;
    /// @param classSize size in bytes
    /// @param vecObjIdsOfInheritances base classes at offset 0; usually empty, since `AddBaseClass`
    ///        adds them with their offsets
    /// @param anonymous the name was made by the reader
    /// @param isStruct declared as structure, not as class
    virtual ObjectId CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                          ObjectId objIdOfScopeParent,
                                          const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                          bool anonymous, bool isStruct) = 0;
    /// Spare.
    virtual ObjectId GetUnionEntryType(const std::string& unionName,
                                       ObjectId objIdOfParentClass) = 0;
    virtual ObjectId CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                          ObjectId objIdOfParentClass, bool anonymous) = 0;
    /// @param byteOffset offset of the base class in the class, in bytes
    /// @return false if the base class could not be added
    virtual bool AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                              std::uint32_t byteOffset) = 0;
    /// @param byteOffset offset in the class, in bytes
    virtual ObjectId CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                      std::int16_t addressExtension,
                                      bool addressExtensionIsValid) = 0;
    /// @param byteOffset offset in the union, in bytes
    virtual ObjectId CreateUnionMemberData(const std::string& memberName,
                                           ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
                                           std::uint32_t byteOffset, std::int16_t addressExtension,
                                           bool addressExtensionIsValid) = 0;
    /// Spare.
    virtual ObjectId CreateMemberStaticData(const std::string& memberName,
                                            ObjectId objIdOfMemberType, ObjectId objIdOfParentClass,
                                            std::uint64_t address, bool addressIsValid,
                                            std::int16_t addressExtension,
                                            bool addressExtensionIsValid) = 0;
    /// A bit field of a class, structure or union.
    /// @param byteOffset offset of the storage unit, in bytes
    /// @param bitOffset offset of the field in its storage unit, in bits
    /// @param bitSize width in bits
    virtual ObjectId CreateBitfieldInUdt(const std::string& memberName,
                                         ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
                                         std::uint32_t byteOffset, std::uint32_t bitOffset,
                                         std::uint32_t bitSize, std::int16_t addressExtension,
                                         bool addressExtensionIsValid) = 0;

    /// @}
    /// @name Derived types
    /// @{

    /// @param dimensions number of elements of each dimension, outermost first; never empty
    /// @param arraySize size of the whole array in bytes
    virtual ObjectId CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                          ObjectId objIdOfArrayElementsType,
                                          std::uint64_t arraySize, ObjectId objIdParentScope) = 0;
    /// @param ptrSize size of the pointer in bytes
    virtual ObjectId CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                            ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) = 0;
    virtual ObjectId CreateEnumTable(const std::string& tableName, ObjectId objIdOfUnderlyingType,
                                     ObjectId objIdOfScopeParent, bool anonymous) = 0;
    /// @return false if the description could not be added
    virtual bool AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                               const std::string& enumText) = 0;
    /// Spare.
    virtual ObjectId GetTypedefEntryType(const std::string& aliasName,
                                         ObjectId objIdParentScope) = 0;
    virtual ObjectId CreateTypedefEntryType(const std::string& aliasName,
                                            ObjectId objIdReferencedType,
                                            ObjectId objIdParentScope) = 0;

    /// @}
    /// @name Data
    /// @{

    /// What an earlier `CreateGlobalData` made under this name in this scope.
    virtual ObjectId GetGlobalData(const std::string& symName, ObjectId objIdOfScopeParent) = 0;
    /// What an earlier `CreateGlobalData` made under this name in any scope.
    virtual ObjectId GetGlobalData(const std::string& symName) = 0;
    /// What an earlier `CreateGlobalData` made at this address.
    virtual ObjectId GetGlobalDataByAddress(std::uint64_t address) = 0;
    /// A variable with a static address.
    virtual ObjectId CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                      std::uint64_t address, ObjectId objIdOfScopeParent,
                                      bool addressIsValid, std::int16_t addressExtension,
                                      bool addressExtensionIsValid) = 0;

    /// @}
    /// @name Functions
    /// @{

    /// Spare.
    virtual ObjectId GetFunction(const std::string& name, ObjectId functionType,
                                 ObjectId objIdParentScope) = 0;
    /// @param flag always false
    virtual ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                    ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                    bool flag) = 0;
    /// Spare.
    /// @param hasParentScope the caller named a scope
    virtual ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                    bool hasParentScope) = 0;
    /// Spare.
    virtual ObjectId GetFunctionType(ObjectId objIdOfReturnType,
                                     const std::vector<ObjectId>& vecParameterTypes,
                                     ObjectId objIdParentScope) = 0;
    virtual ObjectId CreateFunctionType(ObjectId objIdOfReturnType,
                                        const std::vector<ObjectId>& vecParameterTypes,
                                        ObjectId objIdParentScope) = 0;

    /// @}
    /// @name Spare types and segments
    /// @{

    /// Spare. A bit field as a type of its own.
    virtual ObjectId GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                             std::uint64_t bitSize, ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId CreateOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                std::uint64_t bitSize,
                                                ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) = 0;
    /// Spare.
    virtual ObjectId GetSegment(const std::string& segmentName) = 0;
    /// Spare.
    virtual ObjectId CreateSegment(const std::string& segmentName, std::uint64_t address,
                                   std::uint64_t size) = 0;
    /// Spare. Tells the model that its objects were transformed after the read.
    virtual void SetTransformed(bool transformedDataModel) = 0;

    /// @}
};

} // namespace Tessel::Norn::Brindle::DataModel::Factory
