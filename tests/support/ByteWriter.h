// Writes integers and texts in a target's byte order into a growing byte string: the basis of all
// builders of test inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Tests {

enum class ByteOrder { Little, Big };

class ByteWriter {
public:
    explicit ByteWriter(ByteOrder byteOrder = ByteOrder::Little)
        : mByteOrder(byteOrder) {}

    ByteWriter& U8(std::uint64_t value) { return Integer(value, 1); }
    ByteWriter& U16(std::uint64_t value) { return Integer(value, 2); }
    ByteWriter& U32(std::uint64_t value) { return Integer(value, 4); }
    ByteWriter& U64(std::uint64_t value) { return Integer(value, 8); }

    ByteWriter& Integer(std::uint64_t value, std::size_t size) {
        for (std::size_t index = 0; index < size; ++index) {
            const std::size_t place = mByteOrder == ByteOrder::Little ? index : size - 1 - index;
            mBytes.push_back(static_cast<char>(value >> (8 * place)));
        }
        return *this;
    }

    /// The text with its terminator.
    ByteWriter& Text(std::string_view text) { return Bytes(text).U8(0); }

    ByteWriter& Bytes(std::string_view bytes) {
        mBytes += bytes;
        return *this;
    }

    ByteWriter& PadTo(std::size_t size) {
        if (mBytes.size() < size) {
            mBytes.resize(size);
        }
        return *this;
    }

    [[nodiscard]] std::size_t Size() const { return mBytes.size(); }
    [[nodiscard]] const std::string& Content() const { return mBytes; }
    [[nodiscard]] ByteOrder Order() const { return mByteOrder; }

private:
    ByteOrder mByteOrder;
    std::string mBytes;
};

} // namespace Tessel::Norn::Brindle::Tests
