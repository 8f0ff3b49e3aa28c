// Makes names from a file harmless where a person reads them. Tables, layouts and messages pass
// their texts through it; CSV and JSON have escapes of their own.
#pragma once

#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Replaces the control characters from `start` on, so that no name can break a line or reach the
/// terminal.
void ReplaceControlCharacters(std::string& text, std::size_t start = 0);

} // namespace Tessel::Norn::Brindle::Program
