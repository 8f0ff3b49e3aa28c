// Cuts A2L text into words and quoted texts and keeps their positions. The parser reads through it.
// It copies nothing and knows only the keywords that shape the text itself.
#pragma once

#include "a2l/Source.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

enum class TokenKind : std::uint8_t {
    EndOfFile,
    /// A name, a number or a keyword.
    Word,
    /// A text in quotes, which may span several lines.
    Text,
    /// `/begin`, `/end` and `/include`.
    Begin,
    End,
    Include,
};

struct Token {
    TokenKind kind = TokenKind::EndOfFile;
    std::size_t position = 0;
    /// Bytes of the token, the quotes of a text included.
    std::size_t length = 0;
};

/// Reads one source from its start to its end. Space, comments of both kinds and a byte order mark
/// lie between tokens.
class Tokenizer {
public:
    explicit Tokenizer(const Source& source);

    /// The next token. @throws Fault for a text or comment without an end
    Token Next();

    /// The name that follows `/include`, in quotes or without.
    Token NextFileName();

    [[nodiscard]] const Source& Of() const { return mSource; }

private:
    void SkipSpace();
    Token TakeText();
    Token TakeWord();

    const Source& mSource;
    std::string_view mBytes;
    std::size_t mPosition = 0;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
