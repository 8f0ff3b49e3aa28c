#include "a2l/SymbolIndex.h"

#include "NearNames.h"
#include "ObjectKinds.h"
#include "Phrases.h"
#include "SymbolScope.h"

#include "a2l/Identifiers.h"
#include "a2l/Numbers.h"
#include "core/KeyMixing.h"
#include "demangle/Demangler.h"
#include "model/ElementIndices.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>
#include <span>
#include <system_error>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

constexpr std::string_view sSeparator = "::";
constexpr auto sNoUnit = std::numeric_limits<std::uint32_t>::max();
/// How many prefixes of a symbol are tried as names of variables.
constexpr std::size_t sMostHeads = 64;
/// So many variables that share a name are enough to call a symbol ambiguous.
constexpr std::size_t sMostSharers = 8;
/// The answer for a symbol with so many places is kept.
constexpr std::size_t sManyPlaces = 16;
constexpr std::size_t sMostSteps = 1000;
constexpr std::size_t sMostTypes = 256;
constexpr std::size_t sLongestSymbol = 16 * 1024;

/// Length of an index such as "_2_" at the start of a text; 0 if there is none.
std::size_t UnderscoreIndexLength(std::string_view text) {
    if (!text.starts_with('_')) {
        return 0;
    }
    const auto* const digits = std::ranges::find_if_not(text.substr(1), IsDigit);
    const auto end = static_cast<std::size_t>(digits - text.begin());
    return end > 1 && end < text.size() && text[end] == '_' ? end + 1 : 0;
}

/// True where a name may end: at the end of the symbol or where a step begins.
bool IsBorder(std::string_view rest) {
    while (!rest.empty() && rest.front() != '.' && rest.front() != '[') {
        const std::size_t length = UnderscoreIndexLength(rest);
        if (length == 0) {
            return false;
        }
        rest.remove_prefix(length);
    }
    return true;
}

/// Positions where a name at the start of a text may end, longest first.
std::vector<std::size_t> NameEnds(std::string_view text) {
    std::vector<std::size_t> ends;
    for (std::size_t position = 1; position < text.size() && ends.size() < sMostHeads; ++position) {
        const char character = text[position];
        const bool mayEnd = character == '.' || character == '[' || character == '_';
        if (mayEnd && IsBorder(text.substr(position))) {
            ends.push_back(position);
        }
    }
    ends.push_back(text.size());
    std::ranges::reverse(ends);
    return ends;
}

std::optional<std::uint64_t> ParseIndex(std::string_view digits) {
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    digits.remove_prefix(isHexadecimal ? 2 : 0);
    std::uint64_t index = 0;
    const char* const limit = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), limit, index, isHexadecimal ? 16 : 10);
    const bool isNumber = error == std::errc() && end == limit;
    return isNumber ? std::optional(index) : std::nullopt;
}

/// Key of a unit's name: without folders, and with "_" for the point, as the reader names units.
std::string UnitKey(std::string_view unit) {
    const std::size_t folders = unit.find_last_of("/\\");
    std::string key(folders == std::string_view::npos ? unit : unit.substr(folders + 1));
    std::ranges::replace(key, '.', '_');
    return key;
}

std::string WithoutExtension(const std::string& key) {
    const std::size_t extension = key.rfind('_');
    return extension == std::string::npos ? std::string() : key.substr(0, extension);
}

std::string Hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits{};
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return "0x" + std::string(digits.data(), end);
}

/// Key that is equal for similar names.
std::string Folded(std::string_view name) {
    std::string folded;
    for (const char character : name) {
        if (character != '_') {
            folded += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        }
    }
    return folded;
}

std::string Demangled(std::string_view name) {
    constexpr int longest = 2047;
    Reader::DWARF::VDemanglingOptions options;
    options.mIsTaskingProducer = name.starts_with("_Z");
    std::array<char, longest + 1> text{};
    bool isDemangled = false;
    const std::string terminated(name);
    const bool hasText =
        name.size() <= longest &&
        Reader::DWARF::DemangleName(text.data(), longest, terminated.c_str(),
                                    static_cast<int>(name.size()), isDemangled, options);
    return hasText && isDemangled ? text.data() : "";
}

} // namespace

