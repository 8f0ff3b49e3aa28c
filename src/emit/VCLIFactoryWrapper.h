// The only door from the reader to the data model of its host. The reader works with narrow texts,
// plain integers and standard containers; the wrapper converts them and forwards each call to one
// host call. It holds no state of the read.
#pragma once

#include "emit/BaseTypes.h"
#include "host/BasicTypes.h"
#include "host/ObjectId.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {
struct ImageDescription;
}
namespace Tessel::Norn::Brindle::DataModel::Factory {
class HostDataModel;
}

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::BasicTypes;
using DataModel::ObjectId;
using DataModel::Factory::HostDataModel;

class VCLIFactoryWrapperPrivate;

/// Owner of the host factory of one file.
///
/// Names are narrow text: bytes as the file has them. Without a data model every operation
/// answers 0 or false and ignores its arguments; an exception of the host passes through.
/// Lists come by value and are released on every path. `HostDataModel` says what the
/// operations mean; the comments here only say what differs. The reader never calls the
/// operations marked spare.
class VCLIFactoryWrapper {
public:
    /// Makes a factory for the data model that is current now.
    VCLIFactoryWrapper();
    ~VCLIFactoryWrapper();
    VCLIFactoryWrapper(const VCLIFactoryWrapper&) = delete;
    VCLIFactoryWrapper& operator=(const VCLIFactoryWrapper&) = delete;
    VCLIFactoryWrapper(VCLIFactoryWrapper&&) = delete;
    VCLIFactoryWrapper& operator=(VCLIFactoryWrapper&&) = delete;

    /// True if there is a data model to deliver into.
    [[nodiscard]] bool PreCondition() const;

    void DescribeImage(const DataModel::ImageDescription& image);

    /// @name Scopes
    /// @{

    ObjectId GetGlobalNamespace();
    ObjectId GetNamespace(std::string_view namespaceName, ObjectId objIdParentScope);
    ObjectId CreateNamespace(std::string_view namespaceName, ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetBlockScope(std::string_view blockIdentifier, ObjectId objIdParentScope);
    ObjectId CreateBlockScope(std::string_view blockIdentifier, ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetCompileUnit(std::string_view compileUnitName);
    ObjectId CreateCompileUnit(std::string_view compileUnitName);
    /// Spare.
    ObjectId GetOrCreateCompileUnit(std::string_view compileUnitName);
    /// @}
    /// @name Scalar and unknown types
    /// @{

    /// The host is asked for the value of code and length; the length itself is not passed.
    ObjectId GetBaseEntryType(BasicType basicType, std::uint64_t length, ObjectId objIdParentScope);
    /// The host receives the value of code and length, and the length.
    ObjectId CreateBaseEntryType(BasicType basicType, std::uint64_t length,
                                 ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetBaseEntryType(BasicTypes bt, ObjectId objIdParentScope);
    /// Spare.
    ObjectId CreateBaseEntryType(std::uint64_t length, BasicTypes b, ObjectId objIdParentScope);
    ObjectId GetUnknownEntryType(std::uint64_t sizeOfUnknownType, ObjectId objIdParentScope);
    ObjectId CreateUnknownEntryType(std::uint64_t sizeOfUnknownType, ObjectId objIdParentScope);
    /// @}
    /// @name Classes, structures, unions and their members
    /// @{

    /// Spare.
    ObjectId GetClassEntryType(std::string_view className, ObjectId objIdOfParentClass);
    /// Spare. The host has one operation for classes and structures.
    ObjectId GetStructEntryType(std::string_view structName, ObjectId objIdOfParentStruct);
    ObjectId CreateClassEntryType(std::string_view className, std::uint32_t classSize,
                                  ObjectId objIdOfScopeParent,
                                  std::vector<ObjectId> vecObjIdsOfInheritances, bool anonymous,
                                  bool isStruct);
    /// Spare.
    ObjectId CreateStructEntryType(std::string_view structName, std::uint32_t structSize,
                                   ObjectId objIdOfScopeParent,
                                   std::vector<ObjectId> vecObjIdsOfInheritances, bool anonymous);
    /// Spare.
    ObjectId GetUnionEntryType(std::string_view unionName, ObjectId objIdOfParentClass);
    ObjectId CreateUnionEntryType(std::string_view unionName, std::uint32_t unionSize,
                                  ObjectId objIdOfParentClass, bool anonymous);
    bool AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass, std::uint32_t byteOffset);
    ObjectId CreateMemberData(std::string_view memberName, ObjectId objIdOfMemberType,
                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                              std::int16_t addressExtension, bool addressExtensionIsValid);
    ObjectId CreateUnionMemberData(std::string_view memberName, ObjectId objIdOfMemberType,
                                   ObjectId objIdOfParentUnion, std::uint32_t byteOffset,
                                   std::int16_t addressExtension, bool addressExtensionIsValid);
    /// Spare.
    ObjectId CreateMemberStaticData(std::string_view memberName, ObjectId objIdOfMemberType,
                                    ObjectId objIdOfParentClass, std::uint64_t address,
                                    bool addressIsValid, std::int16_t addressExtension,
                                    bool addressExtensionIsValid);
    ObjectId CreateBitfieldInUdt(std::string_view memberName, ObjectId objIdOfBitfieldType,
                                 ObjectId ObjectIdOfParentUdt, std::uint32_t byteOffset,
                                 std::uint32_t bitOffset, std::uint32_t bitSize,
                                 std::int16_t addressExtension, bool addressExtensionIsValid);
    /// @}
    /// @name Derived types
    /// @{

    /// Without dimensions the host isn't called, and the answer is 0.
    ObjectId CreateArrayEntryType(std::vector<std::uint32_t> dimensions,
                                  ObjectId objIdOfArrayElementsType, std::uint64_t arraySize,
                                  ObjectId objIdParentScope);
    ObjectId CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                    ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetEnumTable(std::string_view tableName, ObjectId objIdOfScopeParent);
    ObjectId CreateEnumTable(std::string_view tableName, ObjectId objIdOfUnderlyingType,
                             ObjectId objIdOfScopeParent, bool anonymous);
    bool AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                       std::string_view enumText);
    bool AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int64_t enumValue,
                                           std::string_view enumText);
    /// Spare.
    ObjectId GetTypedefEntryType(std::string_view aliasName, ObjectId objIdParentScope);
    ObjectId CreateTypedefEntryType(std::string_view aliasName, ObjectId objIdReferencedType,
                                    ObjectId objIdParentScope);
    /// @}
    /// @name Data
    /// @{

