#include "NearNames.h"

#include "Phrases.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::size_t sCount = 3;
/// Names that contain the wanted one come after those that only differ in their case, and before
/// those with other letters.
constexpr std::size_t sPartDistance = 1;
constexpr std::size_t sLongestWanted = 100;
constexpr std::size_t sLongestNearName = 300;

void AssignLowerCase(std::string& result, std::string_view text) {
    result.assign(text);
    std::ranges::transform(result, result.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
}

/// How many characters must be changed, added or removed to turn one text into the other.
std::size_t EditDistance(std::string_view from, std::string_view to,
                         std::vector<std::size_t>& row) {
    row.resize(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t line = 0; line < from.size(); ++line) {
        std::size_t diagonal = std::exchange(row[0], line + 1);
        for (std::size_t column = 0; column < to.size(); ++column) {
            const std::size_t replaced = diagonal + (from[line] == to[column] ? 0 : 1);
            diagonal = row[column + 1];
            row[column + 1] = std::min({replaced, diagonal + 1, row[column] + 1});
        }
    }
    return row.back();
}

} // namespace

NearNames::NearNames(std::string_view wanted) {
    if (wanted.size() <= sLongestWanted) {
        AssignLowerCase(mWanted, wanted);
        mFarthest = sPartDistance + 1 + wanted.size() / 4;
    }
}

void NearNames::Offer(std::string_view name) {
    if (mWanted.empty() || name.empty() || name.size() > sLongestNearName) {
        return;
    }
    const std::size_t distance = DistanceTo(name);
    const bool isFarther = mNearest.size() == sCount && distance >= mNearest.back().first;
    const bool isKnown =
        std::ranges::any_of(mNearest, [name](const auto& known) { return known.second == name; });
    if (distance > mFarthest || isFarther || isKnown) {
        return;
    }
    const auto place = std::ranges::upper_bound(mNearest, distance, {},
                                                &std::pair<std::size_t, std::string>::first);
    mNearest.emplace(place, distance, name);
    mNearest.resize(std::min(mNearest.size(), sCount));
}

std::string NearNames::Text() const {
    return mNearest.empty() ? std::string() : Phrased("; similar names: {}", List());
}

std::string NearNames::List() const {
    std::string text;
    for (const auto& [distance, name] : mNearest) {
        text.append(text.empty() ? "" : ", ").append(name);
    }
    return text;
}

std::size_t NearNames::DistanceTo(std::string_view name) {
    AssignLowerCase(mLowerCase, name);
    const std::size_t found = mLowerCase.find(mWanted);
    if (found != std::string::npos) {
        // Only the case differs, also of a name in a scope, or the name contains the wanted one.
        const bool isWhole = found + mWanted.size() == mLowerCase.size() &&
                             (found == 0 || mLowerCase[found - 1] == ':');
        return isWhole ? 0 : sPartDistance;
    }
    const std::size_t least =
        name.size() > mWanted.size() ? name.size() - mWanted.size() : mWanted.size() - name.size();
    return sPartDistance + (least > mFarthest ? least : EditDistance(mWanted, mLowerCase, mRow));
}

} // namespace Tessel::Norn::Brindle::Program
