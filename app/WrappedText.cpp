#include "WrappedText.h"

#include "Characters.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Column of descriptions that have no room beside their names.
constexpr std::size_t sNarrowIndentation = 6;

std::size_t IndentationOf(std::string_view line) {
    return std::min(line.find_first_not_of(' '), line.size());
}

/// Where the description begins in a line with a name and a description, such as a line of options;
/// else where the line's text begins.
std::size_t DescriptionStart(std::string_view line) {
    const std::size_t indentation = IndentationOf(line);
    const std::size_t gap = line.find("  ", indentation);
    return indentation == 0 || gap == std::string_view::npos
               ? indentation
               : std::min(line.find_first_not_of(' ', gap), line.size());
}

/// Appends words, with a line break where a line would exceed the screen.
void AppendWords(std::string& result, std::string_view words, std::size_t column,
                 std::size_t indentation, std::size_t width) {
    bool isFirst = true;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        const std::string_view word = words.substr(0, end);
        const std::size_t wordWidth = DisplayWidth(word);
        if (!isFirst && column + 1 + wordWidth > width) {
            result.append("\n").append(indentation, ' ');
            column = indentation;
        } else if (!isFirst) {
            result.append(" ");
            ++column;
        }
        isFirst = false;
        result.append(word);
        column += wordWidth;
        words.remove_prefix(end);
        words.remove_prefix(IndentationOf(words));
    }
}

void AppendLine(std::string& result, std::string_view line, std::size_t width) {
    if (DisplayWidth(line) <= width || line.starts_with("  brindle ")) {
        result.append(line);
        return;
    }
    const std::size_t start = DescriptionStart(line);
    const bool isNarrow = start > width / 2;
    const std::string_view name = line.substr(0, line.find_last_not_of(' ', start - 1) + 1);
    if (!isNarrow || start == 0) {
        result.append(line.substr(0, start));
        AppendWords(result, line.substr(start), start, start, width);
        return;
    }
    if (!name.empty()) {
        const std::size_t nameStart = IndentationOf(name);
        result.append(nameStart, ' ');
        AppendWords(result, name.substr(nameStart), nameStart, sNarrowIndentation, width);
        result.append("\n");
    }
    result.append(sNarrowIndentation, ' ');
    AppendWords(result, line.substr(start), sNarrowIndentation, sNarrowIndentation, width);
}

} // namespace

std::string Wrapped(std::string_view text, std::size_t width, WrappedLines lines) {
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        if (lines == WrappedLines::All || !line.starts_with(' ')) {
            AppendLine(result, line, width);
        } else {
            result.append(line);
        }
        result.append(end < text.size() ? "\n" : "");
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

} // namespace Tessel::Norn::Brindle::Program
