// Known names that are similar to one that a user got wrong. Messages about unknown options,
// commands and names of a file end with them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Keeps the three most similar of the offered names. Upper and lower case are equal, and a name
/// that contains the wanted one counts as similar, since long names are remembered in part.
class NearNames {
public:
    /// @param wanted borrowed; without a letter, or too long for a typing error, it has no similar
    ///     names
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
    /// With their distances, most similar first, then in the order of the offers.
    std::vector<std::pair<std::size_t, std::string>> mNearest;
    std::string mLowerCase;
    std::vector<std::size_t> mRow;
};

} // namespace Tessel::Norn::Brindle::Program
