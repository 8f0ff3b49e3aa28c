// Entries in the bodies of types: members, base classes, enumerators and functions that are only
// declared there. In C++ they are most of what lies outside of functions, and a read without all
// types delivers few of them. So the walk over a unit passes them at first:
//
//     variable "motor"  type Motor          a node
//     structure_type "Motor"                a node, as every type
//       member "speed"                      passed
//       enumeration_type "State"            a node
//         enumerator "off"                  passed
//       subprogram "Start"  declaration     waits: a node only if something below gets one
//         formal_parameter                  passed, see CodeEntries.h
//
// When the places of all variables are known, the bodies that they lead to are read, see
// `ReadReachedBodies`.
#pragma once

#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;
class VDieNodeMap;

/// What the walk does with entries of one abbreviation in the body of a type.
enum class BodyEntry : std::uint8_t {
    /// They get nodes.
    Kept,
    /// Passed by their length.
    Passed,
    /// A declared function. Passed by its length; gets a node as soon as a child does.
    Function,
    /// Passed by their length where they stand in such a function: its template arguments.
    Argument,
};

/// True for types whose children are a body.
constexpr bool HasBody(dwarf_tag tag) {
    return IsAggregate(tag) || tag == DW_TAG_enumeration_type;
}

/// Finds out what an abbreviation is, attribute by attribute. An entry that others may have to know
/// of is kept, and so is one whose length its abbreviation doesn't tell.
class BodyEntryRule {
public:
    BodyEntryRule(dwarf_tag tag, bool hasChildren);

    void Take(AttributeTarget target, FormReading reading);
    /// False as soon as it is certain that entries are kept.
    [[nodiscard]] bool MayPass() const { return mEntry != BodyEntry::Kept; }
    /// After the last attribute.
    [[nodiscard]] BodyEntry Result() const;

private:
    BodyEntry mEntry;
    bool mIsDeclaration = false;
    bool mHasType = false;
    bool mIsBitField = false;
    bool mHasStorage = false;
};

/// The outermost type whose body may hold an offset at which there is no node; null if none does.
VDebugInfoNode* FindTypeAround(const VDieNodeMap& nodes, std::uint32_t offset);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
