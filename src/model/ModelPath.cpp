// The static answer to a path such as "motor.pid[2].gain". Implements `DataModel::ResolvePath`; it
// reads the model and never follows a pointer.
#include "model/DataModel.h"
#include "model/ModelStore.h"
#include "model/ScopeNames.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <limits>
#include <optional>
#include <system_error>
#include <unordered_set>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

using Place = DataModel::Place;
using PathResult = DataModel::PathResult;

/// Names may hold the characters that part a path, so that several of its beginnings are tried as
/// names of variables: up to this many, and for each this many ends of its scopes.
constexpr std::size_t sMostHeads = 64;
constexpr std::size_t sMostScopeEnds = 256;
constexpr std::string_view sSeparator = "::";

constexpr bool BeginsStep(char character) {
    return character == '.' || character == '[';
}

bool IsStepBorder(std::string_view text, std::size_t position) {
    return position == text.size() || BeginsStep(text[position]);
}

std::uint64_t SaturatedProduct(std::uint64_t left, std::uint64_t right) {
    const bool fits = left == 0 || right <= std::numeric_limits<std::uint64_t>::max() / left;
    return fits ? left * right : std::numeric_limits<std::uint64_t>::max();
}

/// Finds variables by what a host calls them.
class VariableFinder {
public:
    explicit VariableFinder(const ModelStore& store)
        : mStore(store) {}

    /// The first variable of this qualified name, else the first of this name in any scope.
    [[nodiscard]] ObjectId Find(std::string_view text) const {
        ObjectId found = FindInScopes(text, {});
        std::size_t end = text.size();
        for (std::size_t tries = 0; tries < sMostScopeEnds && end > 0; ++tries) {
            end = text.rfind(sSeparator, end - 1);
            if (end == std::string_view::npos) {
                break;
            }
            const ObjectId other =
                FindInScopes(text.substr(end + sSeparator.size()), text.substr(0, end));
            found = found == 0 || other == 0 ? std::max(found, other) : std::min(found, other);
        }
        return found != 0 ? found : FirstOfName(text);
    }

private:
    [[nodiscard]] ObjectId FirstOfName(std::string_view name) const {
        return name.empty() ? 0 : mStore.FindNamed(LookupKind::GlobalByName, name, 0);
    }

    [[nodiscard]] ObjectId FindInScopes(std::string_view name, std::string_view scopes) const {
        ObjectId found = 0;
        for (ObjectId id = FirstOfName(name); id != 0; id = mStore.At(id).detail) {
            // Behind the first of a name, the chain runs from the last to the second.
            if ((found == 0 || id < found) && IsInScopes(mStore, id, scopes)) {
                found = id;
            }
        }
        return found;
    }

    const ModelStore& mStore;
};

/// Finds members by name, inherited and anonymous ones included.
class MemberFinder {
public:
    struct Found {
        ObjectId member = 0;
        /// Offset of the member in the class where the search began.
        std::uint64_t offset = 0;
    };

    MemberFinder(const DataModel& model, const ModelStore& store)
        : mModel(model)
        , mStore(store) {}

    /// The member whose name `text` begins with, up to a step or its end: one of the class itself
    /// or its anonymous members, else one of the nearest base class.
    Found Find(ObjectId type, std::string_view text) {
        mPending.push_back({type, 0});
        while (!mPending.empty()) {
            const Part part = mPending.front();
            mPending.pop_front();
            if (!mSeen.insert(part.type).second) {
                continue;
            }
            if (const ObjectId member = FindOwn(part, text); member != 0) {
                return {member, part.offset + mStore.At(member).detail};
            }
            for (const BaseClass& base : mStore.BaseClasses(part.type)) {
                mPending.push_back({mModel.WithoutTypedefs(base.type), part.offset + base.offset});
            }
        }
        return {};
    }

private:
    /// A class or union within the class where the search began.
    struct Part {
        ObjectId type = 0;
        std::uint64_t offset = 0;
    };

