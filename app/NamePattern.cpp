#include "NamePattern.h"

#include "Characters.h"
#include "SymbolScope.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct CharacterClass {
    std::string_view name;
    std::u32string_view ranges;
};

constexpr std::array sClasses = {
    CharacterClass{"[:alnum:]", U"AZaz09"},   CharacterClass{"[:alpha:]", U"AZaz"},
    CharacterClass{"[:digit:]", U"09"},       CharacterClass{"[:lower:]", U"az"},
    CharacterClass{"[:punct:]", U"!/:@[`{~"}, CharacterClass{"[:space:]", U"\t\r  "},
    CharacterClass{"[:upper:]", U"AZ"},       CharacterClass{"[:xdigit:]", U"09AFaf"}};

bool IsInRanges(std::u32string_view ranges, char32_t character) {
    for (std::size_t range = 0; range + 1 < ranges.size(); range += 2) {
        if (ranges[range] <= character && character <= ranges[range + 1]) {
            return true;
        }
    }
    return false;
}

/// True if the brackets at the start of a text contain a number.
bool IsIndex(std::string_view text) {
    const std::size_t end = text.find_first_not_of("0123456789", 1);
    return end != std::string_view::npos && end > 1 && text[end] == ']';
}

/// The name of a variable after its compile unit.
std::string InUnit(std::string_view unit, std::string_view name) {
    return std::string(unit).append("::").append(name);
}

} // namespace

/// Turns the text of a pattern into its steps.
class NamePattern::Parser {
public:
    Parser(std::string_view pattern, bool hasSets)
        : mPattern(pattern)
        , mHasSets(hasSets) {}

    Steps Parse() {
        while (mPosition < mPattern.size()) {
            const char32_t character = TakeCharacter(mPattern, mPosition);
            if (character == U'*') {
                mSteps.push_back({Kind::AnyText, 0, {}});
            } else if (character == U'?') {
                mSteps.push_back({Kind::AnyCharacter, 0, {}});
            } else if (character != U'[' || !mHasSets || !ParseSet()) {
                mSteps.push_back({Kind::Character, Unescaped(character), {}});
            }
        }
        return std::move(mSteps);
    }

private:
    char32_t Unescaped(char32_t character) {
        const bool isEscape = character == U'\\' && mPosition < mPattern.size();
        return isEscape ? TakeCharacter(mPattern, mPosition) : character;
    }

    /// Reads a set after its opening bracket. Without a closing bracket it is no set.
    bool ParseSet() {
        const std::size_t start = mPosition;
        Step set{Kind::OneOf, 0, {}};
        if (mPosition < mPattern.size() &&
            (mPattern[mPosition] == '!' || mPattern[mPosition] == '^')) {
            set.kind = Kind::NoneOf;
            ++mPosition;
        }
        const std::size_t first = mPosition;
        while (mPosition < mPattern.size()) {
            if (mPattern[mPosition] == ']' && mPosition != first) {
                ++mPosition;
                mSteps.push_back(std::move(set));
                return true;
            }
            ParseRange(set.ranges);
        }
        mPosition = start;
        return false;
    }

    void ParseRange(std::u32string& ranges) {
        const std::string_view rest = mPattern.substr(mPosition);
        for (const CharacterClass& characters : sClasses) {
            if (rest.starts_with(characters.name)) {
                ranges += characters.ranges;
                mPosition += characters.name.size();
                return;
            }
        }
        const char32_t first = Unescaped(TakeCharacter(mPattern, mPosition));
        char32_t last = first;
        const std::string_view behind = mPattern.substr(mPosition);
        if (behind.size() > 1 && behind[0] == '-' && behind[1] != ']') {
            ++mPosition;
            last = Unescaped(TakeCharacter(mPattern, mPosition));
        }
        ranges.append({first, last});
    }

    std::string_view mPattern;
    bool mHasSets;
    std::size_t mPosition = 0;
    Steps mSteps;
};

NamePattern::NamePattern(std::string_view pattern, bool ignoresCase)
    : mSteps(Parser(pattern, true).Parse())
    , mIgnoresCase(ignoresCase) {
    if (pattern.find('[') != std::string_view::npos) {
        mIndexSteps = Parser(pattern, false).Parse();
    }
}

NamePattern NamePattern::PartOf(std::string_view word, bool ignoresCase) {
    NamePattern result;
    result.mIgnoresCase = ignoresCase;
    result.mSteps = Parser(word, false).Parse();
    result.mSteps.insert(result.mSteps.begin(), {Kind::AnyText, 0, {}});
    result.mSteps.push_back({Kind::AnyText, 0, {}});
    return result;
}