/// Walks from one variable along the steps of a symbol.
class SymbolIndex::Steps {
public:
    Steps(const SymbolIndex& index, ObjectId global)
        : mIndex(index)
        , mModel(index.mModel) {
        mPlace.global = global;
        mPlace.address = mModel.Object(global).address;
        SetType(mModel.Object(global).type);
    }

    /// True if all steps lead to a place.
    bool Take(std::string_view steps) {
        mRest = steps;
        for (std::size_t count = 0; count < sMostSteps && mProblem.empty() && !mRest.empty();
             ++count) {
            TakeStep();
        }
        return mProblem.empty() && mRest.empty();
    }

    [[nodiscard]] const Place& Where() const { return mPlace; }
    /// The steps that could not be followed.
    [[nodiscard]] std::string_view Rest() const { return mRest; }
    [[nodiscard]] std::string Problem() const {
        return mProblem.empty() ? Phrased("the symbol has too many steps") : mProblem;
    }

private:
    void TakeStep() {
        const ObjectId type = mModel.WithoutTypedefs(mPlace.type);
        const ObjectKind kind = mModel.Object(type).kind;
        if (mPlace.isBitField) {
            mProblem = Phrased("a bit field has no parts");
        } else if (kind == ObjectKind::Array) {
            TakeElement(type);
        } else if (HasMembers(kind)) {
            TakeMember(type);
        } else if (kind == ObjectKind::Pointer) {
            mProblem = Phrased("a pointer is not followed");
        } else {
            mProblem = Phrased("what lies here has no parts");
        }
    }

    void TakeElement(ObjectId array) {
        // "[2]", "[1,2]", "._2_", "_2_" and ".2"
        std::size_t length = 0;
        std::string_view digits;
        const std::string_view name =
            mRest.starts_with('.') ? mRest.substr(1) : std::string_view(mRest);
        if (mRest.starts_with('[')) {
            const std::size_t end = std::min(mRest.find(']'), mRest.size());
            const std::size_t comma = std::min(mRest.find(','), end);
            digits = mRest.substr(1, comma - 1);
            length = comma < end ? comma : end + 1;
        } else if (mRest.starts_with(',')) {
            const std::size_t end = std::min({mRest.find(']'), mRest.find(',', 1), mRest.size()});
            digits = mRest.substr(1, end - 1);
            length = end < mRest.size() && mRest[end] == ']' ? end + 1 : end;
        } else if (const std::size_t underscored = UnderscoreIndexLength(name); underscored > 0) {
            digits = name.substr(1, underscored - 2);
            length = mRest.size() - name.size() + underscored;
        } else if (mRest.starts_with('.')) {
            digits = name.substr(0, std::min(name.find_first_of(".[_"), name.size()));
            length = 1 + digits.size();
        }
        const std::optional<std::uint64_t> index = ParseIndex(digits);
        if (!index || length > mRest.size()) {
            mProblem = Phrased("an array has no members, only elements");
            return;
        }
        ApplyIndex(array, *index);
        mRest.remove_prefix(mProblem.empty() ? length : 0);
    }

    void ApplyIndex(ObjectId array, std::uint64_t index) {
        const std::span<const std::uint32_t> dimensions = mModel.Dimensions(array);
        const std::uint64_t count =
            mPlace.indexedDimensions < dimensions.size() ? dimensions[mPlace.indexedDimensions] : 0;
        if (count == 0) {
            mProblem = Phrased("the file doesn't state how many elements there are");
            return;
        }
        if (index >= count) {
            mProblem = Phrased("index {} is beyond the dimension of {}", std::to_string(index),
                               std::to_string(count));
            return;
        }
        std::uint64_t partSize = mModel.ElementStride(array);
        for (const std::uint32_t inner : dimensions.subspan(mPlace.indexedDimensions + 1)) {
            partSize *= inner;
        }
        mPlace.address += index * partSize;
        if (++mPlace.indexedDimensions < dimensions.size()) {
            mPlace.type = array;
            mPlace.size = partSize;
            return;
        }
        SetType(mModel.Object(array).type);
        mPlace.size = mPlace.size != 0 ? mPlace.size : partSize;
    }

