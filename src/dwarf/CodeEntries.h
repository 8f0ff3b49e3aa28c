// Entries inside functions that tell how code runs and nothing of what is delivered: parameters,
// labels, calls, variables in registers or on the stack. In optimized C++ they are two thirds of
// all entries. The walk over a unit passes them without making nodes:
//
//     subprogram "step"                  a node, as every entry outside of code
//       formal_parameter "motor"         passed
//       lexical_block                    waits: a node only if something below gets one
//         variable "error"  register     passed
//         structure_type "State"         a node, hence the block too
//         variable "state"  at 0x2000    a node
//
// An entry that refers to a passed one brings it back, see `VDwarf2Section::ReadPassedEntries`.
#pragma once

#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What the walk does with entries of one abbreviation inside code.
enum class CodeEntry : std::uint8_t {
    /// They get nodes, as all entries do outside of code.
    Kept,
    /// Passed by their length.
    Passed,
    /// Passed by their length where their parent is the function itself.
    Parameter,
    /// Passed by their length; get a node as soon as a child does.
    Scope,
    /// Read, and passed if they have no static place.
    Variable,
};

/// True for entries whose children are code if the entry itself is: blocks and calls.
bool IsCodeScope(dwarf_tag tag);

/// What an abbreviation of this tag may be at most.
CodeEntry CodeEntryOf(dwarf_tag tag, bool hasChildren);

/// What is left of that when the abbreviation has this attribute. An entry that others may have to
/// know of is kept, and so is one whose length its abbreviation doesn't tell.
CodeEntry WithAttribute(CodeEntry entry, dwarf_tag tag, AttributeTarget target,
                        FormReading reading);

/// A variable that was passed, by section offset. What it refers to has to know.
struct VPassedVariable {
    std::uint32_t mOffset = 0;
    /// The entry that it completes or is an instance of, 0 if there is none.
    std::uint32_t mSpecification = 0;
    /// 0 if there is none.
    std::uint32_t mType = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
