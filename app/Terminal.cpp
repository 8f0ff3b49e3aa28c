#include "Terminal.h"

#include "Platform.h"

#include <cstdlib>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr int sStandardOutput = 1;
constexpr int sStandardError = 2;

std::string_view EnvironmentValue(const char* name) {
    // The program has one thread and doesn't change the environment.
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
           KnowsColours(stream);
}

/// For a screen that doesn't report its width.
constexpr std::size_t sUsualWidth = 80;

std::size_t WidthOf(int stream) {
    if (!IsTerminal(stream)) {
        return 0;
    }
    const std::size_t width = TerminalWidth(stream);
    return width != 0 ? width : sUsualWidth;
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

} // namespace Tessel::Norn::Brindle::Program
