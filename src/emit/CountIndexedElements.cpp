// The dimensions of arrays whose index is an enumeration. Ada lets an enumeration have any values,
// and gives an array one element for each enumerator, not for each number between them:
//
//     type Color is (Red, Green, Blue);
//     for Color use (Red => 2, Green => 5, Blue => 9);
//     Gains : array (Color) of Integer;       in the file: an index of type Color, from 2 to 9
//
// `Gains` has three elements. So the enumerators between the bounds are counted, bounds included.
// Where that can't be told, the array has no known dimension: elements that it doesn't have would
// lie at the addresses of other variables.
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNodeArray.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Ranges, typedefs and qualifiers between an index and its enumeration.
constexpr int sMaximumLinks = 32;

/// Values of larger enumerations may be cut.
constexpr std::int32_t sLargestEnumeration = 4;

/// The enumeration that the indices of a dimension are of, null if they are numbers.
const VDebugInfoNode* EnumerationOf(const VDebugInfoNodeSubrange& range) {
    const VDebugInfoNode* type = range.GetTypeNode();
    for (int link = 0; link < sMaximumLinks && type != nullptr; ++link) {
        if (type->GetTag() == DW_TAG_enumeration_type) {
            return type;
        }
        const bool isNarrowed = type->GetTag() == DW_TAG_subrange_type;
        type = isNarrowed || IsOtherNameOfType(type->GetTag()) ? type->GetTypeNode() : nullptr;
    }
    return nullptr;
}

/// A bound as a number of the enumeration's values.
std::int32_t NumberOf(const VAttributeValue& value) {
    return static_cast<std::int32_t>(value.ToInteger());
}

bool HasConstantBounds(const VDebugInfoNodeSubrange& range) {
    return range.GetUpperBound().IsDefined() && !range.GetUpperBound().IsReference() &&
           !range.GetLowerBound().IsReference();
}

class IndexedElements {
public:
    void CountThoseOf(VDebugInfoNodeArray& array) {
        for (VDebugInfoNode* child : array.Children()) {
            if (child->GetTag() == DW_TAG_enumeration_type) {
                array.SetDimensionsUnknown();
            } else if (child->GetTag() == DW_TAG_subrange_type) {
                Count(static_cast<VDebugInfoNodeSubrange&>(*child), array);
            }
        }
    }

private:
    /// Ascending, each once.
    using Values = std::vector<std::int32_t>;

    void Count(VDebugInfoNodeSubrange& range, VDebugInfoNodeArray& array) {
        const VDebugInfoNode* enumeration = EnumerationOf(range);
        if (enumeration == nullptr || !HasConstantBounds(range)) {
            return;
        }
        const std::int64_t lowest = NumberOf(range.GetLowerBound());
        const std::int64_t highest = NumberOf(range.GetUpperBound());
        const Values& values = ValuesOf(*enumeration);
        const auto first = std::ranges::lower_bound(values, lowest);
        const auto last = std::ranges::lower_bound(values, highest);
        if (first == values.end() || *first != lowest || last == values.end() || *last != highest ||
            last < first) {
            array.SetDimensionsUnknown();
        } else if (last - first != highest - lowest) {
            range.SetDimension(static_cast<std::uint32_t>(last - first + 1));
            array.SetHasIndexWithGaps();
        }
    }

    /// None if it isn't certain what they are.
    const Values& ValuesOf(const VDebugInfoNode& enumeration) {
        const auto [place, isNew] = mValues.try_emplace(&enumeration);
        if (isNew && enumeration.GetByteSize() <= sLargestEnumeration) {
            place->second = ReadValues(enumeration);
        }
        return place->second;
    }

    static Values ReadValues(const VDebugInfoNode& enumeration) {
        Values values;
        for (const VDebugInfoNode* child : enumeration.Children()) {
            if (child->GetTag() == DW_TAG_enumerator) {
                values.push_back(NumberOf(child->GetConstValueAttribute()));
            }
        }
        std::ranges::sort(values);
        values.erase(std::unique(values.begin(), values.end()), values.end());
        return values;
    }

    /// Many arrays may have one index type.
    std::unordered_map<const VDebugInfoNode*, Values> mValues;
};

} // namespace

void CountIndexedElements(VDwarf2Section& section) {
    IndexedElements elements;
    section.mDieNodes.ForEachOf(NodeGroup::Arrays, [&](VDebugInfoNode& array) {
        elements.CountThoseOf(*array.AsArrayNode());
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
