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
    case DW_TAG_rvalue_reference_type:
    case DW_TAG_ptr_to_member_type:
        return NodeGroup::OtherPointers;
    default:
        return IsGroupedType(tag) ? NodeGroup::GroupedTypes : NodeGroup::None;
    }
}

/// Places that were inserted, by group.
using InsertedPlaces =
    std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(NodeGroup::None)>;

/// The places of a group after insertions.
std::vector<std::uint32_t> MergePlaces(std::span<const std::uint32_t> places,
                                       std::span<const VNodeInsertion> insertions,
                                       std::span<const std::uint32_t> inserted) {
    std::vector<std::uint32_t> merged;
    merged.reserve(places.size() + inserted.size());
    std::uint32_t shift = 0;
    for (const std::uint32_t place : places) {
        while (shift < insertions.size() && insertions[shift].mPlace <= place) {
            ++shift;
        }
        for (; !inserted.empty() && inserted.front() < place + shift;
             inserted = inserted.subspan(1)) {
            merged.push_back(inserted.front());
        }
        merged.push_back(place + shift);
    }
    merged.insert(merged.end(), inserted.begin(), inserted.end());
    return merged;
}

} // namespace

void VNodeGroups::Append(dwarf_tag tag, std::size_t place) {
    if (const NodeGroup group = GroupOf(tag); group != NodeGroup::None) {
        mPlaces[static_cast<std::size_t>(group)].push_back(static_cast<std::uint32_t>(place));
    }
}

void VNodeGroups::Insert(std::span<const VNodeInsertion> insertions) {
    InsertedPlaces inserted;
    for (std::size_t index = 0; index < insertions.size(); ++index) {
        const NodeGroup group = GroupOf(insertions[index].mNode->GetTag());
        if (group != NodeGroup::None) {
            inserted[static_cast<std::size_t>(group)].push_back(
                static_cast<std::uint32_t>(insertions[index].mPlace + index));
        }
    }
    for (std::size_t group = 0; group < mPlaces.size(); ++group) {
        mPlaces[group] = MergePlaces(mPlaces[group], insertions, inserted[group]);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
