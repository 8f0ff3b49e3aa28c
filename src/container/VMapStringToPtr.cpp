#include "container/VMapStringToPtr.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

// Sizes beyond the count of entries that a map can hold are of no use.
constexpr std::array<std::uint32_t, 28> sBucketCounts{
    17,       37,       79,        163,       331,       673,        1361,
    2729,     5471,     10949,     21911,     43853,     87719,      175447,
    350899,   701819,   1403641,   2807303,   5614657,   11229331,   22458671,
    44917381, 89834777, 179669557, 359339171, 718678369, 1437356741, 2874713497,
};

std::unique_ptr<const char[]> CopyKey(const char* key) {
    const std::size_t size = std::strlen(key) + 1;
    std::unique_ptr<char[]> copy(new char[size]);
    std::memcpy(copy.get(), key, size);
    return copy;
}

} // namespace

VMPlex* VMPlex::Create(VMPlex*& head, std::size_t elementCount, std::size_t elementSize) {
    constexpr std::size_t maxDataSize = std::numeric_limits<std::ptrdiff_t>::max() - sizeof(VMPlex);
    if (elementSize != 0 && elementCount > maxDataSize / elementSize) {
        throw std::bad_alloc();
    }
    void* memory = ::operator new(sizeof(VMPlex) + elementCount * elementSize);
    head = new (memory) VMPlex{.mNext = head};
    return head;
}

void VMPlex::FreeChain(VMPlex*& head) {
    while (head != nullptr) {
        ::operator delete(std::exchange(head, head->mNext));
    }
}

VMapStringToPtr::VMapStringToPtr(std::int32_t blockSize, bool keysBorrowed)
    : mBlockSize(std::max(blockSize, 1))
    , mKeysBorrowed(keysBorrowed) {}

VMapStringToPtr::~VMapStringToPtr() {
    RemoveAll();
}

void VMapStringToPtr::InitHashTable(std::uint32_t size, bool allocate) {
    const std::uint32_t bucketCount = std::max(size, 1U);
    mHashTable = allocate ? std::make_unique<Entry*[]>(bucketCount) : nullptr;
    mHashTableSize = bucketCount;
}

void*& VMapStringToPtr::operator[](const char* key) {
    if (Entry* existing = FindEntry(key)) {
        return existing->mValue;
    }
    if (!mHashTable) {
        InitHashTable(mHashTableSize);
    }
    // Copied before the entry is taken, so that an entry is never left without its key.
    std::unique_ptr<const char[]> ownedKey = mKeysBorrowed ? nullptr : CopyKey(key);
    Entry* entry = NewEntry();
    entry->mKey = mKeysBorrowed ? key : ownedKey.release();
    if (static_cast<std::uint32_t>(mCount) > mHashTableSize) {
        GrowHashTable();
    }
    entry->mHash = FilingHash(key);
    LinkEntry(entry);
    return entry->mValue;
}

bool VMapStringToPtr::Lookup(const char* key, void*& value) const {
    const Entry* entry = FindEntry(key);
    if (entry == nullptr) {
        return false;
    }
    value = entry->mValue;
    return true;
}

void VMapStringToPtr::GetNextAssoc(Position& position, const char*& key, void*& value) const {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the number was made from a pointer to an entry.
    const auto* entry = reinterpret_cast<const Entry*>(position);
    if (position == kStartPosition) {
        entry = FirstEntryFrom(0);
    }
    key = entry != nullptr ? entry->mKey : nullptr;
    value = entry != nullptr ? entry->mValue : nullptr;
    const Entry* next = nullptr;
    if (entry != nullptr) {
        next = entry->mNext != nullptr ? entry->mNext : FirstEntryFrom(entry->mBucketIndex + 1);
    }
    position = reinterpret_cast<Position>(next);
}

void VMapStringToPtr::RemoveAll() {
    if (!mKeysBorrowed) {
        FreeKeys();
    }
    mHashTable.reset();
    mCount = 0;
    mFreeList = nullptr;
    VMPlex::FreeChain(mBlocks);
}