    ObjectId FindOwn(const Part& part, std::string_view text) {
        ObjectId longest = 0;
        std::vector<Part> anonymousParts;
        for (ObjectId id = mStore.At(part.type).firstChild; id != 0;
             id = mStore.At(id).nextSibling) {
            if (!IsMember(id)) {
                continue;
            }
            const std::string_view name = mStore.NameOf(id);
            if (name.empty()) {
                const Record& record = mStore.At(id);
                anonymousParts.push_back(
                    {mModel.WithoutTypedefs(record.type), part.offset + record.detail});
            } else if (name.size() > mStore.NameOf(longest).size() && text.starts_with(name) &&
                       IsStepBorder(text, name.size())) {
                longest = id;
            }
        }
        mPending.insert(mPending.begin(), anonymousParts.begin(), anonymousParts.end());
        return longest;
    }

    [[nodiscard]] bool IsMember(ObjectId id) const {
        const ObjectKind kind = mStore.At(id).kind;
        return kind == ObjectKind::Member || kind == ObjectKind::UnionMember ||
               kind == ObjectKind::BitField;
    }

    const DataModel& mModel;
    const ModelStore& mStore;
    std::deque<Part> mPending;
    std::unordered_set<ObjectId> mSeen;
};

/// Walks from one variable along the steps of a path.
class PathWalk {
public:
    PathWalk(const DataModel& model, const ModelStore& store, std::string_view path)
        : mModel(model)
        , mStore(store)
        , mPath(path) {}

