#include "core/UnitName.h"

#include <algorithm>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumUnitNameLength = 79;

} // namespace

std::string ShortUnitName(std::string_view path) {
    // Without a separator, npos + 1 is the start of the text.
    std::string_view last = path.substr(path.find_last_of("/\\") + 1);
    last.remove_prefix(last.size() - std::min(last.size(), sMaximumUnitNameLength));
    std::string name(last);
    std::ranges::replace(name, '.', '_');
    return name;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
