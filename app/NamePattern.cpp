#include "NamePattern.h"

#include "Utf8.h"

#include <cstddef>

namespace Tessel::Norn::Brindle::Program {

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    std::size_t position = 0;
    std::size_t inPattern = 0;
    std::size_t afterStar = std::string_view::npos;
    std::size_t starEnd = 0;
    while (position < name.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '*') {
            afterStar = ++inPattern;
            starEnd = position;
        } else if (inPattern < pattern.size() && pattern[inPattern] == '?') {
            position += CharacterLength(name.substr(position));
            ++inPattern;
        } else if (inPattern < pattern.size() && pattern[inPattern] == name[position]) {
            ++position;
            ++inPattern;
        } else if (afterStar != std::string_view::npos) {
            // The last star alone has to grow: what the earlier ones took can stay as it is.
            starEnd += CharacterLength(name.substr(starEnd));
            position = starEnd;
            inPattern = afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

bool CanBeginMatch(std::string_view start, std::string_view pattern) {
    std::size_t position = 0;
    for (const char expected : pattern) {
        if (expected == '*' || position == start.size()) {
            return true;
        }
        if (expected != '?' && expected != start[position]) {
            return false;
        }
        position += expected == '?' ? CharacterLength(start.substr(position)) : 1;
    }
    return position == start.size();
}

bool NameFilter::Takes(std::string_view qualifiedName, std::size_t ownName) const {
    return TakesAll() || MatchesPattern(qualifiedName, mPattern) ||
           MatchesPattern(qualifiedName.substr(ownName), mPattern);
}

bool NameFilter::MayTakeBehind(std::string_view qualifiedName, std::size_t ownName) const {
    return TakesAll() || CanBeginMatch(qualifiedName, mPattern) ||
           CanBeginMatch(qualifiedName.substr(ownName), mPattern);
}

std::size_t OwnNameStart(std::string_view qualifiedName, std::string_view ownName) {
    return qualifiedName.ends_with(ownName) ? qualifiedName.size() - ownName.size() : 0;
}

} // namespace Tessel::Norn::Brindle::Program
