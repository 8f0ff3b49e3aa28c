// The shortest way to your own data model: `HostDataModel` without the operations that the reader
// never calls.
#pragma once

#include "../core/Export.h"
#include "../host/HostDataModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel::Factory {

/// Answers every spare operation of `HostDataModel` with 0 or false. A derived class implements the
/// others, which the reader calls.
class BRINDLE_EXPORT HostDataModelBase : public HostDataModel {
public:
    ObjectId GetBlockScope(const std::string& /*blockIdentifier*/,
                           ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId GetCompileUnit(const std::string& /*compileUnitName*/) override { return 0; }
    ObjectId GetOrCreateCompileUnit(const std::string& /*compileUnitName*/) override { return 0; }
    ObjectId GetClassEntryType(const std::string& /*className*/,
                               ObjectId /*objIdOfParentClass*/) override {
        return 0;
    }
    ObjectId GetUnionEntryType(const std::string& /*unionName*/,
                               ObjectId /*objIdOfParentClass*/) override {
        return 0;
    }
    ObjectId CreateMemberStaticData(const std::string& /*memberName*/,
                                    ObjectId /*objIdOfMemberType*/, ObjectId /*objIdOfParentClass*/,
                                    std::uint64_t /*address*/, bool /*addressIsValid*/,
                                    std::int16_t /*addressExtension*/,
                                    bool /*addressExtensionIsValid*/) override {
        return 0;
    }
    ObjectId GetEnumTable(const std::string& /*tableName*/,
                          ObjectId /*objIdOfScopeParent*/) override {
        return 0;
    }
    ObjectId GetTypedefEntryType(const std::string& /*aliasName*/,
                                 ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId GetFunction(const std::string& /*name*/, ObjectId /*functionType*/,
                         ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    using HostDataModel::CreateFunction;
    ObjectId CreateFunction(const std::string& /*name*/, ObjectId /*objIdFunctionType*/,
                            bool /*hasParentScope*/) override {
        return 0;
    }
    ObjectId GetFunctionType(ObjectId /*objIdOfReturnType*/,
                             const std::vector<ObjectId>& /*vecParameterTypes*/,
                             ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId GetOldBitfieldEntryType(ObjectId /*objIdOfBaseType*/, std::int32_t /*bitOffset*/,
                                     std::uint64_t /*bitSize*/,
                                     ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId CreateOldBitfieldEntryType(ObjectId /*objIdOfBaseType*/, std::int32_t /*bitOffset*/,
                                        std::uint64_t /*bitSize*/,
                                        ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId GetSectionEntryType(std::uint64_t /*size*/, ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId CreateSectionEntryType(std::uint64_t /*size*/,
                                    ObjectId /*objIdParentScope*/) override {
        return 0;
    }
    ObjectId GetSegment(const std::string& /*segmentName*/) override { return 0; }
    ObjectId CreateSegment(const std::string& /*segmentName*/, std::uint64_t /*address*/,
                           std::uint64_t /*size*/) override {
        return 0;
    }
    void SetTransformed(bool /*transformedDataModel*/) override {}
};

} // namespace Tessel::Norn::Brindle::DataModel::Factory
