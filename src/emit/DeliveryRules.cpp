#include "emit/DeliveryRules.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool IsDeliveredVariable(const VDebugInfoNode& variable) {
    return variable.HasLocation() && !variable.IsRegisterOrStackLocation() &&
           (variable.GetLocationAddress() != 0 || variable.IsAddressConfirmed() ||
            !variable.IsExternal()) &&
           !variable.IsRedundantDeclaration();
}

/// A member that is only declared is static: the variable that defines it is delivered.
bool IsDeliveredMember(const VDebugInfoNode& member) {
    return !member.IsDeclaration() || member.HasMemberOffset() || member.HasLocation();
}

/// A range of the size of its type is that type.
bool IsTypeOfItsOwn(const VDebugInfoNode& range) {
    const VDebugInfoNode* type = range.GetTypeNode();
    return type != nullptr && type->GetByteSize() != range.GetByteSize();
}

} // namespace

bool DeliveryRules::PassesFilter(const VDebugInfoNode& node) const {
    switch (node.GetTag()) {
    case DW_TAG_variable:
        return IsDeliveredVariable(node);
    case DW_TAG_member:
        return IsDeliveredMember(node);
    case DW_TAG_subrange_type:
        return IsTypeOfItsOwn(node) && !needsOf(DW_TAG_subrange_type).empty();
    default:
        return !needsOf(node.GetTag()).empty();
    }
}

bool DeliveryRules::IsUndelivered(const VDebugInfoNode& node) const {
    return node.IsDeliveryRefused() || node.IsDropped() || !PassesFilter(node);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
