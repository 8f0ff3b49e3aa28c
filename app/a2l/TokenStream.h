// One stream of tokens over a file and the files that it includes, as if their text were in place
// of the include. The parser reads from it.
#pragma once

#include "a2l/Document.h"
#include "a2l/Tokenizer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// A token and the source that it lies in.
struct PlacedToken {
    TokenKind kind = TokenKind::EndOfFile;
    Span span;

    /// A text without its quotes, any other token unchanged.
    [[nodiscard]] Span Content() const {
        return kind == TokenKind::Text ? Span{span.source, span.position + 1, span.length - 2}
                                       : span;
    }
    [[nodiscard]] bool IsWord(std::string_view word) const {
        return kind == TokenKind::Word && span.Text() == word;
    }
};

class TokenStream {
public:
    /// @param sources receives the included files; borrowed
    TokenStream(SourceSet& sources, const Source& main);

    /// The next token; includes are followed and never returned. @throws Fault for an include that
    /// leads to itself or to no file
    PlacedToken Next();

    /// Puts back the token that was read last.
    void PutBack(const PlacedToken& token) {
        mKept = token;
        mHasKept = true;
    }

    /// Whether includes are followed. Blocks of another language name files of that language.
    void FollowIncludes(bool isFollowing) { mIsFollowing = isFollowing; }

private:
    void Enter(const Span& name);

    SourceSet& mSources;
    std::vector<Tokenizer> mOpen;
    std::unordered_set<const Source*> mIncluded;
    /// Size of all files, each counted once.
    std::size_t mFileBytes;
    /// Size of what was included again.
    std::size_t mRepeatedBytes = 0;
    PlacedToken mKept;
    bool mHasKept = false;
    bool mIsFollowing = true;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
