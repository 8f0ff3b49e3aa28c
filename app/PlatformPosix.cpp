#include "Platform.h"

#include <cerrno>
#include <fcntl.h>
#include <langinfo.h>
#include <locale.h> // NOLINT(modernize-deprecated-headers): has newlocale
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tessel::Norn::Brindle::Program {

namespace {

namespace fs = std::filesystem;

/// Closes a file and leaves `errno` as it was.
void Close(int file) {
    const int reason = errno;
    close(file);
    errno = reason;
}

} // namespace

std::vector<std::string> ProgramArguments(int argumentCount, const char* const* arguments) {
    return {arguments, arguments + argumentCount};
}

StandardStreams::StandardStreams() = default;

StandardStreams::~StandardStreams() = default;

bool IsTerminal(int stream) {
    return isatty(stream) != 0;
}

bool KnowsColours(int stream) {
    return IsTerminal(stream);
}

std::size_t TerminalWidth(int stream) {
    winsize size{};
    return ioctl(stream, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0; // NOLINT(*-vararg)
}

bool IsLocaleUtf8() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false;
    }
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
    freelocale(locale);
    return isUtf8;
}

fs::file_status FileStatus(const std::string& path, std::error_code& error) {
    return fs::status(path, error);
}

std::string PlaceOf(const std::string& path) {
    struct stat file {};
    if (stat(path.c_str(), &file) == 0) {
        return std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
    }
    // A relative path of which no folder exists would stay relative.
    std::error_code error;
    const fs::path full = fs::absolute(path, error);
    return error ? path : TargetOfLinks(full.string());
}

std::string TargetOfLinks(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error);
    return error ? path : target.string();
}

std::FILE* OpenToRead(const std::string& path) {
    return std::fopen(path.c_str(), "rb");
}

bool CreateNewFile(const std::string& path) {
    constexpr mode_t everyone = 0666;
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const int file = open(path.c_str(), flags, everyone); // NOLINT(*-vararg)
    if (file >= 0) {
        Close(file);
    }
    return file >= 0;
}

void RemoveFile(const std::string& path) {
    unlink(path.c_str());
}

bool BringToDisk(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
    if (file < 0) {
        return false;
    }
    // Some file systems don't know the request.
    const bool isDone = fsync(file) == 0 || errno == EINVAL;
    Close(file);
    return isDone;
}

} // namespace Tessel::Norn::Brindle::Program
