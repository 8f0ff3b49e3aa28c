// What the numbers of machines in file headers mean.
#pragma once

#include "host/DWARFContainerType.h"

#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// The name of a machine, such as "ARM"; empty for an unknown number.
/// @param machine as `ImageDescription::machine`
std::string_view MachineName(Reader::DWARF::DWARFContainerType container, std::uint16_t machine);

} // namespace Tessel::Norn::Brindle::Program
