// The kinds of container file that a host can name to the reader.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Container of the input. The host names it; the reader doesn't guess.
enum class DWARFContainerType : std::int32_t {
    Container_ELF = 0,
    Container_COFF = 1,
    Container_PE = 2,
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
