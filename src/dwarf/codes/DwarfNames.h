// Names of the DWARF standard's tags and encodings, for dumps and for texts of types. Marks such as
// "[v4]" name the version that introduced a code. No decision depends on them.
#pragma once

#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The name of a tag. The text of an unknown code is valid until the next unknown code.
const char* GetDwarfTagName(dwarf_tag tag);

/// The name of an encoding of base types (`DW_ATE`); for unknown codes see above.
const char* GetDwarfEncodingName(std::uint32_t encoding);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
