// The run of one read: from a path to a delivered data model. `VDWARFReader::Read` calls it; it
// decides what of a file is read and in which order, and decodes nothing itself.
#pragma once

#include "core/FileContent.h"
#include "host/DWARFContainerType.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDWARFReaderWrapper;
class VElfFile;

/// Reads one file from start to end.
/// @param wrapper the reader that the progress goes to; borrowed
/// @param errorText receives the message of a failed read, terminated and cut to `errorTextSize`
///        bytes; untouched by a successful one
/// @param errorTextSize size of the buffer in bytes
/// @param content the file in memory, which the path then only names; null to open the path
bool DWARF2StdImpl(VDWARFReaderWrapper* wrapper, const std::string& path, char* errorText,
                   std::int32_t errorTextSize, DWARFContainerType container,
                   const FileContent& content = nullptr);

/// Opens the file and fills the section records from its container.
bool _ReadElfAndSectionHeaders(DWARFContainerType container, VElfFile& file);

/// Reads what the section records and the options `mElfForceSymbolTable` and
/// `mForceDebugSectionVersion` ask for.
bool _ReadoutSymbolTablesAndDebugSections(DWARFContainerType container, VElfFile& file,
                                          VDWARFReaderWrapper* wrapper);

/// Reads and delivers the debug information of `.debug_info`.
bool _ReadDWARF2Section(VElfFile& file, VDWARFReaderWrapper* wrapper);

/// Refuses the deprecated format of `.debug`. Error: `ELFERR_DWARF1`.
bool _ReadDWARF1Section(VElfFile& file);

/// Ends the read with a false result and no error: the format of `.vdebug` is not read.
bool _ReadNECDebugSection(VElfFile& file);

/// Empties the symbol maps of a file.
void _CleanProcessingMaps(VElfFile& file);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
