// Which kind of container a file is, by its first bytes. A host asks when its user leaves the
// choice to it; whether the file is sound is for the reader to say. Implemented in
// read/ContainerDetection.
#pragma once

#include "../core/Export.h"
#include "../core/FileContent.h"
#include "../host/DWARFContainerType.h"

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// ELF by its magic number and PE by "MZ"; any other content is COFF, which has no magic number of
/// its own. A file without content, or that can't be read, counts as ELF.
BRINDLE_EXPORT DWARFContainerType DetectContainer(const std::string& file);
/// Detects the container of a file in memory; `content` must not be null.
BRINDLE_EXPORT DWARFContainerType DetectContainer(const FileContent& content);

/// The short name of a container: "elf", "coff" or "pe".
BRINDLE_EXPORT std::string_view ContainerName(DWARFContainerType container);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
