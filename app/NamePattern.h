// Patterns of names as in a shell. Commands that list things by name match with
// them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// `*` stands for any characters, including none, `?` for one, `[a-z]`, `[!a-z]` and `[[:digit:]]`
/// for one of a set; `\` takes the meaning from the character after it. Brackets also match those
/// of an index, so that `loops[0].gain` and `loops[*].gain` need no `\[`.
class NamePattern {
public:
    /// @param ignoresCase upper and lower case are equal
    explicit NamePattern(std::string_view pattern, bool ignoresCase = false);

    /// Matches everything that contains the word.
    static NamePattern PartOf(std::string_view word, bool ignoresCase);

    /// True for a pattern that is a plain word: it has no wildcards, and no brackets except those
    /// of indices.
    static bool IsPlain(std::string_view pattern);

    /// True if the pattern matches the whole name.
    [[nodiscard]] bool Fits(std::string_view name) const;

    /// True if a text that begins with `start` can match the pattern.
    [[nodiscard]] bool CanBegin(std::string_view start) const;

private:
    enum class Kind { Character, AnyCharacter, AnyText, OneOf, NoneOf };
    struct Step {
        Kind kind = Kind::Character;
        char32_t character = 0;
        /// First and last character of each range of a set.
        std::u32string ranges;
    };
    using Steps = std::vector<Step>;
    class Parser;

    NamePattern() = default;

    [[nodiscard]] bool FitsSteps(const Steps& steps, std::string_view name) const;
    [[nodiscard]] bool CanBeginSteps(const Steps& steps, std::string_view start) const;
    [[nodiscard]] bool FitsOne(const Step& step, char32_t character) const;
    [[nodiscard]] char32_t Folded(char32_t character) const;

    /// Brackets read as sets.
    Steps mSteps;
    /// Brackets read as those of indices; empty for a pattern without any.
    Steps mIndexSteps;
    bool mIgnoresCase = false;
};

/// True if the pattern matches the whole name.
bool MatchesPattern(std::string_view name, std::string_view pattern);

/// What a command was asked to list.
class NameFilter {
public:
    /// Takes everything.
    NameFilter() = default;
    /// @param pattern empty for everything
    explicit NameFilter(std::string_view pattern, bool ignoresCase = false);

    /// Accepts each name that contains the word; the scope of symbols without debug information is
    /// then no part of a name.
    static NameFilter PartOf(std::string_view word, bool ignoresCase);

    [[nodiscard]] bool TakesAll() const { return !mPattern.has_value(); }

    /// True if the pattern matches the whole qualified name, or its last part, which begins at
    /// `ownName`, or either of them after the compile unit and "::".
    /// @param unit may be empty
    [[nodiscard]] bool Takes(std::string_view qualifiedName, std::size_t ownName,
                             std::string_view unit = {}) const;

    /// True if a longer name that begins with this one may be wanted.
    [[nodiscard]] bool MayTakeBehind(std::string_view qualifiedName, std::size_t ownName,
                                     std::string_view unit = {}) const;

private:
    std::optional<NamePattern> mPattern;
    bool mHasScope = false;
    bool mIsPart = false;
};

/// Where the own name of an object begins in its qualified name.
std::size_t OwnNameStart(std::string_view qualifiedName, std::string_view ownName);

} // namespace Tessel::Norn::Brindle::Program
