// The memory of one node tree. Objects and texts are carved from large chunks and released all at
// once; nothing in it is ever released alone, and no destructor runs.
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

/// Bump allocator of a node tree.
///
/// Objects live in chunks that are known to the whole process by number, so that an object can be
/// named by 32 bits, see `VNodeLink`. At most 32 GiB of objects exist at a time. Not for several
/// threads.
class VNodeArena {
public:
    static constexpr std::size_t kChunkSize = std::size_t{1} << 20U;
    static constexpr std::size_t kAlignment = 8;

    VNodeArena() = default;
    ~VNodeArena();
    VNodeArena(const VNodeArena&) = delete;
    VNodeArena& operator=(const VNodeArena&) = delete;
    VNodeArena(VNodeArena&&) = delete;
    VNodeArena& operator=(VNodeArena&&) = delete;

    /// Makes an object that lives as long as the arena and must own nothing beyond it.
    /// @throws std::bad_alloc
    template <typename T, typename... Arguments>
    T* Create(Arguments&&... arguments) {
        static_assert(alignof(T) <= kAlignment);
        static_assert(sizeof(T) <= kChunkSize / 2);
        return new (Allocate(sizeof(T))) T(std::forward<Arguments>(arguments)...);
    }

    /// Makes a copy of the text, terminated, that lives as long as the arena.
    /// @throws std::bad_alloc
    const char* KeepText(std::string_view text);

private:
    template <typename T>
    friend class VNodeLink;

    /// Chunks come from the system this many at a time; memory that isn't used yet costs nothing.
    static constexpr std::size_t kChunksPerSlab = 8;
    static constexpr std::size_t kMaximumChunkCount = std::size_t{1} << 15U;
    static constexpr unsigned kUnitBits = 17;

    /// Stands at the start of each chunk of objects.
    struct alignas(kAlignment) ChunkHeader {
        std::uint32_t number;
    };

    void* Allocate(std::size_t size) {
        const std::size_t rounded = (size + kAlignment - 1) & ~(kAlignment - 1);
        if (static_cast<std::size_t>(mEnd - mNext) < rounded) {
            AddChunk();
        }
        return std::exchange(mNext, mNext + rounded);
    }
    char* AllocateText(std::size_t size);
    void AddChunk();
    void AddSlab();

    /// The chunks of all arenas by their numbers.
    static inline std::array<std::byte*, kMaximumChunkCount> sChunks{};

    std::byte* mNext = nullptr;
    std::byte* mEnd = nullptr;
    struct SlabDeleter {
        void operator()(std::byte* slab) const {
            ::operator delete (slab, std::align_val_t{kChunkSize});
        }
    };

    std::vector<std::unique_ptr<std::byte, SlabDeleter>> mSlabs;
    std::size_t mUsedChunksOfSlab = kChunksPerSlab;
    std::vector<std::uint32_t> mChunkNumbers;
    char* mNextText = nullptr;
    char* mTextEnd = nullptr;
    std::vector<std::unique_ptr<char[]>> mTextChunks;
};

/// A pointer of 32 bits to an object that lies in an arena, or null. It halves the size of a tree
/// whose nodes are mostly links.
template <typename T>
class VNodeLink {
public:
    VNodeLink() = default;
    VNodeLink(T* object) { *this = object; }
    VNodeLink& operator=(T* object) {
        mNumber = object == nullptr ? 0 : NumberOf(object);
        return *this;
    }

    [[nodiscard]] T* Get() const {
        if (mNumber == 0) {
            return nullptr;
        }
        std::byte* chunk = VNodeArena::sChunks[mNumber >> VNodeArena::kUnitBits];
        return reinterpret_cast<T*>(chunk + (mNumber & kUnitMask) * VNodeArena::kAlignment);
    }
    operator T*() const { return Get(); }
    T* operator->() const { return Get(); }

private:
    static constexpr std::uint32_t kUnitMask = (1U << VNodeArena::kUnitBits) - 1;

    static std::uint32_t NumberOf(T* object) {
        const auto address = reinterpret_cast<std::uintptr_t>(object);
        const std::uintptr_t offset = address & (VNodeArena::kChunkSize - 1);
        const std::byte* chunk = reinterpret_cast<const std::byte*>(object) - offset;
        const auto* header = reinterpret_cast<const VNodeArena::ChunkHeader*>(chunk);
        return (header->number << VNodeArena::kUnitBits) |
               static_cast<std::uint32_t>(offset / VNodeArena::kAlignment);
    }

    std::uint32_t mNumber = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
