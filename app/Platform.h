// All that the program asks of its operating system beyond the standard library. The build takes
// the source that answers for its system, PlatformPosix.cpp or PlatformWindows.cpp; nothing else in
// the program knows where it runs. Paths are texts in UTF-8.
#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// The arguments of `main`, the program's own name first, in UTF-8.
std::vector<std::string> ProgramArguments(int argumentCount, const char* const* arguments);

/// While it lives, the standard streams carry bytes as they are, and a screen reads them as UTF-8.
class StandardStreams {
public:
    StandardStreams();
    // Windows has something to restore.
    ~StandardStreams(); // NOLINT(performance-trivially-destructible)
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;
    StandardStreams(StandardStreams&&) = delete;
    StandardStreams& operator=(StandardStreams&&) = delete;
};

/// @name Streams by their number: 1 standard output, 2 standard error
/// @{
/// True if the stream goes to a person's screen.
bool IsTerminal(int stream);
/// True if the screen that the stream goes to understands the sequences of colours.
bool KnowsColours(int stream);
/// Columns of the screen that the stream goes to, 0 if it doesn't tell.
std::size_t TerminalWidth(int stream);
/// @}

/// True if the user's texts are UTF-8.
bool IsLocaleUtf8();

/// What lies at a path, links followed.
/// @param error the reason if the system doesn't say
std::filesystem::file_status FileStatus(const std::string& path, std::error_code& error);

/// True if both paths lead to one file that exists.
bool IsSameFile(const std::string& first, const std::string& second);

/// The path of the file that a chain of links leads to; `path` if the system doesn't say.
std::string TargetOfLinks(const std::string& path);

/// A file opened for reading its bytes; null with the reason in `errno`.
std::FILE* OpenToRead(const std::string& path);

/// Makes an empty file where none is. False with the reason in `errno`.
bool CreateNewFile(const std::string& path);

/// Removes a file if it is there.
void RemoveFile(const std::string& path);

/// Waits until all bytes of a file have reached the disk. False with the reason in `errno`.
bool BringToDisk(const std::string& path);

} // namespace Tessel::Norn::Brindle::Program
