#include "nodes/VDebugInfoNodeStructures.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

VDebugInfoNode* VDebugInfoNodeStructuresBase::FirstInheritance() const {
    return HasInheritances() ? InheritanceFrom(FirstChild()) : nullptr;
}

VDebugInfoNode*
VDebugInfoNodeStructuresBase::NextInheritance(const VDebugInfoNode& inheritance) const {
    return InheritanceFrom(inheritance.NextSiblingIn(*this));
}

VDebugInfoNode* VDebugInfoNodeStructuresBase::InheritanceFrom(VDebugInfoNode* child) const {
    while (child != nullptr && child->GetTag() != DW_TAG_inheritance) {
        child = child->NextSiblingIn(*this);
    }
    return child;
}

VDebugInfoNodeMember& VDebugInfoNodeMember::CopyTo(VDebugInfoNode& parent,
                                                   VNodeArena& arena) const {
    auto& copy = *arena.Create<VDebugInfoNodeMember>(GetOffset(), GetCompileUnitHeader(), &parent,
                                                     GetNameText());
    copy.CopyFrom(*this, arena);
    copy.mMemberOffset = mMemberOffset;
    copy.mHasMemberOffset = mHasMemberOffset;
    return copy;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
