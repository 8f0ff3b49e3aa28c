// The name under which a compile unit is delivered.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The last part of the path of a source file, at most 79 bytes of its end; the end of the text.
/// @param path with separators of any system
std::string_view LastPartOfPath(std::string_view path);

/// The same with "_" for each dot.
std::string ShortUnitName(std::string_view path);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
