#include "dwarf/VSkippedReferences.h"

#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDieNodes.h"

#include <bit>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sBytesPerWord = 64;

} // namespace

void VSkippedReferences::EnterUnit(const VCompileUnitHeader& unit) {
    const std::uint64_t end = std::uint64_t{unit.mSectionOffset} + unit.mLength;
    mFirstOffset = unit.mSectionOffset / sBytesPerWord * sBytesPerWord;
    mReferred.assign((end - mFirstOffset) / sBytesPerWord + 1, {});
}

void VSkippedReferences::Note(std::uint32_t offset) {
    const std::size_t index = (offset - mFirstOffset) / sBytesPerWord;
    if (offset < mFirstOffset || index >= mReferred.size()) {
        mElsewhere.push_back(offset);
        return;
    }
    ReferredBytes& bytes = mReferred[index];
    const std::uint64_t bit = std::uint64_t{1} << (offset % sBytesPerWord);
    bytes.again |= bytes.once & bit;
    bytes.once |= bit;
}

void VSkippedReferences::LeaveUnit(VDieNodes& nodes) {
    std::uint32_t firstOffset = mFirstOffset;
    for (const ReferredBytes& bytes : mReferred) {
        for (std::uint64_t left = bytes.once; left != 0; left &= left - 1) {
            const auto byte = static_cast<unsigned>(std::countr_zero(left));
            const bool isAgain = (bytes.again >> byte & 1U) != 0;
            mLeadToNodes = nodes.NoteReferred(firstOffset + byte, isAgain) && mLeadToNodes;
        }
        firstOffset += sBytesPerWord;
    }
    mReferred.clear();
}

bool VSkippedReferences::Finish(VDieNodes& nodes) {
    for (const std::uint32_t offset : mElsewhere) {
        mLeadToNodes = nodes.NoteReferred(offset) && mLeadToNodes;
    }
    mElsewhere = {};
    return mLeadToNodes;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
