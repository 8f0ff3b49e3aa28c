// The log of a read: a plain text file beside the input, for a person who looks into a file that
// was read wrongly. Off by its start value; it never influences a result.
#pragma once

#include "core/FormatText.h"

#include <fstream>
#include <ios>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Prefix of the log lines about class references.
extern std::string tag_alignment;

/// Opens the log of an input file, overwriting an old one: the input's path with its extension
/// replaced by "log". A name above 259 characters and the name of the input itself are refused.
/// @return false, with a text on standard output, if the file can't be created
bool CreateLogFile(const std::string& inputPath);

/// Closes the log if it is open.
void CloseLogFile();

/// Opens a text file that a read writes for a person: the log, or one like it. The name of the
/// input itself is refused.
/// @return false, with a text on standard output, if the file can't be opened
bool OpenDiagnosticFile(std::ofstream& file, const std::string& name, const std::string& inputPath,
                        std::ios::openmode mode);

/// Writes one line. This and the next two do nothing unless `mIsLogFile` is set and the log is
/// open; callers guard expensive arguments themselves.
BRINDLE_PRINTF_LIKE(1, 2) void elflog(const char* format, ...);

/// Writes text without a line end.
BRINDLE_PRINTF_LIKE(1, 2) void elfelog(const char* format, ...);

/// Writes one line, indented by `mLogNestLevel`.
BRINDLE_PRINTF_LIKE(1, 2) void elfilog(const char* format, ...);

/// Starts the clock of `GetLogTimeMs`.
void s_initElfLogTimer();

/// Milliseconds since `s_initElfLogTimer`.
double GetLogTimeMs();

/// The local time as "2024/01/31 12:00:00 ", in a buffer that each call overwrites.
const char* GetLogTimeStamp();

} // namespace Tessel::Norn::Brindle::Reader::DWARF
