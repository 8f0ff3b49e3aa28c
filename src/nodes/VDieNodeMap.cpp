#include "nodes/VDieNodeMap.h"

#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <iterator>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr unsigned sStretchBits = 5;

} // namespace

VDieNodeMap::VDieNodeMap() = default;
VDieNodeMap::~VDieNodeMap() = default;

void VDieNodeMap::Insert(std::uint32_t sectionOffset, VDebugInfoNode* node) {
    mIsSettled = false;
    if (sectionOffset > mLastOffset) {
        mNodes.push_back(node);
        mLastOffset = sectionOffset;
    } else {
        mOutOfOrder.try_emplace(sectionOffset, node);
    }
}

VDebugInfoNode* VDieNodeMap::Find(std::uint32_t sectionOffset) const {
    Settle();
    const std::size_t stretch = sectionOffset >> sStretchBits;
    if (stretch >= mFirstInStretch.size()) {
        return nullptr;
    }
    for (std::size_t index = mFirstInStretch[stretch]; index < mNodes.size(); ++index) {
        const std::uint32_t offset = mNodes[index]->GetOffset();
        if (offset >= sectionOffset) {
            return offset == sectionOffset ? mNodes[index] : nullptr;
        }
    }
    return nullptr;
}

std::span<VDebugInfoNode* const> VDieNodeMap::InOffsetOrder() const {
    Settle();
    return mNodes;
}

void VDieNodeMap::Settle() const {
    if (!mIsSettled) {
        MergeOutOfOrder();
        BuildIndex();
        mIsSettled = true;
    }
}

void VDieNodeMap::MergeOutOfOrder() const {
    if (mOutOfOrder.empty()) {
        return;
    }
    std::vector<VDebugInfoNode*> merged;
    merged.reserve(Size());
    auto late = mOutOfOrder.cbegin();
    for (VDebugInfoNode* node : mNodes) {
        for (; late != mOutOfOrder.cend() && late->first < node->GetOffset(); ++late) {
            merged.push_back(late->second);
        }
        if (late != mOutOfOrder.cend() && late->first == node->GetOffset()) {
            ++late;
        }
        merged.push_back(node);
    }
    mNodes = std::move(merged);
    mOutOfOrder.clear();
}

void VDieNodeMap::BuildIndex() const {
    const std::uint32_t last = mNodes.empty() ? 0 : mNodes.back()->GetOffset();
    mFirstInStretch.assign(mNodes.empty() ? 0 : (last >> sStretchBits) + std::size_t{1}, 0);
    std::size_t stretch = 0;
    for (std::size_t index = 0; index < mNodes.size(); ++index) {
        const std::size_t own = mNodes[index]->GetOffset() >> sStretchBits;
        for (; stretch <= own; ++stretch) {
            mFirstInStretch[stretch] = static_cast<std::uint32_t>(index);
        }
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
