// Arrays and the subranges that give their dimensions.
#pragma once

#include "nodes/VDebugInfoNode.h"

#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// One dimension of an array, as a child of the array node.
class VDebugInfoNodeSubrange final : public VDebugInfoNode {
public:
    VDebugInfoNodeSubrange(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                           VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_subrange_type, sectionOffset, header, parent) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    void Dump(std::ostream& stream, const std::string& indent) const override;
    void ResolveReferences(VReferenceFinder& references) override;

    [[nodiscard]] const VAttributeValue& GetLowerBound() const { return mLowerBound; }
    [[nodiscard]] const VAttributeValue& GetUpperBound() const { return mUpperBound; }
    [[nodiscard]] const VAttributeValue& GetCount() const { return mCount; }
    [[nodiscard]] VDebugInfoNode* GetLowerBoundNode() const { return mLowerBoundNode; }
    [[nodiscard]] VDebugInfoNode* GetUpperBoundNode() const { return mUpperBoundNode; }
    [[nodiscard]] VDebugInfoNode* GetCountNode() const { return mCountNode; }

    /// Computes the number of elements from the bounds, which may be variables in memory, unless it
    /// was set.
    void ResolveDimension(const VDieNodes& nodes);
    void SetDimension(std::uint32_t dimension);
    /// Number of elements; 0 if the bounds give none.
    [[nodiscard]] std::uint32_t GetDimension() const { return mDimension; }
    /// Distance between elements of the dimension in bits; 0 if the entry doesn't give it.
    [[nodiscard]] std::uint64_t GetStrideInBits() const { return mStrideInBits; }
    /// True if that is known only at run time.
    [[nodiscard]] bool HasComputedPlace() const { return mHasComputedPlace; }

private:
    VAttributeValue mCount;
    VAttributeValue mLowerBound;
    VAttributeValue mUpperBound;
    VNodeLink<VDebugInfoNode> mCountNode;
    VNodeLink<VDebugInfoNode> mLowerBoundNode;
    VNodeLink<VDebugInfoNode> mUpperBoundNode;
    std::uint64_t mStrideInBits = 0;
    std::uint32_t mDimension = 0;
    bool mHasComputedPlace = false;
    bool mIsDimensionSet = false;
};

/// An array. Its dimensions are those of its subranges, in the order of memory: the index of the
/// last one runs fastest.
class VDebugInfoNodeArray final : public VDebugInfoNode {
public:
    VDebugInfoNodeArray(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_array_type, sectionOffset, header, parent) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    bool ResolveSizes(const VDieNodes& nodes, VDwarf2Section& section) override;
    VDebugInfoNodeArray* AsArrayNode() override { return this; }
    bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs, ObjectId& id,
                           bool& alreadyRegistered) override;
    /// Each dimension as "[n]".
    [[nodiscard]] std::string GetArrayDimensionText() const override;

    /// Records that a dimension says where its elements lie.
    void SetHasStrides() { mHasStrides = true; }
    /// Records that elements can't be told from the bounds. The array then has no dimension.
    void SetDimensionsUnknown() { mHasUnknownDimensions = true; }
    /// Records that there are values of an index without elements.
    void SetHasIndexWithGaps() { mHasIndexWithGaps = true; }
    /// Settles the dimensions, once.
    void ResolveArrayDimensions(const VDieNodes& nodes);
    /// The dimensions; empty before they are settled, never empty afterwards: an array without
    /// usable bounds has the single dimension 0.
    [[nodiscard]] std::vector<std::uint32_t> GetDimensions() const;
    /// Product of the dimensions in 32 bits; 0 before they are settled.
    [[nodiscard]] std::uint32_t GetTotalElementCount() const;
    /// True if elements aren't adjacent, each in bytes of its own: packed arrays, parts of other
    /// arrays, and arrays that lie elsewhere. For arrays whose sizes are settled.
    [[nodiscard]] bool HasScatteredElements() const;

protected:
    SizeSource PrepareByteSize(const VDieNodes& nodes) override;
    void TakeByteSizeOfType(const VDebugInfoNode& type) override;

private:
    /// The size of an array, and whether all its elements are adjacent.
    struct Extent {
        std::uint64_t bits;
        bool isDense;
    };

    template <typename Visitor>
    void ForEachSubrange(Visitor&& visit) const;
    template <typename Visitor>
    void ForEachDimension(Visitor&& visit) const;
    /// True for an array of arrays with such an index. Compilers compute its stride as if the
    /// elements had gaps too.
    [[nodiscard]] bool HasElementsOfIndexWithGaps() const;
    /// For arrays with strides; others only need the number of elements.
    [[nodiscard]] Extent ExtentOf(std::int32_t elementSize) const;

    /// Distance between elements in bits; 0 if the entry doesn't give it.
    std::uint64_t mStrideInBits = 0;
    bool mHasDimensions = false;
    bool mIsColumnMajor = false;
    bool mHasComputedPlace = false;
    /// The array or one of its dimensions gives a stride.
    bool mHasStrides = false;
    bool mHasUnknownDimensions = false;
    bool mHasIndexWithGaps = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
