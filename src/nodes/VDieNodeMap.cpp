#include "nodes/VDieNodeMap.h"

#include "nodes/VDebugInfoNode.h"

#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sStretchSize = 64;
constexpr std::uint32_t sHalfSize = sStretchSize / 2;

NodeGroup GroupOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_compile_unit:
        return NodeGroup::CompileUnits;
    case DW_TAG_variable:
        return NodeGroup::Variables;
    case DW_TAG_member:
    case DW_TAG_enumeration_type:
        return NodeGroup::MembersAndEnumerations;
    case DW_TAG_rvalue_reference_type:
    case DW_TAG_ptr_to_member_type:
        return NodeGroup::OtherPointers;
    default:
        return IsGroupedType(tag) ? NodeGroup::GroupedTypes : NodeGroup::None;
    }
}

} // namespace

VDieNodeMap::VDieNodeMap() = default;
VDieNodeMap::~VDieNodeMap() = default;

void VDieNodeMap::Insert(std::uint32_t sectionOffset, VDebugInfoNode* node) {
    mIsSettled = false;
    if (sectionOffset > mLastOffset) {
        Append(node);
        mLastOffset = sectionOffset;
    } else {
        mOutOfOrder.try_emplace(sectionOffset, node);
    }
}

void VDieNodeMap::Append(VDebugInfoNode* node) const {
    const auto place = static_cast<std::uint32_t>(mNodes.size());
    const std::uint32_t offset = node->GetOffset();
    const std::size_t stretch = offset / sStretchSize;
    if (stretch >= mStretches.size()) {
        mStretches.resize(stretch + 1, {.firstPlace = place});
    }
    mStretches[stretch].entryStarts[offset / sHalfSize % 2] |= 1U << (offset % sHalfSize);
    if (const NodeGroup group = GroupOf(node->GetTag()); group != NodeGroup::None) {
        mPlaces[static_cast<std::size_t>(group)].push_back(place);
    }
    mNodes.emplace_back(node);
    mMarks.push_back(static_cast<NodeMarks>(node->GetTasks()));
    mHasBitFieldsWithoutSize = mHasBitFieldsWithoutSize || node->IsBitFieldWithoutSize();
}

std::size_t VDieNodeMap::PlaceOf(std::uint32_t sectionOffset) const {
    Settle();
    const std::size_t index = sectionOffset / sStretchSize;
    if (index >= mStretches.size()) {
        return kNoPlace;
    }
    const Stretch& stretch = mStretches[index];
    const std::uint64_t starts = stretch.entryStarts[0] | std::uint64_t{stretch.entryStarts[1]}
                                                              << sHalfSize;
    const std::uint64_t own = std::uint64_t{1} << (sectionOffset % sStretchSize);
    if ((starts & own) == 0) {
        return kNoPlace;
    }
    const auto before = static_cast<std::size_t>(std::popcount(starts & (own - 1)));
    return stretch.firstPlace + before;
}

VDebugInfoNode* VDieNodeMap::FindUnpassed(std::uint32_t sectionOffset) const {
    const std::size_t place = PlaceOf(sectionOffset);
    if (place == kNoPlace) {
        return nullptr;
    }
    NodeMarks& marks = mMarks[place];
    const NodeMarks again = (marks & kIsReferred) != 0 ? kIsReferredAgain : 0;
    marks = static_cast<NodeMarks>(marks | kIsReferred | again);
    return mNodes[place];
}

VDebugInfoNode* VDieNodeMap::Peek(std::uint32_t sectionOffset) const {
    const std::size_t place = PlaceOf(sectionOffset);
    return place != kNoPlace ? mNodes[place].Get() : nullptr;
}

void VDieNodeMap::NoteReferred(const VDebugInfoNode& node) const {
    NoteReferred(node.GetOffset());
}

bool VDieNodeMap::IsReferredOnce(const VDebugInfoNode& node) const {
    const std::size_t place = PlaceOf(node.GetOffset());
    return place != kNoPlace && (mMarks[place] & kIsReferredAgain) == 0;
}

std::size_t VDieNodeMap::EntriesBefore(std::size_t place) const {
    // Where entries are passed, they come in the order of their offsets.
    return mPassedCount == 0 ? place
                             : static_cast<std::uint32_t>(mNodes[place]->GetNodeRecord()) -
                                   static_cast<std::uint32_t>(mNodes.front()->GetNodeRecord());
}

std::span<const VDieNodeMap::Link> VDieNodeMap::InOffsetOrder() const {
    Settle();
    return mNodes;
}

std::span<const std::uint32_t> VDieNodeMap::PlacesOf(NodeGroup group) const {
    Settle();
    return mPlaces[static_cast<std::size_t>(group)];
}

void VDieNodeMap::Settle() const {
    if (!mIsSettled) {
        MergeOutOfOrder();
        mIsSettled = true;
    }
}

void VDieNodeMap::MergeOutOfOrder() const {
    if (mOutOfOrder.empty()) {
        return;
    }
    const std::vector<Link> inOrder = std::exchange(mNodes, {});
    const std::vector<NodeMarks> marksInOrder = std::exchange(mMarks, {});
    mStretches.clear();
    mPlaces = {};
    auto late = mOutOfOrder.cbegin();
    for (std::size_t place = 0; place < inOrder.size(); ++place) {
        VDebugInfoNode* node = inOrder[place];
        for (; late != mOutOfOrder.cend() && late->first < node->GetOffset(); ++late) {
            Append(late->second);
        }
        if (late != mOutOfOrder.cend() && late->first == node->GetOffset()) {
            ++late;
        }
        Append(node);
        mMarks.back() = marksInOrder[place];
    }
    mOutOfOrder.clear();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
