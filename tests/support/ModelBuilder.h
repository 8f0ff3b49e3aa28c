// Short names for filling a data model by hand, as a reader would. Tests of the model and of the
// program's output build their inputs with it.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

/// A model and the operations that fill it. Types lie in the global namespace unless a scope is
/// given; pointers take 4 bytes.
class ModelBuilder {
public:
    using ObjectId = DataModel::ObjectId;
    using BasicTypes = DataModel::BasicTypes;

    static constexpr ObjectId sGlobalNamespace = 1;

    ObjectId Base(BasicTypes type, std::uint64_t size) {
        return mModel.CreateBaseEntryType(type, size, sGlobalNamespace);
    }
    ObjectId Struct(const std::string& name, std::uint32_t size,
                    ObjectId scope = sGlobalNamespace) {
        return mModel.CreateClassEntryType(name, size, scope, {}, false, true);
    }
    ObjectId AnonymousStruct(const std::string& name, std::uint32_t size,
                             ObjectId scope = sGlobalNamespace) {
        return mModel.CreateClassEntryType(name, size, scope, {}, true, true);
    }
    ObjectId Union(const std::string& name, std::uint32_t size, bool isAnonymous = false) {
        return mModel.CreateUnionEntryType(name, size, sGlobalNamespace, isAnonymous);
    }
    ObjectId Member(const std::string& name, ObjectId type, ObjectId parent, std::uint32_t offset) {
        return mModel.CreateMemberData(name, type, parent, offset, 0, false);
    }
    ObjectId UnionMember(const std::string& name, ObjectId type, ObjectId parent,
                         std::uint32_t offset = 0) {
        return mModel.CreateUnionMemberData(name, type, parent, offset, 0, false);
    }
    ObjectId BitField(const std::string& name, ObjectId type, ObjectId parent, std::uint32_t offset,
                      std::uint32_t bitOffset, std::uint32_t bitSize) {
        return mModel.CreateBitfieldInUdt(name, type, parent, offset, bitOffset, bitSize, 0, false);
    }
    ObjectId Array(const std::vector<std::uint32_t>& dimensions, ObjectId type,
                   std::uint64_t size) {
        return mModel.CreateArrayEntryType(dimensions, type, size, sGlobalNamespace);
    }
    ObjectId Pointer(ObjectId type) {
        return mModel.CreatePointerEntryType(type, 4, sGlobalNamespace);
    }
    ObjectId Typedef(const std::string& name, ObjectId type, ObjectId scope = sGlobalNamespace) {
        return mModel.CreateTypedefEntryType(name, type, scope);
    }
    ObjectId FunctionType(ObjectId result, const std::vector<ObjectId>& parameters) {
        return mModel.CreateFunctionType(result, parameters, sGlobalNamespace);
    }
    ObjectId Function(const std::string& name, ObjectId scope) {
        return mModel.CreateFunction(name, FunctionType(0, {}), scope, 0, false);
    }
    ObjectId Global(const std::string& name, ObjectId type, std::uint64_t address,
                    ObjectId scope = sGlobalNamespace) {
        return mModel.CreateGlobalData(name, type, address, scope, true, 0, false);
    }

    DataModel::Model mModel;
};

} // namespace Tessel::Norn::Brindle::Tests
