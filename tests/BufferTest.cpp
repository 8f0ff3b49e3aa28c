#include "container/VElfBuffer.h"
#include "container/VElfFileCache.h"
#include "diagnostics/ErrorState.h"
#include "support/ByteWriter.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace std::string_literals;

class BufferTest : public testing::Test {
protected:
    /// Opens an input of these bytes.
    void Open(const std::string& content) {
        ASSERT_EQ(mInput.OpenForReading(mFolder.Write("input", content)), 0);
    }

    /// A buffer that has loaded exactly these bytes.
    std::unique_ptr<VElfBuffer> Load(const std::string& content, bool isBigEndian = false) {
        mInput.mIsMSBData = isBigEndian;
        Open(content);
        auto buffer = std::make_unique<VElfBuffer>(mInput);
        EXPECT_TRUE(buffer->LoadFromFile(0, std::uint64_t{content.size()}));
        return buffer;
    }

    /// 10,000 bytes in which each position differs from its neighbours.
    static std::string NumberedBytes() {
        ByteWriter writer(ByteOrder::Big);
        for (std::uint32_t number = 0; number < 2500; ++number) {
            writer.U32(number);
        }
        return writer.Content();
    }

    void TakeFileAway() { mInput.mFile = VInputStream(); }

    ScopedReaderState mState;
    TemporaryFolder mFolder;
    VElfInput mInput;
};

TEST_F(BufferTest, ReadsIntegersInBothByteOrders) {
    const std::string bytes = "\x81\x82\x83\x84\x85\x86\x87\x88\xFF"s;
    auto little = Load(bytes);
    EXPECT_EQ(little->GetUByte(), 0x81);
    EXPECT_EQ(little->GetUShort(), 0x8382);
    EXPECT_EQ(little->GetULong(), 0x87868584U);
    EXPECT_EQ(little->SetOffset(0), 0);
    EXPECT_EQ(little->GetUInt64(), 0x8887868584838281U);
    EXPECT_EQ((*little)[8], -1);

    const auto big = std::make_unique<VElfBuffer>(mInput);
    big->SetSwapBytes(true);
    ASSERT_TRUE(big->LoadFromFile(0, 9));
    EXPECT_EQ(big->GetUByte(), 0x81);
    EXPECT_EQ(big->GetUShort(), 0x8283);
    EXPECT_EQ(big->GetLong(), 0x84858687U);
    EXPECT_EQ(big->SetOffset(0), 0);
    EXPECT_EQ(big->GetUInt64(), 0x8182838485868788U);
}

TEST_F(BufferTest, ReadsAddressesByAddressSize) {
    struct Case {
        std::uint8_t addressSize;
        std::uint64_t value;
        std::int32_t cursor;
    };
    auto buffer = Load("\x01\x02\x03\x04\x05\x06\x07\x08"s);
    for (const Case& each :
         {Case{0, 0x04030201, 4}, Case{1, 0x01, 1}, Case{2, 0x0201, 2}, Case{3, 0, 0},
          Case{4, 0x04030201, 4}, Case{8, 0x0807060504030201, 8}, Case{16, 0, 0}}) {
        buffer->SetOffset(0);
        buffer->SetADDRESSsize(each.addressSize);
        EXPECT_EQ(buffer->GetADDRESS(), each.value) << int{each.addressSize};
        EXPECT_EQ(buffer->GetOffset(), each.cursor) << int{each.addressSize};
    }
}

TEST_F(BufferTest, ReadsLeb128OfAnyLength) {
    struct Case {
        std::string bytes;
        std::uint32_t isUnsigned;
        std::int32_t isSigned;
    };
    const Case cases[] = {
        {"\x00"s, 0, 0},
        {"\x7F"s, 127, -1},
        {"\xE5\x8E\x26"s, 624485, 624485},
        {"\x80\x7F"s, 0x3F80, -128},
        {"\xFF\xFF\xFF\xFF\x0F"s, 0xFFFFFFFF, -1},
        {"\x80\x80\x80\x80\x78"s, 0x80000000, std::numeric_limits<std::int32_t>::min()},
        // The sixth group is shifted by 35, which is 3 in 32 bits.
        {"\x80\x80\x80\x80\x80\x01"s, 8, 8},
        {"\x81\x80\x80\x80\x80\x80\x80\x80\x80\x00"s, 1, 1},
    };
    for (const Case& each : cases) {
        auto buffer = Load(each.bytes + "U");
        EXPECT_EQ(buffer->GetULEB128(), each.isUnsigned);
        EXPECT_EQ(buffer->GetOffset(), static_cast<std::int32_t>(each.bytes.size()));
        buffer->SetOffset(0);
        EXPECT_EQ(buffer->GetSLEB128(), each.isSigned);
        EXPECT_FALSE(buffer->IsOverrun());
    }
}

