#include "model/NamePool.h"

#include "core/KeyMixing.h"
#include "core/Prefetch.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Chunks double up to this.
constexpr std::size_t sLargestChunk = 2 * 1024 * 1024;
constexpr std::size_t sLargestNumber = std::numeric_limits<std::uint32_t>::max();

} // namespace

NamePool::NamePool()
    : mSeed(ProcessSeed())
    , mNames(1) {}

NameId NamePool::Intern(std::string_view name) {
    if (name.empty()) {
        return 0;
    }
    const NameId expected = mNames[mLast].next;
    if (Text(expected) == name) {
        mLast = expected;
    } else {
        const NameId found = FoundOrAdded(name);
        mNames[mLast].next = found;
        mLast = found;
    }
    Prefetch(mNames[mNames[mLast].next].bytes);
    return mLast;
}

NameId NamePool::FoundOrAdded(std::string_view name) {
    const std::uint64_t hash = HashOfText(name, mSeed);
    if (const NameId known = Find(name, hash); known != 0) {
        return known;
    }
    if (name.size() > sLargestNumber || mNames.size() > sLargestNumber) {
        throw std::length_error("name pool is full");
    }
    const auto added = static_cast<NameId>(mNames.size());
    mNames.push_back({Keep(name), static_cast<std::uint32_t>(name.size()), 0});
    mSlots.Add(hash, added);
    mLongestName = std::max(mLongestName, name.size());
    return added;
}

std::optional<NameId> NamePool::Find(std::string_view name) const {
    if (name.empty()) {
        return 0;
    }
    if (name.size() > mLongestName) {
        return std::nullopt;
    }
    const NameId found = Find(name, HashOfText(name, mSeed));
    return found != 0 ? std::optional(found) : std::nullopt;
}

NameId NamePool::Find(std::string_view name, std::uint64_t hash) const {
    return mSlots.Find(hash, [&](NameId candidate) { return Text(candidate) == name; });
}

const char* NamePool::Keep(std::string_view bytes) {
    if (bytes.size() > mFreeSize) {
        mChunkSize = std::min(2 * mChunkSize, sLargestChunk);
        const std::size_t size = std::max(bytes.size(), mChunkSize);
        mFree = mChunks.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
        mFreeSize = size;
    }
    char* kept = mFree;
    std::memcpy(kept, bytes.data(), bytes.size());
    mFree += bytes.size();
    mFreeSize -= bytes.size();
    return kept;
}

} // namespace Tessel::Norn::Brindle::DataModel