    void TakeMember(ObjectId type) {
        if (!mRest.starts_with('.')) {
            mProblem = Phrased("a structure has no elements, only members");
            return;
        }
        const std::string_view text = mRest.substr(1);
        const MemberTable& members = mIndex.MembersOf(type);
        // Nearly always the name ends at the next sign, but names may contain such signs.
        const std::size_t nearest = std::min(text.find_first_of(".["), text.size());
        std::size_t length = nearest;
        const Member* member = members.Find(text.substr(0, nearest));
        for (const std::size_t end :
             member == nullptr ? NameEnds(text) : std::vector<std::size_t>()) {
            if (member == nullptr) {
                member = members.Find(text.substr(0, end));
                length = end;
            }
        }
        if (member == nullptr) {
            mProblem = Phrased("no member named '{}'", text.substr(0, nearest));
            return;
        }
        mRest.remove_prefix(1 + length);
        mPlace.address += member->offset;
        SetType(member->type);
        mPlace.isBitField = member->isBitField;
        mPlace.bitOffset = member->bitOffset;
        mPlace.bitSize = member->bitSize;
    }

    void SetType(ObjectId type) {
        mPlace.type = type;
        mPlace.size = mModel.SizeOf(type);
        mPlace.indexedDimensions = 0;
        mPlace.isBitField = false;
    }

    const SymbolIndex& mIndex;
    const Model& mModel;
    Place mPlace;
    std::string_view mRest;
    std::string mProblem;
};

SymbolIndex::SymbolIndex(const Model& model, UnderscoreHabit habit)
    : mModel(model)
    , mHabit(habit)
    , mSharedNames(model) {
    model.ForEach(ObjectKind::Global,
                  [this](const ModelObject& global) { mGlobals.push_back(global.id); });
    mNextOfName.assign(mGlobals.size(), sNoUnit);
    mFirstOfName.reserve(mGlobals.size());
    // In reverse, so that each list is in the order of delivery.
    for (std::size_t position = mGlobals.size(); position-- > 0;) {
        const ModelObject global = model.Object(mGlobals[position]);
        const auto [first, isNew] =
            mFirstOfName.try_emplace(global.name, static_cast<std::uint32_t>(position));
        if (!isNew) {
            mNextOfName[position] = first->second;
            first->second = static_cast<std::uint32_t>(position);
        }
        mByAddress.emplace_back(global.address, global.id);
    }
    std::ranges::sort(mByAddress);
    model.ForEach(ObjectKind::CompileUnit, [this](const ModelObject& unit) {
        const std::string key = UnitKey(unit.name);
        mUnits[key].push_back(unit.id);
        if (const std::string shorter = WithoutExtension(key); !shorter.empty()) {
            mUnits[shorter].push_back(unit.id);
        }
    });
}

SymbolIndex::Answer SymbolIndex::Find(std::string_view symbol) const {
    Answer answer;
    answer.problem = Phrased(symbol.size() > sLongestSymbol ? Phrase("the symbol is too long")
                                                            : Phrase("no variable of this name"));
    if (symbol.empty() || symbol.size() > sLongestSymbol) {
        return answer;
    }
    if (!mOfMany.empty()) {
        if (const auto known = mOfMany.find(std::string(symbol)); known != mOfMany.end()) {
            return known->second;
        }
    }
    const std::vector<Place> places = PlacesInAnySpelling(symbol, answer);
    Choose(places, answer);
    if (places.size() >= sManyPlaces) {
        answer.resolved = {};
        mOfMany.emplace(symbol, answer);
    }
    return answer;
}

