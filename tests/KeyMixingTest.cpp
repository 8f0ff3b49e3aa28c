#include "core/KeyMixing.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace Tessel::Norn::Brindle::Tests {
namespace {

constexpr std::uint64_t sSeed = 0x0123'4567'89AB'CDEF;

TEST(KeyMixingTest, EachByteOfATextOfAnyLengthCounts) {
    std::set<std::uint64_t> hashesOfLengths;
    for (std::size_t length = 0; length < 300; ++length) {
        hashesOfLengths.insert(HashOfText(std::string(length, '\0'), sSeed));
        std::string text(length, 'a');
        std::set<std::uint64_t> hashes{HashOfText(text, sSeed), HashOfText(text, sSeed + 1)};
        for (char& character : text) {
            character = 'b';
            hashes.insert(HashOfText(text, sSeed));
            character = 'a';
        }
        ASSERT_EQ(hashes.size(), length + 2) << length;
    }
    EXPECT_EQ(hashesOfLengths.size(), 300U);
}

TEST(KeyMixingTest, PartsOfATextCountWhereTheyStand) {
    const std::string first(32, 'a');
    const std::string second(32, 'b');
    EXPECT_NE(HashOfText(first + second, sSeed), HashOfText(second + first, sSeed));
    const std::string words = "11111111222222223333333344444444";
    const std::string swapped = "22222222111111113333333344444444";
    EXPECT_NE(HashOfText(words + first, sSeed), HashOfText(swapped + first, sSeed));
}

TEST(KeyMixingTest, TheHashOfATextDoesNotDependOnItsPlace) {
    const std::string text = std::string(7, 'x') + std::string(150, 'y');
    const std::string_view view = text;
    EXPECT_EQ(HashOfText(view.substr(7), sSeed), HashOfText(std::string(150, 'y'), sSeed));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
