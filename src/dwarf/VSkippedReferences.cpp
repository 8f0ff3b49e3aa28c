#include "dwarf/VSkippedReferences.h"

#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDieNodeMap.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VSkippedReferences::EnterUnit(const VCompileUnitHeader& unit) {
    const std::uint64_t end = std::uint64_t{unit.mSectionOffset} + unit.mLength;
    mFirstStretch = unit.mSectionOffset / VDieNodeMap::kStretchSize;
    mStretches.assign(end / VDieNodeMap::kStretchSize + 1 - mFirstStretch, {});
}

void VSkippedReferences::Note(std::uint32_t offset) {
    const std::size_t index = offset / VDieNodeMap::kStretchSize - mFirstStretch;
    if (offset / VDieNodeMap::kStretchSize < mFirstStretch || index >= mStretches.size()) {
        mElsewhere.push_back(offset);
        return;
    }
    Stretch& stretch = mStretches[index];
    const std::uint64_t bit = std::uint64_t{1} << (offset % VDieNodeMap::kStretchSize);
    stretch.again |= stretch.once & bit;
    stretch.once |= bit;
}

void VSkippedReferences::LeaveUnit(const VDieNodeMap& nodes) {
    for (std::size_t index = 0; index < mStretches.size(); ++index) {
        if (const Stretch& stretch = mStretches[index]; stretch.once != 0) {
            mLeadToNodes = nodes.NoteReferred(mFirstStretch + index, stretch.once, stretch.again) &&
                           mLeadToNodes;
        }
    }
    mStretches.clear();
}

bool VSkippedReferences::Finish(const VDieNodeMap& nodes) {
    for (const std::uint32_t offset : mElsewhere) {
        mLeadToNodes = nodes.FindUnskipped(offset) != nullptr && mLeadToNodes;
    }
    mElsewhere = {};
    return mLeadToNodes;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
