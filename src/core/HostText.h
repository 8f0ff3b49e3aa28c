// Converts narrow text, which is bytes as a file or the catalogue has them, to host text, which is
// UTF-8.
#pragma once

#include "../core/Export.h"

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Narrow text as host text: valid UTF-8 passes through, anything else is read as Windows-1252, so
/// that no name is lost and the result is always valid UTF-8. The five bytes that Windows-1252
/// leaves undefined become the control characters of the same number.
BRINDLE_EXPORT std::string ToHostText(std::string_view narrowText);

/// Assigns host text to an existing string, whose memory is used again.
BRINDLE_EXPORT void AssignHostText(std::string& text, std::string_view narrowText);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
