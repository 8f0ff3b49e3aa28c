#include "StructureLayout.h"

#include "BitLanes.h"
#include "ObjectKinds.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using Kind = LayoutEntry::Kind;

/// Larger positions come only from broken input: negative numbers cut to 32 bits.
constexpr std::uint32_t sLargestBitOffset = 0x7FFFFFFF;

std::uint64_t EndOf(const LayoutEntry& entry) {
    return entry.offset +
           std::min(entry.size, std::numeric_limits<std::uint64_t>::max() - entry.offset);
}

/// Bytes that a member occupies from its storage unit on: packed bit fields may exceed their unit.
std::uint64_t ExtentOf(const ModelObject& member, std::uint64_t size) {
    if (member.kind != ObjectKind::BitField || member.bitOffset > sLargestBitOffset) {
        return size;
    }
    const std::uint64_t firstBit = member.bitOffset;
    const std::uint64_t lastByte =
        firstBit / sBitsOfByte + member.bitSize / sBitsOfByte +
        (firstBit % sBitsOfByte + member.bitSize % sBitsOfByte + sBitsOfByte - 1) / sBitsOfByte;
    return std::max(size, lastByte);
}

/// What a type consists of: its members, and its base classes with and without a place.
struct Contents {
    std::vector<LayoutEntry> placed;
    std::vector<LayoutEntry> unplaced;
};

Contents ContentsOf(const DataModel::Model& model, ObjectId type) {
    Contents contents;
    const std::vector<DataModel::BaseClass> placed = model.PlacedBaseClasses(type);
    auto next = placed.begin();
    for (const DataModel::BaseClass& base : model.BaseClasses(type)) {
        const std::uint64_t size = model.SizeOf(base.type);
        if (next != placed.end() && next->type == base.type && next->offset == base.offset) {
            contents.placed.push_back({Kind::BaseClass, base.type, base.offset, size});
            ++next;
        } else {
            contents.unplaced.push_back({Kind::UnplacedBaseClass, base.type, 0, size});
        }
    }
    model.ForEachIn(type, [&](const ModelObject& member) {
        if (IsMember(member.kind)) {
            contents.placed.push_back({Kind::Member, member.id, member.offset,
                                       ExtentOf(member, model.SizeOf(member.id))});
        }
    });
    return contents;
}

/// Adds the gaps. Members that overlap, such as bit fields in one storage unit, form a cluster; the
/// bits that its members leave over are unused.
class GapFinder {
public:
    GapFinder(const DataModel::Model& model, std::uint64_t size)
        : mModel(model)
        , mSize(size) {}

    std::vector<LayoutEntry> Find(const std::vector<LayoutEntry>& contents) {
        for (const LayoutEntry& entry : contents) {
            if (entry.offset >= mEnd) {
                EndCluster();
                AddGap(Kind::Hole, entry.offset);
                mClusterStart = entry.offset;
            }
            AddToCluster(entry);
            mEnd = std::max(mEnd, EndOf(entry));
            mResult.push_back(entry);
        }
        EndCluster();
        if (!contents.empty()) {
            AddGap(Kind::Padding, mSize);
        }
        return std::move(mResult);
    }

private:
    void AddToCluster(const LayoutEntry& entry) {
        const ModelObject object = mModel.Object(entry.id);
        const bool isBitField = object.kind == ObjectKind::BitField;
        mHasBitFields = mHasBitFields || isBitField;
        mUsedBits += isBitField ? object.bitSize : (EndOf(entry) - entry.offset) * sBitsOfByte;
    }

    void EndCluster() {
        // The storage unit of a bit field may be larger than the structure.
        const std::uint64_t end = std::clamp(mSize, mClusterStart, mEnd);
        const std::uint64_t bits = (end - mClusterStart) * sBitsOfByte;
        if (mHasBitFields && mUsedBits < bits) {
            mResult.push_back({Kind::UnusedBits, 0, mClusterStart, bits - mUsedBits});
        }
        mHasBitFields = false;
        mUsedBits = 0;
        mClusterStart = mEnd;
    }

    void AddGap(Kind kind, std::uint64_t end) {
        if (end > mEnd) {
            mResult.push_back({kind, 0, mEnd, end - mEnd});
        }
    }

    const DataModel::Model& mModel;
    std::uint64_t mSize;
    std::vector<LayoutEntry> mResult;
    std::uint64_t mEnd = 0;
    std::uint64_t mClusterStart = 0;
    std::uint64_t mUsedBits = 0;
    bool mHasBitFields = false;
};

} // namespace

std::vector<LayoutEntry> LayoutOf(const DataModel::Model& model, ObjectId type) {
    Contents contents = ContentsOf(model, type);
    if (model.Object(type).kind == ObjectKind::Union) {
        return contents.placed;
    }
    std::ranges::stable_sort(contents.placed, {}, &LayoutEntry::offset);
    std::vector<LayoutEntry> layout = std::move(contents.unplaced);
    const std::vector<LayoutEntry> placed =
        GapFinder(model, model.SizeOf(type)).Find(contents.placed);
    layout.insert(layout.end(), placed.begin(), placed.end());
    return layout;
}

} // namespace Tessel::Norn::Brindle::Program