    ObjectId GetGlobalData(std::string_view symName, ObjectId objIdOfScopeParent);
    ObjectId GetGlobalData(std::string_view symName);
    ObjectId GetGlobalDataByAddress(std::uint64_t address);
    /// The host's operation takes scope and address in the opposite order.
    ObjectId CreateGlobalData(std::string_view symName, ObjectId objIdOfSymType,
                              ObjectId objIdOfScopeParent, std::uint64_t address,
                              bool addressIsValid, std::int16_t addressExtension,
                              bool addressExtensionIsValid);
    /// @}
    /// @name Functions
    /// @{

    /// Spare.
    ObjectId GetFunction(std::string_view name, ObjectId functionType, ObjectId objIdParentScope);
    ObjectId CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                            ObjectId objIdParentScope, ObjectId objIdCompileUnit);
    /// Spare.
    ObjectId CreateFunction(std::string_view name, ObjectId objIdFunctionType,
                            ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetFunctionType(ObjectId objIdOfReturnType, std::vector<ObjectId> vecParameterTypes,
                             ObjectId objIdParentScope);
    ObjectId CreateFunctionType(ObjectId objIdOfReturnType, std::vector<ObjectId> vecParameterTypes,
                                ObjectId objIdParentScope);
    /// @}
    /// @name Spare types and segments
    /// @{

    /// Spare.
    ObjectId GetOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                std::uint32_t bitSize, ObjectId objIdParentScope);
    /// Spare.
    ObjectId CreateOldBitfieldType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                   std::uint32_t bitSize, ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetSectionEntryType(std::uint32_t size, ObjectId objIdParentScope);
    /// Spare.
    ObjectId CreateSectionEntryType(std::uint32_t size, ObjectId objIdParentScope);
    /// Spare.
    ObjectId GetSegment(std::string_view segmentName);
    /// Spare.
    ObjectId CreateSegment(std::string_view segmentName, std::uint64_t address, std::uint64_t size);
    /// Spare.
    void SetTransformed(bool transformedDataModel);
    /// @}

private:
    /// Calls the host's operation with the arguments, texts converted to host texts. Without a data
    /// model the result is 0, false or nothing.
    template <typename Result, typename... Parameters, typename... Arguments>
    Result Forward(Result (HostDataModel::*operation)(Parameters...),
                   const Arguments&... arguments);
    /// Converts a narrow text into the one string that all calls use: making a new string for each
    /// name takes longer than many a host call.
    const std::string& AsHostTakes(std::string_view narrowText);
    /// Any other argument goes to the host unchanged.
    template <typename Argument>
    static const Argument& AsHostTakes(const Argument& argument) {
        return argument;
    }

    std::unique_ptr<VCLIFactoryWrapperPrivate> mPrivate;
    std::string mHostText;
};

/// The unknown entry type of a size in bytes in a scope, made if there is none yet.
ObjectId sGetSymbolTableBaseEntryTypeObjId(VCLIFactoryWrapper& factory, ObjectId objIdGlobalScope,
                                           std::uint64_t byteSize);

/// The text that an operation takes for a standard string: it ends at the first NUL. A view into
/// `text`.
void __sToManagedFactoryString(std::string_view& out, const std::string& text);

/// Host text of a narrow text, see `ToHostText`.
std::string DNetString(std::string_view narrowText);
std::string GetDNetString(const char* narrowText);

/// Narrow text of a host text.
std::string GetCString(const std::string& hostText);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
