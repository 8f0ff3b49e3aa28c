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

/// The kind of an attribute value of a debug entry, which is kept apart from its 32 bits.
enum class VAttributeKind : std::uint8_t { Undefined, Integer, Reference };

constexpr VAttributeKind KindOf(const VAttributeValue& value) {
    if (!value.IsDefined()) {
        return VAttributeKind::Undefined;
    }
    return value.IsReference() ? VAttributeKind::Reference : VAttributeKind::Integer;
}

constexpr VAttributeValue ValueOf(VAttributeKind kind, std::uint32_t value) {
    switch (kind) {
    case VAttributeKind::Integer:
        return VAttributeValue::Integer(value);
    case VAttributeKind::Reference:
        return VAttributeValue::Reference(value);
    case VAttributeKind::Undefined:
        break;
    }
    return {};
}

/// Most characters of a name; the rest is cut.
constexpr std::uint32_t sMaximumNameLength = 2047;

/// A text that may be absent. The bytes belong to whoever made the value: the unit, the string
/// section or the node tree.
struct VAttributeString {
    std::string_view mValue;
    bool mDefined = false;
};

/// A text of the entry that is being read. It is measured only if it may be long, since most texts
/// are never read.
struct VDieText {
    static constexpr std::uint32_t kWhole = UINT32_MAX;

    [[nodiscard]] std::string_view Get() const {
        return mLength == kWhole ? std::string_view(mStart) : std::string_view(mStart, mLength);
    }

    /// Terminated. Lives in the unit's bytes, in `.debug_str`, in the arena of the tree or
    /// forever.
    const char* mStart = "";
    /// Characters that count, `kWhole` for all of them.
    std::uint32_t mLength = kWhole;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
