#include "a2l/Tokenizer.h"

#include "Phrases.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

constexpr std::string_view sByteOrderMark = "\xEF\xBB\xBF";

constexpr std::array<bool, 256> SpaceTable() {
    std::array<bool, 256> table{};
    // The last one ends files that were written for DOS.
    for (const char space : {' ', '\t', '\r', '\n', '\v', '\f', '\x1A'}) {
        table[static_cast<unsigned char>(space)] = true;
    }
    return table;
}

constexpr std::array<bool, 256> sIsSpace = SpaceTable();

bool IsSpace(char character) {
    return sIsSpace[static_cast<unsigned char>(character)];
}

constexpr std::array sShapingWords = {std::pair{std::string_view("/begin"), TokenKind::Begin},
                                      std::pair{std::string_view("/end"), TokenKind::End},
                                      std::pair{std::string_view("/include"), TokenKind::Include}};

/// True where a word ends without a space after it: at a comment, and at "/end" and its like, which
/// no name contains.
bool EndsWord(std::string_view text) {
    if (text.starts_with("/*") || text.starts_with("//")) {
        return true;
    }
    return std::ranges::any_of(sShapingWords, [text](const auto& shaping) {
        const std::string_view word = shaping.first;
        return text.starts_with(word) && (text.size() == word.size() || IsSpace(text[word.size()]));
    });
}

TokenKind KindOf(std::string_view word) {
    if (word.front() == '/') {
        for (const auto& [text, kind] : sShapingWords) {
            if (word == text) {
                return kind;
            }
        }
    }
    return TokenKind::Word;
}

} // namespace

Tokenizer::Tokenizer(const Source& source)
    : mSource(source)
    , mBytes(source.Bytes())
    , mPosition(mBytes.starts_with(sByteOrderMark) ? sByteOrderMark.size() : 0) {}

Token Tokenizer::Next() {
    SkipSpace();
    if (mPosition == mBytes.size()) {
        return {TokenKind::EndOfFile, mPosition, 0};
    }
    return mBytes[mPosition] == '"' ? TakeText() : TakeWord();
}

Token Tokenizer::NextFileName() {
    SkipSpace();
    if (mPosition == mBytes.size() || mBytes[mPosition] == '"') {
        return Next();
    }
    // In file names, unlike in other words, two slashes begin no comment.
    const std::size_t start = mPosition;
    while (mPosition < mBytes.size() && !IsSpace(mBytes[mPosition])) {
        ++mPosition;
    }
    return {TokenKind::Word, start, mPosition - start};
}

void Tokenizer::SkipSpace() {
    while (mPosition < mBytes.size()) {
        if (IsSpace(mBytes[mPosition])) {
            ++mPosition;
            continue;
        }
        const std::string_view start = mBytes.substr(mPosition, 2);
        if (start == "/*") {
            const std::size_t end = mBytes.find("*/", mPosition + 2);
            if (end == std::string_view::npos) {
                throw Fault(mSource, mPosition,
                            Phrased("the comment that begins here has no end, expected */"));
            }
            mPosition = end + 2;
        } else if (start == "//") {
            mPosition = std::min(mBytes.find_first_of("\r\n", mPosition), mBytes.size());
        } else {
            break;
        }
    }
}

Token Tokenizer::TakeText() {
    const std::size_t start = mPosition;
    for (std::size_t position = start + 1;;) {
        position = mBytes.find_first_of("\"\\", position);
        if (position == std::string_view::npos) {
            throw Fault(mSource, start,
                        Phrased("the text that begins here has no end, expected \""));
        }
        const bool isPair = position + 1 < mBytes.size() &&
                            (mBytes[position] == '\\' || mBytes[position + 1] == '"');
        if (!isPair && mBytes[position] == '"') {
            mPosition = position + 1;
            return {TokenKind::Text, start, mPosition - start};
        }
        position += isPair ? 2 : 1;
    }
}

Token Tokenizer::TakeWord() {
    const std::size_t start = mPosition;
    ++mPosition;
    while (mPosition < mBytes.size() && !IsSpace(mBytes[mPosition]) && mBytes[mPosition] != '"') {
        if (mBytes[mPosition] == '/' && EndsWord(mBytes.substr(mPosition))) {
            break;
        }
        ++mPosition;
    }
    const std::size_t length = mPosition - start;
    return {KindOf(mBytes.substr(start, length)), start, length};
}

} // namespace Tessel::Norn::Brindle::Program::A2l
