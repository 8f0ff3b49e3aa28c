// The walk over the leaves of a variable. What makes it more than a recursion over members is the
// flattening of a class: members of base classes and of anonymous members are named like own ones.
//
//     struct Id    { int id; };                                       offset   step of the path
//     struct Named : Id { int id; char tag; };                           0     .Id::id
//     struct Motor : Named {                                             4     .Named::id
//         union { float gain; int raw; };                                8     .tag
//         int id;                                                       12     .gain, .raw
//     };                                                                16     .id
//
// Flattening visits the class itself, then its anonymous members, then its base classes, nearest
// first. The first member of a name takes the plain name. A later one is hidden, as in C++, and has
// the name of its class before its own. In the end the members are sorted by offset. A walk
// flattens each class once, however many elements of an array have it.
#include "model/LeafWalk.h"

#include "model/ElementIndices.h"
#include "model/PlaceBytes.h"

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_set>
#include <utility>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

using Place = Model::Place;

/// Beyond these limits, which no real variable reaches, a place is delivered whole.
constexpr std::size_t sDeepestLeaf = 100;
constexpr std::size_t sLongestSteps = 4096;
constexpr std::size_t sMostParts = 1000;
/// Places that hold one byte.
constexpr std::uint64_t sMostAtOnce = 1000;
/// Characters that an index takes at least.
constexpr std::size_t sShortestIndex = 3;

constexpr bool HasMembers(ObjectKind kind) {
    return kind == ObjectKind::Class || kind == ObjectKind::Struct || kind == ObjectKind::Union;
}

} // namespace

/// A class or union whose members count as those of the class being flattened: that class itself,
/// its anonymous members, its base classes, and their base classes.
struct LeafWalk::Part {
    ObjectId type = 0;
    std::uint64_t offset = 0;
    /// Index of the part that has this one as a base class or anonymous member.
    std::size_t derived = 0;
    bool isBase = false;
    /// Prefix that makes a hidden member of this part addressable, separator included; empty if
    /// nothing does.
    std::string qualifier;
};

/// Makes the list of all members of one class, in the order of their offsets.
class LeafWalk::Flattening {
public:
    explicit Flattening(LeafWalk& walk)
        : mWalk(walk)
        , mModel(walk.mModel) {}

    std::vector<FlatMember> Flatten(ObjectId type) {
        mParts.push_back({type, 0, 0, false, {}});
        mPending.push_back(0);
        while (!mPending.empty()) {
            const std::size_t part = mPending.front();
            mPending.pop_front();
            AddMembers(part);
            for (const BaseClass& base : mModel.PlacedBaseClasses(mParts[part].type)) {
                AddBase(part, base);
            }
        }
        std::ranges::stable_sort(mMembers, {},
                                 [](const FlatMember& member) { return member.place.address; });
        return std::move(mMembers);
    }

private:
    void AddMembers(std::size_t part) {
        std::vector<std::size_t> anonymousParts;
        std::vector<std::string_view> names;
        for (const ObjectId id : mWalk.OwnMembers(mParts[part].type)) {
            const ModelObject member = mModel.Object(id);
            if (!member.name.empty()) {
                AddMember(part, member);
                names.push_back(member.name);
            } else if (const ObjectId type = mModel.WithoutTypedefs(member.type);
                       HasMembers(mModel.Object(type).kind) && IsNew(type, part)) {
                anonymousParts.push_back(mParts.size());
                mParts.push_back({type, mParts[part].offset + member.offset, part, false, {}});
            }
        }
        mNames.insert(names.begin(), names.end());
        mPending.insert(mPending.begin(), anonymousParts.begin(), anonymousParts.end());
    }

