// Where the record of an object lies, when some objects have none of their own and share that of
// the object before: a bit for each object, and a count for every 64.
#pragma once

#include "model/PieceList.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// Places of records by position of the object. Both count from 0.
class RecordPlaces {
public:
    /// Afterwards one object can be added without allocation.
    void MakeRoom() { mBlocks.MakeRoom(); }

    /// Adds the object after the last one.
    /// @param joins it uses the record of the object before
    void Add(bool joins) {
        const std::size_t bit = mSize++ % kBlockSize;
        if (bit == 0) {
            mBlocks.Add({.joined = 0, .joinedBefore = mJoined});
        }
        if (joins) {
            mBlocks[mBlocks.Size() - 1].joined |= std::uint64_t{1} << bit;
            ++mJoined;
        }
    }

    /// The place of an object that was added.
    [[nodiscard]] std::size_t Of(std::size_t position) const {
        const Block& block = mBlocks[position / kBlockSize];
        const std::uint64_t upToHere =
            block.joined & (~std::uint64_t{0} >> (kBlockSize - 1 - position % kBlockSize));
        // On older processors, counting bits is a call of the compiler's library.
        const int joinedHere = upToHere != 0 ? std::popcount(upToHere) : 0;
        return position - block.joinedBefore - static_cast<std::size_t>(joinedHere);
    }

private:
    static constexpr std::size_t kBlockSize = 64;

    struct Block {
        /// Which objects of the block join, the first in the lowest bit.
        std::uint64_t joined;
        /// How many objects join in the blocks before.
        std::uint32_t joinedBefore;
    };

    PieceList<Block> mBlocks;
    std::size_t mSize = 0;
    std::uint32_t mJoined = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
