// The memory of one node tree. Objects and texts are carved from large chunks and released all at
// once; no object is released on its own, and no destructor runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

#ifndef BRINDLE_CHUNK_BITS
#define BRINDLE_CHUNK_BITS 20U
#endif
/// Bump allocator of a node tree. Objects live in chunks with numbers, so that 32 bits identify an
/// object, see `VNodeLink`. At most 32 GiB of objects exist at a time. Not thread-safe.
class VNodeArena {
public:
    static constexpr std::size_t kChunkSize = std::size_t{1} << BRINDLE_CHUNK_BITS;
    static constexpr std::size_t kAlignment = 8;

    VNodeArena() = default;
    ~VNodeArena();
    VNodeArena(const VNodeArena&) = delete;
    VNodeArena& operator=(const VNodeArena&) = delete;
    VNodeArena(VNodeArena&&) = delete;
    VNodeArena& operator=(VNodeArena&&) = delete;

    /// Forgets all objects and texts and keeps their memory for new ones. Only texts too large to
    /// share a chunk keep their memory occupied until the arena ends.
    void Clear();

    /// Makes an object that lives until the arena is cleared and must own nothing beyond it.
    /// @throws std::bad_alloc
    template <typename T, typename... Arguments>
    T* Create(Arguments&&... arguments) {
        static_assert(alignof(T) <= kAlignment);
        static_assert(sizeof(T) <= kLargestObject);
        return new (Allocate(sizeof(T))) T(std::forward<Arguments>(arguments)...);
    }

    /// Makes a copy of the text, terminated, that lives until the arena is cleared.
    /// @throws std::bad_alloc
    const char* KeepText(std::string_view text);

private:
    template <typename T>
    friend class VNodeLink;
    friend class VNodeText;

    /// The most chunks that the system provides at a time. Memory that isn't used yet costs
    /// nothing, but for sanitizers, which mark each byte: small trees begin with slabs of one
    /// chunk.
    static constexpr std::size_t kMaximumChunksPerSlab = 8;
    static constexpr std::size_t kMaximumChunkCount = std::size_t{1} << 15U;
    static constexpr unsigned kUnitBits = 17;
    static constexpr std::size_t kLargestObject = kChunkSize / 2;

    /// Precedes the objects of each chunk.
    struct alignas(kAlignment) ChunkHeader {
        std::uint32_t number;
    };

    /// The unused rest of a chunk.
    struct Space {
        std::byte* next = nullptr;
        std::byte* end = nullptr;
    };

    void* Allocate(std::size_t size) { return AllocateIn(mObjects, size); }
    void* AllocateIn(Space& space, std::size_t size) {
        const std::size_t rounded = (size + kAlignment - 1) & ~(kAlignment - 1);
        if (static_cast<std::size_t>(space.end - space.next) < rounded) {
            space = TakeChunk();
        }
        return std::exchange(space.next, space.next + rounded);
    }
    void* AllocateAlone(std::size_t size);
    Space TakeChunk();
    Space NewChunk();
    Space Register(std::byte* chunk, std::size_t size);
    void AddSlab(std::size_t size);

    /// The number that identifies an object in the whole process; not 0.
    static std::uint32_t NumberOf(const void* object) {
        const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(object) & (kChunkSize - 1);
        const std::byte* chunk = static_cast<const std::byte*>(object) - offset;
        return (reinterpret_cast<const ChunkHeader*>(chunk)->number << kUnitBits) |
               static_cast<std::uint32_t>(offset / kAlignment);
    }
    static std::byte* ObjectOf(std::uint32_t number) {
        constexpr std::uint32_t unitMask = (1U << kUnitBits) - 1;
        std::byte* chunk = sChunks[number >> kUnitBits];
        return &chunk[(number & unitMask) * kAlignment];
    }

    /// The chunks of all arenas by their numbers.
    static inline std::array<std::byte*, kMaximumChunkCount> sChunks{};

    Space mObjects;
    /// Texts are kept apart, so that walks over objects don't pass them.
    Space mTexts;
    struct SlabDeleter {
        void operator()(std::byte* slab) const {
            ::operator delete (slab, std::align_val_t{kChunkSize});
        }
    };

    std::vector<std::unique_ptr<std::byte, SlabDeleter>> mSlabs;
    /// The chunks of the latest slab that have no number yet.
    Space mNewChunks;
    std::vector<std::uint32_t> mChunkNumbers;
    /// The chunks that objects or texts share, and how many of them are in use.
    std::vector<Space> mSharedChunks;
    std::size_t mUsedChunks = 0;
};

/// A 32-bit pointer to an object in an arena, or null. It halves the size of a tree whose nodes are
/// mostly links.
template <typename T>
class VNodeLink {
public:
    VNodeLink() = default;
    VNodeLink(T* object) { *this = object; }
    VNodeLink& operator=(T* object) {
        mNumber = object == nullptr ? 0 : VNodeArena::NumberOf(object);
        return *this;
    }

    [[nodiscard]] T* Get() const {
        return mNumber == 0 ? nullptr : reinterpret_cast<T*>(VNodeArena::ObjectOf(mNumber));
    }
    operator T*() const { return Get(); }
    T* operator->() const { return Get(); }

    /// The link as a number, 0 if it is null.
    [[nodiscard]] std::uint32_t Number() const { return mNumber; }
    static VNodeLink OfNumber(std::uint32_t number) {
        VNodeLink link;
        link.mNumber = number;
        return link;
    }

private:
    std::uint32_t mNumber = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
