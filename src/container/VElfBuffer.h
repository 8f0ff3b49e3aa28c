// A byte buffer with a cursor over a range of the input file. All integers, addresses, LEB128
// values and texts of a format are decoded here, in the target's byte order and within bounds;
// decoding code needs no bounds tests of its own.
#pragma once

#include "container/ByteOrder.h"
#include "container/VElfFileCache.h"
#include "container/VElfInput.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Byte buffer and cursor.
///
/// A read that passes the end of the loaded bytes gives 0, moves the cursor all the same and marks
/// the buffer as overrun until the next load. Buffer offsets are signed 32 bits and count from the
/// first loaded byte; file positions are named so.
class VElfBuffer {
public:
    /// Borrows the input and copies its byte order and addressing; both must be known already.
    /// @param cacheSize if at least 1 and no cache is given, the buffer makes a cache of this size
    /// @param cache shared window to read through, or null
    explicit VElfBuffer(VElfInput& input, std::int32_t cacheSize = 0,
                        VElfFileCache* cache = nullptr);
    virtual ~VElfBuffer() = default;
    VElfBuffer(const VElfBuffer&) = delete;
    VElfBuffer& operator=(const VElfBuffer&) = delete;
    VElfBuffer(VElfBuffer&&) = delete;
    VElfBuffer& operator=(VElfBuffer&&) = delete;

    /// @name Loading
    /// @{

    /// Replaces the contents by a range of the file and sets the cursor to 0. Texts returned before
    /// become invalid. On failure the buffer is empty, and the error state is `ELFERR_NO_MEMORY`,
    /// `ELFERR_SEEK_FAILED` (the range begins beyond the file, and there is no cache) or
    /// `ELFERR_READ_FAILED` (it ends beyond the file, or is larger than 2 GiB).
    bool LoadFromFile(std::uint64_t filePosition, std::int32_t size);
    bool LoadFromFile(std::uint64_t filePosition, std::uint32_t size);
    bool LoadFromFile(std::uint64_t filePosition, std::uint64_t size);

    /// Reads 4 or 8 bytes of the file without touching contents and cursor, through the cache if
    /// there is one. 0 on failure, with `ELFERR_SEEK_FAILED` or `ELFERR_READ_FAILED`.
    /// @throws std::bad_alloc
    std::uint32_t ReadULongAtFilePos(std::int32_t filePosition);
    std::uint64_t ReadUInt64AtFilePos(std::int64_t filePosition);

    /// Sets whether multi-byte values are read most significant byte first.
    void SetSwapBytes(bool swapBytes) { mSwapBytes = swapBytes; }
    /// Sets the width of a target address in bytes; 0 reads as 4.
    void SetADDRESSsize(std::uint8_t addressSize) { mAddressSize = addressSize; }
    [[nodiscard]] std::uint8_t GetADDRESSsize() const { return mAddressSize; }
    [[nodiscard]] bool IsWordAddressedTarget() const { return mIsWordAddressedTarget; }

    /// @}
    /// @name Cursor
    /// @{

    [[nodiscard]] std::int32_t GetOffset() const { return mOffset; }
    [[nodiscard]] std::int32_t GetBufferLength() const { return mLength; }
    /// Both return the new cursor and check nothing; the next read notices one out of bounds.
    std::int32_t SetOffset(std::int32_t offset) { return mOffset = offset; }
    std::int32_t MoveOffset(std::int32_t distance) {
        mOffset = static_cast<std::int32_t>(static_cast<std::uint32_t>(mOffset) +
                                            static_cast<std::uint32_t>(distance));
        return mOffset;
    }
    /// True if no byte lies at the cursor.
    [[nodiscard]] bool IsEOF() const { return mOffset >= mLength || mOffset < 0; }
    /// True if the cursor is outside the loaded bytes, and not exactly at their end.
    [[nodiscard]] bool HasPassedEnd() const {
        return static_cast<std::uint32_t>(mOffset) > static_cast<std::uint32_t>(mLength);
    }
    /// True if a read since the last load passed the end.
    [[nodiscard]] bool IsOverrun() const { return mIsOverrun; }

