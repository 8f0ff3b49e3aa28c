// A host with its own data model. It prints address, size and name of every variable of a file, so
// it keeps only what these three depend on.

#include <brindle/host/ContainerDetection.h>
#include <brindle/host/CurrentDataModel.h>
#include <brindle/host/HostDataModelBase.h>
#include <brindle/host/VDWARFReader.h>
#include <cstdint>
#include <iostream>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace Tessel::Norn::Brindle;

namespace {

using DataModel::BasicTypes;
using Id = DataModel::ObjectId;
using Ids = std::vector<Id>;
using Text = std::string;

/// What this host keeps of an object: the name after its scopes, and the size.
struct Object {
    Text name;
    std::uint64_t size = 0;
};

/// The variables of a read. An identifier is a position in the list of objects.
class VariableList final : public DataModel::Factory::HostDataModelBase {
public:
    void Print() const {
        for (const auto& [id, address] : mVariables) {
            std::cout << std::hex << std::showbase << address << std::dec << ' '
                      << mObjects[id].size << ' ' << mObjects[id].name << '\n';
        }
    }

    // Scopes. A compile unit is no part of a variable's name.
    Id GetGlobalNamespace() override { return 1; }
    Id GetNamespace(const Text& name, Id scope) override { return Find('n', name, scope); }
    Id CreateNamespace(const Text& name, Id scope) override {
        return Keep('n', name, scope, Add(name, scope));
    }
    Id CreateBlockScope(const Text& name, Id scope) override { return Add(name, scope); }
    Id CreateCompileUnit(const Text&) override { return Add(); }
    Id CreateFunction(const Text& name, Id, Id scope, Id, bool) override {
        return Add(name, scope);
    }

    // Types. A typedef and an enum have the size of their type, which is delivered first.
    Id GetBaseEntryType(BasicTypes type, Id scope) override { return Find('b', Key(type), scope); }
    Id CreateBaseEntryType(BasicTypes type, std::uint64_t size, Id scope) override {
        return Keep('b', Key(type), scope, Add({}, scope, size));
    }
    Id GetUnknownEntryType(std::uint64_t size, Id scope) override {
        return Find('u', std::to_string(size), scope);
    }
    Id CreateUnknownEntryType(std::uint64_t size, Id scope) override {
        return Keep('u', std::to_string(size), scope, Add({}, scope, size));
    }
    Id CreateClassEntryType(const Text& name, std::uint32_t size, Id scope, const Ids&, bool,
                            bool) override {
        return Add(name, scope, size);
    }
    Id CreateUnionEntryType(const Text& name, std::uint32_t size, Id scope, bool) override {
        return Add(name, scope, size);
    }
    Id CreateArrayEntryType(const std::vector<std::uint32_t>&, Id, std::uint64_t size,
                            Id scope) override {
        return Add({}, scope, size);
    }
    Id CreatePointerEntryType(Id, std::uint64_t size, Id) override { return Add({}, 0, size); }
    Id CreateEnumTable(const Text&, Id type, Id scope, bool) override {
        return Add({}, scope, mObjects[type].size);
    }
    Id CreateTypedefEntryType(const Text&, Id type, Id scope) override {
        return Add({}, scope, mObjects[type].size);
    }
    Id CreateFunctionType(Id, const Ids&, Id) override { return Add(); }

    // Parts of types. This host needs none, but reports that they were kept.
    Id CreateMemberData(const Text&, Id, Id, std::uint32_t, std::int16_t, bool) override {
        return Add();
    }
    Id CreateUnionMemberData(const Text&, Id, Id, std::uint32_t, std::int16_t, bool) override {
        return Add();
    }
    Id CreateBitfieldInUdt(const Text&, Id, Id, std::uint32_t, std::uint32_t, std::uint32_t,
                           std::int16_t, bool) override {
        return Add();
    }
    bool AddBaseClass(Id, Id, std::uint32_t) override { return true; }
    bool AddEnumDescriptionToEnumTable(Id, std::int32_t, const Text&) override { return true; }

    // Variables.
    Id GetGlobalData(const Text& name, Id scope) override { return Find('v', name, scope); }
    Id GetGlobalData(const Text& name) override { return Find('v', name, 0); }
    Id GetGlobalDataByAddress(std::uint64_t address) override { return Find('a', "", address); }
    Id CreateGlobalData(const Text& name, Id type, std::uint64_t address, Id scope, bool,
                        std::int16_t, bool) override {
        const Id id = Add(name, scope, mObjects[type].size);
        mVariables.emplace_back(id, address);
        Keep('v', name, scope, id);
        Keep('v', name, 0, id);
        return Keep('a', "", address, id);
    }

private:
    static Text Key(BasicTypes type) { return std::to_string(static_cast<int>(type)); }
    Id Add(const Text& name = {}, Id scope = 0, std::uint64_t size = 0) {
        const Text& outer = mObjects[scope].name;
        mObjects.push_back(
            {outer.empty() || name.empty() ? outer + name : outer + "::" + name, size});
        return mObjects.size() - 1;
    }
    Id Keep(char kind, const Text& name, std::uint64_t scopeOrAddress, Id id) {
        mKnown.try_emplace({kind, name, scopeOrAddress}, id);
        return id;
    }
    Id Find(char kind, const Text& name, std::uint64_t scopeOrAddress) const {
        const auto found = mKnown.find({kind, name, scopeOrAddress});
        return found == mKnown.end() ? 0 : found->second;
    }

    std::vector<Object> mObjects = std::vector<Object>(2); // none, and the global namespace
    std::map<std::tuple<char, Text, std::uint64_t>, Id> mKnown;
    std::vector<std::pair<Id, std::uint64_t>> mVariables;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: own_model FILE\n";
        return 2;
    }
    VariableList variables;
    const DataModel::Factory::CurrentDataModel current(variables);
    Reader::DWARF::VDWARFReader reader;
    reader.SignalErrorCallback = [](auto, auto, const Text&, const Text& message) {
        std::cerr << message << '\n';
    };
    const bool isComplete = reader.Read(argv[1], Reader::DWARF::DetectContainer(argv[1]));
    variables.Print();
    return isComplete ? 0 : 1;
}