std::vector<SymbolIndex::Place> SymbolIndex::PlacesInAnySpelling(std::string_view symbol,
                                                                 Answer& answer) const {
    std::vector<Place> places = Places({symbol, {}}, Spelling::Plain, answer);
    const auto tryAlso = [&](const Wanted& wanted, Spelling spelling) {
        if (places.empty()) {
            places = Places(wanted, spelling, answer);
        }
    };
    if (const std::size_t at = symbol.rfind('@'); at != std::string_view::npos) {
        tryAlso({symbol.substr(0, at), symbol.substr(at + 1)}, Spelling::Plain);
    }
    if (const std::size_t brace = symbol.rfind('{');
        brace != std::string_view::npos && symbol.ends_with('}')) {
        tryAlso({symbol.substr(0, brace), symbol.substr(brace + 1, symbol.size() - brace - 2)},
                Spelling::Plain);
    }
    tryAlso({symbol, {}}, Spelling::UnitInName);
    tryAlso({symbol, {}}, Spelling::ScopesByPoints);
    tryAlso({symbol, {}}, Spelling::Identifier);
    // Spellings of linkers. Their errors would mean nothing to a person.
    Answer unused;
    if (places.empty() && mHabit == UnderscoreHabit::InFront && symbol.starts_with('_')) {
        places = Places({symbol.substr(1), {}}, Spelling::Plain, unused);
    }
    if (places.empty()) {
        const std::size_t end = std::min(symbol.find_first_of(".["), symbol.size());
        const std::string readable = Demangled(symbol.substr(0, end));
        if (!readable.empty()) {
            places =
                Places({readable + std::string(symbol.substr(end)), {}}, Spelling::Plain, unused);
        }
    }
    return places;
}

std::vector<SymbolIndex::Place> SymbolIndex::Places(const Wanted& wanted, Spelling spelling,
                                                    Answer& answer) const {
    std::vector<Place> places;
    for (const std::size_t end : NameEnds(wanted.symbol)) {
        const std::string_view head = wanted.symbol.substr(0, end);
        for (const ObjectId global : OnePerName(Heads(head, wanted.unit, spelling))) {
            const std::span<const ObjectId> sharers = mSharedNames.SharersOf(global);
            const std::size_t enough = places.size() + sMostSharers;
            for (const ObjectId each : sharers.empty() ? std::span(&global, 1) : sharers) {
                if (places.size() == enough) {
                    break;
                }
                Steps steps(*this, each);
                if (steps.Take(wanted.symbol.substr(end))) {
                    places.push_back(steps.Where());
                } else if (const std::size_t length = wanted.symbol.size() - steps.Rest().size();
                           length > answer.resolved.size()) {
                    answer.resolved = wanted.symbol.substr(0, length);
                    answer.resolvedType = steps.Where().type;
                    answer.problem = steps.Problem();
                }
            }
        }
        if (!places.empty()) {
            break;
        }
    }
    return places;
}

std::vector<DataModel::ObjectId>
SymbolIndex::OnePerName(const std::vector<ObjectId>& variables) const {
    std::vector<ObjectId> different;
    std::unordered_set<ObjectId> firstSharers;
    for (const ObjectId variable : variables) {
        const std::span<const ObjectId> sharers = mSharedNames.SharersOf(variable);
        if (sharers.empty() || firstSharers.insert(sharers.front()).second) {
            different.push_back(variable);
        }
    }
    return different;
}

void SymbolIndex::Choose(const std::vector<Place>& places, Answer& answer) const {
    if (places.empty()) {
        return;
    }
    const auto isLike = [](const Place& one) {
        return [&one](const Place& other) {
            return one.address == other.address && one.bitOffset == other.bitOffset;
        };
    };
    answer.outcome = Outcome::Found;
    answer.place = places.front();
    if (std::ranges::all_of(places, isLike(places.front()))) {
        return;
    }
    // A variable of the whole program takes precedence over those of single units.
    std::vector<Place> shared;
    std::ranges::copy_if(places, std::back_inserter(shared), [this](const Place& place) {
        return mModel.CompileUnitOf(place.global) == 0;
    });
    if (!shared.empty() && std::ranges::all_of(shared, isLike(shared.front()))) {
        answer.place = shared.front();
        return;
    }
    constexpr std::size_t most = 4;
    answer.outcome = Outcome::Ambiguous;
    std::string names;
    for (std::size_t index = 0; index < std::min(places.size(), most); ++index) {
        const ObjectId unit = mModel.CompileUnitOf(places[index].global);
        names.append(index == 0 ? "" : ", ")
            .append(mModel.Object(unit).name)
            .append(unit == 0 ? "" : "::")
            .append(Phrased("{} at {}", mModel.QualifiedName(places[index].global),
                            Hexadecimal(places[index].address)));
    }
    names.append(places.size() > most ? ", ..." : "");
    answer.problem =
        HaveDifferentNames(places)
            ? Phrased("several variables have this name: {}", names)
            : Phrased("several variables have this name, and no symbol tells them apart: {}; give "
                      "them different names in the source",
                      names);
}

