#include "core/HashSlots.h"

#include <utility>

namespace Tessel::Norn::Brindle {

namespace {

constexpr std::size_t sFirstSlotCount = 64;

} // namespace

HashSlots::HashSlots()
    : mSlots(sFirstSlotCount)
    , mMask(sFirstSlotCount - 1) {}

void HashSlots::Add(std::uint64_t hash, std::uint32_t position) {
    // At most two thirds full: an unsuccessful search then looks at 5 slots on average.
    if (3 * (mCount + 1) > 2 * mSlots.size()) {
        Grow();
    }
    Put({static_cast<std::uint32_t>(hash), position});
    ++mCount;
}

void HashSlots::Put(Slot entry) {
    std::size_t slot = entry.tag & mMask;
    while (mSlots[slot].position != 0) {
        slot = (slot + 1) & mMask;
    }
    mSlots[slot] = entry;
}

void HashSlots::Grow() {
    const std::vector<Slot> former = std::exchange(mSlots, std::vector<Slot>(2 * mSlots.size()));
    mMask = mSlots.size() - 1;
    for (const Slot& entry : former) {
        if (entry.position != 0) {
            Put(entry);
        }
    }
}

} // namespace Tessel::Norn::Brindle
