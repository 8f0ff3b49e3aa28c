#include "nodes/VDebugInfoNodeArray.h"

#include "nodes/VDieNodeMap.h"

#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The number that a bound gives, in 32 bits; none if it can't be used. A reference has to lead to
/// a variable in memory, whose address then is the number.
std::optional<std::uint32_t> BoundOf(const VAttributeValue& value, const VDieNodeMap& nodes) {
    if (!value.IsDefined()) {
        return std::nullopt;
    }
    if (!value.IsReference()) {
        return static_cast<std::uint32_t>(value.ToInteger());
    }
    const VDebugInfoNode* node = nodes.Find(static_cast<std::uint32_t>(value.mValue));
    if (node == nullptr || node->GetTag() != DW_TAG_variable || node->IsRegisterOrStackLocation()) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(node->GetLocationAddress());
}

} // namespace

void VDebugInfoNodeSubrange::ResolveDimension(const VDieNodeMap& nodes) {
    const std::optional<std::uint32_t> upperBound = BoundOf(mUpperBound, nodes);
    std::uint32_t dimension = 0;
    if (upperBound) {
        dimension = *upperBound - BoundOf(mLowerBound, nodes).value_or(0) + 1;
    } else {
        dimension = BoundOf(mCount, nodes).value_or(0);
    }
    mDimension = static_cast<std::int32_t>(dimension) > 0 ? dimension : 0;
}

void VDebugInfoNodeArray::ResolveArrayDimensions(const VDieNodeMap& nodes) {
    if (mHasDimensions) {
        return;
    }
    for (VDebugInfoNode* child : Children()) {
        if (child->GetTag() == DW_TAG_subrange_type) {
            static_cast<VDebugInfoNodeSubrange*>(child)->ResolveDimension(nodes);
        }
    }
    mHasDimensions = true;
}

template <typename Visitor>
void VDebugInfoNodeArray::ForEachDimension(Visitor&& visit) const {
    if (!mHasDimensions) {
        return;
    }
    bool hasVisited = false;
    for (const VDebugInfoNode* child : Children()) {
        if (child->GetTag() != DW_TAG_subrange_type) {
            continue;
        }
        if (const auto* subrange = static_cast<const VDebugInfoNodeSubrange*>(child);
            subrange->GetDimension() != 0) {
            visit(subrange->GetDimension());
            hasVisited = true;
        }
    }
    if (!hasVisited) {
        visit(std::uint32_t{0});
    }
}

std::vector<std::uint32_t> VDebugInfoNodeArray::GetDimensions() const {
    std::vector<std::uint32_t> dimensions;
    ForEachDimension([&](std::uint32_t dimension) { dimensions.push_back(dimension); });
    return dimensions;
}

std::uint32_t VDebugInfoNodeArray::GetTotalElementCount() const {
    std::uint32_t count = mHasDimensions ? 1 : 0;
    ForEachDimension([&](std::uint32_t dimension) { count *= dimension; });
    return count;
}

std::string VDebugInfoNodeArray::GetArrayDimensionText() const {
    std::string text;
    ForEachDimension([&](std::uint32_t dimension) {
        text += '[' + std::to_string(static_cast<std::int32_t>(dimension)) + ']';
    });
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
