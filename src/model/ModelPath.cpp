// The static answer to a path such as "motor.pid[2].gain". Implements `Model::ResolvePath`; it
// reads the model and never follows a pointer.
#include "model/DataModel.h"
#include "model/ModelStore.h"
#include "model/NumberedNames.h"
#include "model/ScopeNames.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <optional>
#include <system_error>
#include <unordered_set>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

using Place = Model::Place;
using PathResult = Model::PathResult;

/// Names may contain the characters that separate a path, so that several prefixes of it are tried
/// as names of variables: up to this many, and for each this many ends of its scopes.
constexpr std::size_t sMostHeads = 64;
constexpr std::size_t sMostScopeEnds = 256;
constexpr std::string_view sPathSeparator = "::";

constexpr bool BeginsStep(char character) {
    return character == '.' || character == '[';
}

bool IsStepBorder(std::string_view text, std::size_t position) {
    return position == text.size() || BeginsStep(text[position]);
}

/// Finds variables by the name that a host uses.
class VariableFinder {
public:
    explicit VariableFinder(const ModelStore& store)
        : mStore(store) {}

    /// The variables of this qualified name, else those of this name in any scope, in the order of
    /// delivery; then those that have a number since they share the name.
    [[nodiscard]] std::vector<ObjectId> Find(std::string_view text) const {
        std::vector<ObjectId> found;
        AppendInScopes(text, {}, found);
        std::size_t end = text.size();
        for (std::size_t tries = 0; tries < sMostScopeEnds && end > 0; ++tries) {
            end = text.rfind(sPathSeparator, end - 1);
            if (end == std::string_view::npos) {
                break;
            }
            AppendInScopes(text.substr(end + sPathSeparator.size()), text.substr(0, end), found);
        }
        if (found.empty()) {
            ForEachOfName(text, [&found](ObjectId id) { found.push_back(id); });
        }
        std::ranges::sort(found);
        const std::size_t count = found.size();
        for (std::size_t position = 0; position < count; ++position) {
            AppendNumbered(mStore, found[position], found);
        }
        return found;
    }

private:
    template <typename Visitor>
    void ForEachOfName(std::string_view name, Visitor&& visit) const {
        const ObjectId first =
            name.empty() ? 0 : mStore.FindNamed(LookupKind::GlobalByName, name, 0);
        for (ObjectId id = first; id != 0; id = mStore.At(id).detail) {
            visit(id);
        }
    }

    void AppendInScopes(std::string_view name, std::string_view scopes,
                        std::vector<ObjectId>& found) const {
        ForEachOfName(name, [&](ObjectId id) {
            if (IsInScopes(mStore, id, scopes)) {
                found.push_back(id);
            }
        });
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
        /// Length of the text that named it.
        std::size_t length = 0;
    };

    MemberFinder(const Model& model, const ModelStore& store)
        : mModel(model)
        , mStore(store) {}

    /// The member whose name `text` begins with, up to the next step or the end: a member of the
    /// class itself or of its anonymous members, else of the nearest base class. The name of a base
    /// class before it, with "::", leads past nearer members.
    Found Find(ObjectId type, std::string_view text) {
        Found found;
        for (std::size_t bases = 0; bases < kLongestChain; ++bases) {
            const std::string_view rest = text.substr(found.length);
            const Match match = Search(type, rest);
            if (match.member != 0) {
                found.member = match.member;
                found.offset += match.part.offset + mStore.At(match.member).detail;
                found.length += mStore.NameOf(match.member).size();
                break;
            }
            if (match.part.type == 0) {
                break;
            }
            type = match.part.type;
            found.offset += match.part.offset;
            found.length += mStore.NameOf(type).size() + sPathSeparator.size();
        }
        return found;
    }

private:
    /// A class or union within the class where the search began.
    struct Part {
        ObjectId type = 0;
        std::uint64_t offset = 0;
    };
    /// A member and its part; or, without a member, the base class that is named.
    struct Match {
        ObjectId member = 0;
        Part part;
    };

