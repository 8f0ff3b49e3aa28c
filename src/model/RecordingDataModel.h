// A data model that records every call and passes it on: for tests that compare the order of a
// delivery, and for the program's trace. It holds no objects of its own.
#pragma once

#include "../core/Export.h"
#include "../host/HostDataModel.h"
#include "../model/RecordedCall.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Forwards each operation to the next data model, then records it with its result. If the next
/// model throws, the call is not recorded and the exception passes through.
class BRINDLE_EXPORT RecordingDataModel final : public Factory::HostDataModel {
public:
    /// Receives each call after it was answered. The call is valid until the sink returns.
    using Sink = std::function<void(const RecordedCall&)>;

    /// Keeps the calls for `Calls`. The next model is borrowed and must outlive this one.
    explicit RecordingDataModel(Factory::HostDataModel& next);
    /// Gives each call to `sink`, after the next model has answered it, and keeps none.
    RecordingDataModel(Factory::HostDataModel& next, Sink sink);

    /// The calls so far, in order; empty for a model that gives them to a sink.
    [[nodiscard]] const std::vector<RecordedCall>& Calls() const { return mCalls; }

    /// Passed on, and not recorded.
    void DescribeImage(const ImageDescription& image) override { mNext.DescribeImage(image); }
    ObjectId GetGlobalNamespace() override;
    ObjectId GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) override;
    ObjectId CreateNamespace(const std::string& namespaceName, ObjectId objIdParentScope) override;
    ObjectId GetBlockScope(const std::string& blockIdentifier, ObjectId objIdParentScope) override;
    ObjectId CreateBlockScope(const std::string& blockIdentifier,
                              ObjectId objIdParentScope) override;
    ObjectId GetCompileUnit(const std::string& compileUnitName) override;
    ObjectId CreateCompileUnit(const std::string& compileUnitName) override;
    ObjectId GetOrCreateCompileUnit(const std::string& compileUnitName) override;
    ObjectId GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) override;
    ObjectId CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                 ObjectId objIdParentScope) override;
    ObjectId GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                 ObjectId objIdParentScope) override;
    ObjectId CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                    ObjectId objIdParentScope) override;
    ObjectId GetClassEntryType(const std::string& className, ObjectId objIdOfParentClass) override;
    ObjectId CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                  ObjectId objIdOfScopeParent,
                                  const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                  bool anonymous, bool isStruct) override;
    ObjectId GetUnionEntryType(const std::string& unionName, ObjectId objIdOfParentClass) override;
    ObjectId CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                  ObjectId objIdOfParentClass, bool anonymous) override;
    bool AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                      std::uint32_t byteOffset) override;
    ObjectId CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                              std::int16_t addressExtension, bool addressExtensionIsValid) override;
    ObjectId CreateUnionMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                   ObjectId objIdOfParentUnion, std::uint32_t byteOffset,
                                   std::int16_t addressExtension,
                                   bool addressExtensionIsValid) override;
    ObjectId CreateMemberStaticData(const std::string& memberName, ObjectId objIdOfMemberType,
                                    ObjectId objIdOfParentClass, std::uint64_t address,
                                    bool addressIsValid, std::int16_t addressExtension,
                                    bool addressExtensionIsValid) override;
    ObjectId CreateBitfieldInUdt(const std::string& memberName, ObjectId objIdOfBitfieldType,
                                 ObjectId ObjectIdOfParentUdt, std::uint32_t byteOffset,
                                 std::uint32_t bitOffset, std::uint32_t bitSize,
                                 std::int16_t addressExtension,
                                 bool addressExtensionIsValid) override;
    ObjectId CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                  ObjectId objIdOfArrayElementsType, std::uint64_t arraySize,
                                  ObjectId objIdParentScope) override;
    ObjectId CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                    ObjectId objIdParentScope) override;
    ObjectId GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) override;
    ObjectId CreateEnumTable(const std::string& tableName, ObjectId objIdOfUnderlyingType,
                             ObjectId objIdOfScopeParent, bool anonymous) override;
    bool AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                       const std::string& enumText) override;
    bool AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int64_t enumValue,
                                           const std::string& enumText) override;
    ObjectId GetTypedefEntryType(const std::string& aliasName, ObjectId objIdParentScope) override;
    ObjectId CreateTypedefEntryType(const std::string& aliasName, ObjectId objIdReferencedType,
                                    ObjectId objIdParentScope) override;
    ObjectId GetGlobalData(const std::string& symName, ObjectId objIdOfScopeParent) override;
    ObjectId GetGlobalData(const std::string& symName) override;
    ObjectId GetGlobalDataByAddress(std::uint64_t address) override;
    ObjectId CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                              std::uint64_t address, ObjectId objIdOfScopeParent,
                              bool addressIsValid, std::int16_t addressExtension,
                              bool addressExtensionIsValid) override;
    ObjectId GetFunction(const std::string& name, ObjectId functionType,
                         ObjectId objIdParentScope) override;
    ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                            ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                            bool flag) override;
    ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                            bool hasParentScope) override;
    ObjectId GetFunctionType(ObjectId objIdOfReturnType,
                             const std::vector<ObjectId>& vecParameterTypes,
                             ObjectId objIdParentScope) override;
    ObjectId CreateFunctionType(ObjectId objIdOfReturnType,
                                const std::vector<ObjectId>& vecParameterTypes,
                                ObjectId objIdParentScope) override;
    ObjectId GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                     std::uint64_t bitSize, ObjectId objIdParentScope) override;
    ObjectId CreateOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                        std::uint64_t bitSize, ObjectId objIdParentScope) override;
    ObjectId GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) override;
    ObjectId CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) override;
    ObjectId GetSegment(const std::string& segmentName) override;
    ObjectId CreateSegment(const std::string& segmentName, std::uint64_t address,
                           std::uint64_t size) override;
    void SetTransformed(bool transformedDataModel) override;

private:
    void Record(RecordedCall call);
    template <typename Result>
    Result Recorded(std::string_view operation, Result result,
                    std::vector<RecordedArgument> arguments);

    Factory::HostDataModel& mNext;
    Sink mSink;
    std::vector<RecordedCall> mCalls;
};

} // namespace Tessel::Norn::Brindle::DataModel
