// Attribute values of a debug entry that may be absent: a number or reference, and a text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A value that may be absent: an integer, a floating number or a reference to a debug entry by its
/// section offset. The reader makes integers and references.
class VAttributeValue {
public:
    static constexpr std::uint16_t mDefinedMask = 0x0001;
    static constexpr std::uint16_t mIntegerMask = 0x0020;
    static constexpr std::uint16_t mFloatMask = 0x0040;
    static constexpr std::uint16_t mReferenceMask = 0x0100;

    constexpr VAttributeValue() = default;

    static constexpr VAttributeValue Integer(std::uint64_t value) {
        return {value, mDefinedMask | mIntegerMask};
    }
    static constexpr VAttributeValue Reference(std::uint32_t sectionOffset) {
        return {sectionOffset, mDefinedMask | mReferenceMask};
    }
    static VAttributeValue Float(double value);

    [[nodiscard]] constexpr bool IsDefined() const { return (mFlags & mDefinedMask) != 0; }
    [[nodiscard]] constexpr bool IsReference() const { return (mFlags & mReferenceMask) != 0; }
    [[nodiscard]] constexpr bool IsFloat() const { return (mFlags & mFloatMask) != 0; }

    /// The value as a number; a floating value is truncated toward zero, and one that no integer
    /// can hold gives 0.
    [[nodiscard]] std::int64_t ToInteger() const;

    /// One line for dumps, at most 99 characters.
    [[nodiscard]] std::string ToString(const char* prefix) const;

    /// The number, the section offset, or the bits of a double.
    std::uint64_t mValue = 0;
    /// 0 when undefined; else `mDefinedMask` and the mask of one kind.
    std::uint16_t mFlags = 0;

private:
    constexpr VAttributeValue(std::uint64_t value, std::uint16_t flags)
        : mValue(value)
        , mFlags(flags) {}
};

/// Characters of a name as read; what lies behind is cut.
constexpr std::size_t sMaximumNameLength = 2047;

/// A text that may be absent. The bytes belong to whoever made the value: the unit, the string
/// section or the node tree.
struct VAttributeString {
    std::string_view mValue;
    bool mDefined = false;
};

/// A text that may be absent, as it is kept in the node tree: terminated, and measured beforehand
/// or when it is asked for. Most are never asked for.
struct VKeptText {
    static constexpr std::uint32_t kUnmeasured = UINT32_MAX;

    [[nodiscard]] VAttributeString Get() const {
        return {mLength == kUnmeasured ? std::string_view(mStart)
                                       : std::string_view(mStart, mLength),
                mDefined};
    }

    const char* mStart = "";
    /// `kUnmeasured` for a text that is known to be short.
    std::uint32_t mLength = 0;
    bool mDefined = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
