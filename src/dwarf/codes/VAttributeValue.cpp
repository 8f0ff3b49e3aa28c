#include "dwarf/codes/VAttributeValue.h"

#include <bit>
#include <cinttypes>
#include <cstdio>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr double sIntegerLimit = 9223372036854775808.0;

} // namespace

VAttributeValue VAttributeValue::Float(double value) {
    return {std::bit_cast<std::uint64_t>(value), mDefinedMask | mFloatMask};
}

std::int64_t VAttributeValue::ToInteger() const {
    if (!IsFloat()) {
        return static_cast<std::int64_t>(mValue);
    }
    const auto value = std::bit_cast<double>(mValue);
    const bool isRepresentable = value >= -sIntegerLimit && value < sIntegerLimit;
    return isRepresentable ? static_cast<std::int64_t>(value) : 0;
}

std::string VAttributeValue::ToString(const char* prefix) const {
    char text[100];
    if (!IsDefined()) {
        std::snprintf(text, sizeof text, "%s <attribute not defined>", prefix);
    } else if (IsReference()) {
        std::snprintf(text, sizeof text, "%s Reference...: 0x%8.8" PRIx64, prefix,
                      mValue & 0xFFFFFFFFU);
    } else if (IsFloat()) {
        std::snprintf(text, sizeof text, "%s Value: %f", prefix, std::bit_cast<double>(mValue));
    } else {
        std::snprintf(text, sizeof text, "%s Value: %" PRId64, prefix,
                      static_cast<std::int64_t>(mValue));
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