bool SymbolIndex::HaveDifferentNames(const std::vector<Place>& places) const {
    std::unordered_map<std::string, ObjectId> variables;
    return std::ranges::all_of(places, [&](const Place& place) {
        std::string name = mModel.QualifiedName(place.global);
        if (std::string plain = mSharedNames.WithoutNumber(place.global, name); !plain.empty()) {
            name = std::move(plain);
        }
        name.append(1, '\0').append(mModel.Object(mModel.CompileUnitOf(place.global)).name);
        return variables.try_emplace(std::move(name), place.global).first->second == place.global;
    });
}

std::vector<DataModel::ObjectId> SymbolIndex::Heads(std::string_view head, std::string_view unit,
                                                    Spelling spelling) const {
    if (!unit.empty()) {
        return VariablesOfUnit(head, unit, false);
    }
    switch (spelling) {
    case Spelling::Plain:
        return Variables(head);
    case Spelling::UnitInName:
        return VariablesWithUnitInName(head);
    case Spelling::Identifier:
        return VariablesOfIdentifier(head);
    case Spelling::ScopesByPoints:
        break;
    }
    if (head.find('.') == std::string_view::npos) {
        return {};
    }
    std::string scoped;
    for (const char character : head) {
        if (character == '.') {
            scoped += sSeparator;
        } else {
            scoped += character;
        }
    }
    return OfQualifiedName(scoped);
}

std::vector<DataModel::ObjectId> SymbolIndex::OfName(std::string_view ownName) const {
    std::vector<ObjectId> found;
    const auto first = mFirstOfName.find(ownName);
    std::uint32_t position = first == mFirstOfName.end() ? sNoUnit : first->second;
    for (; position != sNoUnit; position = mNextOfName[position]) {
        found.push_back(mGlobals[position]);
    }
    return found;
}

std::vector<DataModel::ObjectId> SymbolIndex::OfQualifiedName(std::string_view name) const {
    if (name.starts_with(sSeparator)) {
        name.remove_prefix(sSeparator.size());
    }
    // Namespaces in each other may hold thousands of variables of one own name, with long qualified
    // names: each is built only once.
    const Brindle::SeededHash hash;
    if (mByQualifiedName.empty()) {
        mByQualifiedName.reserve(mGlobals.size());
        for (const ObjectId global : mGlobals) {
            mByQualifiedName.emplace_back(hash(mModel.QualifiedName(global)), global);
        }
        std::ranges::sort(mByQualifiedName);
    }
    std::vector<ObjectId> found;
    const std::pair<std::uint64_t, ObjectId> first(hash(name), 0);
    for (auto place = std::ranges::lower_bound(mByQualifiedName, first);
         place != mByQualifiedName.end() && place->first == first.first; ++place) {
        if (mModel.QualifiedName(place->second) == name) {
            found.push_back(place->second);
        }
    }
    return found;
}

std::vector<DataModel::ObjectId> SymbolIndex::Variables(std::string_view name) const {
    std::vector<ObjectId> found = OfQualifiedName(name);
    return found.empty() ? OfName(name) : found;
}

std::vector<DataModel::ObjectId>
SymbolIndex::VariablesOfUnit(std::string_view name, std::string_view unit, bool isWhole) const {
    const std::string key = UnitKey(unit);
    const auto units = mUnits.find(key);
    if (units == mUnits.end()) {
        return {};
    }
    std::vector<ObjectId> found = Variables(name);
    std::erase_if(found, [&](ObjectId global) {
        const ObjectId own = mModel.CompileUnitOf(global);
        return std::ranges::find(units->second, own) == units->second.end() ||
               (isWhole && UnitKey(mModel.Object(own).name) != key);
    });
    return found;
}