    PathResult Walk(ObjectId global, std::size_t headLength) {
        mResult.place.global = global;
        mResult.place.address = mStore.At(global).value;
        mResult.resolvedLength = headLength;
        SetType(mStore.At(global).type);
        std::size_t steps = 0;
        while (mResult.problem.empty() && mResult.resolvedLength < mPath.size()) {
            if (++steps > kLongestChain) {
                mResult.problem = "the path has too many steps";
            } else {
                TakeStep(mPath.substr(mResult.resolvedLength));
            }
        }
        mResult.found = mResult.problem.empty();
        return mResult;
    }

private:
    void TakeStep(std::string_view rest) {
        if (mResult.place.isBitField) {
            mResult.problem = "a bit field has no parts";
        } else if (rest.front() == '.') {
            TakeMember(rest.substr(1));
        } else if (rest.front() == '[') {
            TakeIndex(rest);
        } else {
            mResult.problem = R"(expected "." or "[")";
        }
    }

    void TakeMember(std::string_view rest) {
        const ObjectId type = mModel.WithoutTypedefs(mResult.place.type);
        const ObjectKind kind = mStore.At(type).kind;
        if (!IsClass(kind) && kind != ObjectKind::Union) {
            mResult.problem = NoMembersProblem(kind);
            return;
        }
        const MemberFinder::Found found = MemberFinder(mModel, mStore).Find(type, rest);
        if (found.member == 0) {
            const std::string_view name = rest.substr(0, rest.find_first_of(".["));
            mResult.problem = "no member named \"" + std::string(name) + "\"";
            return;
        }
        mResult.place.address += found.offset;
        mResult.resolvedLength += 1 + mStore.NameOf(found.member).size();
        SetType(mStore.At(found.member).type);
        SetBitField(mModel.Object(found.member));
    }

    static std::string NoMembersProblem(ObjectKind kind) {
        return kind == ObjectKind::Pointer ? "a pointer is not followed"
               : kind == ObjectKind::Array ? "an array has no members, only elements"
                                           : "what lies here has no members";
    }

    void TakeIndex(std::string_view rest) {
        const ObjectId array = mModel.WithoutTypedefs(mResult.place.type);
        if (!mStore.IsOfKind(array, ObjectKind::Array)) {
            mResult.problem = mStore.IsOfKind(array, ObjectKind::Pointer)
                                  ? "a pointer is not followed"
                                  : "what lies here has no elements";
            return;
        }
        const std::size_t end = rest.find(']');
        const std::optional<std::uint64_t> index = ParseIndex(rest.substr(1, end - 1));
        if (end == std::string_view::npos || !index) {
            mResult.problem = "an index is a decimal number in brackets";
            return;
        }
        ApplyIndex(array, *index);
        mResult.resolvedLength += mResult.problem.empty() ? end + 1 : 0;
    }

    static std::optional<std::uint64_t> ParseIndex(std::string_view digits) {
        std::uint64_t index = 0;
        const char* const limit = digits.data() + digits.size();
        const auto [end, error] = std::from_chars(digits.data(), limit, index);
        const bool isNumber = error == std::errc() && end == limit;
        return isNumber ? std::optional(index) : std::nullopt;
    }

    void ApplyIndex(ObjectId array, std::uint64_t index) {
        Place& place = mResult.place;
        const std::span<const std::uint32_t> dimensions = mStore.Dimensions(array);
        const std::uint64_t count =
            place.indexedDimensions < dimensions.size() ? dimensions[place.indexedDimensions] : 0;
        if (index >= count) {
            mResult.problem = "index " + std::to_string(index) + " is beyond the dimension of " +
                              std::to_string(count);
            return;
        }
        const std::uint64_t whole = place.indexedDimensions == 0 ? ArraySize(array) : place.size;
        const std::uint64_t partSize = whole / count;
        place.address += index * partSize;
        if (++place.indexedDimensions < dimensions.size()) {
            place.type = array;
            place.size = partSize;
            return;
        }
        SetType(mStore.At(array).type);
        place.size = place.size != 0 ? place.size : partSize;
    }

    /// The declared size where it is one of whole elements, else that of the elements together.
    [[nodiscard]] std::uint64_t ArraySize(ObjectId array) const {
        std::uint64_t elements = 1;
        for (const std::uint32_t dimension : mStore.Dimensions(array)) {
            elements = SaturatedProduct(elements, dimension);
        }
        const std::uint64_t declared = mStore.At(array).value;
        const bool isWhole = declared != 0 && elements != 0 && declared % elements == 0;
        return isWhole ? declared
                       : SaturatedProduct(elements, mModel.SizeOf(mStore.At(array).type));
    }

    void SetType(ObjectId type) {
        mResult.place.type = type;
        mResult.place.size = mModel.SizeOf(type);
        mResult.place.indexedDimensions = 0;
    }

    void SetBitField(const ModelObject& member) {
        mResult.place.isBitField = member.kind == ObjectKind::BitField;
        mResult.place.bitOffset = member.bitOffset;
        mResult.place.bitSize = member.bitSize;
    }

    const DataModel& mModel;
    const ModelStore& mStore;
    std::string_view mPath;
    PathResult mResult;
};

/// Lengths of the beginnings of a path that may name its variable, longest first: names that hold a
/// point or bracket win over members and elements.
std::vector<std::size_t> HeadLengths(std::string_view path) {
    std::vector<std::size_t> lengths;
    for (std::size_t position = 1; position < path.size() && lengths.size() < sMostHeads;
         ++position) {
        if (BeginsStep(path[position])) {
            lengths.push_back(position);
        }
    }
    lengths.push_back(path.size());
    std::reverse(lengths.begin(), lengths.end());
    return lengths;
}

} // namespace

DataModel::PathResult DataModel::ResolvePath(std::string_view path) const {
    PathResult best;
    best.problem = path.size() > kLongestText ? "the path is too long" : "no variable of this name";
    if (path.size() > kLongestText) {
        return best;
    }
    for (const std::size_t length : HeadLengths(path)) {
        const ObjectId global = VariableFinder(*mStore).Find(path.substr(0, length));
        if (global == 0) {
            continue;
        }
        PathResult result = PathWalk(*this, *mStore, path).Walk(global, length);
        if (result.found) {
            return result;
        }
        if (result.resolvedLength > best.resolvedLength) {
            best = std::move(result);
        }
    }
    return best;
}

} // namespace Tessel::Norn::Brindle::DataModel
