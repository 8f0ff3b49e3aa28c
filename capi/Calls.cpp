#include "Calls.h"

#include "model/ScopeNames.h"

#include <algorithm>
#include <cstring>

namespace Tessel::Norn::Brindle::CInterface {

namespace {

/// A larger size means that the host never set it.
constexpr std::size_t sLargestStructure = 64 * 1024;

} // namespace

bool HasSize(const void* structure, std::size_t statedSize) {
    return structure != nullptr && statedSize > sizeof(std::size_t) &&
           statedSize <= sLargestStructure;
}

void CopyStructure(const void* source, std::size_t sourceSize, void* target,
                   std::size_t targetSize) {
    constexpr std::size_t header = sizeof(std::size_t);
    const std::size_t common = std::min(sourceSize, targetSize);
    auto* const bytes = static_cast<std::byte*>(target);
    std::memcpy(bytes + header, static_cast<const std::byte*>(source) + header, common - header);
    std::memset(bytes + common, 0, targetSize - common);
}

brindle_status GiveText(std::string_view text, const TextTarget& target) {
    if (target.length != nullptr) {
        *target.length = text.size();
    }
    if (target.buffer == nullptr) {
        return target.length != nullptr ? BRINDLE_OK : BRINDLE_INVALID_ARGUMENT;
    }
    if (target.capacity == 0) {
        return BRINDLE_BUFFER_TOO_SMALL;
    }
    const std::string_view given = DataModel::CutText(text, target.capacity - 1);
    target.buffer[given.copy(target.buffer, given.size())] = '\0';
    return given.size() == text.size() ? BRINDLE_OK : BRINDLE_BUFFER_TOO_SMALL;
}

} // namespace Tessel::Norn::Brindle::CInterface
