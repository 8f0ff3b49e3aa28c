// Converts between the paths of the interfaces, which are texts, and the system's. On Windows a
// text is UTF-8 and the system's path is wide; elsewhere both are the same bytes.
#pragma once

#include "../core/Export.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A path to take apart. Text that isn't UTF-8 is read as Windows-1252 where the system needs
/// UTF-8.
BRINDLE_EXPORT std::filesystem::path PathOfText(std::string_view text);

/// A path for opening a file. Windows refuses full paths beyond 259 characters unless they have a
/// prefix, which is added here.
BRINDLE_EXPORT std::filesystem::path PathToOpen(std::string_view text);

/// The text of a path.
BRINDLE_EXPORT std::string TextOfPath(const std::filesystem::path& path);

/// One spelling for all paths that differ only in `.`, `..` and doubled separators. The two
/// separators before the name of a Windows server stay.
BRINDLE_EXPORT std::filesystem::path NormalPath(const std::filesystem::path& path);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
