#include "dwarf/CodeEntries.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// True for attributes that nobody asks a skipped entry for.
bool IsOfCodeAlone(AttributeTarget target) {
    switch (target) {
    case AttributeTarget::None:
    case AttributeTarget::Name:
    case AttributeTarget::Location:
    case AttributeTarget::ConstValue:
    case AttributeTarget::WholeConstValue:
    case AttributeTarget::Declaration:
    case AttributeTarget::External:
    case AttributeTarget::AbstractOrigin:
        return true;
    default:
        return false;
    }
}

bool TellsItsLength(FormReading reading) {
    return reading != FormReading::Unknown && reading != FormReading::Indirect;
}

} // namespace

bool IsCodeScope(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_lexical_block:
    case DW_TAG_inlined_subroutine:
    case DW_TAG_call_site:
    case DW_TAG_GNU_call_site:
        return true;
    default:
        return false;
    }
}

CodeEntry CodeEntryOf(dwarf_tag tag, bool hasChildren) {
    if (IsCodeScope(tag)) {
        return hasChildren ? CodeEntry::Scope : CodeEntry::Skipped;
    }
    if (hasChildren) {
        return CodeEntry::Kept;
    }
    switch (tag) {
    case DW_TAG_formal_parameter:
    case DW_TAG_unspecified_parameters:
    case DW_TAG_label:
    case DW_TAG_call_site_parameter:
    case DW_TAG_GNU_call_site_parameter:
        return CodeEntry::Skipped;
    case DW_TAG_variable:
        return CodeEntry::Variable;
    default:
        return CodeEntry::Kept;
    }
}

CodeEntry WithAttribute(CodeEntry entry, dwarf_tag tag, AttributeTarget target,
                        FormReading reading) {
    if (entry == CodeEntry::Kept || entry == CodeEntry::Variable) {
        return entry;
    }
    if (!TellsItsLength(reading)) {
        return CodeEntry::Kept;
    }
    // References to a type are counted, except those of parameters of functions.
    if (target == AttributeTarget::Type && tag == DW_TAG_formal_parameter) {
        return CodeEntry::Parameter;
    }
    return IsOfCodeAlone(target) ? entry : CodeEntry::Kept;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
