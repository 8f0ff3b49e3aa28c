#include "emit/BaseTypes.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

TEST(BaseTypesTest, CodeAndSizeGiveTheHostValue) {
    struct Row {
        std::uint32_t encoding;
        int code;
        /// Host values of the sizes 1, 2, 4, 8 and 3, as all others.
        std::array<int, 5> values;
    };
    constexpr std::array sizes{1, 2, 4, 8, 3};
    constexpr std::array sOfInt{11, 13, 4, 15, 10};
    constexpr std::array sOfUInt{12, 14, 5, 16, 10};
    constexpr auto sAlways = [](int value) {
        return std::array{value, value, value, value, value};
    };
    constexpr std::uint32_t none = ~0U;
    std::vector<Row> rows = {
        {0, 1, sAlways(1)},
        {1, 0, sAlways(0)},
        {2, 10, sAlways(7)},
        {3, 101, sAlways(10)},
        {4, 8, {10, 18, 6, 10, 10}},
        {5, 6, sOfInt},
        {6, 6, sOfInt},
        {7, 7, sOfUInt},
        {8, 7, sOfUInt},
        {10, 6, sOfInt},
        {16, 6, sOfInt},
        {128, 0, sAlways(0)},
        {144, 0, sAlways(0)},
        {145, 0, sAlways(0)},
        {255, 0, sAlways(0)},
        {9, 0, sAlways(0)},
        {99, 0, sAlways(0)},
        {none, 2, sAlways(2)},
        {none, 3, sAlways(3)},
        {none, 13, sAlways(8)},
        {none, 14, sAlways(9)},
        {none, 100, sAlways(17)},
        {none, 102, sAlways(13)},
        {none, 103, sAlways(14)},
        {none, 104, sAlways(15)},
        {none, 105, sAlways(16)},
    };
    for (const int code : {4, 5, 9, 11, 12, 15, 25, 26, 27, 28, 29, 30, 31, 106}) {
        rows.push_back({none, code, sAlways(0)});
    }
    for (const Row& row : rows) {
        for (std::size_t index = 0; index < sizes.size(); ++index) {
            const auto size = static_cast<std::uint32_t>(sizes.at(index));
            SCOPED_TRACE(testing::Message() << row.encoding << ", " << row.code << ", " << size);
            if (row.encoding != none) {
                EXPECT_EQ(static_cast<int>(BasicTypeOfEncoding(row.encoding, size)), row.code);
            }
            EXPECT_EQ(static_cast<int>(GetManagedBasicType(static_cast<BasicType>(row.code), size)),
                      row.values.at(index));
        }
    }
}

TEST(BaseTypesTest, UnsupportedEncodingIsReportedUnlessItsSizeIsOne) {
    const ScopedReaderState state;
    const TemporaryFolder folder;
    VElfOptions::mIsLogFile = 1;
    ASSERT_TRUE(CreateLogFile(folder.Path("x.elf")));
    BasicTypeOfEncoding(99, 1);
    BasicTypeOfEncoding(99, 4);
    BasicTypeOfEncoding(145, 4);
    CloseLogFile();
    EXPECT_EQ(folder.Read("x.log"), "[VDebugInfoNode::ConvertBaseTypeForSymbolProvider: "
                                    "Unsupported encoding 99 . Specified Byte size is 4.]\n");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
