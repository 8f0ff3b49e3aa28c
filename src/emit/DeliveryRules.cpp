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

} // namespace

bool DeliveryRules::PassesFilter(const VDebugInfoNode& node) const {
    switch (node.GetTag()) {
    case DW_TAG_variable:
        return IsDeliveredVariable(node);
    case DW_TAG_member:
        return IsDeliveredMember(node);
    default:
        return !needsOf(node.GetTag()).empty();
    }
}

bool DeliveryRules::IsUndelivered(const VDebugInfoNode& node) const {
    return node.IsDeliveryRefused() || node.IsDropped() || !PassesFilter(node);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