bool NamePattern::IsPlain(std::string_view pattern) {
    for (std::size_t position = 0; position < pattern.size(); ++position) {
        const char character = pattern[position];
        const bool isBracket = character == '[' && !IsIndex(pattern.substr(position));
        if (character == '*' || character == '?' || isBracket) {
            return false;
        }
        position += character == '\\' ? 1 : 0;
    }
    return true;
}

bool NamePattern::Fits(std::string_view name) const {
    return FitsSteps(mSteps, name) || (!mIndexSteps.empty() && FitsSteps(mIndexSteps, name));
}

bool NamePattern::CanBegin(std::string_view start) const {
    return CanBeginSteps(mSteps, start) ||
           (!mIndexSteps.empty() && CanBeginSteps(mIndexSteps, start));
}

bool NamePattern::FitsSteps(const Steps& steps, std::string_view name) const {
    const auto isAnyText = [&steps](std::size_t step) {
        return step < steps.size() && steps[step].kind == Kind::AnyText;
    };
    std::size_t position = 0;
    std::size_t step = 0;
    std::size_t behindStar = std::string_view::npos;
    std::size_t starEnd = 0;
    while (position < name.size()) {
        std::size_t next = position;
        if (isAnyText(step)) {
            behindStar = ++step;
            starEnd = position;
        } else if (step < steps.size() && FitsOne(steps[step], TakeCharacter(name, next))) {
            position = next;
            ++step;
        } else if (behindStar != std::string_view::npos) {
            // Only the last star has to grow: the matches of earlier ones can stay.
            TakeCharacter(name, starEnd);
            position = starEnd;
            step = behindStar;
        } else {
            return false;
        }
    }
    while (isAnyText(step)) {
        ++step;
    }
    return step == steps.size();
}

bool NamePattern::CanBeginSteps(const Steps& steps, std::string_view start) const {
    std::size_t position = 0;
    for (const Step& step : steps) {
        if (step.kind == Kind::AnyText || position == start.size()) {
            return true;
        }
        if (!FitsOne(step, TakeCharacter(start, position))) {
            return false;
        }
    }
    return position == start.size();
}

bool NamePattern::FitsOne(const Step& step, char32_t character) const {
    switch (step.kind) {
    case Kind::Character:
        return step.character == character || Folded(step.character) == Folded(character);
    case Kind::AnyCharacter:
        return true;
    case Kind::OneOf:
    case Kind::NoneOf: {
        const bool isIn = IsInRanges(step.ranges, character) ||
                          (mIgnoresCase && (IsInRanges(step.ranges, LowerCase(character)) ||
                                            IsInRanges(step.ranges, UpperCase(character))));
        return isIn == (step.kind == Kind::OneOf);
    }
    case Kind::AnyText:
        break;
    }
    return false;
}

char32_t NamePattern::Folded(char32_t character) const {
    return mIgnoresCase ? LowerCase(character) : character;
}

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    return NamePattern(pattern).Fits(name);
}

NameFilter::NameFilter(std::string_view pattern, bool ignoresCase)
    : mHasScope(pattern.find("::") != std::string_view::npos) {
    if (!pattern.empty()) {
        mPattern.emplace(pattern, ignoresCase);
    }
}

NameFilter NameFilter::PartOf(std::string_view word, bool ignoresCase) {
    NameFilter filter;
    filter.mPattern = NamePattern::PartOf(word, ignoresCase);
    filter.mIsPart = true;
    return filter;
}

bool NameFilter::Takes(std::string_view qualifiedName, std::size_t ownName,
                       std::string_view unit) const {
    if (mIsPart) {
        return mPattern->Fits(WithoutSymbolScope(qualifiedName));
    }
    if (TakesAll() || mPattern->Fits(qualifiedName) ||
        (ownName != 0 && mPattern->Fits(qualifiedName.substr(ownName)))) {
        return true;
    }
    return mHasScope && !unit.empty() &&
           (mPattern->Fits(InUnit(unit, qualifiedName)) ||
            mPattern->Fits(InUnit(unit, qualifiedName.substr(ownName))));
}

bool NameFilter::MayTakeBehind(std::string_view qualifiedName, std::size_t ownName,
                               std::string_view unit) const {
    if (TakesAll() || mPattern->CanBegin(qualifiedName) ||
        mPattern->CanBegin(qualifiedName.substr(ownName))) {
        return true;
    }
    return mHasScope && !unit.empty() &&
           (mPattern->CanBegin(InUnit(unit, qualifiedName)) ||
            mPattern->CanBegin(InUnit(unit, qualifiedName.substr(ownName))));
}

std::size_t OwnNameStart(std::string_view qualifiedName, std::string_view ownName) {
    return qualifiedName.ends_with(ownName) ? qualifiedName.size() - ownName.size() : 0;
}

} // namespace Tessel::Norn::Brindle::Program
