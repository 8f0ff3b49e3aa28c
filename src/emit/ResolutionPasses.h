// The passes that finish the tree of nodes, in their fixed order; a later one relies on the earlier
// ones. `ResolveNodes` runs them once per tree: none can be repeated, so that `ForgetEntries` must
// precede a second run. None of them fails: what can't be resolved stays as it is, and later stages
// treat it as absent.
#pragma once

#include <span>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;
class VDwarf2Section;

/// 1. Turns the references of all nodes into links. Skipped entries that are referred to get nodes.
void ResolveAllReferences(VDwarf2Section& section);

/// 2. Replaces mangled names by readable ones. Units of a TASKING compiler use the second family of
/// names.
void DemangleNames(VDwarf2Section& section);

/// Demangles names of nodes that aren't in the tree yet, in ascending order of offsets.
void DemangleNamesOf(VDwarf2Section& section, std::span<VDebugInfoNode* const> nodes);

/// 3. Groups types by their type texts: declarations get their definition, and of equal definitions
/// the largest represents all.
void GroupTypesOfSameName(VDwarf2Section& section);

/// Between 3 and 4, full manner: what units say about each other, see `VUnitLinks`.
void LinkUnits(VDwarf2Section& section);

/// 4. Cuts each cycle of type or specification links once.
void BreakAllReferenceCycles(VDwarf2Section& section);

/// Between 4 and 5: makes the nodes of all skipped entries if a bit field depends on the sizes that
/// they settle, see `VDebugInfoNode::DependsOnSizesBefore`.
void ReadEntriesForSizes(VDwarf2Section& section);

/// 5. Gives each unit the first one of its name and directory.
void UnifyCompileUnits(VDwarf2Section& section);

/// 6. Finds addresses of variables without location in the symbol table.
void ResolveExternVariables(VDwarf2Section& section);

/// Between 6 and 7: makes the nodes of bodies that were skipped, as far as variables lead to them.
void ReadReachedBodies(VDwarf2Section& section);

/// 7. Settles byte sizes, bit offsets and encodings.
void ResolveAllSizes(VDwarf2Section& section);

/// 8. Of variables with one name and address, all except the richest become redundant.
void MarkRedundantVariables(VDwarf2Section& section);

/// 9. Moves the members of anonymous members into the enclosing type if that type declares the
/// anonymous one.
void FlattenAnonymousMembers(VDwarf2Section& section);

/// @name Passes of the full reading only
/// @{

/// Instead of 5: units of one name in different folders stay apart.
void UnifyUnitsOfOneSource(VDwarf2Section& section);

/// Before 6: variables that the linker discarded lose their location.
void LeaveOutDiscardedVariables(VDwarf2Section& section);

/// Instead of 6: looks for the addresses of declarations, not for those of locals.
void ResolveDeclaredVariables(VDwarf2Section& section);

/// Instead of 8: a definition takes precedence over the richest declaration.
void MarkRedundantDeclarations(VDwarf2Section& section);

/// After 6: variables that are instances get type, scope and external flag from their origins.
void TakeOverFromOrigins(VDwarf2Section& section);

/// Before 7: bit fields lie inside the storage that their type names.
void PlaceBitFields(VDwarf2Section& section);

/// Before 7: an array whose index is an enumeration has an element for each enumerator.
void CountIndexedElements(VDwarf2Section& section);

/// Before 7: rvalue references and pointers to members have sizes of their own.
void SettlePointerSizes(VDwarf2Section& section);

/// Instead of 9: moves such members wherever their types are declared.
void FlattenAllAnonymousMembers(VDwarf2Section& section);

/// @}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
