// A host with a data model of its own. It prints address, size and name of every variable of an ELF
// file, so it keeps what these three depend on and lets the rest go.

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
using Id = DataModel::Factory::ObjectId;
using Ids = std::vector<Id>;
using Text = std::string;

/// What this host keeps of an object. A typedef, an enum and a variable have the size of their
/// type.
struct Object {
    Text name;
    Id scope = 0;
    std::uint64_t size = 0;
    Id type = 0;
};

/// The variables of a read. An identifier is a position in the list of objects.
class VariableList final : public DataModel::Factory::HostDataModelBase {
public:
    void Print() const {
        for (const auto& [variable, address] : mVariables) {
            std::cout << std::hex << std::showbase << address << std::dec << ' ' << SizeOf(variable)
                      << ' ' << QualifiedName(variable) << '\n';
        }
    }

    // Scopes. Compile units stay without a name, since they are no part of a variable's.
    Id GetGlobalNamespace() override { return 1; }
    Id GetNamespace(const Text& name, Id scope) override { return Find('n', name, scope); }
    Id CreateNamespace(const Text& name, Id scope) override {
        return Keep('n', name, scope, Add({name, scope}));
    }
    Id CreateBlockScope(const Text& name, Id scope) override { return Add({name, scope}); }
    Id CreateCompileUnit(const Text&) override { return Add({}); }
    Id CreateFunction(const Text& name, Id, Id scope, Id, bool) override {
        return Add({name, scope});
    }

    // Types. The reader looks for those that have no name before it makes one.
    Id GetBaseEntryType(BasicTypes type, Id scope) override { return Find('b', Key(type), scope); }
    Id CreateBaseEntryType(BasicTypes type, std::uint64_t size, Id scope) override {
        return Keep('b', Key(type), scope, Add({"", scope, size}));
    }
    Id GetUnknownEntryType(std::uint64_t size, Id scope) override {
        return Find('u', std::to_string(size), scope);
    }
    Id CreateUnknownEntryType(std::uint64_t size, Id scope) override {
        return Keep('u', std::to_string(size), scope, Add({"", scope, size}));
    }
    Id CreateClassEntryType(const Text& name, std::uint32_t size, Id scope, const Ids&, bool,
                            bool) override {
        return Add({name, scope, size});
    }
    Id CreateUnionEntryType(const Text& name, std::uint32_t size, Id scope, bool) override {
        return Add({name, scope, size});
    }
    Id CreateArrayEntryType(const std::vector<std::uint32_t>&, Id, std::uint64_t size,
                            Id scope) override {
        return Add({"", scope, size});
    }
    Id CreatePointerEntryType(Id, std::uint64_t size, Id scope) override {
        return Add({"", scope, size});
    }
    Id CreateEnumTable(const Text&, Id type, Id scope, bool) override {
        return Add({"", scope, 0, type});
    }
    Id CreateTypedefEntryType(const Text&, Id type, Id scope) override {
        return Add({"", scope, 0, type});
    }
    Id CreateFunctionType(Id, const Ids&, Id scope) override { return Add({"", scope}); }

    // Parts of types. This host needs none, but says that they are kept.
    Id CreateMemberData(const Text&, Id, Id, std::uint32_t, std::int16_t, bool) override {
        return Add({});
    }
    Id CreateUnionMemberData(const Text&, Id, Id, std::uint32_t, std::int16_t, bool) override {
        return Add({});
    }
    Id CreateBitfieldInUdt(const Text&, Id, Id, std::uint32_t, std::uint32_t, std::uint32_t,
                           std::int16_t, bool) override {
        return Add({});
    }
    bool AddBaseClass(Id, Id, std::uint32_t) override { return true; }
    bool AddEnumDescriptionToEnumTable(Id, std::int32_t, const Text&) override { return true; }

    // Variables.
    Id GetGlobalData(const Text& name, Id scope) override { return Find('v', name, scope); }
    Id GetGlobalData(const Text& name) override { return Find('v', name, 0); }
    Id GetGlobalDataByAddress(std::uint64_t address) override { return Find('a', "", address); }
    Id CreateGlobalData(const Text& name, Id type, std::uint64_t address, Id scope, bool,
                        std::int16_t, bool) override {
        const Id id = Add({name, scope, 0, type});
        mVariables.emplace_back(id, address);
        Keep('v', name, scope, id);
        Keep('v', name, 0, id);
        return Keep('a', "", address, id);
    }

private:
    static Text Key(BasicTypes type) { return std::to_string(static_cast<int>(type)); }
    Id Add(const Object& object) {
        mObjects.push_back(object);
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
    std::uint64_t SizeOf(Id id) const {
        const Object& object = mObjects[id];
        return object.type == 0 ? object.size : SizeOf(object.type);
    }
    Text QualifiedName(Id id) const {
        const Object& object = mObjects[id];
        const Text scopes = object.scope == 0 ? Text() : QualifiedName(object.scope);
        return scopes.empty() || object.name.empty() ? scopes + object.name
                                                     : scopes + "::" + object.name;
    }

    std::vector<Object> mObjects = {{} /* none */, {} /* the global namespace */};
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
    const bool isComplete = reader.Read(argv[1], Reader::DWARF::DWARFContainerType::Container_ELF);
    variables.Print();
    return isComplete ? 0 : 1;
}
