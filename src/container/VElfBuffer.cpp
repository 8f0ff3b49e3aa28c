#include "container/VElfBuffer.h"

#include "core/ConsoleOutput.h"
#include "diagnostics/ErrorState.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <ostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sMaximumSize = std::numeric_limits<std::int32_t>::max();

/// Stands for every size that no buffer can hold.
constexpr std::int32_t sUnloadableSize = -1;

} // namespace

VElfBuffer::VElfBuffer(VElfInput& input, std::int32_t cacheSize, VElfFileCache* cache)
    : mInput(input)
    , mSwapBytes(input.mIsMSBData)
    , mIsWordAddressedTarget(input.mIsWordAddressedTarget)
    , mCache(cache) {
    if (cache == nullptr && cacheSize >= 1) {
        mCache.reset(new VElfFileCache(input, cacheSize));
    }
}

bool VElfBuffer::LoadFromFile(std::uint64_t filePosition, std::uint32_t size) {
    return LoadFromFile(filePosition, std::uint64_t{size});
}

bool VElfBuffer::LoadFromFile(std::uint64_t filePosition, std::uint64_t size) {
    const bool isLoadable = size < static_cast<std::uint64_t>(sMaximumSize);
    return LoadFromFile(filePosition,
                        isLoadable ? static_cast<std::int32_t>(size) : sUnloadableSize);
}

bool VElfBuffer::LoadFromFile(std::uint64_t filePosition, std::int32_t size) {
    mOffset = 0;
    mLength = 0;
    mIsOverrun = false;
    if (!LoadFromStream(filePosition, size)) {
        return false;
    }
    mLength = size;
    mBuffer[static_cast<std::size_t>(mLength)] = 0;
    return true;
}

bool VElfBuffer::LoadFromStream(std::uint64_t filePosition, std::int32_t size) {
    const std::uint64_t fileSize =
        mInput.mFileSize > 0 ? static_cast<std::uint64_t>(mInput.mFileSize) : 0;
    if (mCache == nullptr && filePosition >= fileSize) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    // Checked before allocating: a header may claim any size.
    const bool isInsideFile = size >= 0 && size < sMaximumSize && filePosition <= fileSize &&
                              static_cast<std::uint64_t>(size) <= fileSize - filePosition;
    if (isInsideFile && !EnsureCapacity(size)) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
    }
    if (mCache != nullptr) {
        if (!isInsideFile || filePosition > static_cast<std::uint64_t>(sMaximumSize)) {
            return Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
        }
        return mCache->ReadThrough(mBuffer.get(), static_cast<std::int32_t>(filePosition), size);
    }
    if (!mInput.mFile.Seek(filePosition)) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    errno = 0;
    const auto wanted = static_cast<std::size_t>(size);
    if (!isInsideFile || mInput.mFile.Read(mBuffer.get(), wanted) != wanted) {
        SetErrorState(ELFReadErrorEnum::ELFERR_READ_FAILED);
        ConsoleOutput() << "Failed to read file! Error Code " << errno;
        return false;
    }
    return true;
}

bool VElfBuffer::EnsureCapacity(std::int32_t size) {
    if (mBuffer && mCapacity >= size) {
        return true;
    }
    mCapacity = size;
    // One more byte, so that a text at the end of the buffer is terminated.
    mBuffer.reset();
    mBuffer.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(size) + 1]);
    return mBuffer != nullptr;
}

std::uint32_t VElfBuffer::ReadULongAtFilePos(std::int32_t filePosition) {
    std::uint8_t bytes[4] = {};
    return ReadAtFilePos(filePosition, bytes, sizeof bytes) ? Decode<std::uint32_t>(bytes) : 0;
}

std::uint64_t VElfBuffer::ReadUInt64AtFilePos(std::int64_t filePosition) {
    std::uint8_t bytes[8] = {};
    return ReadAtFilePos(filePosition, bytes, sizeof bytes) ? Decode<std::uint64_t>(bytes) : 0;
}