TEST_F(BufferTest, ReadsLeb128In64Bits) {
    struct Case {
        std::string bytes;
        std::uint64_t isUnsigned;
        std::int64_t isSigned;
    };
    const std::string nineContinued(9, '\x80');
    const Case cases[] = {
        {"\x7F"s, 127, -1},
        {"\xE5\x8E\x26"s, 624485, 624485},
        {"\x80\x7F"s, 0x3F80, -128},
        {"\x80\x80\x80\x80\x80\x01"s, 0x8'0000'0000, 0x8'0000'0000},
        {std::string(9, '\xFF') + "\x01", std::numeric_limits<std::uint64_t>::max(), -1},
        {nineContinued + "\x7F", std::uint64_t{1} << 63U, std::numeric_limits<std::int64_t>::min()},
        {"\x81" + nineContinued + "\x80\x03", 1, 1},
    };
    for (const Case& each : cases) {
        auto buffer = Load(each.bytes + "U");
        EXPECT_EQ(buffer->GetULEB128In64Bits(), each.isUnsigned);
        EXPECT_EQ(buffer->GetOffset(), static_cast<std::int32_t>(each.bytes.size()));
        buffer->SetOffset(0);
        EXPECT_EQ(buffer->GetSLEB128In64Bits(), each.isSigned);
        EXPECT_FALSE(buffer->IsOverrun());
    }
}

TEST_F(BufferTest, StaysInBoundsWhateverTheCursor) {
    auto buffer = Load("\x80\x80\x80\x80"s);
    EXPECT_EQ(buffer->GetULEB128(), 0U);
    EXPECT_TRUE(buffer->IsOverrun());
    EXPECT_TRUE(buffer->IsEOF());
    for (const std::int32_t cursor : {1, 3, 4, 5, -1, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()}) {
        buffer->SetOffset(cursor);
        EXPECT_EQ(buffer->GetULong(), 0U) << cursor;
        buffer->SetOffset(cursor);
        EXPECT_EQ(buffer->GetUInt64(), 0U) << cursor;
    }
    EXPECT_EQ((*buffer)[4], 0);
    EXPECT_EQ((*buffer)[-1], 0);
    EXPECT_EQ(buffer->GetTextAt(4), nullptr);
    EXPECT_EQ(buffer->GetTextAt(0xFFFFFFFF), nullptr);
    buffer->SetOffset(4);
    EXPECT_EQ(buffer->GetNullTStr(), nullptr);
}

TEST_F(BufferTest, GivesTextsInPlaceAndTerminated) {
    auto buffer = Load("one\0two"s);
    EXPECT_STREQ(buffer->GetNullTStr(), "one");
    EXPECT_EQ(buffer->GetOffset(), 4);
    EXPECT_FALSE(buffer->IsOverrun());
    EXPECT_STREQ(buffer->GetNullTStr(), "two");
    EXPECT_TRUE(buffer->IsOverrun());
    EXPECT_TRUE(buffer->IsEOF());
    EXPECT_STREQ(buffer->GetTextAt(1), "ne");
}

TEST_F(BufferTest, ReloadForgetsContentsAndKeepsTheAllocation) {
    Open(NumberedBytes());
    VElfBuffer buffer(mInput);
    buffer.SetSwapBytes(true);
    ASSERT_TRUE(buffer.LoadFromFile(0, 100));
    buffer.SetOffset(50);
    const char* first = buffer.GetTextAt(0);
    ASSERT_TRUE(buffer.LoadFromFile(400, 64));
    EXPECT_EQ(buffer.GetTextAt(0), first);
    EXPECT_EQ(buffer.GetBufferLength(), 64);
    EXPECT_EQ(buffer.GetULong(), 100U);
    EXPECT_EQ(buffer[64], 0);
}

