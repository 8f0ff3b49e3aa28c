// Patterns of names as a user writes them on the command line. Commands that list things by name
// match with it.
#pragma once

#include <cstddef>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// True if the whole name fits the pattern, in which `*` stands for any characters, none included,
/// and `?` for one. Every other character stands for itself.
bool MatchesPattern(std::string_view name, std::string_view pattern);

/// True if there are texts that begin with `start` and fit the pattern.
bool CanBeginMatch(std::string_view start, std::string_view pattern);

/// What a command was asked to list.
class NameFilter {
public:
    /// @param pattern borrowed; empty for everything
    explicit NameFilter(std::string_view pattern)
        : mPattern(pattern) {}

    [[nodiscard]] bool TakesAll() const { return mPattern.empty(); }

    /// True if the pattern fits the whole of a qualified name, or its last part, which begins at
    /// `ownName`.
    [[nodiscard]] bool Takes(std::string_view qualifiedName, std::size_t ownName) const;

    /// True if a continuation of the name may be wanted.
    [[nodiscard]] bool MayTakeBehind(std::string_view qualifiedName, std::size_t ownName) const;

private:
    std::string_view mPattern;
};

/// Where the own name of an object begins in its qualified name.
std::size_t OwnNameStart(std::string_view qualifiedName, std::string_view ownName);

} // namespace Tessel::Norn::Brindle::Program
