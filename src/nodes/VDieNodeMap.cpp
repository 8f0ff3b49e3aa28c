#include "nodes/VDieNodeMap.h"

#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sStretchSize = VDieNodeMap::kStretchSize;
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

void VDieNodeMap::Clear() {
    mNodes.clear();
    mOutOfOrder.clear();
    mStretches.clear();
    mPlaces = {};
    mMarks.clear();
    mMissing.clear();
    mHasBitFieldsWithoutSize = false;
    mIsSettled = false;
    mSkippedCount = 0;
    mLastOffset = -1;
}

void VDieNodeMap::InsertAll(std::span<VDebugInfoNode* const> nodes) {
    Settle();
    if (!nodes.empty()) {
        Merge(nodes);
        mLastOffset = std::max(mLastOffset, std::int64_t{nodes.back()->GetOffset()});
    }
}

void VDieNodeMap::Append(VDebugInfoNode* node) const {
    Append(node, static_cast<NodeMarks>(node->GetTasks()));
    mHasBitFieldsWithoutSize = mHasBitFieldsWithoutSize || node->IsBitFieldWithoutSize();
}

void VDieNodeMap::Append(VDebugInfoNode* node, NodeMarks marks) const {
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
    mMarks.push_back(marks);
}

std::size_t VDieNodeMap::PlaceOf(std::uint32_t sectionOffset) const {
    Settle();
    const std::size_t index = sectionOffset / sStretchSize;
    if (index >= mStretches.size()) {
        return kNoPlace;
    }
    const Stretch& stretch = mStretches[index];
    const std::uint64_t starts = stretch.Starts();
    const std::uint64_t own = std::uint64_t{1} << (sectionOffset % sStretchSize);
    if ((starts & own) == 0) {
        return kNoPlace;
    }
    const auto before = static_cast<std::size_t>(std::popcount(starts & (own - 1)));
    return stretch.firstPlace + before;
}

VDebugInfoNode* VDieNodeMap::FindUnskipped(std::uint32_t sectionOffset) const {
    const std::size_t place = PlaceOf(sectionOffset);
    if (place == kNoPlace) {
        return nullptr;
    }
    if (!mCountsReferences) {
        return mNodes[place];
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

VDebugInfoNode* VDieNodeMap::LastBefore(std::uint32_t sectionOffset) const {
    Settle();
    const std::size_t count = CountBefore(sectionOffset);
    return count != 0 ? mNodes[count - 1].Get() : nullptr;
}

std::size_t VDieNodeMap::CountBefore(std::uint32_t sectionOffset) const {
    const std::size_t index = sectionOffset / sStretchSize;
    if (index >= mStretches.size()) {
        return mNodes.size();
    }
    const Stretch& stretch = mStretches[index];
    const std::uint64_t own = std::uint64_t{1} << (sectionOffset % sStretchSize);
    return stretch.firstPlace +
           static_cast<std::size_t>(std::popcount(stretch.Starts() & (own - 1)));
}

bool VDieNodeMap::HasEntryAt(std::uint32_t sectionOffset) const {
    const std::size_t index = sectionOffset / sStretchSize;
    return index < mStretches.size() &&
           (mStretches[index].Starts() >> (sectionOffset % sStretchSize) & 1U) != 0;
}

void VDieNodeMap::NoteReferred(const VDebugInfoNode& node) const {
    NoteReferred(node.GetOffset());
}

bool VDieNodeMap::NoteReferred(std::size_t stretch, std::uint64_t once, std::uint64_t again) const {
    Settle();
    if (stretch >= mStretches.size()) {
        return false;
    }
    const std::uint64_t starts = mStretches[stretch].Starts();
    for (std::uint64_t left = once & starts; left != 0; left &= left - 1) {
        const std::uint64_t own = left & (~left + 1);
        const auto before = static_cast<std::size_t>(std::popcount(starts & (own - 1)));
        NodeMarks& marks = mMarks[mStretches[stretch].firstPlace + before];
        const bool isAgain = (again & own) != 0 || (marks & kIsReferred) != 0;
        marks = static_cast<NodeMarks>(marks | kIsReferred | (isAgain ? kIsReferredAgain : 0));
    }
    return (once & ~starts) == 0;
}

bool VDieNodeMap::Reach(const VDebugInfoNode& node) const {
    const std::size_t place = PlaceOf(node.GetOffset());
    if (place == kNoPlace || (mMarks[place] & kIsReached) != 0) {
        return false;
    }
    mMarks[place] = static_cast<NodeMarks>(mMarks[place] | kIsReached);
    return true;
}

bool VDieNodeMap::IsReferredOnce(const VDebugInfoNode& node) const {
    const std::size_t place = PlaceOf(node.GetOffset());
    return place != kNoPlace && (mMarks[place] & kIsReferredAgain) == 0;
}

std::size_t VDieNodeMap::EntriesBefore(std::size_t place) const {
    // If entries are skipped, they come in the order of their offsets.
    return mSkippedCount == 0 ? place
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
    std::vector<VDebugInfoNode*> late;
    late.reserve(mOutOfOrder.size());
    for (const auto& [offset, node] : mOutOfOrder) {
        late.push_back(node);
    }
    mOutOfOrder.clear();
    Merge(late);
}

/// Moves the nodes in pieces, without reading any of them: the nodes lie far apart.
void VDieNodeMap::Merge(std::span<VDebugInfoNode* const> late) const {
    std::vector<VDebugInfoNode*> added;
    std::vector<std::size_t> countsBefore;
    for (VDebugInfoNode* node : late) {
        if (!HasEntryAt(node->GetOffset())) {
            added.push_back(node);
            countsBefore.push_back(CountBefore(node->GetOffset()));
        }
    }
    const std::vector<Link> nodes = std::exchange(mNodes, {});
    const std::vector<NodeMarks> marks = std::exchange(mMarks, {});
    const auto places = std::exchange(mPlaces, {});
    mNodes.reserve(nodes.size() + added.size());
    mMarks.reserve(nodes.size() + added.size());
    std::array<std::size_t, static_cast<std::size_t>(NodeGroup::None)> movedOfGroup{};
    std::size_t moved = 0;
    const auto moveUpTo = [&](std::size_t end) {
        const std::size_t shift = mNodes.size() - moved;
        const auto first = static_cast<std::ptrdiff_t>(moved);
        const auto last = static_cast<std::ptrdiff_t>(end);
        mNodes.insert(mNodes.end(), nodes.begin() + first, nodes.begin() + last);
        mMarks.insert(mMarks.end(), marks.begin() + first, marks.begin() + last);
        moved = end;
        for (std::size_t group = 0; group < places.size(); ++group) {
            std::size_t& next = movedOfGroup[group];
            for (; next < places[group].size() && places[group][next] < end; ++next) {
                mPlaces[group].push_back(static_cast<std::uint32_t>(places[group][next] + shift));
            }
        }
    };
    for (std::size_t index = 0; index < added.size(); ++index) {
        moveUpTo(countsBefore[index]);
        Append(added[index]);
    }
    moveUpTo(nodes.size());
    std::uint32_t place = 0;
    for (Stretch& stretch : mStretches) {
        stretch.firstPlace = place;
        place += static_cast<std::uint32_t>(std::popcount(stretch.Starts()));
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