TEST_F(BufferTest, TellsWhyALoadFailed) {
    struct Case {
        std::uint64_t position;
        std::uint64_t size;
        ELFReadErrorEnum error;
    };
    Open(NumberedBytes());
    VElfBuffer direct(mInput);
    const auto seekFailed = ELFReadErrorEnum::ELFERR_SEEK_FAILED;
    const auto readFailed = ELFReadErrorEnum::ELFERR_READ_FAILED;
    for (const Case& each :
         {Case{10000, 1, seekFailed}, Case{10000, 0, seekFailed},
          Case{std::numeric_limits<std::uint64_t>::max(), 1, seekFailed}, Case{9999, 2, readFailed},
          Case{0, 10001, readFailed}, Case{0, 0x7FFFFFFF, readFailed},
          Case{0, 0x80000000, readFailed}, Case{0, 0x100000004, readFailed}}) {
        ASSERT_TRUE(direct.LoadFromFile(0, 10));
        gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;
        testing::internal::CaptureStdout();
        EXPECT_FALSE(direct.LoadFromFile(each.position, each.size));
        const std::string output = testing::internal::GetCapturedStdout();
        EXPECT_EQ(gElfReaderErrorFlag, each.error);
        EXPECT_EQ(output.starts_with("Failed to read file! Error Code "), each.error == readFailed);
        EXPECT_EQ(direct.GetBufferLength(), 0);
        EXPECT_EQ(direct.GetULong(), 0U);
    }
    EXPECT_TRUE(direct.LoadFromFile(9999, 0));
}

TEST_F(BufferTest, ReadsThroughAWindowThatMovesWhenNeeded) {
    Open(NumberedBytes());
    VElfBuffer buffer(mInput, 1);
    buffer.SetSwapBytes(true);
    ASSERT_TRUE(buffer.LoadFromFile(100, 16));
    EXPECT_EQ(buffer.GetULong(), 25U);
    // The window holds the positions 0 to 2047 now; only a refill needs the file.
    EXPECT_EQ(buffer.ReadULongAtFilePos(2044), 511U);
    EXPECT_EQ(buffer.ReadULongAtFilePos(7024), 1756U);
    EXPECT_EQ(buffer.ReadUInt64AtFilePos(5000), (std::uint64_t{1250} << 32U) | 1251U);
    TakeFileAway();
    EXPECT_EQ(buffer.ReadULongAtFilePos(3976), 994U);
    EXPECT_EQ(buffer.ReadULongAtFilePos(3972), 0U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    EXPECT_EQ(buffer.GetOffset(), 4);
}

TEST_F(BufferTest, ReadsSingleValuesFromTheFile) {
    Open(NumberedBytes());
    VElfBuffer buffer(mInput);
    buffer.SetSwapBytes(true);
    EXPECT_EQ(buffer.ReadULongAtFilePos(400), 100U);
    EXPECT_EQ(buffer.ReadUInt64AtFilePos(9992), (std::uint64_t{2498} << 32U) | 2499U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_UNKNOWN);
    EXPECT_EQ(buffer.ReadULongAtFilePos(9998), 0U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_READ_FAILED);
    EXPECT_EQ(buffer.ReadULongAtFilePos(-4), 0U);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_SEEK_FAILED);
}

