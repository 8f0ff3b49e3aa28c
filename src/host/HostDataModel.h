// The contract between the reader and the data model of its host: one pure virtual operation for
// each operation of the factory. A host implements it to receive a delivery in its own model, makes
// it current with `CurrentDataModel`, and calls `VDWARFReader::Read`.
#pragma once

#include "../core/Export.h"
#include "../host/BasicTypes.h"
#include "../host/ImageDescription.h"
#include "../host/ObjectId.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel::Factory {

/// The identifiers of data models, as the contract names them.
using ObjectId = Brindle::DataModel::ObjectId;

/// A data model as the reader sees it.
///
/// Create operations make an object and return its identifier, which is not 0 and stays valid for
/// the whole read; 0 means that the object could not be made, and the read goes on without it. Get
/// operations return the identifier of an existing object of that key, or 0.
///
/// Namespaces, unknown types and the void type of the global namespace are made once for each key:
/// the reader asks with the Get operation and calls Create only if that gave 0. A variable is made
/// under a name that is free in its scope. For everything else the reader calls Create without
/// asking: base types of one value in one scope come as often as the file lists them, such as `int`
/// and `long` of one size, and so do all objects of one name. A model must not take their keys for
/// unique.
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

    /// Describes the file by its headers, before anything is delivered; not called for a file whose
    /// headers can't be read. A model that has no use for it doesn't override it.
    virtual void DescribeImage(const ImageDescription& /*image*/) {}

    /// @name Scopes
    /// @{

    /// The namespace that encloses everything. A model must not return 0: the reader would deliver
    /// no symbols of the symbol table.
    virtual ObjectId GetGlobalNamespace() = 0;
    /// The namespace of this name in this scope, which an earlier `CreateNamespace` made.
    virtual ObjectId GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) = 0;
    /// Makes a namespace.
    virtual ObjectId CreateNamespace(const std::string& namespaceName,
                                     ObjectId objIdParentScope) = 0;
    /// Spare. The block of this name in this scope.
    virtual ObjectId GetBlockScope(const std::string& blockIdentifier,
                                   ObjectId objIdParentScope) = 0;
    /// Makes the scope of a lexical block (DWARF 4, section 3.5).
    /// @param blockIdentifier a name that the reader makes, or that of the block
    virtual ObjectId CreateBlockScope(const std::string& blockIdentifier,
                                      ObjectId objIdParentScope) = 0;
    /// Spare. The compile unit of this name.
    virtual ObjectId GetCompileUnit(const std::string& compileUnitName) = 0;
    /// Makes a compile unit. Units of one name and directory are delivered once, unless they
    /// overlap in a damaged file.
    /// @param compileUnitName the name of its source as the compiler wrote it
    virtual ObjectId CreateCompileUnit(const std::string& compileUnitName) = 0;
    /// Spare. The compile unit of this name, made if there is none.
    virtual ObjectId GetOrCreateCompileUnit(const std::string& compileUnitName) = 0;

    /// @}
    /// @name Scalar and unknown types
    /// @{

    /// The scalar type of this value in this scope, which an earlier `CreateBaseEntryType` made;
    /// any one if there are several. The reader asks only for void in the global namespace.
    virtual ObjectId GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) = 0;
    /// Makes a scalar type, even if this scope has one of this value already.
    /// @param length size in bytes, even if the value implies it; 0 for void
    virtual ObjectId CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                         ObjectId objIdParentScope) = 0;
    /// The type of this size and scope that an earlier `CreateUnknownEntryType` made; 0 is a size
    /// like any other.
    virtual ObjectId GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                         ObjectId objIdParentScope) = 0;
    /// Makes a type of which nothing is known but its size in bytes.
    virtual ObjectId CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                            ObjectId objIdParentScope) = 0;

    /// @}
    /// @name Classes, structures, unions and their members
    /// @{

    /// Spare. The class or structure of this name in this scope.
    virtual ObjectId GetClassEntryType(const std::string& className,
                                       ObjectId objIdOfParentClass) = 0;
    /// Makes a class or structure, still without base classes and members.
    /// @param classSize size in bytes
    /// @param vecObjIdsOfInheritances base classes at offset 0; usually empty, since `AddBaseClass`
    ///        adds them with their offsets
    /// @param anonymous the name was made by the reader
    /// @param isStruct declared as structure, not as class
    virtual ObjectId CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                          ObjectId objIdOfScopeParent,
                                          const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                          bool anonymous, bool isStruct) = 0;
    /// Spare. The union of this name in this scope.
    virtual ObjectId GetUnionEntryType(const std::string& unionName,
                                       ObjectId objIdOfParentClass) = 0;
    /// Makes a union, still without members.
    /// @param unionSize size in bytes
    /// @param objIdOfParentClass the enclosing scope, of whatever kind
    /// @param anonymous the name was made by the reader
    virtual ObjectId CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                          ObjectId objIdOfParentClass, bool anonymous) = 0;
    /// Adds a base class to a class or structure, after those that it has.
    /// @param byteOffset offset of the base class in the class, in bytes
    /// @return false if the base class could not be added
    virtual bool AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                              std::uint32_t byteOffset) = 0;
    /// Adds a member to a class or structure, after those that it has.
    /// @param byteOffset offset in the class, in bytes
    /// @param addressExtension always 0
    /// @param addressExtensionIsValid always false
    virtual ObjectId CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                      ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                                      std::int16_t addressExtension,
                                      bool addressExtensionIsValid) = 0;
    /// Adds a member to a union. In the classic reading, a bit field in a union comes as a member
    /// like any other.
    /// @param byteOffset offset in the union, in bytes
    /// @param addressExtension always 0
    /// @param addressExtensionIsValid always false
    virtual ObjectId CreateUnionMemberData(const std::string& memberName,
                                           ObjectId objIdOfMemberType, ObjectId objIdOfParentUnion,
                                           std::uint32_t byteOffset, std::int16_t addressExtension,
                                           bool addressExtensionIsValid) = 0;
    /// Spare. Adds a static member. The reader delivers static members with `CreateGlobalData` and
    /// their class as scope.
    virtual ObjectId CreateMemberStaticData(const std::string& memberName,
                                            ObjectId objIdOfMemberType, ObjectId objIdOfParentClass,
                                            std::uint64_t address, bool addressIsValid,
                                            std::int16_t addressExtension,
                                            bool addressExtensionIsValid) = 0;
    /// Adds a bit field to a class, structure or, in the full reading, union. The storage unit has
    /// the size of the type; a packed field may need one byte more.
    /// @param byteOffset offset of the storage unit, in bytes
    /// @param bitOffset offset of the field in its storage unit, in bits from the least significant
    /// @param bitSize width in bits, not 0
    /// @param addressExtension always 0
    /// @param addressExtensionIsValid always false
    virtual ObjectId CreateBitfieldInUdt(const std::string& memberName,
                                         ObjectId objIdOfBitfieldType, ObjectId ObjectIdOfParentUdt,
                                         std::uint32_t byteOffset, std::uint32_t bitOffset,
                                         std::uint32_t bitSize, std::int16_t addressExtension,
                                         bool addressExtensionIsValid) = 0;

    /// @}
    /// @name Derived types
    /// @{

    /// Makes an array.
    /// @param dimensions number of elements of each dimension, outermost first; never empty, and 0
    ///        for a bound that the file doesn't tell
    /// @param arraySize size of the whole array in bytes
    virtual ObjectId CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                          ObjectId objIdOfArrayElementsType,
                                          std::uint64_t arraySize, ObjectId objIdParentScope) = 0;
    /// Makes a pointer, or what the source calls a reference.
    /// @param ptrSize size of the pointer in bytes
    virtual ObjectId CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                            ObjectId objIdParentScope) = 0;
    /// Spare. The enum table of this name in this scope.
    virtual ObjectId GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) = 0;
    /// Makes an enumeration, still without descriptions.
    /// @param objIdOfUnderlyingType the integer type, or a type of which only the size is known
    /// @param anonymous the name was made by the reader
    virtual ObjectId CreateEnumTable(const std::string& tableName, ObjectId objIdOfUnderlyingType,
                                     ObjectId objIdOfScopeParent, bool anonymous) = 0;
    /// Adds the name of a value to an enumeration, after those that it has.
    /// @return false if the description could not be added
    virtual bool AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                               const std::string& enumText) = 0;
    /// Adds the name of a value that 32 bits can't express in the size of its enumeration, or with
    /// sign if the file doesn't give its integer type: the full reading calls this instead of
    /// `AddEnumDescriptionToEnumTable`. A model that doesn't override it receives the value there,
    /// cut to 32 bits.
    /// @param enumValue the 64 bits of the value; negative if the type is unsigned and all are used
    /// @return false if the description could not be added
    virtual bool AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable,
                                                   std::int64_t enumValue,
                                                   const std::string& enumText) {
        return AddEnumDescriptionToEnumTable(objIdOfEnumTable, static_cast<std::int32_t>(enumValue),
                                             enumText);
    }
    /// Spare. The typedef of this name in this scope.
    virtual ObjectId GetTypedefEntryType(const std::string& aliasName,
                                         ObjectId objIdParentScope) = 0;
    /// Makes another name of a type. A typedef that gives its type the type's own name is not
    /// delivered.
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
    /// Makes a variable with a static address.
    /// @param symName its name; in a scope with several variables of one name the second is "x.2"
    /// @param objIdOfScopeParent the global namespace for external variables of C, the compile unit
    ///        for those of a file, else the namespace, class, function or block they lie in
    /// @param addressIsValid always true
    /// @param addressExtension always 0
    /// @param addressExtensionIsValid always false
    virtual ObjectId CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                                      std::uint64_t address, ObjectId objIdOfScopeParent,
                                      bool addressIsValid, std::int16_t addressExtension,
                                      bool addressExtensionIsValid) = 0;

    /// @}
    /// @name Functions
    /// @{

    /// Spare. The function of this name and type in this scope.
    virtual ObjectId GetFunction(const std::string& name, ObjectId functionType,
                                 ObjectId objIdParentScope) = 0;
    /// Makes a function: one that static variables lie in, or a member function of a class.
    /// @param objIdFunctionType what `CreateFunctionType` made, without parameters
    /// @param objIdCompileUnit the compile unit it belongs to; 0 if none was delivered
    /// @param flag always false
    virtual ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                    ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                                    bool flag) = 0;
    /// Spare. Makes a function without a compile unit.
    /// @param hasParentScope the caller named a scope
    virtual ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                                    bool hasParentScope) = 0;
    /// Spare. The function type of this result and these parameters in this scope.
    virtual ObjectId GetFunctionType(ObjectId objIdOfReturnType,
                                     const std::vector<ObjectId>& vecParameterTypes,
                                     ObjectId objIdParentScope) = 0;
    /// Makes the type of a function.
    /// @param objIdOfReturnType type of the result; 0 or an unknown type of size 0 for none
    /// @param vecParameterTypes types of the parameters, in order
    virtual ObjectId CreateFunctionType(ObjectId objIdOfReturnType,
                                        const std::vector<ObjectId>& vecParameterTypes,
                                        ObjectId objIdParentScope) = 0;

    /// @}
    /// @name Spare types and segments
    /// @{

    /// Spare. The bit field type of this base, position and width in this scope.
    virtual ObjectId GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                             std::uint64_t bitSize, ObjectId objIdParentScope) = 0;
    /// Spare. Makes a bit field as a type of its own.
    virtual ObjectId CreateOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                                std::uint64_t bitSize,
                                                ObjectId objIdParentScope) = 0;
    /// Spare. The section type of this size in bytes in this scope.
    virtual ObjectId GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) = 0;
    /// Spare. Makes a section type.
    virtual ObjectId CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) = 0;
    /// Spare. The segment of this name.
    virtual ObjectId GetSegment(const std::string& segmentName) = 0;
    /// Spare. Makes a segment.
    virtual ObjectId CreateSegment(const std::string& segmentName, std::uint64_t address,
                                   std::uint64_t size) = 0;
    /// Spare. Notifies the model that its objects were transformed after the read.
    virtual void SetTransformed(bool transformedDataModel) = 0;

    /// @}
};

} // namespace Tessel::Norn::Brindle::DataModel::Factory
