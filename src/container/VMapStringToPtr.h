// A chained hash map from text to pointer, which carves its entries from blocks. It serves the
// symbol names of a file, of which there may be many hundred thousand. It never owns what the
// values point to, and never gives back the memory of a single entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Header of a block of equal elements, linked into a list of blocks. The elements follow the
/// header in the same allocation; they are raw memory until the user of the block makes objects of
/// them.
struct alignas(std::max_align_t) VMPlex {
    VMPlex* mNext = nullptr;

    /// Allocates a block and puts it in front of the list. The list owns it.
    /// @throws std::bad_alloc if memory can't hold it; the list is then unchanged
    static VMPlex* Create(VMPlex*& head, std::size_t elementCount, std::size_t elementSize);

    /// Frees all blocks of the list, without destroying their elements, and empties the list.
    static void FreeChain(VMPlex*& head);

    /// Memory of the first element, aligned for any fundamental type.
    void* data() { return this + 1; }
};

/// Pointers by text. Keys are null-terminated byte strings that differ in any byte, upper and lower
/// case included; the empty text is a key like any other. No key may be a null pointer.
///
/// The map begins with 17 buckets and takes a larger table, of a prime about twice the size,
/// whenever it holds more entries than buckets; entries are then filed by a hash that is harder to
/// make collide than `HashKey`. Without memory for the larger table it goes on with
/// the old one.
class VMapStringToPtr {
public:
    /// Place in an enumeration: 0 after the last entry, -1 before the first one.
    using Position = std::intptr_t;

    static constexpr Position kStartPosition = -1;

    /// @param blockSize entries to a block; below 1 counts as 1
    /// @param keysBorrowed false: the map keeps copies of its keys. True: it keeps the caller's
    ///     pointers, whose texts must then stay unchanged until `RemoveAll` or the map's end.
    explicit VMapStringToPtr(std::int32_t blockSize, bool keysBorrowed = false);
    VMapStringToPtr(const VMapStringToPtr&) = delete;
    VMapStringToPtr& operator=(const VMapStringToPtr&) = delete;
    VMapStringToPtr(VMapStringToPtr&&) = delete;
    VMapStringToPtr& operator=(VMapStringToPtr&&) = delete;
    ~VMapStringToPtr();

    /// Replaces the table by one of empty buckets, or by none, in which case the next new key makes
    /// it. Call it on an empty map: existing entries aren't added to the new table, so they can't
    /// be found again and hold their memory until `RemoveAll`.
    /// @param size bucket count; 0 counts as 1
    /// @throws std::bad_alloc if memory can't hold the table; the map is then unchanged
    void InitHashTable(std::uint32_t size, bool allocate = true);

    /// The value of a key. A key that is missing is added with a null value. The reference holds
    /// until `RemoveAll` or the map's end.
    /// @throws std::bad_alloc if memory can't hold the entry; the map then lacks the key
    void*& operator[](const char* key);

    /// Finds the value of a key. `value` is left alone if the key is missing.
    bool Lookup(const char* key, void*& value) const;

    /// Where an enumeration begins; 0 if the map is empty.
    [[nodiscard]] Position GetStartPosition() const { return mCount == 0 ? 0 : kStartPosition; }

    /// Gives the entry at a position and moves on to the next. The order means nothing. A key that
    /// is added while an enumeration is under way may make it miss entries or meet them twice.
    /// After the last entry, key and value are null and the position stays.
    /// @param position from `GetStartPosition` of this map or the previous call; ends with
    ///     `RemoveAll`
    /// @param key the map's own text, which lives as long as the entry
    void GetNextAssoc(Position& position, const char*& key, void*& value) const;

    /// Releases all entries. The bucket count stays.
    void RemoveAll();

    [[nodiscard]] std::int32_t GetCount() const { return mCount; }
    [[nodiscard]] std::uint32_t GetHashTableSize() const { return mHashTableSize; }

    /// Hash of a key: from 0, for each character 33 times the hash plus the character as a signed
    /// value, modulo 2^32.
    [[nodiscard]] static std::uint32_t HashKey(const char* key);

private:
    struct Entry {
        Entry* mNext = nullptr;
        std::uint32_t mBucketIndex = 0;
        std::uint32_t mHash = 0;
        const char* mKey = nullptr;
        void* mValue = nullptr;
    };

    [[nodiscard]] std::uint32_t FilingHash(const char* key) const;
    [[nodiscard]] Entry* FindEntry(const char* key) const;
    [[nodiscard]] const Entry* FirstEntryFrom(std::uint32_t bucketIndex) const;
    Entry* NewEntry();
    void AllocateBlock();
    void LinkEntry(Entry* entry);
    void GrowHashTable();
    void FreeKeys();

    std::unique_ptr<Entry*[]> mHashTable;
    std::uint32_t mHashTableSize = 17;
    std::int32_t mCount = 0;
    Entry* mFreeList = nullptr;
    VMPlex* mBlocks = nullptr;
    std::int32_t mBlockSize;
    bool mKeysBorrowed;
    bool mIsGrown = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
