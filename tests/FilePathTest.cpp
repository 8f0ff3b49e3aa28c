// Paths between texts and the system: the bytes themselves where paths are bytes, and what Windows
// needs where they are wide.
#include "core/FilePath.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

constexpr bool sArePathsWide = std::is_same_v<std::filesystem::path::value_type, wchar_t>;

std::string Opened(const std::string& text) {
    return TextOfPath(PathToOpen(text));
}

std::string Normal(const std::string& text) {
    return TextOfPath(NormalPath(PathOfText(text)));
}

TEST(FilePathTest, ATextComesBackAsItWas) {
    for (const std::string text : {"", "größe 温度.elf", "a/b.elf", "./x"}) {
        EXPECT_EQ(TextOfPath(PathOfText(text)), text);
        EXPECT_EQ(Opened(text), text);
    }
    const std::string odd = "gr\xF6\xDF"
                            "e";
    EXPECT_EQ(Opened(odd), sArePathsWide ? "größe" : odd);
}

TEST(FilePathTest, LongPathsHaveThePrefixOfWindows) {
    const std::string name(250, 'n');
    if (sArePathsWide) {
        EXPECT_EQ(Opened("C:/a/../b/" + name), R"(\\?\C:\b\)" + name);
        EXPECT_EQ(Opened(R"(\\server\share\a/.\)" + name), R"(\\?\UNC\server\share\a\)" + name);
        EXPECT_EQ(Opened(R"(\\?\C:\)" + name), R"(\\?\C:\)" + name);
        EXPECT_TRUE(Opened(name).starts_with(R"(\\?\)"));
        EXPECT_TRUE(Opened(name).ends_with('\\' + name));
    } else {
        EXPECT_EQ(Opened("/a/../b/" + name), "/a/../b/" + name);
    }
}

TEST(FilePathTest, ServersStayServersInTheNormalSpelling) {
    if (sArePathsWide) {
        EXPECT_EQ(Normal("//server/share/a/../b.a2l"), R"(\\server\share\b.a2l)");
        EXPECT_EQ(Normal("a/./b//c.a2l"), R"(a\b\c.a2l)");
    } else {
        EXPECT_EQ(Normal("a/./b//c.a2l"), "a/b/c.a2l");
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
