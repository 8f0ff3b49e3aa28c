#include "Platform.h"

#include "core/FilePath.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <share.h>
#include <sys/stat.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// Needs the types of windows.h.
#include <shellapi.h>

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
#define ENABLE_VIRTUAL_TERMINAL_PROCESSING 0x0004
#endif

namespace Tessel::Norn::Brindle::Program {

namespace {

namespace fs = std::filesystem;
using Reader::DWARF::PathOfText;
using Reader::DWARF::PathToOpen;
using Reader::DWARF::TextOfPath;

constexpr int sStandardInput = 0;
constexpr int sStandardOutput = 1;
constexpr int sStandardError = 2;

/// The encoding of the screen before the program changed it; 0 if there is none.
UINT sEncoding = 0;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) {
            CloseHandle(handle);
        }
    }
};
using FileHandle = std::unique_ptr<HANDLE, HandleCloser>;

HANDLE HandleOf(int stream) {
    return GetStdHandle(stream == sStandardOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// Mode of a console. A device such as `NUL` has none, though the C library calls it a terminal.
bool GetMode(int stream, DWORD& mode) {
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

/// Identifies the file itself, as long as it is open.
bool GetIdentity(const FileHandle& file, BY_HANDLE_FILE_INFORMATION& information) {
    return file.get() != INVALID_HANDLE_VALUE &&
           GetFileInformationByHandle(file.get(), &information) != 0;
}

FileHandle OpenToIdentify(const std::string& path) {
    const DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return FileHandle(CreateFileW(PathToOpen(path).c_str(), 0, shared, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

/// A text that is equal for all paths to an existing file; empty for any other.
std::string IdentityOf(const std::string& path) {
    const FileHandle file = OpenToIdentify(path);
    BY_HANDLE_FILE_INFORMATION information{};
    return GetIdentity(file, information) ? std::to_string(information.dwVolumeSerialNumber) + ":" +
                                                std::to_string(information.nFileIndexHigh) + ":" +
                                                std::to_string(information.nFileIndexLow)
                                          : std::string();
}

/// One spelling for all names that Windows doesn't tell apart.
std::string WithoutCase(const fs::path& path) {
    std::wstring name = path.wstring();
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    return TextOfPath(name);
}

bool IsMissing(DWORD reason) {
    return reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
           reason == ERROR_INVALID_NAME || reason == ERROR_BAD_NETPATH ||
           reason == ERROR_BAD_NET_NAME;
}

} // namespace

std::vector<std::string> ProgramArguments(int argumentCount, const char* const* arguments) {
    int count = 0;
    LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words == nullptr) {
        return {arguments, arguments + argumentCount};
    }
    std::vector<std::string> texts;
    for (int index = 0; index < count; ++index) {
        texts.push_back(TextOfPath(words[index]));
    }
    LocalFree(words);
    return texts;
}

StandardStreams::StandardStreams() {
    for (const int stream : {sStandardInput, sStandardOutput, sStandardError}) {
        _setmode(stream, _O_BINARY);
    }
    if (IsTerminal(sStandardOutput) || IsTerminal(sStandardError)) {
        sEncoding = GetConsoleOutputCP();
        SetConsoleOutputCP(CP_UTF8);
    }
}

StandardStreams::~StandardStreams() {
    // The console outlives the program, and so would its encoding.
    if (sEncoding != 0) {
        SetConsoleOutputCP(sEncoding);
    }
}

bool IsTerminal(int stream) {
    DWORD mode = 0;
    return GetMode(stream, mode);
}

bool KnowsColours(int stream) {
    DWORD mode = 0;
    return GetMode(stream, mode) &&
           ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 ||
            SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0);
}

std::size_t TerminalWidth(int stream) {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (GetConsoleScreenBufferInfo(HandleOf(stream), &screen) == 0) {
        return 0;
    }
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

bool IsLocaleUtf8() {
    return true;
}

fs::file_status FileStatus(const std::string& path, std::error_code& error) {
    // The C library's query fails for the longest paths.
    const DWORD attributes = GetFileAttributesW(PathToOpen(path).c_str());
    error.clear();
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD reason = GetLastError();
        error = std::make_error_code(IsMissing(reason) ? std::errc::no_such_file_or_directory
                                                       : std::errc::permission_denied);
        return fs::file_status(IsMissing(reason) ? fs::file_type::not_found : fs::file_type::none);
    }
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!isFolder && GetFileType(OpenToIdentify(path).get()) == FILE_TYPE_CHAR) {
        return fs::file_status(fs::file_type::character);
    }
    const bool isProtected = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    const fs::perms reading =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    const fs::perms permissions = isProtected ? reading : reading | fs::perms::owner_write;
    return fs::file_status(isFolder ? fs::file_type::directory : fs::file_type::regular,
                           permissions);
}

std::string PlaceOf(const std::string& path) {
    const std::string identity = IdentityOf(path);
    if (!identity.empty()) {
        return identity;
    }
    const fs::path folder = PathOfText(path).parent_path();
    const std::string place = IdentityOf(folder.empty() ? "." : TextOfPath(folder));
    return place.empty() ? WithoutCase(PathToOpen(path))
                         : place + "/" + WithoutCase(PathOfText(path).filename());
}

std::string TargetOfLinks(const std::string& path) {
    // Links to files are rare here, and only administrators may make them.
    return path;
}

std::FILE* OpenToRead(const std::string& path) {
    return _wfopen(PathToOpen(path).c_str(), L"rb");
}

bool CreateNewFile(const std::string& path) {
    int file = -1;
    const errno_t reason =
        _wsopen_s(&file, PathToOpen(path).c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY,
                  _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (reason != 0) {
        errno = reason;
        return false;
    }
    _close(file);
    return true;
}

void RemoveFile(const std::string& path) {
    DeleteFileW(PathToOpen(path).c_str());
}

bool BringToDisk(const std::string& path) {
    int file = -1;
    errno_t reason = _wsopen_s(&file, PathToOpen(path).c_str(), _O_RDWR | _O_BINARY, _SH_DENYNO, 0);
    if (reason == 0) {
        reason = _commit(file) == 0 ? 0 : errno;
        _close(file);
    }
    errno = reason;
    return reason == 0;
}

} // namespace Tessel::Norn::Brindle::Program
