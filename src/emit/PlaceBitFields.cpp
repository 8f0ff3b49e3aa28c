// Converts every way of describing a bit field into one: an offset of the storage in bytes, and
// bits that lie inside the storage. Compilers count bits in two ways:
//
//     from the high-order bit of a storage that they name, which a packed field may exceed;
//     from the start of the structure, in the order of the target's memory, with no storage named.
//
// A field that fits into its type's natural unit lies in that unit, as in C compilers: bits 37 to
// 39 of a structure, of a type of 4 bytes, are bits 5 to 7 of the unit at offset 4. Any other field
// begins in the byte that holds its first bit.
#include "container/VElfFile.h"
#include "core/BitsPerByte.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this version on, a field without any bit offset begins where its member does (DWARF 4,
/// 5.5.6); before, offsets counted from the high-order bit, and a missing one was 0.
constexpr std::int32_t sVersionOfStructureOffsets = 4;

/// The bits of a field in its structure, counted in the order of the target's memory: from the
/// least significant bit of the first byte on little-endian targets, from the most significant one
/// on others.
struct BitRange {
    std::int64_t first;
    std::int64_t count;

    [[nodiscard]] bool IsWithin(std::int64_t byteOffset, std::int64_t byteSize) const {
        return first >= byteOffset * sBitsPerByte &&
               first + count <= (byteOffset + byteSize) * sBitsPerByte;
    }
};

class BitFieldPlacer {
public:
    explicit BitFieldPlacer(bool isBigEndian)
        : mIsBigEndian(isBigEndian) {}

    void Place(VDebugInfoNode& member) const {
        const BitNumbering numbering = member.GetBitNumbering();
        if (member.GetBitSize() == 0) {
            if (numbering == BitNumbering::Structure) {
                member.SetMemberOffset(
                    static_cast<std::uint32_t>(member.GetBitOffset() / sBitsPerByte));
            }
            return;
        }
        bool isAddressSize = false;
        const std::int64_t namedSize = member.GetResolvedByteSize(isAddressSize);
        const VDebugInfoNode* type = member.GetTypeNode();
        const std::int64_t typeSize =
            type != nullptr ? type->GetResolvedByteSize(isAddressSize) : 0;
        const BitRange bits = BitsOf(member, namedSize);
        const std::int64_t storageSize = typeSize > 0 ? typeSize : namedSize;
        if (bits.first < 0 || storageSize <= 0) {
            return;
        }
        const VDebugInfoNode* plainType = member.GetPlainTypeNode();
        if (plainType != nullptr && plainType->HasOtherByteOrder()) {
            PlaceInOtherOrder(member, bits, storageSize);
        } else {
            PlaceIn(member, bits, storageSize);
        }
    }

private:
    [[nodiscard]] BitRange BitsOf(const VDebugInfoNode& member, std::int64_t namedSize) const {
        const std::int64_t start = member.GetMemberOffset() * sBitsPerByte;
        const std::int64_t count = member.GetBitSize();
        // A field that begins before its storage has a negative offset.
        const std::int64_t offset = static_cast<std::int32_t>(member.GetBitOffset());
        switch (NumberingOf(member)) {
        case BitNumbering::Structure:
            return {member.GetBitOffset(), count};
        case BitNumbering::Storage:
            return {start + (mIsBigEndian ? offset : namedSize * sBitsPerByte - offset - count),
                    count};
        default:
            return {start, count};
        }
    }

    static BitNumbering NumberingOf(const VDebugInfoNode& member) {
        const BitNumbering numbering = member.GetBitNumbering();
        const bool isOldStyle =
            member.GetCompileUnitHeader()->mDwarfVersion < sVersionOfStructureOffsets;
        return numbering == BitNumbering::Unsaid && isOldStyle ? BitNumbering::Storage : numbering;
    }

    /// A field of the other byte order counts its bits from the other end of each byte. If it
    /// crosses bytes, its bits aren't adjacent in the order of the target: then it becomes a member
    /// of as many bytes as hold it.
    void PlaceInOtherOrder(VDebugInfoNode& member, const BitRange& bits,
                           std::int64_t storageSize) const {
        const std::int64_t firstByte = bits.first / sBitsPerByte;
        const std::int64_t firstBit = bits.first % sBitsPerByte;
        const std::int64_t bytes = (firstBit + bits.count + sBitsPerByte - 1) / sBitsPerByte;
        if (bytes == 1) {
            const std::int64_t mirrored = sBitsPerByte - firstBit - bits.count;
            PlaceIn(member, {firstByte * sBitsPerByte + mirrored, bits.count}, storageSize);
            return;
        }
        member.SetMemberOffset(static_cast<std::uint32_t>(firstByte));
        member.SetByteSize(static_cast<std::int32_t>(bytes));
        member.SetBitSize(0);
    }

    void PlaceIn(VDebugInfoNode& member, const BitRange& bits, std::int64_t storageSize) const {
        const std::int64_t natural = bits.first / (storageSize * sBitsPerByte) * storageSize;
        std::int64_t offset = bits.first / sBitsPerByte;
        if (member.GetBitNumbering() != BitNumbering::Structure &&
            bits.IsWithin(member.GetMemberOffset(), storageSize)) {
            offset = member.GetMemberOffset();
        } else if (bits.IsWithin(natural, storageSize)) {
            offset = natural;
        }
        // A field may need one more byte than its type has; it then ends with the last byte that it
        // needs.
        const std::int64_t end = bits.first + bits.count - offset * sBitsPerByte;
        const std::int64_t heldSize =
            std::max(storageSize, (end + sBitsPerByte - 1) / sBitsPerByte);
        const std::int64_t fromLowOrderBit =
            mIsBigEndian ? heldSize * sBitsPerByte - end : bits.first - offset * sBitsPerByte;
        member.SetMemberOffset(static_cast<std::uint32_t>(offset));
        member.SetByteSize(static_cast<std::int32_t>(storageSize));
        // As before sizes are settled: counted from the high-order bit of the storage.
        member.SetBitOffset(
            static_cast<std::uint32_t>(storageSize * sBitsPerByte - fromLowOrderBit - bits.count));
    }

    bool mIsBigEndian;
};

} // namespace

void PlaceBitFields(VDwarf2Section& section) {
    const BitFieldPlacer placer(section.mElfFile->mIsMSBData);
    section.mDieNodes.ForEachOf(NodeGroup::MembersAndEnumerations, [&](VDebugInfoNode& node) {
        if (node.GetTag() == DW_TAG_member) {
            placer.Place(node);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
