// Finds what a symbol of a description means in an image, in all notations that tools use. The
// update makes one for a model and queries it for each object, in time proportional to both.
#pragma once

#include "SharedNames.h"

#include "a2l/MemberTable.h"
#include "model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Whether linkers put an underscore before the names of C, as for COFF and 32-bit Windows.
enum class UnderscoreHabit : std::uint8_t { None, InFront };

/// Variables of a model by name and address.
///
/// A symbol is the name of a variable, followed by steps to a part of it. Steps are
/// ".member" and, for elements of arrays, "[2]", "._2_", "_2_" or ".2". A variable is named
/// by its qualified name, with "::" or "." after each scope, or by its own name. The name
/// of a static variable may follow the name of its unit ("motor.c::counter",
/// "motor.c:counter", "motor_c.counter") or precede it ("counter@motor.c",
/// "counter{motor.c}", "counter.motor_c", "counter_motor_c"). A mangled name stands for the
/// demangled one.
///
/// Variables that share a name and a scope have numbers that another build may exchange. So each
/// of their names means all of them.
class SymbolIndex {
public:
    using Model = DataModel::Model;
    using ObjectId = DataModel::ObjectId;
    using Place = Model::Place;

    /// @param model borrowed; must not change during the life of the index
    explicit SymbolIndex(const Model& model, UnderscoreHabit habit = UnderscoreHabit::None);

    enum class Outcome : std::uint8_t {
        Found,
        Missing,
        /// Several variables match, at different addresses.
        Ambiguous,
    };

    struct Answer {
        Outcome outcome = Outcome::Missing;
        /// The place of the symbol, if it is found.
        Place place;
        /// Otherwise: what is wrong, for a person.
        std::string problem;
        /// If nothing is found: the part of the symbol that resolves, and the type there.
        std::string_view resolved;
        ObjectId resolvedType = 0;
    };

    /// @param symbol must live as long as the answer, which refers to it
    [[nodiscard]] Answer Find(std::string_view symbol) const;

    /// The qualified name of a variable, without the reader's own namespace for variables that only
    /// the symbol table knows: users don't write it.
    [[nodiscard]] std::string PlainName(ObjectId global) const;

    /// What lies at an address, such as "motors[1].loops[0].gain", followed by "+2" if the address
    /// lies within a scalar; empty if no variable lies there.
    [[nodiscard]] std::string NameAt(std::uint64_t address) const;

    /// Names similar to a missing one, "a, b, c", or an empty text. It takes little time even with
    /// many variables: only names with the same beginning or end, apart from case and underscores,
    /// are compared.
    [[nodiscard]] std::string NearNames(std::string_view symbol, const Answer& answer) const;

    /// The members of a class or union; none for any other type.
    [[nodiscard]] const MemberTable& MembersOf(ObjectId type) const;

    /// The types that begin exactly at an offset within a type, outermost first: at 0 the type
    /// itself, then its first member or element, and so on. All members of a union count.
    [[nodiscard]] std::vector<ObjectId> TypesAt(ObjectId type, std::uint64_t offset) const;

private:
    class Steps;
    /// A symbol split into name and unit; all variables that match it are wanted.
    struct Wanted {
        std::string_view symbol;
        /// Empty for any unit.
        std::string_view unit;
    };
    enum class Spelling : std::uint8_t { Plain, UnitInName, ScopesByPoints, Identifier };

    [[nodiscard]] std::vector<ObjectId> OfName(std::string_view ownName) const;
    [[nodiscard]] std::vector<ObjectId> OfQualifiedName(std::string_view name) const;
    [[nodiscard]] std::vector<ObjectId> Variables(std::string_view name) const;
    [[nodiscard]] std::vector<ObjectId> VariablesOfUnit(std::string_view name,
                                                        std::string_view unit, bool isWhole) const;
    [[nodiscard]] std::vector<ObjectId> VariablesWithUnitInName(std::string_view name) const;
    [[nodiscard]] std::vector<ObjectId> Heads(std::string_view head, std::string_view unit,
                                              Spelling spelling) const;
    [[nodiscard]] std::vector<Place> Places(const Wanted& wanted, Spelling spelling,
                                            Answer& answer) const;
    [[nodiscard]] std::vector<Place> PlacesInAnySpelling(std::string_view symbol,
                                                         Answer& answer) const;
    /// Of variables that share a name only one.
    [[nodiscard]] std::vector<ObjectId> OnePerName(const std::vector<ObjectId>& variables) const;
    /// True if the variables differ in name or unit. Numbers don't count.
    [[nodiscard]] bool HaveDifferentNames(const std::vector<Place>& places) const;
    void Choose(const std::vector<Place>& places, Answer& answer) const;
    [[nodiscard]] std::vector<ObjectId> VariablesOfIdentifier(std::string_view identifier) const;
    void FillNearNames() const;

    const Model& mModel;
    UnderscoreHabit mHabit;
    SharedNames mSharedNames;
    std::vector<ObjectId> mGlobals;
    /// Indices in `mGlobals`: the first variable of a name, and for each the next of its name.
    std::unordered_map<std::string_view, std::uint32_t> mFirstOfName;
    std::vector<std::uint32_t> mNextOfName;
    /// Hash of the qualified name and variable, in order of both; made on first use.
    mutable std::vector<std::pair<std::uint64_t, ObjectId>> mByQualifiedName;
    /// Answers for symbols that many variables match, such as those whose long names are cut to the
    /// same text: a description may have as many objects of such a symbol.
    mutable std::unordered_map<std::string, Answer> mOfMany;
    /// Compile units by name without folders, points replaced, with and without extension.
    std::unordered_map<std::string, std::vector<ObjectId>> mUnits;
    /// Address and variable, in the order of the addresses.
    std::vector<std::pair<std::uint64_t, ObjectId>> mByAddress;
    mutable std::unordered_map<ObjectId, std::unique_ptr<MemberTable>> mMembers;
    /// Variables by identifier, if that doesn't reveal their names; made on first use.
    mutable std::unordered_map<std::string, std::vector<ObjectId>> mOfIdentifier;
    /// Names without case and underscores, from their start and from their end, in order.
    mutable std::vector<std::pair<std::string, ObjectId>> mForwards;
    mutable std::vector<std::pair<std::string, ObjectId>> mBackwards;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
