#include "support/FuzzedRead.h"

#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/AddressLookup.h"
#include "model/DataModel.h"
#include "model/LeafWalk.h"
#include "model/RecordingDataModel.h"
#include "model/ValueDecoder.h"
#include "support/InputFile.h"
#include "support/Require.h"

#include <algorithm>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Fuzzing {

namespace {

/// Number of objects that are queried, so that the queries cost no more than the read.
constexpr DataModel::ObjectId sQueriedObjects = 500;
constexpr DataModel::LeafLimits sLeafLimits = {.arrayElements = 3, .leaves = 500};
/// Number of places found by address, for the same reason.
constexpr std::size_t sFoundPlaces = 2000;
constexpr std::uint64_t sInitialBytes = 64;

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
    Require(model.PlacedBaseClasses(id).size() <= model.BaseClasses(id).size(),
            "only base classes are placed");
    model.ForEachIn(id, [id](const DataModel::ModelObject& inside) {
        Require(inside.scope == id, "what lies in a scope names it");
    });
}

/// Queries about the variables of a model: paths, leaves, addresses and initial values.
class VariableQueries {
public:
    explicit VariableQueries(const DataModel::Model& model)
        : mModel(model)
        , mLeaves(model, sLeafLimits)
        , mLookup(model)
        , mDecoder(model) {}

    void Query(const DataModel::ModelObject& variable) {
        const std::string path = mModel.QualifiedName(variable.id) + "[0].a";
        RequireAnswers(path, mModel.ResolvePaths(path));
        QueryFirstLeaf(variable);
        if (mFoundPlaces < sFoundPlaces) {
            QueryAddress(variable);
        }
    }

private:
    using Place = DataModel::Model::Place;
    using PathResults = std::vector<DataModel::Model::PathResult>;

    static void RequireAnswers(std::string_view path, const PathResults& results) {
        for (const auto& result : results) {
            Require(result.found == result.problem.empty(), "a path resolves or has a problem");
            Require(result.found || results.size() == 1, "there is one problem at most");
            Require(result.found ? result.resolvedLength == path.size()
                                 : result.resolvedLength <= path.size(),
                    "a path resolves as a whole");
        }
    }

    void QueryFirstLeaf(const DataModel::ModelObject& variable) {
        std::string firstPath;
        std::vector<Place> places;
        const std::uint64_t cutsBefore = Cuts();
        mLeaves.Walk(variable.id, [&](std::string_view path, const Place& place) {
            firstPath = places.empty() ? path : firstPath;
            if (path == firstPath) {
                places.push_back(place);
            }
        });
        if (places.empty()) {
            return;
        }
        QueryValue(places.front());
        const PathResults results = mModel.ResolvePaths(firstPath);
        RequireAnswers(firstPath, results);
        if (Cuts() == cutsBefore) {
            RequireKnownPlaces(results, places);
        }
    }

    [[nodiscard]] std::uint64_t Cuts() const {
        const DataModel::LeafCuts& cuts = mLeaves.Cuts();
        return cuts.arrays + cuts.wholes + (cuts.isExhausted ? 1 : 0);
    }

    /// Where the path of leaves leads to one of their kind, it is one of them: names that contain
    /// the separators of paths, and members of one name, may give several leaves the same path.
    static void RequireKnownPlaces(const PathResults& results, const std::vector<Place>& leaves) {
        for (const auto& result : results) {
            const Place& place = result.place;
            const Place& leaf = leaves.front();
            if (result.found && place.global == leaf.global && place.type == leaf.type &&
                place.indexedDimensions == leaf.indexedDimensions) {
                Require(std::ranges::find(leaves, place.address, &Place::address) != leaves.end(),
                        "the path of a leaf leads to its address");
            }
        }
    }

    void QueryValue(const Place& place) {
        using Origin = DataModel::ValueOrigin;
        const DataModel::PlaceValue value = mDecoder.InitialValue(place);
        Require(IsUtf8(value.text), "values are UTF-8");
        const std::uint64_t size = std::min(place.size, sInitialBytes);
        const std::vector<std::uint8_t> bytes = mModel.InitialBytes(place.address, size);
        Require(bytes.empty() || bytes.size() == size, "a range has all of its bytes or none");
        const bool hasNumber = !std::holds_alternative<std::monostate>(value.number);
        Require(!hasNumber || value.origin != Origin::Unknown, "what is unknown has no value");
        Require(!hasNumber || place.isBitField || !bytes.empty(), "a value comes from bytes");
        Require(value.origin != Origin::Cleared ||
                    std::ranges::count(bytes, 0) == std::ssize(bytes),
                "what is cleared is zero");
    }

    void QueryAddress(const DataModel::ModelObject& variable) {
        const std::uint64_t address = variable.address;
        const DataModel::ImageSection* const section = mModel.Image().SectionAt(address);
        Require(section == nullptr || (section->Holds(address) && IsUtf8(section->name)),
                "a section holds the address that it was found by");
        const DataModel::ObjectId nearest = mLookup.NearestBefore(address);
        Require(nearest != 0 && nearest <= variable.id && mModel.Object(nearest).address == address,
                "the nearest variable is the first at the address");
        bool isFound = false;
        for (const DataModel::AddressHit& hit : mLookup.Find(address)) {
            Require(IsUtf8(hit.path), "paths are UTF-8");
            Require(hit.offset == address - hit.place.address, "a hit holds the address");
            isFound |= hit.place.global == variable.id;
            ++mFoundPlaces;
        }
        Require(isFound, "a variable is found by its address");
    }

    const DataModel::Model& mModel;
    DataModel::LeafWalk mLeaves;
    DataModel::AddressLookup mLookup;
    DataModel::ValueDecoder mDecoder;
    std::size_t mFoundPlaces = 0;
};

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
    VariableQueries variables(model);
    for (DataModel::ObjectId id = 1; id <= last; ++id) {
        if (const DataModel::ModelObject object = model.Object(id);
            object.kind == DataModel::ObjectKind::Global) {
            variables.Query(object);
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
