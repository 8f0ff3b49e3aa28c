// A window over the input file that several buffers may share, so that they copy out of memory
// rather than seek and read. It also holds whole sections, those of dsPIC targets already
// compressed.
#pragma once

#include "container/VElfInput.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Read window of one input file, counted through `VElfFileCachePtr`.
class VElfFileCache {
public:
    /// Borrows the input, which must outlive the cache.
    /// @param cacheSize wanted size of the window in bytes
    VElfFileCache(VElfInput& input, std::int32_t cacheSize);

    /// Loads a whole range into the window; what lies beyond the end of the file is left out.
    /// Errors: `ELFERR_SEEK_FAILED`, `ELFERR_READ_FAILED` if there is no byte, `ELFERR_NO_MEMORY`.
    /// @param compress keep every second byte only, see `CompressDsPicData`
    bool LoadRange(std::int32_t filePosition, std::int32_t size, bool compress);

    /// Copies a range of the file out of the window, refilling it when needed. Errors:
    /// `ELFERR_BUFFER_EMPTY` without destination, `ELFERR_SEEK_FAILED`, `ELFERR_READ_FAILED`,
    /// `ELFERR_NO_MEMORY`.
    bool ReadThrough(void* destination, std::int32_t filePosition, std::int32_t length);

    /// The window's bytes from an offset of the window on, null outside of what it holds. A zero
    /// byte follows the last one.
    [[nodiscard]] const char* GetPointer(std::int32_t windowOffset) const;
    /// All bytes that the window holds.
    [[nodiscard]] std::string_view GetBytes() const {
        return {reinterpret_cast<const char*>(mWindow.get()),
                static_cast<std::size_t>(mValidLength)};
    }

    void AddRef();
    /// Drops one reference; the last one destroys the cache.
    void RelRef();

private:
    [[nodiscard]] bool Holds(std::int64_t filePosition, std::int64_t length) const;
    bool MakeRoom(std::int32_t length);
    bool Allocate(std::int32_t capacity);
    bool Refill(std::int64_t filePosition);

    std::unique_ptr<std::uint8_t[]> mWindow;
    std::int32_t mWindowCapacity = 0;
    std::int32_t mCacheSize;
    std::int32_t mValidLength = 0;
    std::int32_t mWindowStart = 0;
    /// A compressed window is never refilled: the file holds the uncompressed bytes.
    bool mIsCompressed = false;
    VElfInput& mInput;
    std::int32_t mRefCount = 0;
};

/// Compresses data of a dsPIC target in place: byte k becomes byte 2k. The upper half keeps stale
/// bytes. Fewer than three bytes stay as they are.
void CompressDsPicData(std::uint8_t* data, std::int32_t size);

/// A counted reference to a cache, or none.
class VElfFileCachePtr {
public:
    VElfFileCachePtr() = default;
    explicit VElfFileCachePtr(VElfFileCache* cache);
    VElfFileCachePtr(const VElfFileCachePtr& other);
    VElfFileCachePtr(VElfFileCachePtr&& other) noexcept;
    VElfFileCachePtr& operator=(const VElfFileCachePtr& other);
    VElfFileCachePtr& operator=(VElfFileCachePtr&& other) noexcept;
    ~VElfFileCachePtr();

    /// Takes the new reference, then releases the old one.
    void reset(VElfFileCache* cache = nullptr);

    VElfFileCache* operator->() const { return mCache; }
    operator VElfFileCache*() const { return mCache; }

private:
    VElfFileCache* mCache = nullptr;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