std::vector<DataModel::ObjectId> SymbolIndex::VariablesWithUnitInName(std::string_view name) const {
    for (const std::string_view separator :
         {sSeparator, std::string_view(":"), std::string_view("|"), std::string_view("/")}) {
        for (std::size_t at = name.find(separator); at != std::string_view::npos;
             at = name.find(separator, at + 1)) {
            std::vector<ObjectId> found =
                VariablesOfUnit(name.substr(at + separator.size()), name.substr(0, at), false);
            if (!found.empty()) {
                return found;
            }
        }
    }
    // Only the whole name of a unit counts here: "speed_motor" is not the "speed" of motor.c.
    for (std::size_t at = 1; at + 1 < name.size(); ++at) {
        if (name[at] != '.' && name[at] != '_') {
            continue;
        }
        std::vector<ObjectId> found =
            VariablesOfUnit(name.substr(0, at), name.substr(at + 1), true);
        if (found.empty() && name[at] == '.') {
            found = VariablesOfUnit(name.substr(at + 1), name.substr(0, at), true);
        }
        if (!found.empty()) {
            return found;
        }
    }
    return {};
}

const MemberTable& SymbolIndex::MembersOf(ObjectId type) const {
    std::unique_ptr<MemberTable>& table = mMembers[type];
    if (!table) {
        table = std::make_unique<MemberTable>(mModel, type);
    }
    return *table;
}

std::vector<DataModel::ObjectId> SymbolIndex::TypesAt(ObjectId type, std::uint64_t offset) const {
    struct PlacedType {
        ObjectId type;
        std::uint64_t offset;
    };
    std::vector<PlacedType> parts{{type, offset}};
    std::vector<ObjectId> types;
    for (std::size_t position = 0; position < parts.size() && parts.size() < sMostTypes;
         ++position) {
        const PlacedType part = parts[position];
        if (part.offset == 0) {
            types.push_back(part.type);
        }
        const ObjectId plain = mModel.WithoutTypedefs(part.type);
        const ModelObject object = mModel.Object(plain);
        if (object.kind == ObjectKind::Array) {
            const std::uint64_t stride = mModel.ElementStride(plain);
            if (stride != 0 && part.offset / stride < mModel.ElementCount(plain)) {
                parts.push_back({object.type, part.offset % stride});
            }
        } else if (HasMembers(object.kind)) {
            MembersOf(plain).ForEachAt(part.offset, [&](const Member& member) {
                parts.push_back({member.type, part.offset - member.offset});
            });
        }
    }
    return types;
}

std::string SymbolIndex::PlainName(ObjectId global) const {
    return std::string(WithoutSymbolScope(mModel.QualifiedName(global)));
}

std::string SymbolIndex::NameAt(std::uint64_t address) const {
    constexpr int lookBack = 16;
    auto place = std::ranges::upper_bound(mByAddress,
                                          std::pair(address, std::numeric_limits<ObjectId>::max()));
    ObjectId global = 0;
    for (int count = 0; count < lookBack && place != mByAddress.begin() && global == 0; ++count) {
        --place;
        global = address - place->first < mModel.SizeOf(place->second) ? place->second : 0;
    }
    // The first delivered name of a place counts: symbols without types come last.
    for (int count = 0; count < lookBack && global != 0 && place != mByAddress.begin(); ++count) {
        const auto& [start, earlier] = *(place - 1);
        if (start != place->first || address - start >= mModel.SizeOf(earlier)) {
            break;
        }
        --place;
        global = earlier;
    }
    if (global == 0) {
        return {};
    }
    std::string name = PlainName(global);
    ObjectId type = mModel.Object(global).type;
    std::uint64_t offset = address - mModel.Object(global).address;
    for (std::size_t steps = 0; steps < sMostSteps; ++steps) {
        const ObjectId plain = mModel.WithoutTypedefs(type);
        const ModelObject object = mModel.Object(plain);
        const std::uint64_t stride = mModel.ElementStride(plain);
        const Member* inside = nullptr;
        if (HasMembers(object.kind)) {
            MembersOf(plain).ForEachAt(offset,
                                       [&inside](const Member& member) { inside = &member; });
        }
        if (inside != nullptr) {
            name.append(".").append(inside->name);
            type = inside->type;
            offset -= inside->offset;
        } else if (stride != 0 && offset / stride < mModel.ElementCount(plain)) {
            DataModel::AppendElementIndices(name, offset / stride, mModel.Dimensions(plain));
            type = object.type;
            offset %= stride;
        } else {
            break;
        }
    }
    return offset == 0 ? name : name.append("+").append(std::to_string(offset));
}

