#include "nodes/VNodeGroups.h"

#include "nodes/VDebugInfoNode.h"

#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

NodeGroup GroupOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_compile_unit:
        return NodeGroup::CompileUnits;
    case DW_TAG_variable:
        return NodeGroup::Variables;
    case DW_TAG_member:
    case DW_TAG_enumeration_type:
        return NodeGroup::MembersAndEnumerations;
    case DW_TAG_array_type:
        return NodeGroup::Arrays;
    case DW_TAG_rvalue_reference_type:
    case DW_TAG_ptr_to_member_type:
        return NodeGroup::OtherPointers;
    default:
        return IsGroupedType(tag) ? NodeGroup::GroupedTypes : NodeGroup::None;
    }
}

/// Places that were inserted, by group.
using InsertedIndices =
    std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)>;

/// The indices of a group after insertions.
std::vector<std::uint32_t> MergeIndices(std::span<const std::uint32_t> indices,
                                        std::span<const VNodeInsertion> insertions,
                                        std::span<const std::uint32_t> inserted) {
    std::vector<std::uint32_t> merged;
    merged.reserve(indices.size() + inserted.size());
    std::uint32_t shift = 0;
    for (const std::uint32_t index : indices) {
        while (shift < insertions.size() && insertions[shift].mIndex <= index) {
            ++shift;
        }
        for (; !inserted.empty() && inserted.front() < index + shift;
             inserted = inserted.subspan(1)) {
            merged.push_back(inserted.front());
        }
        merged.push_back(index + shift);
    }
    merged.insert(merged.end(), inserted.begin(), inserted.end());
    return merged;
}

} // namespace

void VNodeGroups::Append(dwarf_tag tag, std::size_t index) {
    if (const NodeGroup group = GroupOf(tag); group != NodeGroup::None) {
        mIndices[static_cast<std::size_t>(group)].push_back(static_cast<std::uint32_t>(index));
    }
}

void VNodeGroups::Insert(std::span<const VNodeInsertion> insertions) {
    InsertedIndices inserted;
    for (std::size_t shift = 0; shift < insertions.size(); ++shift) {
        const NodeGroup group = GroupOf(insertions[shift].mNode->GetTag());
        if (group != NodeGroup::None) {
            inserted[static_cast<std::size_t>(group)].push_back(
                static_cast<std::uint32_t>(insertions[shift].mIndex + shift));
        }
    }
    for (std::size_t group = 0; group < mIndices.size(); ++group) {
        mIndices[group] = MergeIndices(mIndices[group], insertions, inserted[group]);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
