#include "dwarf/VUnitTables.h"

#include "container/VElfFile.h"
#include "dwarf/VCompileUnitReader.h"
#include "nodes/VCompileUnitHeader.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

VUnitTables::VUnitTables(VElfFile& file)
    : mLineTexts(file)
    , mTextOffsets(file)
    , mAddresses(file) {}

bool VUnitTables::Load(const VElfFile& file) {
    return mLineTexts.LoadOrLeaveEmpty(file.mSecDebugLineStr) &&
           mTextOffsets.LoadOrLeaveEmpty(file.mSecDebugStrOffsets) &&
           mAddresses.LoadOrLeaveEmpty(file.mSecDebugAddr);
}

std::optional<std::uint64_t> VUnitTables::TextOffsetAt(const VCompileUnitReader& unit,
                                                       std::uint64_t index) {
    const std::optional<std::uint64_t> base = unit.mFacts.mTextOffsetsBase;
    const std::uint8_t width = unit.mHeader.mIs64BitDwarf ? 8 : 4;
    return base ? mTextOffsets.NumberAt(*base, index, width) : std::nullopt;
}

std::optional<std::uint64_t> VUnitTables::AddressAt(const VCompileUnitReader& unit,
                                                    std::uint64_t index) {
    const std::optional<std::uint64_t> base = unit.mFacts.mAddressesBase;
    return base ? mAddresses.NumberAt(*base, index, unit.mHeader.mTargetAddressSize) : std::nullopt;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
