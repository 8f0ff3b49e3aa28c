#include "container/VElfFileCache.h"

#include "diagnostics/ErrorState.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sMaximumCacheSize = 0x2000000;
constexpr std::int32_t sMinimumCacheSize = 1024;

/// Kept in front of a wanted position, so that a reader that steps back a little stays inside.
constexpr std::int32_t sLeadingBytes = 1024;

} // namespace

VElfFileCache::VElfFileCache(VElfInput& input, std::int32_t cacheSize)
    : mCacheSize(std::min(cacheSize, sMaximumCacheSize))
    , mInput(input) {}

bool VElfFileCache::LoadRange(std::int32_t filePosition, std::int32_t size, bool compress) {
    mValidLength = 0;
    // A section header may claim any size; memory is taken only for what the file can hold.
    const std::int64_t available = std::max<std::int64_t>(mInput.mFileSize - filePosition, 0);
    const auto capacity = static_cast<std::int32_t>(std::clamp<std::int64_t>(size, 0, available));
    if ((!mWindow || mWindowCapacity != capacity) && !Allocate(capacity)) {
        return false;
    }
    mCacheSize = size;
    if (filePosition < 0 || !mInput.mFile.Seek(static_cast<std::uint64_t>(filePosition))) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    mWindowStart = filePosition;
    mValidLength = static_cast<std::int32_t>(
        mInput.mFile.Read(mWindow.get(), static_cast<std::size_t>(capacity)));
    mWindow[static_cast<std::size_t>(mValidLength)] = 0;
    if (mValidLength == 0) {
        return Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
    }
    mIsCompressed = compress;
    if (compress) {
        CompressDsPicData(mWindow.get(), mValidLength);
    }
    return true;
}

bool VElfFileCache::ReadThrough(void* destination, std::int32_t filePosition, std::int32_t length) {
    if (destination == nullptr) {
        return Fail(ELFReadErrorEnum::ELFERR_BUFFER_EMPTY);
    }
    if (mIsCompressed && !Holds(filePosition, length)) {
        return Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
    }
    if (!mIsCompressed && !MakeRoom(length)) {
        return false;
    }
    if (!Holds(filePosition, length)) {
        if (!Refill(filePosition)) {
            return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
        }
        if (mValidLength == 0 || !Holds(filePosition, length)) {
            return Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
        }
    }
    std::memcpy(destination, mWindow.get() + (filePosition - mWindowStart),
                static_cast<std::size_t>(length));
    return true;
}

const char* VElfFileCache::GetPointer(std::int32_t windowOffset) const {
    if (!mWindow || windowOffset < 0 || windowOffset >= mValidLength) {
        return nullptr;
    }
    return reinterpret_cast<const char*>(mWindow.get()) + windowOffset;
}

bool VElfFileCache::Holds(std::int64_t filePosition, std::int64_t length) const {
    return length >= 0 && filePosition >= mWindowStart &&
           filePosition + length <= std::int64_t{mWindowStart} + mValidLength;
}

bool VElfFileCache::MakeRoom(std::int32_t length) {
    if (mWindowCapacity != 0 && std::int64_t{length} + sLeadingBytes <= mWindowCapacity) {
        return mWindow || Allocate(mWindowCapacity);
    }
    const std::int32_t wanted = std::max({mCacheSize, sMinimumCacheSize, length});
    mValidLength = 0;
    mWindowStart = 0;
    return Allocate(std::min(wanted, sMaximumCacheSize) + sLeadingBytes);
}

bool VElfFileCache::Allocate(std::int32_t capacity) {
    mWindowCapacity = capacity;
    // One more byte, so that a text at the end of the window is terminated.
    mWindow.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(capacity) + 1]);
    return mWindow || Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
}

bool VElfFileCache::Refill(std::int64_t filePosition) {
    const std::int64_t start = std::max<std::int64_t>(filePosition - sLeadingBytes, 0);
    mValidLength = 0;
    mWindowStart = static_cast<std::int32_t>(start);
    if (!mInput.mFile.Seek(static_cast<std::uint64_t>(start))) {
        return false;
    }
    mValidLength = static_cast<std::int32_t>(
        mInput.mFile.Read(mWindow.get(), static_cast<std::size_t>(mWindowCapacity)));
    mWindow[static_cast<std::size_t>(mValidLength)] = 0;
    return true;
}

void VElfFileCache::AddRef() {
    ++mRefCount;
}

void VElfFileCache::RelRef() {
    if (--mRefCount == 0) {
        delete this;
    }
}

void CompressDsPicData(std::uint8_t* data, std::int32_t size) {
    for (std::int32_t source = 2; source < size; source += 2) {
        data[source / 2] = data[source];
    }
}

VElfFileCachePtr::VElfFileCachePtr(VElfFileCache* cache) {
    reset(cache);
}

VElfFileCachePtr::VElfFileCachePtr(const VElfFileCachePtr& other) {
    reset(other.mCache);
}

VElfFileCachePtr::VElfFileCachePtr(VElfFileCachePtr&& other) noexcept
    : mCache(std::exchange(other.mCache, nullptr)) {}

VElfFileCachePtr& VElfFileCachePtr::operator=(const VElfFileCachePtr& other) {
    if (this != &other) {
        reset(other.mCache);
    }
    return *this;
}

VElfFileCachePtr& VElfFileCachePtr::operator=(VElfFileCachePtr&& other) noexcept {
    std::swap(mCache, other.mCache);
    return *this;
}

VElfFileCachePtr::~VElfFileCachePtr() {
    reset();
}

void VElfFileCachePtr::reset(VElfFileCache* cache) {
    if (cache != nullptr) {
        cache->AddRef();
    }
    if (mCache != nullptr) {
        mCache->RelRef();
    }
    mCache = cache;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
