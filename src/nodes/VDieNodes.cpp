#include "nodes/VDieNodes.h"

#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

VDieNodes::VDieNodes() = default;
VDieNodes::~VDieNodes() = default;

void VDieNodes::Reserve(std::size_t count) {
    mMap.Reserve(count);
    mMarks.Reserve(count);
}

void VDieNodes::Clear() {
    mMap.Clear();
    mGroups.Clear();
    mMarks.Clear();
    mLate.clear();
    mLastOffset = -1;
    mHasBitFieldsWithoutSize = false;
}

void VDieNodes::Insert(VDebugInfoNode& node) {
    if (node.GetOffset() <= mLastOffset) {
        mLate.try_emplace(node.GetOffset(), &node);
        return;
    }
    mGroups.Append(node.GetTag(), mMap.Size());
    mMap.Append(node);
    mMarks.Append(node.GetTasks());
    mLastOffset = node.GetOffset();
    mHasBitFieldsWithoutSize = mHasBitFieldsWithoutSize || node.IsBitFieldWithoutSize();
}

void VDieNodes::Complete() {
    std::vector<VDebugInfoNode*> late;
    late.reserve(mLate.size());
    for (const auto& [offset, node] : std::exchange(mLate, {})) {
        late.push_back(node);
    }
    InsertAll(late);
}

void VDieNodes::InsertAll(std::span<VDebugInfoNode* const> nodes) {
    if (nodes.empty()) {
        return;
    }
    const std::vector<VNodeInsertion> insertions = mMap.Insert(nodes);
    mGroups.Insert(insertions);
    mMarks.Insert(insertions);
    for (const VNodeInsertion& insertion : insertions) {
        mHasBitFieldsWithoutSize =
            mHasBitFieldsWithoutSize || insertion.mNode->IsBitFieldWithoutSize();
    }
    mLastOffset = std::max(mLastOffset, std::int64_t{nodes.back()->GetOffset()});
}

bool VDieNodes::IsReferredOnce(const VDebugInfoNode& node) const {
    const std::size_t index = mMap.IndexOf(node.GetOffset());
    return index != VDieNodeMap::kNoIndex && !mMarks.IsReferredAgain(index);
}

bool VDieNodes::Reach(const VDebugInfoNode& node) {
    const std::size_t index = mMap.IndexOf(node.GetOffset());
    return index != VDieNodeMap::kNoIndex && mMarks.Reach(index);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
