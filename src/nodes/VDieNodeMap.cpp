#include "nodes/VDieNodeMap.h"

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VDieNodeMap::Clear() {
    mNodes.clear();
    mStretches.clear();
}

void VDieNodeMap::Append(VDebugInfoNode& node) {
    AddToStretch(node.GetOffset(), mNodes.size());
    mNodes.emplace_back(&node);
}

void VDieNodeMap::AddToStretch(std::uint32_t sectionOffset, std::size_t index) {
    const std::size_t stretch = sectionOffset / kStretchSize;
    if (stretch >= mStretches.size()) {
        mStretches.resize(stretch + 1, {.firstIndex = static_cast<std::uint32_t>(index)});
    }
    mStretches[stretch].Add(sectionOffset);
}

std::vector<VNodeInsertion> VDieNodeMap::Insert(std::span<VDebugInfoNode* const> nodes) {
    std::vector<VNodeInsertion> insertions;
    for (VDebugInfoNode* node : nodes) {
        if (IndexOf(node->GetOffset()) == kNoIndex) {
            insertions.push_back({CountBefore(node->GetOffset()), node});
        }
    }
    InsertForEach(insertions, mNodes, [](VDebugInfoNode& node) { return Link(&node); });
    for (const VNodeInsertion& insertion : insertions) {
        AddToStretch(insertion.mNode->GetOffset(), 0);
    }
    std::uint32_t index = 0;
    for (Stretch& stretch : mStretches) {
        stretch.firstIndex = index;
        index += static_cast<std::uint32_t>(std::popcount(stretch.Starts()));
    }
    return insertions;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
