#include "a2l/Identifiers.h"

#include "a2l/Numbers.h"

#include <array>
#include <charconv>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

/// Characters that A2L allows in a whole name and in a part of it.
constexpr std::size_t sLongestName = 1024;
constexpr std::size_t sLongestPart = 128;

bool IsNameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           IsDigit(character) || character == '_';
}

/// Characters that stand behind a backslash in a text.
bool IsEscaped(char character) {
    return character == '"' || character == '\\';
}

/// Length of "[12]" at the start of a text that then ends or continues with a point or another
/// index; 0 for anything else.
std::size_t IndexLength(std::string_view text) {
    if (!text.starts_with('[')) {
        return 0;
    }
    std::size_t end = 1;
    while (end < text.size() && IsDigit(text[end])) {
        ++end;
    }
    const bool isIndex = end > 1 && end < text.size() && text[end] == ']';
    const bool isAtEnd =
        isIndex && (end + 1 == text.size() || text[end + 1] == '.' || text[end + 1] == '[');
    return isAtEnd ? end + 1 : 0;
}

std::string Cut(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return std::string(text);
    }
    const std::string hash = "_" + ShortHash(text);
    return std::string(text.substr(0, longest - hash.size())) + hash;
}

/// Adds a complete part: its name is never empty and begins with no digit.
void AppendPart(std::string& identifier, std::string_view part, std::string_view indices) {
    const bool needsStart = part.empty() || IsDigit(part.front());
    identifier.append(identifier.empty() ? "" : ".");
    identifier.append(
        Cut((needsStart ? "_" : "") + std::string(part), sLongestPart - indices.size()));
    identifier.append(indices);
}

} // namespace

std::string MakeIdentifier(std::string_view name) {
    std::string identifier;
    std::string part;
    std::string indices;
    for (std::size_t position = 0; position < name.size();) {
        const std::string_view rest = name.substr(position);
        const bool isScope = rest.starts_with("::");
        if (isScope || rest.front() == '.') {
            AppendPart(identifier, part, indices);
            part.clear();
            indices.clear();
            position += isScope ? 2 : 1;
        } else if (const std::size_t index = part.empty() ? 0 : IndexLength(rest);
                   index != 0 && indices.size() + index < sLongestPart / 2) {
            indices.append(rest.substr(0, index));
            position += index;
        } else {
            part += IsNameCharacter(rest.front()) ? rest.front() : '_';
            ++position;
        }
    }
    AppendPart(identifier, part, indices);
    if (identifier.size() <= sLongestName) {
        return identifier;
    }
    // Cuts between parts: the hash is a part of its own.
    const std::string hash = "._" + ShortHash(identifier);
    identifier.resize(identifier.rfind('.', sLongestName - hash.size()));
    return identifier + hash;
}

std::string MakePartIdentifier(std::string_view name) {
    std::string flat(name);
    for (char& character : flat) {
        character = IsNameCharacter(character) ? character : '_';
    }
    return MakeIdentifier(flat);
}

std::string QuotedText(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const bool isControl = static_cast<unsigned char>(character) < ' ' || character == '\x7F';
        quoted.append(IsEscaped(character) ? "\\" : "").append(1, isControl ? '_' : character);
    }
    return quoted + '"';
}

std::string UnquotedText(std::string_view content) {
    std::string text;
    for (; !content.empty(); content.remove_prefix(1)) {
        const bool isEscape = content.starts_with("\"\"") ||
                              (content.size() > 1 && content[0] == '\\' && IsEscaped(content[1]));
        content.remove_prefix(isEscape ? 1 : 0);
        text += content.front();
    }
    return text;
}

std::string ShortHash(std::string_view text) {
    // FNV-1a: small, and the same everywhere.
    std::uint32_t hash = 2166136261U;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    }
    std::array<char, 8> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), hash, 16);
    const std::string_view number(digits.data(), static_cast<std::size_t>(end - digits.data()));
    return std::string(digits.size() - number.size(), '0').append(number);
}

std::string IdentifierSet::Take(const std::string& name) {
    if (mTaken.insert(name).second) {
        return name;
    }
    for (std::size_t number = 2;; ++number) {
        std::string numbered = name + "_" + std::to_string(number);
        if (mTaken.insert(numbered).second) {
            return numbered;
        }
    }
}

} // namespace Tessel::Norn::Brindle::Program::A2l