// Small reads share a read of the file; results must not depend on it.
TEST_F(BufferTest, StreamReadsTheSameWhateverCameBefore) {
    std::string content;
    for (int part = 0; part < 10; ++part) {
        content += NumberedBytes();
        content += static_cast<char>(part);
    }
    Open(content);
    VInputStream& stream = mInput.mFile;
    std::string bytes(20'000, '\0');
    for (const std::size_t size : {0U, 1U, 4U, 8191U, 8192U, 20'000U}) {
        for (const std::size_t position :
             {0U, 8191U, 8193U, 8000U, 50'000U, 49'999U, 49'872U, 49'871U, 58'190U, 99'900U,
              100'006U, 100'010U, 100'011U, 200'000U, 10U}) {
            ASSERT_TRUE(stream.Seek(position));
            const std::string wanted =
                position < content.size() ? content.substr(position, size) : std::string();
            ASSERT_EQ(stream.Read(bytes.data(), size), wanted.size()) << position;
            EXPECT_EQ(bytes.substr(0, wanted.size()), wanted) << position;
            const std::string next =
                content.substr(std::min(position + wanted.size(), content.size()), 3);
            const bool isBehind = position > content.size();
            ASSERT_EQ(stream.Read(bytes.data(), 3), isBehind ? 0 : next.size()) << position;
            EXPECT_EQ(bytes.substr(0, isBehind ? 0 : next.size()), isBehind ? "" : next);
        }
    }
    ASSERT_EQ(stream.Open(mFolder.Write("other", "other bytes")), 0);
    ASSERT_TRUE(stream.Seek(6));
    EXPECT_EQ(stream.Read(bytes.data(), 100), 5U);
    EXPECT_EQ(bytes.substr(0, 5), "bytes");
}

TEST_F(BufferTest, WindowRefusesWhatItCannotHold) {
    Open(NumberedBytes());
    const VElfFileCachePtr cache(new VElfFileCache(mInput, 100));
    char destination[64];
    EXPECT_FALSE(cache->ReadThrough(nullptr, 0, 4));
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_BUFFER_EMPTY);
    EXPECT_FALSE(cache->ReadThrough(destination, 9990, 64));
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_READ_FAILED);
    EXPECT_FALSE(cache->ReadThrough(destination, 20000, 4));
    EXPECT_FALSE(cache->ReadThrough(destination, 0, -1));
    EXPECT_FALSE(cache->ReadThrough(destination, -8, 4));
    EXPECT_TRUE(cache->ReadThrough(destination, 9990, 10));
    // The window of 2048 bytes has no room for this range and the bytes kept before it.
    for (const std::int32_t length : {2000, 4000}) {
        std::string range(static_cast<std::size_t>(length), '\0');
        EXPECT_TRUE(cache->ReadThrough(range.data(), 5000, length));
        EXPECT_EQ(range, NumberedBytes().substr(5000, range.size()));
    }
    VElfBuffer buffer(mInput, 100);
    for (const std::uint64_t position : {std::uint64_t{10000}, ~std::uint64_t{0} >> 1U,
                                         (~std::uint64_t{0} >> 1U) + 1, ~std::uint64_t{0}}) {
        gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;
        EXPECT_FALSE(buffer.LoadFromFile(position, 1));
        EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_READ_FAILED);
    }
}

TEST_F(BufferTest, CacheHoldsAWholeSectionUpToTheEndOfTheFile) {
    Open("0123456789"s);
    VElfFileCachePtr cache(new VElfFileCache(mInput, 0));
    EXPECT_EQ(cache->GetPointer(0), nullptr);
    ASSERT_TRUE(cache->LoadRange(2, 0x7FFFFFFF, false));
    EXPECT_STREQ(cache->GetPointer(5), "789");
    EXPECT_EQ(cache->GetPointer(8), nullptr);
    EXPECT_EQ(cache->GetPointer(-1), nullptr);
    EXPECT_FALSE(cache->LoadRange(10, 4, false));
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_READ_FAILED);

    // Every second byte is data; the upper half is stale and the length stays.
    ASSERT_TRUE(cache->LoadRange(0, 9, true));
    EXPECT_STREQ(cache->GetPointer(0), "024685678");
    ASSERT_TRUE(cache->LoadRange(0, 2, true));
    EXPECT_STREQ(cache->GetPointer(0), "01");
    // Raw bytes never replace compressed ones.
    char byte = 0;
    EXPECT_TRUE(cache->ReadThrough(&byte, 1, 1));
    EXPECT_FALSE(cache->ReadThrough(&byte, 9, 1));

    // A window that was filled for another reader is terminated as well.
    ASSERT_TRUE(cache->LoadRange(0, 2, false));
    ASSERT_TRUE(cache->ReadThrough(&byte, 9, 1));
    EXPECT_STREQ(cache->GetPointer(0), "0123456789");
}

TEST_F(BufferTest, CountedPointersKeepTheCacheAlive) {
    Open("abc"s);
    VElfFileCachePtr second;
    {
        const VElfFileCachePtr first(new VElfFileCache(mInput, 0));
        ASSERT_TRUE(first->LoadRange(0, 3, false));
        second = first;
        const VElfFileCachePtr& same = second;
        second = same;
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
        const VElfFileCachePtr third = first;
        EXPECT_EQ(static_cast<VElfFileCache*>(third), static_cast<VElfFileCache*>(second));
    }
    EXPECT_STREQ(second->GetPointer(0), "abc");
    const VElfBuffer sharing(mInput, 5, second);
    second.reset();
    EXPECT_EQ(static_cast<VElfFileCache*>(second), nullptr);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
