#include "model/LookupIndex.h"

#include "core/KeyMixing.h"

#include <limits>
#include <stdexcept>

namespace Tessel::Norn::Brindle::DataModel {

LookupIndex::LookupIndex()
    : mSeed(ProcessSeed())
    , mEntries(1) {}

std::uint32_t LookupIndex::Find(const LookupKey& key) const {
    return mEntries[PositionOf(key, HashOf(key))].value;
}

std::uint32_t LookupIndex::FindOrAdd(const LookupKey& key, std::uint32_t value) {
    const std::uint64_t hash = HashOf(key);
    if (const std::uint32_t known = PositionOf(key, hash); known != 0) {
        return mEntries[known].value;
    }
    if (mEntries.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("lookup index is full");
    }
    // The entry first: if the second step runs out of memory, no slot leads to a missing entry.
    mEntries.push_back({key.first, key.second, key.kind, value});
    mSlots.Add(hash, static_cast<std::uint32_t>(mEntries.size() - 1));
    return value;
}

std::uint32_t LookupIndex::NumberOf(const LookupKey& key) {
    return FindOrAdd(key, static_cast<std::uint32_t>(mEntries.size()));
}

std::uint64_t LookupIndex::HashOf(const LookupKey& key) const {
    constexpr std::uint64_t sSpread = 0x9E3779B97F4A7C15U;
    const std::uint64_t second = key.second * sSpread + static_cast<std::uint64_t>(key.kind);
    return Mix((key.first ^ mSeed) + second * sSpread);
}

std::uint32_t LookupIndex::PositionOf(const LookupKey& key, std::uint64_t hash) const {
    return mSlots.Find(hash, [&](std::uint32_t candidate) {
        const Entry& entry = mEntries[candidate];
        return entry.first == key.first && entry.second == key.second && entry.kind == key.kind;
    });
}

} // namespace Tessel::Norn::Brindle::DataModel
