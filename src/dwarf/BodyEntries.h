// Entries in the bodies of types: members, base classes, enumerators and functions that are only
// declared there. In C++ they are most of what lies outside functions, and a read without all types
// delivers few of them. So the walk over a unit first skips them, that is, makes no nodes:
//
//     variable "motor"  type Motor          a node
//     structure_type "Motor"                a node, as every type
//       member "speed"                      skipped
//       enumeration_type "State"            a node
//         enumerator "off"                  skipped
//       subprogram "Start"  declaration     waits: a node only if something below gets one
//         formal_parameter                  skipped, see CodeEntries.h
//
// Once the places of all variables are known, the bodies to which they lead are read, see
// `ReadReachedBodies`.
#pragma once

#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;
class VDieNodes;

/// What the walk does with entries of one abbreviation in the body of a type.
enum class BodyEntry : std::uint8_t {
    /// They get nodes.
    Kept,
    /// Skipped by their length.
    Skipped,
    /// A declared function. Skipped by its length; gets a node as soon as a child does.
    Function,
    /// Skipped by their length if they are in such a function: its template arguments.
    Argument,
};

/// True for types whose children are a body.
constexpr bool HasBody(dwarf_tag tag) {
    return IsAggregate(tag) || tag == DW_TAG_enumeration_type;
}

/// Classifies an abbreviation, attribute by attribute. An entry that others may need is kept, and
/// so is one whose length its abbreviation doesn't fix.
class BodyEntryRule {
public:
    BodyEntryRule(dwarf_tag tag, bool hasChildren);

    void Take(AttributeTarget target, FormReading reading);
    /// False as soon as it is certain that entries are kept.
    [[nodiscard]] bool MaySkip() const { return mEntry != BodyEntry::Kept; }
    /// To be called after the last attribute.
    [[nodiscard]] BodyEntry Result() const;

private:
    BodyEntry mEntry;
    bool mIsDeclaration = false;
    bool mHasType = false;
    bool mIsBitField = false;
    bool mHasStorage = false;
};

/// The outermost type whose body may contain an offset without a node; null if none does, or if
/// entries nest deeper than they do in a sound file.
VDebugInfoNode* FindTypeAround(const VDieNodes& nodes, std::uint32_t offset);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
