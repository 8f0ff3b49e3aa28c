#include "datatype/VDatatype.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <string_view>

namespace Tessel::Norn::BrindleReader {

namespace {

constexpr std::int32_t sMaximumWidth = 64;
constexpr std::int32_t sByteWidth = 8;

struct WidthName {
    std::int32_t width;
    std::string_view name;
};

constexpr std::array sWidthNames = {WidthName{8, "BYTE"}, WidthName{16, "WORD"},
                                    WidthName{32, "DWORD"}, WidthName{64, "QWORD"}};

char UpperCase(char character) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
}

/// The number after "BIT", read as the C library reads unsigned numbers; 8 if there is none, and 0
/// if it is no valid width.
std::int32_t WidthBehindBit(const char* text) {
    constexpr std::string_view sPrefix = "BIT";
    if (!std::string_view(text).starts_with(sPrefix)) {
        return sByteWidth;
    }
    const char* number = text + sPrefix.size();
    char* end = nullptr;
    const unsigned long width = std::strtoul(number, &end, 10);
    if (end == number) {
        return sByteWidth;
    }
    return width <= static_cast<unsigned long>(sMaximumWidth) ? static_cast<std::int32_t>(width)
                                                              : 0;
}

} // namespace

VDatatype::VDatatype(const std::string& str, bool oneBitIsUnsigned)
    : mTypAndLen(sIntegerBit | sSignedBit) {
    const char* text = str.c_str();
    if (UpperCase(*text) == 'U') {
        mTypAndLen = sIntegerBit;
        ++text;
    }
    Parse(text, oneBitIsUnsigned);
}

void VDatatype::Parse(const char* text, bool oneBitIsUnsigned) {
    const std::string_view whole(text);
    const char next = whole.size() > 1 ? whole[1] : '\0';
    switch (UpperCase(*text)) {
    case 'B':
        return next == 'I' ? ParseBits(text, oneBitIsUnsigned) : SetBitSize(sByteWidth);
    case 'D':
        return next == 'W' ? SetBitSize(32) : SetKind(sKindDouble);
    case 'F':
        return SetKind(whole == "FLOAT16" ? sKindFloat16 : sKindFloat);
    case 'I':
    case 'W':
        return SetBitSize(16);
    case 'N':
        return whole == "NONE" ? SetKind(sKindNone) : void();
    case 'Q':
        return next == 'W' ? SetBitSize(64) : void();
    default:
        return SetBitSize(32);
    }
}

void VDatatype::ParseBits(const char* text, bool oneBitIsUnsigned) {
    const std::int32_t width = WidthBehindBit(text);
    if (width == 1 && oneBitIsUnsigned) {
        mTypAndLen &= ~sSignedBit;
    }
    SetBitSize(width);
}

void VDatatype::SetKind(std::uint32_t kind) {
    mTypAndLen = (mTypAndLen & ~0xFFU) | kind;
}

void VDatatype::SetLength(std::uint32_t len) {
    mTypAndLen = InternalType() | std::min(len, sMaximumLength) << 8U;
}

void VDatatype::SetBitSize(std::int32_t size) {
    if (IsIntTyp() && size > 0 && size <= sMaximumWidth) {
        mTypAndLen = (mTypAndLen & ~sWidthBits) | static_cast<std::uint32_t>(size - 1);
    }
}

std::int32_t VDatatype::GetBitSize() const {
    if (IsIntTyp()) {
        return static_cast<std::int32_t>(mTypAndLen & sWidthBits) + 1;
    }
    return InternalType() == sKindNone ? 1 : GetByteSize() * 8;
}

std::int32_t VDatatype::GetByteSize() const {
    if (IsIntTyp()) {
        return static_cast<std::int32_t>((mTypAndLen & sWidthBits) + 8) / 8;
    }
    switch (InternalType()) {
    case sKindNone:
        return 1;
    case sKindDouble:
        return 8;
    case sKindString:
        return static_cast<std::int32_t>(InternalLength());
    case sKindFloat16:
        return 2;
    default:
        return 4;
    }
}

std::string VDatatype::GetMapfileTypeString() const {
    switch (InternalType()) {
    case sKindNone:
        return {};
    case sKindFloat:
        return "FLOAT";
    case sKindDouble:
        return "DOUBLE";
    case sKindString:
        return "STRING(" + std::to_string(InternalLength()) + ")";
    case sKindFloat16:
        return "FLOAT16";
    default:
        return IntegerText();
    }
}

std::string VDatatype::IntegerText() const {
    std::string text = IsSigned() ? "" : "U";
    const auto* const named = std::ranges::find(sWidthNames, GetBitSize(), &WidthName::width);
    if (named == sWidthNames.end()) {
        return text.append("BIT").append(std::to_string(GetBitSize()));
    }
    return text.append(named->name);
}

} // namespace Tessel::Norn::BrindleReader
