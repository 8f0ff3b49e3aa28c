#include "dwarf/BodyEntries.h"

#include "nodes/VDebugInfoNode.h"
#include "nodes/VDieNodes.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

BodyEntry EntryOf(dwarf_tag tag, bool hasChildren) {
    switch (tag) {
    case DW_TAG_subprogram:
        return BodyEntry::Function;
    case DW_TAG_GNU_template_parameter_pack:
        return BodyEntry::Argument;
    case DW_TAG_template_type_param:
    case DW_TAG_template_value_param:
        return hasChildren ? BodyEntry::Kept : BodyEntry::Argument;
    case DW_TAG_member:
    case DW_TAG_inheritance:
    case DW_TAG_enumerator:
        return hasChildren ? BodyEntry::Kept : BodyEntry::Skipped;
    default:
        return BodyEntry::Kept;
    }
}

/// True if the attribute refers to no entry except the type, and nobody outside the body asks for
/// it.
bool IsOfBodyAlone(AttributeTarget target) {
    switch (target) {
    case AttributeTarget::None:
    case AttributeTarget::Name:
    case AttributeTarget::LinkageName:
    case AttributeTarget::Type:
    case AttributeTarget::MemberLocation:
    case AttributeTarget::ByteSize:
    case AttributeTarget::BitSize:
    case AttributeTarget::BitOffset:
    case AttributeTarget::DataBitOffset:
    case AttributeTarget::ConstValue:
    case AttributeTarget::WholeConstValue:
    case AttributeTarget::Accessibility:
        return true;
    default:
        return false;
    }
}

} // namespace

BodyEntryRule::BodyEntryRule(dwarf_tag tag, bool hasChildren)
    : mEntry(EntryOf(tag, hasChildren)) {}

void BodyEntryRule::Take(AttributeTarget target, FormReading reading) {
    const bool tellsItsLength = reading != FormReading::Unknown && reading != FormReading::Indirect;
    // They make members static ones, whose definition refers to them.
    const bool isDeclared =
        target == AttributeTarget::Declaration || target == AttributeTarget::External;
    const bool isAllowed = isDeclared ? mEntry == BodyEntry::Function : IsOfBodyAlone(target);
    if (!tellsItsLength || !isAllowed || (mHasType && target == AttributeTarget::Type)) {
        mEntry = BodyEntry::Kept;
    }
    mHasType = mHasType || target == AttributeTarget::Type;
    mIsDeclaration = mIsDeclaration || target == AttributeTarget::Declaration;
    mIsBitField = mIsBitField || target == AttributeTarget::BitSize;
    mHasStorage = mHasStorage || target == AttributeTarget::ByteSize ||
                  target == AttributeTarget::DataBitOffset;
}

BodyEntry BodyEntryRule::Result() const {
    // A function that is more than declared may have instances that refer to it. A bit field
    // without storage depends on sizes that other entries settle.
    const bool isKept =
        (mEntry == BodyEntry::Function && !mIsDeclaration) || (mIsBitField && !mHasStorage);
    return isKept ? BodyEntry::Kept : mEntry;
}

VDebugInfoNode* FindTypeAround(const VDieNodes& nodes, std::uint32_t offset) {
    VDebugInfoNode* outermost = nullptr;
    VDebugInfoNode* node = nodes.LastBefore(offset);
    for (int link = 0; node != nullptr && link < sMaximumChainLength; ++link) {
        if (HasBody(node->GetTag())) {
            outermost = node;
        }
        node = node->GetParent();
    }
    return node == nullptr ? outermost : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
