#include "nodes/VDebugInfoNodeArray.h"

#include "core/BitsPerByte.h"
#include "nodes/VDieNodes.h"

#include <algorithm>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The number of a bound, in 32 bits; none if it can't be used. A reference must lead to a variable
/// in memory, whose address then is the number.
std::optional<std::uint32_t> BoundOf(const VAttributeValue& value, const VDieNodes& nodes) {
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

void VDebugInfoNodeSubrange::SetDimension(std::uint32_t dimension) {
    mDimension = dimension;
    mIsDimensionSet = true;
}

void VDebugInfoNodeSubrange::ResolveDimension(const VDieNodes& nodes) {
    if (mIsDimensionSet) {
        return;
    }
    const std::optional<std::uint32_t> upperBound = BoundOf(mUpperBound, nodes);
    std::uint32_t dimension = 0;
    if (upperBound) {
        dimension = *upperBound - BoundOf(mLowerBound, nodes).value_or(0) + 1;
    } else {
        dimension = BoundOf(mCount, nodes).value_or(0);
    }
    mDimension = static_cast<std::int32_t>(dimension) > 0 ? dimension : 0;
}

void VDebugInfoNodeArray::ResolveArrayDimensions(const VDieNodes& nodes) {
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
void VDebugInfoNodeArray::ForEachSubrange(Visitor&& visit) const {
    const auto visitIfSubrange = [&](const VDebugInfoNode* child) {
        if (child->GetTag() == DW_TAG_subrange_type) {
            visit(static_cast<const VDebugInfoNodeSubrange&>(*child));
        }
    };
    if (!mIsColumnMajor) {
        std::ranges::for_each(Children(), visitIfSubrange);
        return;
    }
    std::vector<const VDebugInfoNode*> children(Children().begin(), Children().end());
    std::ranges::reverse(children);
    std::ranges::for_each(children, visitIfSubrange);
}

template <typename Visitor>
void VDebugInfoNodeArray::ForEachDimension(Visitor&& visit) const {
    if (!mHasDimensions) {
        return;
    }
    bool hasVisited = false;
    if (mHasUnknownDimensions) {
        visit(std::uint32_t{0});
        return;
    }
    ForEachSubrange([&](const VDebugInfoNodeSubrange& subrange) {
        if (subrange.GetDimension() != 0) {
            visit(subrange.GetDimension());
            hasVisited = true;
        }
    });
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

VDebugInfoNodeArray::Extent VDebugInfoNodeArray::ExtentOf(std::int32_t elementSize) const {
    std::vector<const VDebugInfoNodeSubrange*> subranges;
    ForEachSubrange(
        [&](const VDebugInfoNodeSubrange& subrange) { subranges.push_back(&subrange); });
    std::ranges::reverse(subranges);
    Extent extent{static_cast<std::uint32_t>(elementSize) * std::uint64_t{sBitsPerByte}, true};
    std::uint64_t stride = mStrideInBits;
    for (const VDebugInfoNodeSubrange* subrange : subranges) {
        stride = subrange->GetStrideInBits() != 0 ? subrange->GetStrideInBits() : stride;
        if (stride != 0 && stride != extent.bits) {
            extent = {stride, false};
        }
        extent.bits *= subrange->GetDimension();
        extent.isDense = extent.isDense && !subrange->HasComputedPlace();
        // The stride of the array is the distance of its elements, in its innermost dimension.
        stride = 0;
    }
    return extent;
}

bool VDebugInfoNodeArray::HasElementsOfIndexWithGaps() const {
    VDebugInfoNode* type = GetPlainTypeNode();
    const VDebugInfoNodeArray* array = type != nullptr ? type->AsArrayNode() : nullptr;
    return array != nullptr && array->mHasIndexWithGaps;
}

bool VDebugInfoNodeArray::HasScatteredElements() const {
    const VDebugInfoNode* type = GetTypeNode();
    const std::int32_t elementSize = type != nullptr ? type->GetByteSize() : 0;
    return mHasComputedPlace || mHasUnknownDimensions ||
           (mHasStrides && elementSize > 0 && !ExtentOf(elementSize).isDense);
}

std::string VDebugInfoNodeArray::GetArrayDimensionText() const {
    std::string text;
    ForEachDimension([&](std::uint32_t dimension) {
        text += '[' + std::to_string(static_cast<std::int32_t>(dimension)) + ']';
    });
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
