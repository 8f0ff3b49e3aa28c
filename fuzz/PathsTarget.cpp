// Paths such as "motor.pid[2].gain", resolved in a fixed model with names as odd as possible.
//
// Input: the path.
#include "model/DataModel.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <vector>

using namespace Tessel::Norn::Brindle;
using DataModel::ObjectId;

namespace {

/// A structure that holds an array of itself, a bit field, an anonymous union and a base class, in
/// variables whose names contain the separators of paths.
void Fill(DataModel::Model& model) {
    const ObjectId global = model.GetGlobalNamespace();
    const ObjectId scope = model.CreateNamespace("ns", global);
    const ObjectId integer = model.CreateBaseEntryType(DataModel::BasicTypes::UInt16, 2, global);
    const ObjectId base = model.CreateClassEntryType("Base", 4, global, {}, false, false);
    model.CreateMemberData("id", integer, base, 0, 0, false);
    model.CreateMemberData("a", integer, base, 2, 0, false);
    const ObjectId node = model.CreateClassEntryType("Node", 64, scope, {}, false, true);
    model.AddBaseClass(node, base, 8);
    model.CreateMemberData("a", integer, node, 0, 0, false);
    model.CreateBitfieldInUdt("bits", integer, node, 2, 3, 5, 0, false);
    const ObjectId nodes = model.CreateArrayEntryType({2, 3}, node, 384, global);
    model.CreateMemberData("n", nodes, node, 16, 0, false);
    const ObjectId either = model.CreateUnionEntryType("@1", 4, node, true);
    model.CreateUnionMemberData("u", integer, either, 0, 0, false);
    model.CreateMemberData("", either, node, 4, 0, false);
    std::uint64_t address = 0x1000;
    for (const char* name : {"a", "a.b", "a[0]", "a[0].n", "::", "ns::a", "T<a.b>", "", "["}) {
        model.CreateGlobalData(name, node, address, global, true, 0, false);
        model.CreateGlobalData(name, nodes, address + 64, scope, true, 0, false);
        address += 1024;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static DataModel::Model* const sModel = [] {
        static DataModel::Model sFilled;
        Fill(sFilled);
        return &sFilled;
    }();
    const std::string_view path = Fuzzing::InputBytes(data, size).Rest();
    const DataModel::Model::PathResult one = sModel->ResolvePath(path);
    const std::vector<DataModel::Model::PathResult> all = sModel->ResolvePaths(path);
    Fuzzing::Require(!all.empty(), "a path has an answer");
    Fuzzing::Require(one.found == all.front().found &&
                         one.place.address == all.front().place.address,
                     "the first answer is the answer");
    Fuzzing::Require(one.found == one.problem.empty(), "a path resolves or tells its problem");
    Fuzzing::Require(one.resolvedLength <= path.size(), "no more resolves than was asked");
    return 0;
}