    Match Search(ObjectId type, std::string_view text) {
        Part namedBase;
        mSeen.clear();
        mPending.assign(1, {type, 0});
        while (!mPending.empty()) {
            const Part part = mPending.front();
            mPending.pop_front();
            if (!mSeen.insert(part.type).second) {
                continue;
            }
            if (const ObjectId member = FindOwn(part, text); member != 0) {
                return {member, part};
            }
            for (const BaseClass& base : mModel.PlacedBaseClasses(part.type)) {
                const Part inside{mModel.WithoutTypedefs(base.type), part.offset + base.offset};
                mPending.push_back(inside);
                if (namedBase.type == 0 && IsNamed(inside.type, text)) {
                    namedBase = inside;
                }
            }
        }
        return {0, namedBase};
    }

    [[nodiscard]] bool IsNamed(ObjectId type, std::string_view text) const {
        const std::string_view name = mStore.NameOf(type);
        return !name.empty() && text.starts_with(name) &&
               text.substr(name.size()).starts_with(sPathSeparator);
    }

    ObjectId FindOwn(const Part& part, std::string_view text) {
        ObjectId longest = 0;
        std::vector<Part> anonymousParts;
        for (ObjectId id = mStore.FirstIn(part.type); id != 0; id = mStore.NextIn(id)) {
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
        const ObjectKind kind = mStore.KindOf(id);
        return kind == ObjectKind::Member || kind == ObjectKind::UnionMember ||
               kind == ObjectKind::BitField;
    }

    const Model& mModel;
    const ModelStore& mStore;
    std::deque<Part> mPending;
    std::unordered_set<ObjectId> mSeen;
};

/// Walks from one variable along the steps of a path.
class PathWalk {
public:
    PathWalk(const Model& model, const ModelStore& store, std::string_view path)
        : mModel(model)
        , mStore(store)
        , mPath(path) {}

    PathResult Walk(ObjectId global, std::size_t headLength) {
        mResult.place.global = global;
        mResult.place.address = mStore.At(global).value;
        mResult.headLength = headLength;
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
            mResult.problem = R"("." or "[" is expected)";
        }
    }

    void TakeMember(std::string_view rest) {
        const ObjectId type = mModel.WithoutTypedefs(mResult.place.type);
        const ObjectKind kind = mStore.KindOf(type);
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
        mResult.resolvedLength += 1 + found.length;
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
        if (count == 0) {
            mResult.problem = "the file doesn't state how many elements there are";
            return;
        }
        if (index >= count) {
            mResult.problem = "index " + std::to_string(index) + " is beyond the dimension of " +
                              std::to_string(count);
            return;
        }
        std::uint64_t partSize = mModel.ElementStride(array);
        for (const std::uint32_t inner : dimensions.subspan(place.indexedDimensions + 1)) {
            partSize *= inner;
        }
        place.address += index * partSize;
        if (++place.indexedDimensions < dimensions.size()) {
            place.type = array;
            place.size = partSize;
            return;
        }
        SetType(mStore.At(array).type);
        place.size = place.size != 0 ? place.size : partSize;
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

    const Model& mModel;
    const ModelStore& mStore;
    std::string_view mPath;
    PathResult mResult;
};

/// Lengths of the prefixes of a path that may name its variable, longest first: names that contain
/// a point or bracket win over members and elements.
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

Model::PathResult Model::ResolvePath(std::string_view path) const {
    return ResolvePaths(path).front();
}

std::vector<Model::PathResult> Model::ResolvePaths(std::string_view path) const {
    PathResult best;
    best.problem = path.size() > kLongestText ? "the path is too long" : "no variable of this name";
    if (path.size() > kLongestText) {
        return {best};
    }
    std::vector<PathResult> results;
    for (const std::size_t length : HeadLengths(path)) {
        for (const ObjectId global : VariableFinder(*mStore).Find(path.substr(0, length))) {
            PathResult result = PathWalk(*this, *mStore, path).Walk(global, length);
            if (result.found) {
                results.push_back(std::move(result));
            } else if (result.resolvedLength > best.resolvedLength) {
                best = std::move(result);
            }
        }
        if (!results.empty()) {
            return results;
        }
    }
    return {best};
}

} // namespace Tessel::Norn::Brindle::DataModel