std::vector<DataModel::ObjectId>
SymbolIndex::VariablesOfIdentifier(std::string_view identifier) const {
    if (mOfIdentifier.empty()) {
        for (const ObjectId global : mGlobals) {
            // Only names with signs that A2L doesn't allow need a way back.
            const std::string name = PlainName(global);
            const std::string own = MakeIdentifier(name);
            if (own != name) {
                mOfIdentifier[own].push_back(global);
            }
            if (const ObjectId unit = mModel.CompileUnitOf(global); unit != 0) {
                const std::string inUnit =
                    MakeIdentifier(std::string(mModel.Object(unit).name) + "." + name);
                mOfIdentifier[inUnit].push_back(global);
            }
        }
    }
    const auto found = mOfIdentifier.find(std::string(identifier));
    return found == mOfIdentifier.end() ? std::vector<ObjectId>() : found->second;
}

void SymbolIndex::FillNearNames() const {
    if (!mForwards.empty()) {
        return;
    }
    for (const ObjectId global : mGlobals) {
        std::string folded = Folded(mModel.Object(global).name);
        mForwards.emplace_back(folded, global);
        std::ranges::reverse(folded);
        mBackwards.emplace_back(std::move(folded), global);
    }
    std::ranges::sort(mForwards);
    std::ranges::sort(mBackwards);
}

std::string SymbolIndex::NearNames(std::string_view symbol, const Answer& answer) const {
    if (!answer.resolved.empty()) {
        constexpr std::size_t most = 256;
        std::string_view rest = symbol.substr(answer.resolved.size());
        rest.remove_prefix(rest.empty() ? 0 : 1);
        Program::NearNames near(rest.substr(0, std::min(rest.find_first_of(".["), rest.size())));
        const std::vector<Member>& members =
            MembersOf(mModel.WithoutTypedefs(answer.resolvedType)).All();
        for (const Member& member : std::span(members).first(std::min(members.size(), most))) {
            near.Offer(member.name);
        }
        return near.List();
    }
    constexpr std::ptrdiff_t reach = 8;
    const std::size_t scopes = symbol.rfind(sSeparator);
    const bool isScoped = scopes != std::string_view::npos;
    // A scope may be a unit, whose name has a point.
    const std::size_t nameStart = isScoped ? scopes + sSeparator.size() : 0;
    const std::string_view head =
        symbol.substr(0, nameStart + NameEnds(symbol.substr(nameStart)).back());
    Program::NearNames near(head);
    FillNearNames();
    std::string folded = Folded(head.substr(nameStart));
    const auto offerAround = [&](const std::vector<std::pair<std::string, ObjectId>>& names) {
        const auto place = std::ranges::lower_bound(names, std::pair(folded, ObjectId{0}));
        const auto before = std::min(reach, place - names.begin());
        const auto behind = std::min(reach, names.end() - place);
        for (auto name = place - before; name != place + behind; ++name) {
            if (!isScoped) {
                near.Offer(mModel.Object(name->second).name);
                continue;
            }
            const std::string qualified = mModel.QualifiedName(name->second);
            near.Offer(qualified);
            // The scope may be a unit that has another name now.
            if (const ObjectId unit = mModel.CompileUnitOf(name->second); unit != 0) {
                near.Offer(std::string(mModel.Object(unit).name).append("::").append(qualified));
            }
        }
    };
    offerAround(mForwards);
    std::ranges::reverse(folded);
    offerAround(mBackwards);
    return near.List();
}

} // namespace Tessel::Norn::Brindle::Program::A2l
