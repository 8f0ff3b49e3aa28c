#include "core/UnitName.h"

#include <algorithm>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumUnitNameLength = 79;

} // namespace

std::string_view LastPartOfPath(std::string_view path) {
    // Without a separator, npos + 1 is the start of the text.
    std::string_view last = path.substr(path.find_last_of("/\\") + 1);
    last.remove_prefix(last.size() - std::min(last.size(), sMaximumUnitNameLength));
    return last;
}

std::string ShortUnitName(std::string_view path) {
    std::string name(LastPartOfPath(path));
    std::ranges::replace(name, '.', '_');
    return name;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
