#include "nodes/VDebugInfoNodeVariable.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VDebugInfoNodeVariable::IsGlobalVariable() const {
    const VDebugInfoNode* parent = GetParent();
    return IsExternal() && (parent == nullptr || parent->GetTag() == DW_TAG_compile_unit);
}

void VDebugInfoNodeVariable::SetLocationFromSymbolTable(std::uint64_t address) {
    mLocationAddress = address;
    mIsRegisterOrStackLocation = false;
    mIsFromTombstone = false;
    mHasLocation = true;
    mIsAddressFromSymbolTable = true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