bool VElfBuffer::ReadAtFilePos(std::int64_t filePosition, std::uint8_t* destination,
                               std::int32_t size) {
    if (filePosition < 0) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    if (mCache != nullptr) {
        const bool isRead =
            filePosition <= sMaximumSize
                ? mCache->ReadThrough(destination, static_cast<std::int32_t>(filePosition), size)
                : Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
        if (!isRead && IsOutOfMemory()) {
            // A failed read gives 0, which would pass for a value of the file.
            throw std::bad_alloc();
        }
        return isRead;
    }
    if (!mInput.mFile.Seek(static_cast<std::uint64_t>(filePosition))) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    const auto wanted = static_cast<std::size_t>(size);
    return mInput.mFile.Read(destination, wanted) == wanted ||
           Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
}

std::uint32_t VElfBuffer::GetUInt24() {
    const std::uint32_t first = GetUByte();
    const std::uint32_t second = GetUByte();
    const std::uint32_t third = GetUByte();
    return mSwapBytes ? first << 16U | second << 8U | third : third << 16U | second << 8U | first;
}

std::uint64_t VElfBuffer::GetADDRESS() {
    switch (mAddressSize) {
    case 0:
    case 4:
        return GetULong();
    case 1:
        return GetUByte();
    case 2:
        return GetUShort();
    case 8:
        return GetUInt64();
    default:
        return 0;
    }
}

std::uint32_t VElfBuffer::GetLongULEB128() {
    std::uint32_t value = 0;
    std::uint32_t shift = 0;
    std::uint8_t byte = 0;
    do {
        byte = GetUByte();
        value |= (byte & 0x7FU) << (shift % 32);
        shift += 7;
    } while ((byte & 0x80U) != 0);
    return value;
}

std::int32_t VElfBuffer::GetSLEB128() {
    std::uint32_t value = 0;
    std::uint32_t shift = 0;
    std::uint8_t byte = 0;
    do {
        byte = GetUByte();
        value |= (byte & 0x7FU) << (shift % 32);
        shift += 7;
    } while ((byte & 0x80U) != 0);
    if (shift < 32 && (byte & 0x40U) != 0) {
        value |= ~std::uint32_t{0} << shift;
    }
    return static_cast<std::int32_t>(value);
}

std::uint64_t VElfBuffer::GetLEB128In64Bits(bool isSigned) {
    constexpr std::uint32_t width = 64;
    std::uint64_t value = 0;
    std::uint32_t shift = 0;
    std::uint8_t byte = 0;
    do {
        byte = GetUByte();
        if (shift < width) {
            value |= (byte & std::uint64_t{0x7F}) << shift;
            shift += 7;
        }
    } while ((byte & 0x80U) != 0);
    if (isSigned && shift < width && (byte & 0x40U) != 0) {
        value |= ~std::uint64_t{0} << shift;
    }
    return value;
}

const char* VElfBuffer::GetNullTStr() {
    if (IsEOF()) {
        mIsOverrun = true;
        MoveOffset(1);
        return nullptr;
    }
    const char* text = GetTextAt(static_cast<std::uint32_t>(mOffset));
    const auto left = static_cast<std::size_t>(mLength - mOffset);
    const void* terminator = std::memchr(text, 0, left);
    mIsOverrun = mIsOverrun || terminator == nullptr;
    const std::ptrdiff_t length =
        terminator != nullptr ? static_cast<const char*>(terminator) - text : mLength - mOffset;
    MoveOffset(static_cast<std::int32_t>(length) + 1);
    return text;
}

std::int8_t VElfBuffer::operator[](std::int32_t offset) const {
    const bool isInside = offset >= 0 && offset < mLength;
    return isInside ? static_cast<std::int8_t>(mBuffer[static_cast<std::size_t>(offset)])
                    : std::int8_t{0};
}

const char* VElfBuffer::GetTextAt(std::uint32_t offset) const {
    return offset < static_cast<std::uint32_t>(mLength)
               ? reinterpret_cast<const char*>(mBuffer.get()) + offset
               : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
