#include "core/FormatText.h"

#include <cstddef>
#include <cstdio>

namespace Tessel::Norn::Brindle::Reader::DWARF {

std::string FormatText(const char* format, std::va_list arguments) {
    std::va_list argumentsForLength;
    va_copy(argumentsForLength, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, argumentsForLength);
    va_end(argumentsForLength);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
