#include "Terminal.h"

#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <io.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <langinfo.h>
#include <locale.h> // NOLINT(modernize-deprecated-headers): has newlocale
#include <sys/ioctl.h>
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

/// Set once, while the arguments are parsed.
ColourChoice sColourChoice = ColourChoice::Auto;

bool IsColoured(int stream) {
    if (sColourChoice != ColourChoice::Auto) {
        return sColourChoice == ColourChoice::Always;
    }
    return EnvironmentValue("NO_COLOR").empty() && EnvironmentValue("TERM") != "dumb" &&
           IsTerminal(stream);
}

/// Of a screen that doesn't tell its width.
constexpr std::size_t sUsualWidth = 80;

std::size_t WidthOf(int stream) {
    if (!IsTerminal(stream)) {
        return 0;
    }
#ifndef _WIN32
    winsize size{};
    if (ioctl(stream, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) { // NOLINT(*-vararg)
        return size.ws_col;
    }
#endif
    return sUsualWidth;
}

bool IsLocaleUtf8() {
#ifdef _WIN32
    return false;
#else
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false;
    }
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
    freelocale(locale);
    return isUtf8;
#endif
}

} // namespace

ColourChoice ColourChoiceOf(std::string_view name) {
    if (name == "always") {
        return ColourChoice::Always;
    }
    return name == "never" ? ColourChoice::Never : ColourChoice::Auto;
}

void ChooseColours(ColourChoice choice) {
    sColourChoice = choice;
}

std::size_t StandardErrorWidth() {
    return WidthOf(sStandardError);
}

std::size_t StandardOutputWidth() {
    return WidthOf(sStandardOutput);
}

std::string_view Ellipsis() {
    return IsLocaleUtf8() ? "\u2026" : "...";
}

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
