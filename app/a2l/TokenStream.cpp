#include "a2l/TokenStream.h"

#include "Phrases.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

/// Far above any real description.
constexpr std::size_t sDeepestInclude = 100;
/// What files may add that are included again: this many bytes, and so many for each byte of all
/// files. It keeps the work in proportion for files that include others twice, which again include
/// others twice, and allows a few lines that each of thousands of objects includes.
constexpr std::size_t sMostRepeatedBytes = std::size_t{1} << 20U;
constexpr std::size_t sMostRepetitions = 8;

} // namespace

TokenStream::TokenStream(SourceSet& sources, const Source& main)
    : mSources(sources)
    , mFileBytes(main.Bytes().size()) {
    mOpen.emplace_back(main);
}

PlacedToken TokenStream::Next() {
    if (mHasKept) {
        mHasKept = false;
        return mKept;
    }
    for (;;) {
        Tokenizer& current = mOpen.back();
        const Token token = current.Next();
        const PlacedToken placed{token.kind, {&current.Of(), token.position, token.length}};
        if (token.kind == TokenKind::EndOfFile && mOpen.size() > 1) {
            mOpen.pop_back();
        } else if (token.kind == TokenKind::Include) {
            const Token name = current.NextFileName();
            const PlacedToken file{name.kind, {&current.Of(), name.position, name.length}};
            if (name.kind != TokenKind::Text && name.kind != TokenKind::Word) {
                throw Fault(current.Of(), token.position,
                            Phrased("expected the name of a file after /include"));
            }
            if (mIsFollowing) {
                Enter(file.Content());
            }
        } else {
            return placed;
        }
    }
}

void TokenStream::Enter(const Span& name) {
    const Source& from = *name.source;
    const Source& included = mSources.OpenIncluded(from, name.position, name.Text());
    const bool isOpen = std::ranges::any_of(
        mOpen, [&included](const Tokenizer& open) { return &open.Of() == &included; });
    const std::string text(name.Text());
    if (isOpen) {
        throw Fault(from, name.position, Phrased("'{}' includes itself", text));
    }
    (mIncluded.insert(&included).second ? mFileBytes : mRepeatedBytes) += included.Bytes().size();
    if (mOpen.size() > sDeepestInclude ||
        mRepeatedBytes > sMostRepeatedBytes + sMostRepetitions * mFileBytes) {
        throw Fault(from, name.position, Phrased("'{}' is included too often or too deep", text));
    }
    mOpen.emplace_back(included);
}

} // namespace Tessel::Norn::Brindle::Program::A2l
