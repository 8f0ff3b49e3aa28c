// Variables taken apart into what has no parts: the places that a host measures or calibrates one
// by one. A host makes one walk for a model and passes it variables. The walk reads the model and
// follows no pointer.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// How far a walk goes. Both limits are at least 1.
struct LeafLimits {
    /// Elements of each array, counted over all its dimensions.
    std::uint64_t arrayElements = 1000;
    /// Leaves of all variables of the walk together. It limits the time of a walk over a model
    /// whose types contain each other many times.
    std::uint64_t leaves = 1'000'000;
};

/// What a walk left out so far.
struct LeafCuts {
    /// Arrays of which only the first elements were delivered.
    std::uint64_t arrays = 0;
    /// Path of the first of these arrays.
    std::string firstArray;
    /// Places that were delivered whole although they have parts, since they contain themselves or
    /// are nested too deep.
    std::uint64_t wholes = 0;
    /// Path of the first of these places.
    std::string firstWhole;
    /// The limit of leaves was reached; later ones are missing.
    bool isExhausted = false;
};

/// Expands variables to leaves: base types, pointers, enums, types of which only the size is known,
/// bit fields, and classes and arrays without contents.
class BRINDLE_EXPORT LeafWalk {
public:
    /// @param path the name of the variable with the steps to the leaf, as `ResolvePath` takes it;
    ///     valid during the call
    /// @param place where the leaf lies
    using Visitor = std::function<void(std::string_view path, const Model::Place& place)>;

    /// @param model borrowed; must not change during the life of the walk
    explicit LeafWalk(const Model& model, const LeafLimits& limits = {});

    /// Visits all leaves of a global, in the order of their offsets; members of a union in the
    /// order of their delivery. Inherited and anonymous members come like own ones. An inherited
    /// member that a nearer member of the same name hides has its class name before it:
    /// "motor.Named::id".
    void Walk(ObjectId global, const Visitor& visit);

    /// Visits, in the same order, the places of a global that hold the byte at an address: leaves,
    /// or the innermost structure or array if the byte belongs to none of its parts. In an array
    /// only the element that holds the byte is visited. The limits of the walk don't apply; at most
    /// 1000 places are visited.
    void WalkTo(ObjectId global, std::uint64_t address, const Visitor& visit);

    /// A member of a class as the walk meets it.
    struct FlatMember {
        /// Type, size and bits of the member; `address` is its offset from the start of the class.
        Model::Place place;
        /// What a path adds for it: ".gain", or ".Named::id" for a hidden one.
        std::string step;
    };

    /// All members of a class, structure or union, inherited and anonymous ones among them, in the
    /// order in which `Walk` visits them. Valid as long as the walk lives.
    const std::vector<FlatMember>& Members(ObjectId type);

    /// What the walks of this object left out so far.
    [[nodiscard]] const LeafCuts& Cuts() const { return mCuts; }

private:
    struct Part;
    class Flattening;

    /// The byte that `WalkTo` looks for.
    struct Aim {
        std::uint64_t address = 0;
        std::uint64_t placesLeft = 0;
    };
    /// Half-open: [begin, end).
    struct ElementRange {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    void Begin(ObjectId global, const Visitor& visit);
    void Expand(const Model::Place& place, std::size_t depth);
    bool ExpandMembers(ObjectId type, const Model::Place& place, std::size_t depth);
    bool ExpandElements(ObjectId array, const Model::Place& place, std::size_t depth);
    bool EnterClass(ObjectId type, std::size_t depth);
    void Deliver(const Model::Place& place);
    [[nodiscard]] bool IsWanted(const Model::Place& place) const;
    ElementRange WantedElements(const Model::Place& array, std::uint64_t count,
                                std::uint64_t stride);
    [[nodiscard]] bool IsAtEnd() const;
    void NoteWhole();
    const std::vector<ObjectId>& OwnMembers(ObjectId type);

    const Model& mModel;
    LeafLimits mLimits;
    LeafCuts mCuts;
    const Visitor* mVisit = nullptr;
    /// Absent if all leaves are visited.
    std::optional<Aim> mAim;
    std::string mPath;
    /// Length of the variable's name in `mPath`.
    std::size_t mHeadLength = 0;
    /// Classes around the current place, outermost first.
    std::vector<ObjectId> mClasses;
    /// The members of each class, found out once, since arrays ask for them with each element.
    std::unordered_map<ObjectId, std::vector<FlatMember>> mMembers;
    std::unordered_map<ObjectId, std::vector<ObjectId>> mOwnMembers;
};

} // namespace Tessel::Norn::Brindle::DataModel