    /// @}
    /// @name Decoding at the cursor
    /// @{

    std::uint8_t GetUByte() { return Get<std::uint8_t>(); }
    std::uint16_t GetUShort() { return Get<std::uint16_t>(); }
    std::uint32_t GetUInt24();
    std::uint32_t GetULong() { return Get<std::uint32_t>(); }
    /// Four bytes, not sign-extended.
    std::uint32_t GetLong() { return GetULong(); }
    [[nodiscard]] static std::uint16_t GetLongSize() { return 4; }
    std::uint64_t GetUInt64() { return Get<std::uint64_t>(); }
    /// A target address by the address size. A size other than 0, 1, 2, 4 and 8 gives 0 and doesn't
    /// move the cursor.
    std::uint64_t GetADDRESS();
    /// LEB128 in 32 bits, of any length: groups past the fifth fold into the low bits (DWARF
    /// 4, 7.6).
    std::uint32_t GetULEB128() {
        const bool isInside = mOffset >= 0 && mOffset < mLength;
        if (isInside && mBuffer[static_cast<std::size_t>(mOffset)] < 0x80) {
            return mBuffer[static_cast<std::size_t>(mOffset++)];
        }
        return GetLongULEB128();
    }
    std::int32_t GetSLEB128();
    /// LEB128 in 64 bits, of any length: bits above them are dropped.
    std::uint64_t GetULEB128In64Bits() { return GetLEB128In64Bits(false); }
    std::int64_t GetSLEB128In64Bits() { return static_cast<std::int64_t>(GetLEB128In64Bits(true)); }
    /// The text at the cursor, terminated and not copied; the cursor moves past its terminator.
    /// Null if no byte lies at the cursor, which marks the buffer as overrun. Valid until the next
    /// load.
    const char* GetNullTStr();

    /// @}
    /// @name Access by offset, without cursor
    /// @{

    /// The byte at an offset, 0 outside.
    std::int8_t operator[](std::int32_t offset) const;
    /// The text at an offset, terminated and not copied; null outside. Valid until the next load.
    [[nodiscard]] const char* GetTextAt(std::uint32_t offset) const;

    /// @}

protected:
    /// The loaded bytes, for subclasses that transform them.
    std::uint8_t* GetLoadedBytes() { return mBuffer.get(); }

private:
    /// The next bytes, null if they pass the end. Moves the cursor past them.
    const std::uint8_t* Take(std::int32_t size) {
        const bool isInside = mOffset >= 0 && mOffset <= mLength - size;
        const std::uint8_t* bytes = isInside ? mBuffer.get() + mOffset : nullptr;
        mIsOverrun = mIsOverrun || !isInside;
        MoveOffset(size);
        return bytes;
    }
    std::uint32_t GetLongULEB128();
    std::uint64_t GetLEB128In64Bits(bool isSigned);
    bool EnsureCapacity(std::int32_t size);
    bool LoadFromStream(std::uint64_t filePosition, std::int32_t size);
    bool ReadAtFilePos(std::int64_t filePosition, std::uint8_t* destination, std::int32_t size);
    template <typename Integer>
    Integer Decode(const std::uint8_t* bytes) const {
        return mSwapBytes ? DecodeBigEndian<Integer>(bytes) : DecodeLittleEndian<Integer>(bytes);
    }
    template <typename Integer>
    Integer Get() {
        const std::uint8_t* bytes = Take(sizeof(Integer));
        return bytes != nullptr ? Decode<Integer>(bytes) : Integer{0};
    }

    VElfInput& mInput;
    std::unique_ptr<std::uint8_t[]> mBuffer;
    std::int32_t mCapacity = 0;
    std::int32_t mOffset = 0;
    std::int32_t mLength = 0;
    bool mSwapBytes;
    bool mIsOverrun = false;
    std::uint8_t mAddressSize = 0;
    bool mIsWordAddressedTarget;
    VElfFileCachePtr mCache;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
