// Which known names are near to one that a user got wrong. Messages about unknown options, commands
// and names of a file end with them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Keeps the three nearest of the names that it is offered. Upper and lower case count as alike,
/// and a name that holds the wanted one counts as near, since long names are remembered in part.
class NearNames {
public:
    /// @param wanted borrowed; one without a letter or longer than any slip of the fingers has no
    ///     near names
    explicit NearNames(std::string_view wanted);

    void Offer(std::string_view name);

    /// "; nearest names: a, b", empty without any.
    [[nodiscard]] std::string Text() const;
    /// "a, b", empty without any.
    [[nodiscard]] std::string List() const;

private:
    [[nodiscard]] std::size_t DistanceTo(std::string_view name);

    std::string mWanted;
    std::size_t mFarthest = 0;
    /// With their distances, nearest first, in the order of the offers.
    std::vector<std::pair<std::size_t, std::string>> mNearest;
    std::string mLowerCase;
    std::vector<std::size_t> mRow;
};

} // namespace Tessel::Norn::Brindle::Program
