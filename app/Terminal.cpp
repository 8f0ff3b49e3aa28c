#include "Terminal.h"

#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <io.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr int sStandardOutput = 1;
constexpr int sStandardError = 2;

bool IsTerminal(int stream) {
#ifdef _WIN32
    return _isatty(stream) != 0;
#else
    return isatty(stream) != 0;
#endif
}

std::string_view EnvironmentValue(const char* name) {
    // The program has one thread and changes no variable.
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::string_view() : value;
}

bool IsColoured(int stream) {
    return EnvironmentValue("NO_COLOR").empty() && EnvironmentValue("TERM") != "dumb" &&
           IsTerminal(stream);
}

} // namespace

bool IsStandardErrorTerminal() {
    return IsTerminal(sStandardError);
}

bool IsStandardErrorColoured() {
    return IsColoured(sStandardError);
}

bool IsStandardOutputColoured() {
    return IsColoured(sStandardOutput);
}

bool BringToDisk(const std::string& path) {
#ifdef _WIN32
    // Windows writes a closed file through by itself.
    return !path.empty();
#else
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
    // Some file systems don't know the request.
    const bool isDone = file >= 0 && (fsync(file) == 0 || errno == EINVAL);
    const int reason = errno;
    if (file >= 0) {
        close(file);
    }
    errno = reason;
    return isDone;
#endif
}

} // namespace Tessel::Norn::Brindle::Program