    void AddMember(std::size_t part, const ModelObject& member) {
        FlatMember flat;
        flat.step = ".";
        if (mNames.contains(member.name)) {
            flat.step += mParts[part].qualifier;
        }
        flat.step += member.name;
        flat.place.type = member.type;
        flat.place.size = mModel.SizeOf(member.type);
        flat.place.address = mParts[part].offset + member.offset;
        flat.place.isBitField = member.kind == ObjectKind::BitField;
        flat.place.bitOffset = member.bitOffset;
        flat.place.bitSize = member.bitSize;
        mMembers.push_back(std::move(flat));
    }

    void AddBase(std::size_t part, const BaseClass& base) {
        const ObjectId type = mModel.WithoutTypedefs(base.type);
        const std::string_view name = mModel.Object(type).name;
        if (!HasMembers(mModel.Object(type).kind) || !IsNew(type, part)) {
            return;
        }
        // A second base class of the same name is found only through the class derived from it.
        const bool isFirst = mBaseNames.insert(name).second;
        std::string qualifier;
        if (!name.empty()) {
            qualifier = (isFirst ? std::string() : mParts[part].qualifier).append(name) + "::";
        }
        mPending.push_back(mParts.size());
        mParts.push_back(
            {type, mParts[part].offset + base.offset, part, true, std::move(qualifier)});
    }

    /// False for a class that contains itself, and beyond the limit of parts.
    [[nodiscard]] bool IsNew(ObjectId type, std::size_t within) const {
        while (within != 0 && mParts[within].type != type) {
            within = mParts[within].derived;
        }
        return mParts[within].type != type && mParts.size() < sMostParts;
    }

    LeafWalk& mWalk;
    const Model& mModel;
    std::vector<Part> mParts;
    std::deque<std::size_t> mPending;
    std::vector<FlatMember> mMembers;
    std::unordered_set<std::string_view> mNames;
    std::unordered_set<std::string_view> mBaseNames;
};

LeafWalk::LeafWalk(const Model& model, const LeafLimits& limits)
    : mModel(model)
    , mLimits(limits) {}

void LeafWalk::Walk(ObjectId global, const Visitor& visit) {
    mAim.reset();
    Begin(global, visit);
}

void LeafWalk::WalkTo(ObjectId global, std::uint64_t address, const Visitor& visit) {
    mAim = Aim{address, sMostAtOnce};
    Begin(global, visit);
}

void LeafWalk::Begin(ObjectId global, const Visitor& visit) {
    const ModelObject variable = mModel.Object(global);
    mVisit = &visit;
    mClasses.clear();
    mPath = mModel.QualifiedName(global);
    mHeadLength = mPath.size();
    Place place;
    place.global = global;
    place.type = variable.type;
    place.address = variable.address;
    place.size = mModel.SizeOf(variable.type);
    Expand(place, 0);
}

// Calls itself through members and elements, no deeper than sDeepestLeaf.
void LeafWalk::Expand(const Place& place, std::size_t depth) { // NOLINT(misc-no-recursion)
    const ObjectId type = mModel.WithoutTypedefs(place.type);
    const ObjectKind kind = mModel.Object(type).kind;
    const bool mayHaveParts = type != 0 && !place.isBitField && !IsAtEnd();
    if (mayHaveParts && HasMembers(kind) && ExpandMembers(type, place, depth)) {
        return;
    }
    if (mayHaveParts && kind == ObjectKind::Array && ExpandElements(type, place, depth)) {
        return;
    }
    Deliver(place);
}

// NOLINTNEXTLINE(misc-no-recursion)
bool LeafWalk::ExpandMembers(ObjectId type, const Place& place, std::size_t depth) {
    if (Members(type).empty() || !EnterClass(type, depth)) {
        return false;
    }
    const std::size_t length = mPath.size();
    bool isAnyWanted = false;
    for (const FlatMember& member : Members(type)) {
        Place inside = member.place;
        inside.global = place.global;
        inside.address += place.address;
        if (IsAtEnd()) {
            break;
        }
        if (IsWanted(inside)) {
            isAnyWanted = true;
            mPath += member.step;
            Expand(inside, depth + 1);
            mPath.resize(length);
        }
    }
    mClasses.pop_back();
    return isAnyWanted;
}

