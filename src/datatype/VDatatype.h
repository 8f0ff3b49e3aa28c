// A scalar datatype in one 32-bit word, with its short text form, such as UBIT3. Hosts use it for
// the entries of map files; it needs no reader, and no reader uses it.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::BrindleReader {

/// An integer of 1 to 64 bits, a float, a double, a half-precision float, a string of a length in
/// bytes, or nothing.
///
/// The word: bits 8 to 31 are the length of a string. Bit 7 marks an integer; then bit 6 means
/// signed and bits 0 to 5 are the width less 1. With bit 7 clear the low byte is the kind: one of
/// the `sKind` values, anything else counts as 4 bytes of an unknown kind.
class BRINDLE_EXPORT VDatatype {
public:
    static constexpr std::uint32_t sKindNone = 0;             ///< nothing
    static constexpr std::uint32_t sKindFloat = 1;            ///< a float of 4 bytes
    static constexpr std::uint32_t sKindDouble = 2;           ///< a float of 8 bytes
    static constexpr std::uint32_t sKindString = 3;           ///< a string of a length in bytes
    static constexpr std::uint32_t sKindFloat16 = 4;          ///< a float of 2 bytes
    static constexpr std::uint32_t sMaximumLength = 0xFFFFFF; ///< longest string in bytes

    /// The datatype of a word as `Word` gives it; without one, nothing.
    explicit VDatatype(std::uint32_t typAndLen = sKindNone)
        : mTypAndLen(typAndLen) {}

    /// Reads a text form: BYTE, WORD, DWORD, QWORD, INT, LONG, BIT with a width from 1 to 64, each
    /// after U unsigned; FLOAT, FLOAT16, DOUBLE, NONE. Any text gives a datatype: a width outside
    /// the limits counts as 1, an unknown word as DWORD. No text gives a string.
    /// @param oneBitIsUnsigned BIT1 means UBIT1
    VDatatype(const std::string& str, bool oneBitIsUnsigned);

    /// The whole word.
    [[nodiscard]] std::uint32_t Word() const { return mTypAndLen; }
    /// The low byte: the kind, or what describes an integer.
    [[nodiscard]] std::uint32_t InternalType() const { return mTypAndLen & 0xFFU; }
    /// The upper 24 bits: the length of a string in bytes.
    [[nodiscard]] std::uint32_t InternalLength() const { return mTypAndLen >> 8U; }
    /// True for an integer of any width.
    [[nodiscard]] bool IsIntTyp() const { return (mTypAndLen & sIntegerBit) != 0; }
    /// True for a signed integer; false for floats.
    [[nodiscard]] bool IsSigned() const {
        return (mTypAndLen & (sIntegerBit | sSignedBit)) == (sIntegerBit | sSignedBit);
    }

    /// Sets the length of a string in bytes; what is too long becomes `sMaximumLength`.
    void SetLength(std::uint32_t len);
    /// Sets the width of an integer in bits. Without effect on other kinds, which a width would
    /// turn into each other, and for widths outside 1 to 64.
    void SetBitSize(std::int32_t size);

    /// Size in bits; 1 for nothing.
    [[nodiscard]] std::int32_t GetBitSize() const;
    /// Size in bytes: an integer takes as many as its width needs, nothing takes 1.
    [[nodiscard]] std::int32_t GetByteSize() const;
    /// The text form; empty for nothing, and STRING(8) for a string of 8 bytes.
    [[nodiscard]] std::string GetMapfileTypeString() const;

private:
    static constexpr std::uint32_t sIntegerBit = 0x80;
    static constexpr std::uint32_t sSignedBit = 0x40;
    static constexpr std::uint32_t sWidthBits = 0x3F;

    void Parse(const char* text, bool oneBitIsUnsigned);
    void ParseBits(const char* text, bool oneBitIsUnsigned);
    void SetKind(std::uint32_t kind);
    [[nodiscard]] std::string IntegerText() const;

    std::uint32_t mTypAndLen;
};

} // namespace Tessel::Norn::BrindleReader
