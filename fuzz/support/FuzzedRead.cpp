#include "support/FuzzedRead.h"

#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/DataModel.h"
#include "model/LeafWalk.h"
#include "model/RecordingDataModel.h"
#include "support/InputFile.h"
#include "support/Require.h"

#include <limits>
#include <string>
#include <variant>

namespace Tessel::Norn::Brindle::Fuzzing {

namespace {

/// Number of objects that are queried, so that the queries cost no more than the read.
constexpr DataModel::ObjectId sQueriedObjects = 500;
constexpr DataModel::LeafLimits sLeafLimits = {.arrayElements = 3, .leaves = 500};

/// True if the argument identifies one or several objects.
bool IsHandle(std::string_view argument) {
    return argument.starts_with("objId") || argument.starts_with("ObjectId") ||
           argument == "functionType" || argument.starts_with("vecObjIds") ||
           argument == "vecParameterTypes";
}

class CallCheck {
public:
    explicit CallCheck(const DataModel::Model& model)
        : mModel(model) {}

    void operator()(const DataModel::RecordedCall& call) const {
        for (const DataModel::RecordedArgument& argument : call.arguments) {
            if (const auto* text = std::get_if<std::string>(&argument.value)) {
                Require(IsUtf8(*text), "texts for the host are UTF-8");
            } else if (IsHandle(argument.name)) {
                CheckHandles(argument.value);
            }
        }
    }

private:
    void CheckHandles(const DataModel::RecordedValue& value) const {
        if (const auto* handle = std::get_if<std::uint64_t>(&value)) {
            Require(*handle <= mModel.ObjectCount(), "only handles that were given out come back");
        } else if (const auto* handles = std::get_if<std::vector<std::uint64_t>>(&value)) {
            for (const std::uint64_t each : *handles) {
                Require(each <= mModel.ObjectCount(), "only handles that were given out come back");
            }
        }
    }

    const DataModel::Model& mModel;
};

void QueryObject(const DataModel::Model& model, DataModel::ObjectId id) {
    const DataModel::ModelObject object = model.Object(id);
    Require(IsUtf8(model.QualifiedName(id)), "qualified names are UTF-8");
    Require(IsUtf8(model.TypeText(id)), "type texts are UTF-8");
    Require(IsUtf8(model.Declaration(id, object.name)), "declarations are UTF-8");
    using Kind = DataModel::ObjectKind;
    const auto kindOf = [&](DataModel::ObjectId other) { return model.Object(other).kind; };
    const DataModel::ObjectId plain = model.WithoutTypedefs(id);
    Require(plain == 0 || kindOf(plain) != Kind::Typedef, "behind typedefs there is none");
    const DataModel::ObjectId unit = model.CompileUnitOf(id);
    Require(unit == 0 || kindOf(unit) == Kind::CompileUnit, "a compile unit is one");
    const bool isArray = object.kind == Kind::Array;
    Require(isArray || model.ElementCount(id) == 0, "arrays alone have elements");
    Require(isArray || model.ElementStride(id) == 0, "arrays alone have elements");
    Require(isArray || model.Dimensions(id).empty(), "arrays alone have dimensions");
    Require(object.kind == Kind::FunctionType || model.Parameters(id).empty(),
            "function types alone have parameters");
    Require(object.kind == Kind::Enum || model.Enumerators(id).empty(),
            "enums alone have enumerators");
    Require(object.kind == Kind::Class || object.kind == Kind::Struct ||
                model.BaseClasses(id).empty(),
            "classes alone have base classes");
    Require(model.SizeOf(id) == 0 || id <= model.ObjectCount(), "an unknown object has no size");
}

void QueryVariable(const DataModel::Model& model, DataModel::LeafWalk& leaves,
                   const DataModel::ModelObject& variable) {
    const std::string name = model.QualifiedName(variable.id);
    Require(!model.ResolvePaths(name + "[0].a").empty(), "a path has an answer");
    std::string firstLeaf;
    leaves.Walk(variable.id, [&](std::string_view path, const DataModel::Model::Place&) {
        if (firstLeaf.empty()) {
            firstLeaf = path;
        }
    });
    Require(!model.ResolvePaths(firstLeaf).empty(), "a path has an answer");
}

void Query(const DataModel::Model& model) {
    const DataModel::ObjectId last = std::min(sQueriedObjects, model.ObjectCount());
    for (DataModel::ObjectId id = 0; id <= last; ++id) {
        QueryObject(model, id);
    }
    for (const DataModel::ObjectId id :
         {model.ObjectCount() + 1, std::numeric_limits<DataModel::ObjectId>::max()}) {
        Require(model.Object(id).id == 0, "an unknown handle names no object");
        QueryObject(model, id);
    }
    DataModel::LeafWalk leaves(model, sLeafLimits);
    for (DataModel::ObjectId id = 1; id <= last; ++id) {
        if (const DataModel::ModelObject object = model.Object(id);
            object.kind == DataModel::ObjectKind::Global) {
            QueryVariable(model, leaves, object);
        }
    }
}

} // namespace

void ReadAndQuery(const ReadChoices& choices, std::string_view file) {
    DataModel::Model model;
    DataModel::RecordingDataModel checked(model, CallCheck(model));
    const DataModel::Factory::CurrentDataModel current(checked);
    Reader::DWARF::VDWARFReader reader;
    int messages = 0;
    reader.SignalErrorCallback = [&](auto, std::uint32_t, const std::string&,
                                     const std::string& text) {
        Require(!text.empty() && IsUtf8(text), "a message has a text");
        ++messages;
    };
    reader.SetProgressTextCallback = [](const std::string& text) {
        Require(IsUtf8(text), "texts for the host are UTF-8");
    };
    reader.ReadAllTypes(choices.allTypes);
    const bool isRead = reader.Read(WriteInputFile(file), choices.container);
    Require(messages == (isRead ? 0 : 1), "one message for a failed read, none for a good one");
    Query(model);
}

} // namespace Tessel::Norn::Brindle::Fuzzing
