#include "CNames.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Ascending.
constexpr std::array<std::string_view, 54> sKeywords = {"_Alignas",
                                                        "_Alignof",
                                                        "_Atomic",
                                                        "_Bool",
                                                        "_Complex",
                                                        "_Generic",
                                                        "_Imaginary",
                                                        "_Noreturn",
                                                        "_Static_assert",
                                                        "_Thread_local",
                                                        "alignas",
                                                        "alignof",
                                                        "asm",
                                                        "auto",
                                                        "bool",
                                                        "break",
                                                        "case",
                                                        "char",
                                                        "const",
                                                        "constexpr",
                                                        "continue",
                                                        "default",
                                                        "do",
                                                        "double",
                                                        "else",
                                                        "enum",
                                                        "extern",
                                                        "false",
                                                        "float",
                                                        "for",
                                                        "goto",
                                                        "if",
                                                        "inline",
                                                        "int",
                                                        "long",
                                                        "nullptr",
                                                        "register",
                                                        "restrict",
                                                        "return",
                                                        "short",
                                                        "signed",
                                                        "sizeof",
                                                        "static",
                                                        "static_assert",
                                                        "struct",
                                                        "switch",
                                                        "true",
                                                        "typedef",
                                                        "typeof",
                                                        "union",
                                                        "unsigned",
                                                        "void",
                                                        "volatile",
                                                        "while"};

bool IsNameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

/// True for an integer type or macro of the standard: int8_t, uint_least16_t, intptr_t, INT8_MAX.
bool IsOfIntegers(std::string_view name) {
    return (name.ends_with("_t") || name.ends_with("_MAX") || name.ends_with("_MIN")) &&
           (name.starts_with("int") || name.starts_with("uint") || name.starts_with("INT") ||
            name.starts_with("UINT"));
}

} // namespace

std::string CNames::Plain(std::string_view text) {
    std::string name;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const bool isScope = text.substr(position).starts_with("::");
        name += IsNameCharacter(text[position]) ? text[position] : '_';
        position += isScope ? 1 : 0;
    }
    if (name.empty() || (name.front() >= '0' && name.front() <= '9')) {
        name.insert(name.begin(), '_');
    }
    if (std::ranges::binary_search(sKeywords, std::string_view(name)) || IsTaken(name)) {
        name += '_';
    }
    return name;
}

bool CNames::IsTaken(std::string_view name) {
    static constexpr std::array<std::string_view, 9> sOthers = {
        "NULL",      "SIZE_MAX", "max_align_t", "nullptr_t", "offsetof",
        "ptrdiff_t", "size_t",   "wchar_t",     "wint_t"};
    return IsOfIntegers(name) || name.starts_with("__") ||
           std::ranges::find(sOthers, name) != sOthers.end();
}

std::string CNames::Take(std::string_view text) {
    const std::string base = Plain(text);
    std::string name = base;
    for (std::size_t number = 2; !mTaken.insert(name).second; ++number) {
        name = base + "_" + std::to_string(number);
    }
    return name;
}

} // namespace Tessel::Norn::Brindle::Program
