// A hash table (open addressing) of positions in a list that its owner keeps, such as one of names,
// keys or groups of types. It never sees a key: the owner compares.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle {

/// Positions by hash. A position counts from 1; 0 is none.
class HashSlots {
public:
    HashSlots();

    /// The first position of this hash that `matches(position)` accepts, 0 if there is none.
    template <typename Matches>
    [[nodiscard]] std::uint32_t Find(std::uint64_t hash, Matches&& matches) const {
        const auto tag = static_cast<std::uint32_t>(hash);
        for (std::size_t slot = tag & mMask; mSlots[slot].position != 0;
             slot = (slot + 1) & mMask) {
            if (mSlots[slot].tag == tag && matches(mSlots[slot].position)) {
                return mSlots[slot].position;
            }
        }
        return 0;
    }

    /// Adds a position. The caller has made sure that its key is new.
    void Add(std::uint64_t hash, std::uint32_t position);

private:
    /// The tag is the lower half of the hash. It also gives the slot, so that a larger table can be
    /// filled without the keys.
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t position = 0;
    };

    void Put(Slot entry);
    void Grow();

    std::vector<Slot> mSlots;
    std::size_t mMask;
    std::size_t mCount = 0;
};

} // namespace Tessel::Norn::Brindle
