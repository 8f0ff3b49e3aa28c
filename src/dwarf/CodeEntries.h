// Entries inside functions that describe running code and nothing that is delivered: parameters,
// labels, calls, variables in registers or on the stack. In optimized C++ they are two thirds of
// all entries. The walk over a unit skips them by their length, without nodes:
//
//     subprogram "step"                  a node, as every entry outside of code
//       formal_parameter "motor"         skipped
//       lexical_block                    waits: a node only if something below gets one
//         variable "error"  register     skipped
//         structure_type "State"         a node, hence the block too
//         variable "state"  at 0x2000    a node
//
// If another entry refers to a skipped one, it is read after all, see `ReadSkippedEntries`.
#pragma once

#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What the walk does with entries of one abbreviation inside code.
enum class CodeEntry : std::uint8_t {
    /// They get nodes, as all entries outside code do.
    Kept,
    /// Skipped by their length.
    Skipped,
    /// Skipped by their length if their parent is the function itself.
    Parameter,
    /// Skipped by their length; get a node as soon as a child does.
    Scope,
    /// Read, and dropped if they have no static place.
    Variable,
};

/// True for entries whose children are code if the entry itself is: blocks and calls.
bool IsCodeScope(dwarf_tag tag);

/// How entries are classified by their tag alone; attributes may only restrict that.
CodeEntry CodeEntryOf(dwarf_tag tag, bool hasChildren);

/// The classification after one more attribute. An entry that others may need is kept, and so is
/// one whose length its abbreviation doesn't fix.
CodeEntry WithAttribute(CodeEntry entry, dwarf_tag tag, AttributeTarget target,
                        FormReading reading);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
