// Finds what a symbol of a description means in an image, in all the notations that such names come
// in. The update makes one for a model and asks for each object; time is in proportion to both.
#pragma once

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

/// Whether linkers put an underscore in front of the names of C, as for COFF and 32-bit Windows.
enum class UnderscoreHabit : std::uint8_t { None, InFront };

/// Variables of a model by name and address.
///
/// A symbol is the name of a variable with the steps to a part of it. Steps are ".member" and, for
/// elements of arrays, "[2]", "._2_", "_2_" or ".2". A variable is named by its qualified name,
/// with
/// "::" or "." after each scope, or by its own name. A static variable may have the name of its
/// unit in front ("motor.c::counter", "motor.c:counter", "motor_c.counter") or behind
/// ("counter@motor.c", "counter{motor.c}", "counter.motor_c", "counter_motor_c"). A mangled name
/// stands for the readable one.
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
        /// Several variables are meant that lie at different addresses.
        Ambiguous,
    };

    struct Answer {
        Outcome outcome = Outcome::Missing;
        /// Where the symbol leads, if it is found.
        Place place;
        /// For the others: what is wrong, for a person.
        std::string problem;
        /// If nothing is found: the part of the symbol that leads somewhere, and the type there.
        std::string_view resolved;
        ObjectId resolvedType = 0;
    };

    /// @param symbol the answer views it
    [[nodiscard]] Answer Find(std::string_view symbol) const;

    /// The qualified name of a variable, without the namespace of the reader for variables that
    /// only the symbol table knows: nobody calls them by it.
    [[nodiscard]] std::string PlainName(ObjectId global) const;

    /// What lies at an address, such as "motors[1].loops[0].gain", with "+2" behind it where the
    /// address lies within a scalar; empty where no variable lies.
    [[nodiscard]] std::string NameAt(std::uint64_t address) const;

    /// Names like one that is missing, "a, b, c", empty without any. It takes little time however
    /// many variables there are: those are compared that share the beginning or the end, whatever
    /// their case and underscores.
    [[nodiscard]] std::string NearNames(std::string_view symbol, const Answer& answer) const;

    /// The members of a class or union; none for any other type.
    [[nodiscard]] const MemberTable& MembersOf(ObjectId type) const;

    /// The types that begin exactly at an offset within a type, outermost first: at 0 the type
    /// itself, then its first member or element, and so on. All members of a union count.
    [[nodiscard]] std::vector<ObjectId> TypesAt(ObjectId type, std::uint64_t offset) const;

private:
    class Steps;
    /// A symbol with a unit told apart from it, all of whose variables are wanted.
    struct Wanted {
        std::string_view symbol;
        /// Empty if any unit will do.
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
    void Choose(const std::vector<Place>& places, Answer& answer) const;
    [[nodiscard]] std::vector<ObjectId> VariablesOfIdentifier(std::string_view identifier) const;
    void FillNearNames() const;

    const Model& mModel;
    UnderscoreHabit mHabit;
    std::vector<ObjectId> mGlobals;
    /// Positions in `mGlobals`: the first variable of a name, and for each the next of its name.
    std::unordered_map<std::string_view, std::uint32_t> mFirstOfName;
    std::vector<std::uint32_t> mNextOfName;
    /// Compile units by their names without folders, points replaced, with and without extension.
    std::unordered_map<std::string, std::vector<ObjectId>> mUnits;
    /// Address and variable, in the order of the addresses.
    std::vector<std::pair<std::uint64_t, ObjectId>> mByAddress;
    mutable std::unordered_map<ObjectId, std::unique_ptr<MemberTable>> mMembers;
    /// Variables by the identifiers that can't be told from names otherwise; made when first asked.
    mutable std::unordered_map<std::string, std::vector<ObjectId>> mOfIdentifier;
    /// Names without case and underscores, from their start and from their end, in order.
    mutable std::vector<std::pair<std::string, ObjectId>> mForwards;
    mutable std::vector<std::pair<std::string, ObjectId>> mBackwards;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