// NOLINTNEXTLINE(misc-no-recursion)
bool LeafWalk::ExpandElements(ObjectId array, const Place& place, std::size_t depth) {
    const std::uint64_t count = mModel.ElementCount(array);
    const std::span<const std::uint32_t> dimensions = mModel.Dimensions(array);
    const std::size_t length = mPath.size();
    if (count == 0) {
        return false;
    }
    if (depth == sDeepestLeaf ||
        length - mHeadLength + sShortestIndex * dimensions.size() > sLongestSteps) {
        NoteWhole();
        return false;
    }
    Place element = place;
    element.type = mModel.Object(array).type;
    const std::uint64_t stride = mModel.ElementStride(array);
    const std::uint64_t ownSize = mModel.SizeOf(element.type);
    element.size = ownSize != 0 ? ownSize : stride;
    const ElementRange wanted = WantedElements(place, count, stride);
    bool isAnyWanted = false;
    for (std::uint64_t index = wanted.begin; index < wanted.end && !IsAtEnd(); ++index) {
        element.address = place.address + index * stride;
        if (IsWanted(element)) {
            isAnyWanted = true;
            AppendElementIndices(mPath, index, dimensions);
            Expand(element, depth + 1);
            mPath.resize(length);
        }
    }
    return isAnyWanted;
}

bool LeafWalk::IsWanted(const Place& place) const {
    return !mAim || BytesOf(place, mModel.Image().byteOrder).Holds(mAim->address);
}

LeafWalk::ElementRange LeafWalk::WantedElements(const Place& array, std::uint64_t count,
                                                std::uint64_t stride) {
    if (mAim) {
        const std::uint64_t index =
            stride == 0 ? count : std::min(count, (mAim->address - array.address) / stride);
        return {index, std::min(index + 1, count)};
    }
    if (count > mLimits.arrayElements && mCuts.arrays++ == 0) {
        mCuts.firstArray = mPath;
    }
    return {0, std::min(count, mLimits.arrayElements)};
}

bool LeafWalk::IsAtEnd() const {
    return mAim ? mAim->placesLeft == 0 : mCuts.isExhausted;
}

bool LeafWalk::EnterClass(ObjectId type, std::size_t depth) {
    const bool containsItself = std::ranges::find(mClasses, type) != mClasses.end();
    if (containsItself || depth == sDeepestLeaf || mPath.size() - mHeadLength > sLongestSteps) {
        NoteWhole();
        return false;
    }
    mClasses.push_back(type);
    return true;
}

void LeafWalk::NoteWhole() {
    if (mCuts.wholes++ == 0) {
        mCuts.firstWhole = mPath;
    }
}

void LeafWalk::Deliver(const Place& place) {
    std::uint64_t& left = mAim ? mAim->placesLeft : mLimits.leaves;
    if (left == 0) {
        mCuts.isExhausted = mCuts.isExhausted || !mAim;
        return;
    }
    --left;
    (*mVisit)(mPath, place);
}

const std::vector<LeafWalk::FlatMember>& LeafWalk::Members(ObjectId type) {
    const auto [known, isNew] = mMembers.try_emplace(type);
    if (isNew) {
        known->second = Flattening(*this).Flatten(type);
    }
    return known->second;
}

const std::vector<ObjectId>& LeafWalk::OwnMembers(ObjectId type) {
    const auto [known, isNew] = mOwnMembers.try_emplace(type);
    if (isNew) {
        mModel.ForEachIn(type, [&members = known->second](const ModelObject& object) {
            if (object.kind == ObjectKind::Member || object.kind == ObjectKind::UnionMember ||
                object.kind == ObjectKind::BitField) {
                members.push_back(object.id);
            }
        });
    }
    return known->second;
}

} // namespace Tessel::Norn::Brindle::DataModel