// Takes four characters at a time, because each step waits for the one before it: names of C++ may
// have thousands of characters.
std::uint32_t VMapStringToPtr::HashKey(const char* key) {
    const auto at = [](const char* character) {
        return static_cast<std::uint32_t>(static_cast<signed char>(*character));
    };
    const char* const end = key + std::strlen(key);
    std::uint32_t hash = 0;
    for (; end - key >= 4; key += 4) {
        hash = hash * (33 * 33 * 33 * 33) + at(key) * (33 * 33 * 33) + at(key + 1) * (33 * 33) +
               at(key + 2) * 33 + at(key + 3);
    }
    for (; key != end; ++key) {
        hash = hash * 33 + at(key);
    }
    return hash;
}

// Names with equal hashes are easy to make, and a file may be full of them: a large table needs a
// hash that spreads them.
std::uint32_t VMapStringToPtr::FilingHash(const char* key) const {
    return mIsGrown ? static_cast<std::uint32_t>(std::hash<std::string_view>()(key)) : HashKey(key);
}

VMapStringToPtr::Entry* VMapStringToPtr::FindEntry(const char* key) const {
    if (!mHashTable) {
        return nullptr;
    }
    const std::uint32_t hash = FilingHash(key);
    Entry* entry = mHashTable[hash % mHashTableSize];
    while (entry != nullptr && (entry->mHash != hash || std::strcmp(entry->mKey, key) != 0)) {
        entry = entry->mNext;
    }
    return entry;
}

const VMapStringToPtr::Entry* VMapStringToPtr::FirstEntryFrom(std::uint32_t bucketIndex) const {
    if (!mHashTable) {
        return nullptr;
    }
    for (std::uint32_t index = bucketIndex; index < mHashTableSize; ++index) {
        if (mHashTable[index] != nullptr) {
            return mHashTable[index];
        }
    }
    return nullptr;
}

VMapStringToPtr::Entry* VMapStringToPtr::NewEntry() {
    if (mCount == std::numeric_limits<std::int32_t>::max()) {
        throw std::bad_alloc();
    }
    if (mFreeList == nullptr) {
        AllocateBlock();
    }
    Entry* entry = std::exchange(mFreeList, mFreeList->mNext);
    *entry = Entry();
    ++mCount;
    return entry;
}

void VMapStringToPtr::AllocateBlock() {
    static_assert(std::is_trivially_destructible_v<Entry>, "blocks are freed without destruction");
    const auto entryCount = static_cast<std::size_t>(mBlockSize);
    auto* entries = static_cast<Entry*>(VMPlex::Create(mBlocks, entryCount, sizeof(Entry))->data());
    for (std::size_t index = entryCount; index-- > 0;) {
        mFreeList = new (entries + index) Entry{.mNext = mFreeList};
    }
}

void VMapStringToPtr::LinkEntry(Entry* entry) {
    entry->mBucketIndex = entry->mHash % mHashTableSize;
    entry->mNext = std::exchange(mHashTable[entry->mBucketIndex], entry);
}

void VMapStringToPtr::GrowHashTable() {
    const auto* newSize = std::ranges::upper_bound(sBucketCounts, mHashTableSize);
    if (newSize == sBucketCounts.end()) {
        return;
    }
    std::unique_ptr<Entry*[]> oldTable(new (std::nothrow) Entry* [*newSize] {});
    if (!oldTable) {
        return;
    }
    oldTable.swap(mHashTable);
    const std::uint32_t oldSize = std::exchange(mHashTableSize, *newSize);
    const bool isRehashing = !std::exchange(mIsGrown, true);
    for (std::uint32_t index = 0; index < oldSize; ++index) {
        for (Entry* entry = oldTable[index]; entry != nullptr;) {
            if (isRehashing) {
                entry->mHash = FilingHash(entry->mKey);
            }
            LinkEntry(std::exchange(entry, entry->mNext));
        }
    }
}

// Goes through the blocks rather than the table, so that entries that a new table left behind are
// found as well; an entry not in use has no key.
void VMapStringToPtr::FreeKeys() {
    for (VMPlex* block = mBlocks; block != nullptr; block = block->mNext) {
        const auto* entries = static_cast<const Entry*>(block->data());
        for (std::int32_t index = 0; index < mBlockSize; ++index) {
            delete[] entries[index].mKey;
        }
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
