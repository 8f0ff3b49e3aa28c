// Everything that the program asks of its operating system beyond the standard library. The build
// takes the source for its system, PlatformPosix.cpp or PlatformWindows.cpp; nothing else in the
// program knows where it runs. Paths are texts in UTF-8.
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

/// During its life the standard streams carry raw bytes, and a screen reads them as UTF-8.
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
/// True if the stream goes to a screen that understands escape sequences of colours.
bool KnowsColours(int stream);
/// Columns of the screen that the stream goes to, 0 if it can't say.
std::size_t TerminalWidth(int stream);
/// @}

/// True if the user's texts are UTF-8.
bool IsLocaleUtf8();

/// The type of the file at a path, links followed.
/// @param error the reason if the system doesn't say
std::filesystem::file_status FileStatus(const std::string& path, std::error_code& error);

/// A text that is equal for all paths to a file, whether or not it is there yet.
std::string PlaceOf(const std::string& path);

/// The path of the file that a chain of links leads to; `path` if the system doesn't say.
std::string TargetOfLinks(const std::string& path);

/// A file opened for reading its bytes; null with the reason in `errno`.
std::FILE* OpenToRead(const std::string& path);

/// Creates an empty file unless the name exists. False with the reason in `errno`.
bool CreateNewFile(const std::string& path);

/// Removes a file if it is there.
void RemoveFile(const std::string& path);

/// Waits until all bytes of a file have reached the disk. False with the reason in `errno`.
bool BringToDisk(const std::string& path);

} // namespace Tessel::Norn::Brindle::Program
