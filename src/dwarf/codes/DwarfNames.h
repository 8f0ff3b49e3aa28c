// Names of the DWARF standard's tags and encodings, for dumps and for the texts of types. Marks
// such as "[v4]" tell the version of the standard that brought a code. No decision hangs on them.
#pragma once

#include "dwarf/codes/DwarfConstants.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The name of a tag. The text of an unknown code holds until the next unknown code of either kind.
const char* GetDwarfTagName(dwarf_tag tag);

/// The name of an encoding of base types (`DW_ATE`); unknown codes as above.
const char* GetDwarfEncodingName(std::uint32_t encoding);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
